// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/JackInstrumentPorts.h"

#include <jack/midiport.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <thread>

namespace
{

// Room for some thousand dumps; a ring is never the bottleneck, the service's period is.
constexpr std::size_t RingSize = std::size_t{1} << 22;
constexpr std::chrono::seconds CloseTimeout(3);
// What the bridge shows in brackets is the number of the ALSA client, which begins at 16 for
// devices.
constexpr int DeviceNumber = 20;

void printNothing(const char * /*text*/) {}

void waitFor(sem_t *semaphore)
{
    while (sem_wait(semaphore) != 0 && errno == EINTR) {
    }
}

// A client that vanishes without this stalls a synchronous server for seconds. False if the server
// doesn't answer: the client then goes with the process.
bool closesInTime(jack_client_t *client)
{
    std::packaged_task<void()> close([client] {
        jack_deactivate(client);
        jack_client_close(client);
    });
    const std::future<void> closed = close.get_future();
    std::thread(std::move(close)).detach();
    return closed.wait_for(CloseTimeout) == std::future_status::ready;
}

} // namespace

JackInstrumentPorts::JackInstrumentPorts()
    : m_outgoing(RingSize)
    , m_incoming(RingSize)
{
    sem_init(&m_received, 0, 0);
    sem_init(&m_room, 0, 0);
}

JackInstrumentPorts::~JackInstrumentPorts()
{
    if (!m_dead) {
        JackInstrumentPorts::close();
    }
    endDelivery();
    sem_destroy(&m_received);
    sem_destroy(&m_room);
}

bool JackInstrumentPorts::open(const QString &deviceName, Callbacks callbacks, QString *error)
{
    jack_set_error_function(printNothing);
    jack_set_info_function(printNothing);
    jack_status_t status{};
    m_client = jack_client_open("a2j", JackNoStartServer, &status);
    if (!m_client) {
        *error = QStringLiteral("No JACK server runs.");
        return false;
    }
    m_callbacks = std::move(callbacks);
    jack_set_process_callback(m_client, processCallback, this);
    jack_on_info_shutdown(m_client, shutdownCallback, this);
    for (std::size_t i = 0; i < Ports; ++i) {
        const auto name = [&](const char *direction) {
            // In one step: the device's name may hold what looks like a place.
            return QStringLiteral("%1 [%2] (%3): Port%4")
                .arg(deviceName, QString::number(DeviceNumber), QLatin1String(direction),
                     QString::number(i + 1))
                .toUtf8();
        };
        constexpr unsigned long hardware = JackPortIsPhysical | JackPortIsTerminal;
        m_sources[i] = jack_port_register(m_client, name("capture").constData(),
                                          JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput | hardware, 0);
        m_destinations[i] =
            jack_port_register(m_client, name("playback").constData(), JACK_DEFAULT_MIDI_TYPE,
                               JackPortIsInput | hardware, 0);
        if (!m_sources[i] || !m_destinations[i]) {
            *error = QStringLiteral("The JACK server refuses the ports.");
            jack_client_close(m_client);
            m_client = nullptr;
            return false;
        }
    }
    m_delivery = std::thread(&JackInstrumentPorts::deliver, this);
    m_open = true;
    if (jack_activate(m_client) != 0) {
        *error = QStringLiteral("The JACK server refuses the client.");
        close();
        return false;
    }
    return true;
}

bool JackInstrumentPorts::close()
{
    m_open = false;
    sem_post(&m_room);
    if (m_client) {
        m_dead = m_dead || !closesInTime(m_client);
        m_client = nullptr;
    }
    endDelivery();
    return !m_dead;
}

void JackInstrumentPorts::endDelivery()
{
    if (m_delivery.joinable()) {
        m_quit = true;
        sem_post(&m_received);
        m_delivery.join();
    }
}

void JackInstrumentPorts::send(int port, const QByteArray &bytes)
{
    const auto *data = reinterpret_cast<const std::uint8_t *>(bytes.constData());
    const auto count = static_cast<std::size_t>(bytes.size());
    while (m_open && !m_dead) {
        if (m_outgoing.push(port, data, count)) {
            return;
        }
        // The flag first and then another try, so that room made in between is not missed.
        m_senderWaits = true;
        if (m_outgoing.push(port, data, count)) {
            m_senderWaits = false;
            return;
        }
        waitFor(&m_room);
    }
}

int JackInstrumentPorts::processCallback(jack_nframes_t frames, void *self)
{
    static_cast<JackInstrumentPorts *>(self)->process(frames);
    return 0;
}

void JackInstrumentPorts::process(jack_nframes_t frames)
{
    std::array<void *, Ports> buffers{};
    for (std::size_t i = 0; i < Ports; ++i) {
        buffers[i] = jack_port_get_buffer(m_sources[i], frames);
        jack_midi_clear_buffer(buffers[i]);
    }
    int port = 0;
    std::size_t count = 0;
    while (m_outgoing.peek(&port, &count)) {
        void *buffer = buffers[static_cast<std::size_t>(port - 1)];
        auto *target = jack_midi_event_reserve(buffer, 0, count);
        if (!target && jack_midi_get_event_count(buffer) > 0) {
            break; // the next period has room
        }
        // Without a place even in an empty buffer it never fits, and would hold up all the others.
        m_outgoing.pop(target);
        if (m_senderWaits.exchange(false)) {
            sem_post(&m_room);
        }
    }

    bool received = false;
    for (std::size_t i = 0; i < Ports; ++i) {
        void *buffer = jack_port_get_buffer(m_destinations[i], frames);
        const std::uint32_t events = jack_midi_get_event_count(buffer);
        for (std::uint32_t e = 0; e < events; ++e) {
            jack_midi_event_t event{};
            if (jack_midi_event_get(&event, buffer, e) == 0) {
                received |= m_incoming.push(static_cast<int>(i) + 1, event.buffer, event.size);
            }
        }
    }
    if (received) {
        sem_post(&m_received);
    }
}

void JackInstrumentPorts::shutdownCallback(jack_status_t /*code*/, const char * /*reason*/,
                                           void *self)
{
    auto *ports = static_cast<JackInstrumentPorts *>(self);
    ports->m_dead = true;
    sem_post(&ports->m_room);
    sem_post(&ports->m_received);
}

void JackInstrumentPorts::deliver()
{
    bool told = false;
    while (!m_quit) {
        waitFor(&m_received);
        int port = 0;
        std::size_t count = 0;
        while (!m_quit && m_incoming.peek(&port, &count)) {
            QByteArray bytes(static_cast<qsizetype>(count), '\0');
            m_incoming.pop(reinterpret_cast<std::uint8_t *>(bytes.data()));
            m_callbacks.received(port, bytes);
        }
        if (m_dead && !told) {
            told = true;
            m_callbacks.died();
        }
    }
}
