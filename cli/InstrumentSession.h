// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitCode.h"

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <functional>

class Console;
class Interruption;
class QElapsedTimer;
class RemoteMemAPI;
class SyncRun;

// The route to one instrument for the length of a command, and the runs over it, each waited for.
// A run ends at once when the service has gone or has refused a message, and soon when the
// instrument's ports are away and do not come back. Whatever goes wrong is told to the console
// here; the result is what the command ends with. Nothing is owned; all outlives the session, whose
// end closes the route in order. Thread: GUI.
class InstrumentSession
{
public:
    InstrumentSession(RemoteMemAPI *api, Console *console, Interruption *interruption);
    ~InstrumentSession();
    InstrumentSession(const InstrumentSession &) = delete;
    InstrumentSession &operator=(const InstrumentSession &) = delete;

    // portName: empty for the first instrument.
    ExitCode open(const QString &portName);
    // The instrument's whole memory into banks 2 and 3, and its current template number into bank
    // 0. Done only if every dump had all its blocks. Limits in milliseconds, 0 for the default.
    ExitCode receive(int timeoutMs);
    // Makes what was received the document.
    void applyReceived();
    ExitCode send(bool editBufferOnly, int timeoutMs);
    // Whether a send has begun, so that the instrument may hold something of it.
    bool hasSent() const { return m_hasSent; }
    // Has the instrument store its edit buffer, and follows in the memory.
    ExitCode store();
    // Closes the route, so that everything has gone out. Not done if the service refused anything
    // since open().
    ExitCode close();

private:
    enum class End { None, Succeeded, Refused, TimedOut, Interrupted, ServiceGone, PortAway };
    ExitCode perform(const QString &what, const std::function<bool(SyncRun *)> &start);
    bool wasRefused() const;
    // What of the connection keeps a run from going on; None if nothing does. Resets nothing.
    End trouble(QElapsedTimer *portAwaySince) const;
    ExitCode brokenOff(const QString &why);

    RemoteMemAPI *m_api;
    Console *m_console;
    Interruption *m_interruption;
    QString m_name;
    quint64 m_failuresBefore = 0;
    bool m_hasSent = false;
};
