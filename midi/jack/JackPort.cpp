// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/jack/JackPort.h"

#include "midi/TMIDITransport.h"

#include <jack/midiport.h>

#include <utility>

namespace
{

// Gives bindings' refusals to the common count, for a message that was taken and then lost.
class RefusalCount : public TMIDITransport
{
public:
    static void count() { countedOutput(false); }
};

} // namespace

JackPort::JackPort(PortDirection direction, JackPortName name, TMIDITransport *transport)
    : boundTo(std::move(name))
    , m_direction(direction)
    , m_transport(transport)
{
    if (direction == PortDirection::Input) {
        m_message = std::make_unique<unsigned char[]>(RingBytes);
    }
}

bool JackPort::send(unsigned char status, const unsigned char *data, std::size_t length)
{
    const std::uint32_t connection = m_connection;
    if (connection == 0) {
        return false;
    }
    const std::size_t largest = m_largestMessage;
    if (largest != 0 && length + (status != 0 ? 1 : 0) > largest) {
        return false;
    }
    return m_ring.push(connection, status, data, length);
}

void JackPort::drain()
{
    PeriodWatch watch(m_period, DrainTimeoutMs);
    // The period that takes the last message is over for the other side when the second one after
    // it begins.
    for (int periodsAfter = 0; periodsAfter < 2 && isConnected();) {
        const bool wasEmpty = m_ring.isEmpty();
        if (!watch.awaitNext()) {
            break;
        }
        periodsAfter += wasEmpty ? 1 : 0;
    }
}

void JackPort::process(jack_nframes_t frames)
{
    void *buffer = jack_port_get_buffer(graph.port, frames);
    if (buffer != nullptr) {
        m_direction == PortDirection::Input ? receivePeriod(buffer) : sendPeriod(buffer);
    }
    m_period.periodEnded();
}

void JackPort::receivePeriod(void *buffer)
{
    int delivered = 0;
    std::size_t length = 0;
    std::uint32_t mark = 0;
    while (delivered < MaximumEventsPerPeriod && m_ring.next(&length, &mark)) {
        m_ring.pop(m_message.get(), length);
        m_transport->read(static_cast<int>(length), m_message.get());
        ++delivered;
    }
    const std::uint32_t count = jack_midi_get_event_count(buffer);
    for (std::uint32_t i = 0; i < count; ++i) {
        jack_midi_event_t event{};
        if (jack_midi_event_get(&event, buffer, i) != 0 || event.size == 0) {
            continue;
        }
        const bool mayWait = delivered >= MaximumEventsPerPeriod || !m_ring.isEmpty();
        if (mayWait && m_ring.push(0, 0, event.buffer, event.size)) {
            continue;
        }
        // A ring that is full gives way in order: what waits goes first.
        while (m_ring.next(&length, &mark)) {
            m_ring.pop(m_message.get(), length);
            m_transport->read(static_cast<int>(length), m_message.get());
        }
        m_transport->read(static_cast<int>(event.size), event.buffer);
        ++delivered;
    }
}

void JackPort::sendPeriod(void *buffer)
{
    jack_midi_clear_buffer(buffer);
    m_largestMessage = jack_midi_max_event_size(buffer);
    const std::uint32_t connection = m_connection;
    std::size_t length = 0;
    std::uint32_t mark = 0;
    for (int sent = 0; sent < MaximumEventsPerPeriod && m_ring.next(&length, &mark);) {
        if (mark != connection) {
            dropMessage(length);
            continue;
        }
        // The server makes a connection between two periods; until then nobody would read this.
        if (sent == 0 && jack_port_connected(graph.port) == 0) {
            return;
        }
        jack_midi_data_t *place = length <= jack_midi_max_event_size(buffer)
                                      ? jack_midi_event_reserve(buffer, 0, length)
                                      : nullptr;
        if (place != nullptr) {
            m_ring.pop(place, length);
            ++sent;
        } else if (sent == 0) {
            // Larger than a whole period, which has shrunk since the message was taken.
            dropMessage(length);
        } else {
            return;
        }
    }
}

void JackPort::dropMessage(std::size_t length)
{
    m_ring.pop(nullptr, length);
    RefusalCount::count();
}

void JackPort::setConnected()
{
    ++m_lastConnection;
    m_connection = m_lastConnection == 0 ? ++m_lastConnection : m_lastConnection;
}
