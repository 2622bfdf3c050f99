// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/jack/JackPortName.h"
#include "midi/jack/MessageRing.h"
#include "midi/jack/PeriodSignal.h"
#include "midi/linux/PortDirection.h"

#include <QtCore/QByteArray>
#include <QtCore/QSet>

#include <jack/jack.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

class TMIDITransport;

// One port of ours in the JACK graph, bound to the name of another's port for its whole life, also
// while that port, or the server, is away.
//
// Owner: JackClient, shared with the transport that opened it. Threads: send() and drain() the
// sender's, one at a time; process() the JACK process thread; the rest JackClient's worker.
class JackPort
{
public:
    JackPort(PortDirection direction, JackPortName boundTo, TMIDITransport *transport);
    JackPort(const JackPort &) = delete;
    JackPort &operator=(const JackPort &) = delete;

    PortDirection direction() const { return m_direction; }

    // Queues one message for the next period. A status of 0 means none. False without a
    // connection, without room, or if no period could ever hold it.
    bool send(unsigned char status, const unsigned char *data, std::size_t length);
    // Waits until what was sent is out of the other side's way too, for at most DrainTimeoutMs.
    void drain();
    void process(jack_nframes_t frames);

    // A connection's number marks what is sent over it: what a broken one left behind is not sent
    // over the next.
    void setConnected();
    // Nobody is waited for any more, either.
    void setDisconnected()
    {
        m_connection = 0;
        m_period.release();
    }
    bool isConnected() const { return m_connection != 0; }

    // Worker only; the first is published to the process thread with the port itself.
    struct
    {
        jack_port_t *port = nullptr;  // null without a server
        jack_port_t *other = nullptr; // the connected one
        // Other ports of the bound name that were there when the connection broke: a second
        // instrument, or one that somebody disconnected by hand. Not to be taken for the returning
        // one, until they are registered anew.
        QSet<QByteArray> passedOver;
    } graph;
    const JackPortName boundTo;

private:
    static constexpr std::size_t RingBytes = 1 << 17;
    static constexpr int DrainTimeoutMs = 1000;
    // The transport's ring behind an input holds 960 events: a burst is spread over periods, on
    // either side, so that its reader keeps up.
    static constexpr int MaximumEventsPerPeriod = 256;

    void receivePeriod(void *buffer);
    void sendPeriod(void *buffer);
    void dropMessage(std::size_t length);

    const PortDirection m_direction;
    TMIDITransport *const m_transport; // null for an output
    // Output: from the sender to the process thread. Input: what is left of a burst for the next
    // period, both ends on the process thread.
    MessageRing m_ring{RingBytes};
    std::unique_ptr<unsigned char[]> m_message;   // input: one message out of the ring
    std::atomic<std::uint32_t> m_connection{0};   // 0: none
    std::uint32_t m_lastConnection = 0;           // worker only
    std::atomic<std::size_t> m_largestMessage{0}; // of an empty period; 0: not known yet
    PeriodSignal m_period;                        // for drain()
};
