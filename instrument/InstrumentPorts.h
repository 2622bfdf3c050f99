// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>

// The instrument's five ports each way on a MIDI service, as the program needs them.
//
// Threads: open() and close() on one thread; send() from any, one call at a time, also before
// open() and after close(), when it does nothing. The callbacks run on a thread of the ports' own,
// never on one that the service runs in real time.
class InstrumentPorts
{
public:
    struct Callbacks
    {
        std::function<void(int port, const QByteArray &bytes)> received; // port 1 to 5
        // Messages were lost after all, in words; may be left empty. Also called by send().
        std::function<void(const QString &what)> lost;
        // The service has gone. close() must not be called afterwards, see its comment.
        std::function<void()> died;
    };

    virtual ~InstrumentPorts() = default;

    // Never starts a service, prints nothing. False and *error told if there is none.
    [[nodiscard]] virtual bool open(const QString &deviceName, Callbacks callbacks,
                                    QString *error) = 0;
    // Whole wire messages, kept whole and in order; waits for room, so that none is lost. A
    // receiver that takes nothing in for seconds is not waited for any longer, and that is told.
    virtual void send(int port, const QByteArray &bytes) = 0;
    // Takes the ports back in order. Not once the service has died: its library may wait for an
    // answer from it for ever. False if the service didn't answer within seconds: it may still come
    // back and call in here, so these ports must not be destroyed but go with the process.
    virtual bool close() = 0;
};
