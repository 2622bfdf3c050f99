// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "instrument/ByteRing.h"
#include "instrument/SysExAssembler.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QStringList>

#include <jack/jack.h>
#include <jack/midiport.h>

// A program at the other end of JACK's cables, for tests: joined to all ports of the client "a2j".
// Thread: the test's; the process callback only moves bytes between rings and buffers.
class JackPeer
{
public:
    JackPeer()
        : m_outgoing(1 << 20)
        , m_incoming(1 << 22)
    {
    }
    ~JackPeer() { close(); }
    JackPeer(const JackPeer &) = delete;
    JackPeer &operator=(const JackPeer &) = delete;

    bool open()
    {
        jack_set_error_function([](const char *) {});
        jack_set_info_function([](const char *) {});
        m_client = jack_client_open("peer", JackNoStartServer, nullptr);
        if (!m_client) {
            return false;
        }
        jack_set_process_callback(m_client, process, this);
        // Without this a server that dies ends the process that did not ask to be told.
        jack_on_shutdown(
            m_client, [](void *) {}, nullptr);
        m_out = port("out", JackPortIsOutput);
        m_messages = port("messages", JackPortIsInput);
        m_sensing = port("sensing", JackPortIsInput);
        return m_out && m_messages && m_sensing && jack_activate(m_client) == 0;
    }
    void close()
    {
        if (m_client) {
            jack_deactivate(m_client);
            jack_client_close(m_client);
            m_client = nullptr;
        }
    }

    QStringList portsOfTheInstrument(unsigned long direction) const
    {
        QStringList names;
        const char **ports = jack_get_ports(m_client, "^a2j:", JACK_DEFAULT_MIDI_TYPE, direction);
        for (const char **p = ports; p && *p; ++p) {
            names.append(QString::fromUtf8(*p));
        }
        jack_free(ports);
        return names;
    }

    // Ports as the instrument calls them, 1 to 5.
    bool connectTo(const QByteArray &device)
    {
        const auto name = [&](const char *direction, int n) {
            return "a2j:" + device + " [20] (" + direction + "): Port" + QByteArray::number(n);
        };
        return jack_connect(m_client, name("capture", 1), jack_port_name(m_sensing)) == 0 &&
               jack_connect(m_client, name("capture", 5), jack_port_name(m_messages)) == 0 &&
               jack_connect(m_client, jack_port_name(m_out), name("playback", 5)) == 0;
    }

    void send(const QByteArray &wire)
    {
        m_outgoing.push(1, reinterpret_cast<const std::uint8_t *>(wire.constData()),
                        static_cast<std::size_t>(wire.size()));
    }

    // All that came so far on the message port, and the bytes on the sensing port.
    const QList<QByteArray> &messages()
    {
        fetch();
        return m_received;
    }
    const QByteArray &sensing()
    {
        fetch();
        return m_sensed;
    }
    void forget()
    {
        fetch();
        m_received.clear();
        m_sensed.clear();
    }

private:
    jack_port_t *port(const char *name, unsigned long direction)
    {
        return jack_port_register(m_client, name, JACK_DEFAULT_MIDI_TYPE, direction, 0);
    }

    void fetch()
    {
        int from = 0;
        std::size_t count = 0;
        while (m_incoming.peek(&from, &count)) {
            QByteArray bytes(static_cast<qsizetype>(count), '\0');
            m_incoming.pop(reinterpret_cast<std::uint8_t *>(bytes.data()));
            if (from == 1) {
                m_sensed += bytes;
            } else {
                for (const QByteArray &message : m_assembler.push(bytes)) {
                    m_received.append(message);
                }
            }
        }
    }

    static int process(jack_nframes_t frames, void *self)
    {
        auto *peer = static_cast<JackPeer *>(self);
        void *out = jack_port_get_buffer(peer->m_out, frames);
        jack_midi_clear_buffer(out);
        int unused = 0;
        std::size_t count = 0;
        while (peer->m_outgoing.peek(&unused, &count)) {
            auto *target = jack_midi_event_reserve(out, 0, count);
            if (!target) {
                break;
            }
            peer->m_outgoing.pop(target);
        }
        peer->take(1, peer->m_sensing, frames);
        peer->take(5, peer->m_messages, frames);
        return 0;
    }
    void take(int number, jack_port_t *from, jack_nframes_t frames)
    {
        void *buffer = jack_port_get_buffer(from, frames);
        const std::uint32_t events = jack_midi_get_event_count(buffer);
        for (std::uint32_t i = 0; i < events; ++i) {
            jack_midi_event_t event{};
            if (jack_midi_event_get(&event, buffer, i) == 0) {
                m_incoming.push(number, event.buffer, event.size);
            }
        }
    }

    jack_client_t *m_client = nullptr;
    jack_port_t *m_out = nullptr;
    jack_port_t *m_messages = nullptr;
    jack_port_t *m_sensing = nullptr;
    ByteRing m_outgoing;
    ByteRing m_incoming;
    SysExAssembler m_assembler;
    QList<QByteArray> m_received;
    QByteArray m_sensed;
};
