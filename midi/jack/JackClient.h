// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/linux/PortDirection.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstddef>
#include <memory>

class JackPort;
class TMIDITransport;

// The process's one client of the JACK server, shared by catalogue and transports: it exists while
// any of them holds it. A server is never started; one that dies is noticed at once, and a later
// one is taken up by the next ports() or connectToServer(), together with the ports still open.
//
// Everything asked of the server is asked by a worker thread of the client's own, for three
// reasons: callbacks may not ask, the library changes the signal mask of threads that do, and a
// server that no longer answers must not take the caller with it. A caller waits for
// RequestTimeoutMs at most, or, after abandon(), for what is left of the time given there.
//
// Threads: any, but send(), for one port, one at a time. Ports are opened and closed by one thread.
class JackClient
{
public:
    static constexpr int RequestTimeoutMs = 5000;

    // Without a server, too; never null.
    static std::shared_ptr<JackClient> shared();
    // Leaves the server in order. No port may be open.
    ~JackClient();
    JackClient(const JackClient &) = delete;
    JackClient &operator=(const JackClient &) = delete;

    bool isRunning() const;
    // False if no server runs.
    bool connectToServer();

    // A server is there, or something is in its place, that does not answer what was asked of it.
    bool isUnanswered() const;

    // The names of the others' MIDI ports, read anew, by the naming rule; empty without a server.
    // The list read last is the one that port numbers count in.
    QStringList ports(PortDirection direction);

    // number: 1-based. Null if there is no such port or the server refuses. The transport's read()
    // is called on the process thread until close() returns.
    std::shared_ptr<JackPort> openInput(int number, TMIDITransport *transport);
    std::shared_ptr<JackPort> openOutput(int number);
    // What was sent goes out first; if the server is dead, nothing is waited for but the library's
    // taking note of it, for a second at most.
    void close(const std::shared_ptr<JackPort> &port);
    // From now on nothing is waited for until it is out, and all that is asked of the server shares
    // TMIDITransport::AbandonLimitMs, the client's own end included; until the ports are listed or
    // one is opened again.
    void abandon();
    // One message, a status of 0 being none. False if the server is dead, the port's other side
    // away or there is no room.
    bool send(JackPort &port, unsigned char status, const unsigned char *data, std::size_t length);

private:
    class Connection;
    JackClient();
    std::shared_ptr<JackPort> open(PortDirection direction, int number, TMIDITransport *transport);

    // Shared with the worker thread, which outlives this object if a server never answers it.
    std::shared_ptr<Connection> m_connection;
};
