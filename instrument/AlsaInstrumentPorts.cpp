// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/AlsaInstrumentPorts.h"

#include "midi/alsa/SequencerRoom.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>

namespace
{

// The most that the sequencer grants: some 660 messages of the longest kind.
constexpr std::size_t PoolCells = 2000;
// More than the pool can hold, since an event larger than the buffer could never be read.
constexpr std::size_t InputBufferBytes = std::size_t{1} << 17;
// The kernel has no way to tell that a receiver has room again.
constexpr int RetryMs = 1;
constexpr std::chrono::seconds StuckAfter{5};

void printNothing(const char * /*file*/, int /*line*/, const char * /*function*/, int /*error*/,
                  const char * /*format*/, ...)
{
}

} // namespace

AlsaInstrumentPorts::~AlsaInstrumentPorts()
{
    AlsaInstrumentPorts::close();
}

bool AlsaInstrumentPorts::open(const QString &deviceName, Callbacks callbacks, QString *error)
{
    snd_lib_error_set_handler(printNothing);
    if (snd_seq_open(&m_sequencer, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK) < 0) {
        m_sequencer = nullptr;
        *error = QStringLiteral("The ALSA sequencer cannot be opened.");
        return false;
    }
    m_callbacks = std::move(callbacks);
    snd_seq_set_client_name(m_sequencer, deviceName.toUtf8().constData());
    snd_seq_set_client_pool_output(m_sequencer, PoolCells);
    snd_seq_set_client_pool_input(m_sequencer, PoolCells);
    snd_seq_set_input_buffer_size(m_sequencer, InputBufferBytes);
    bool good = true;
    for (std::size_t i = 0; i < Ports; ++i) {
        m_ports[i] = snd_seq_create_simple_port(
            m_sequencer, QStringLiteral("Port%1").arg(i + 1).toUtf8().constData(),
            SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ | SND_SEQ_PORT_CAP_WRITE |
                SND_SEQ_PORT_CAP_SUBS_WRITE | SND_SEQ_PORT_CAP_DUPLEX,
            SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_HARDWARE | SND_SEQ_PORT_TYPE_PORT);
        good = good && m_ports[i] >= 0;
    }
    m_quitFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (!good || m_quitFd < 0) {
        *error = QStringLiteral("The ALSA sequencer refuses the ports.");
        close();
        return false;
    }
    m_open = true;
    m_reader = std::thread(&AlsaInstrumentPorts::readEvents, this);
    return true;
}

bool AlsaInstrumentPorts::close()
{
    m_open = false;
    if (m_quitFd >= 0) {
        const std::uint64_t one = 1;
        while (write(m_quitFd, &one, sizeof one) < 0 && errno == EINTR) {
        }
    }
    if (m_reader.joinable()) {
        m_reader.join();
    }
    const MutexLocker locker(m_sendMutex);
    if (m_quitFd >= 0) {
        ::close(m_quitFd);
        m_quitFd = -1;
    }
    if (m_sequencer) {
        snd_seq_close(m_sequencer);
        m_sequencer = nullptr;
    }
    return true;
}

void AlsaInstrumentPorts::send(int port, const QByteArray &bytes)
{
    const MutexLocker locker(m_sendMutex);
    if (!m_open || !m_sequencer) {
        return;
    }
    const int own = m_ports[static_cast<std::size_t>(port - 1)];
    snd_seq_event_t event;
    snd_seq_ev_clear(&event);
    snd_seq_ev_set_source(&event, static_cast<unsigned char>(own));
    snd_seq_ev_set_direct(&event);
    QByteArray data = bytes;
    if (bytes == QByteArrayLiteral("\xFE")) {
        event.type = SND_SEQ_EVENT_SENSING;
        snd_seq_ev_set_fixed(&event);
    } else {
        snd_seq_ev_set_sysex(&event, static_cast<unsigned>(data.size()), data.data());
    }
    for (const snd_seq_addr_t &receiver : receivers(own)) {
        sendTo(receiver, &event);
    }
}

std::vector<snd_seq_addr_t> AlsaInstrumentPorts::receivers(int port) const
{
    std::vector<snd_seq_addr_t> found;
    snd_seq_query_subscribe_t *query = nullptr;
    snd_seq_query_subscribe_alloca(&query);
    const snd_seq_addr_t own{static_cast<unsigned char>(snd_seq_client_id(m_sequencer)),
                             static_cast<unsigned char>(port)};
    snd_seq_query_subscribe_set_root(query, &own);
    snd_seq_query_subscribe_set_type(query, SND_SEQ_QUERY_SUBS_READ);
    for (int i = 0;; ++i) {
        snd_seq_query_subscribe_set_index(query, i);
        if (snd_seq_query_port_subscribers(m_sequencer, query) < 0) {
            return found;
        }
        found.push_back(*snd_seq_query_subscribe_get_addr(query));
    }
}

void AlsaInstrumentPorts::sendTo(const snd_seq_addr_t &receiver, snd_seq_event_t *event)
{
    snd_seq_ev_set_dest(event, receiver.client, receiver.port);
    const std::size_t length = snd_seq_ev_is_variable(event) ? event->data.ext.len : 0;
    pollfd sequencer{};
    snd_seq_poll_descriptors(m_sequencer, &sequencer, 1, POLLOUT);
    pollfd quit{m_quitFd, POLLIN, 0};
    const auto begin = std::chrono::steady_clock::now();
    while (m_open) {
        if (sequencerHasRoom(sequencer.fd, receiver.client, length)) {
            const int result = snd_seq_event_output_direct(m_sequencer, event);
            if (result >= 0) {
                m_stuck.erase(receiver.client);
                return;
            }
            if (result != -EAGAIN && result != -ENOMEM) {
                return; // it has gone meanwhile
            }
        }
        if (m_stuck.count(receiver.client) > 0 ||
            std::chrono::steady_clock::now() - begin >= StuckAfter) {
            m_stuck.insert(receiver.client);
            tellLoss(QStringLiteral("Client %1 has no room for what is sent to it; a message to it "
                                    "is lost.")
                         .arg(receiver.client));
            return;
        }
        poll(&quit, 1, RetryMs);
    }
}

void AlsaInstrumentPorts::tellLoss(const QString &what) const
{
    if (m_callbacks.lost) {
        m_callbacks.lost(what);
    }
}

void AlsaInstrumentPorts::readEvents()
{
    const int count = snd_seq_poll_descriptors_count(m_sequencer, POLLIN);
    std::vector<pollfd> fds(static_cast<std::size_t>(count) + 1);
    snd_seq_poll_descriptors(m_sequencer, fds.data(), static_cast<unsigned>(count), POLLIN);
    fds.back().fd = m_quitFd;
    fds.back().events = POLLIN;
    while (m_open) {
        if (poll(fds.data(), static_cast<nfds_t>(fds.size()), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            m_callbacks.died();
            return;
        }
        if ((fds.front().revents & (POLLERR | POLLHUP | POLLNVAL)) != 0) {
            m_callbacks.died();
            return;
        }
        snd_seq_event_t *event = nullptr;
        int result = 0;
        while (m_open &&
               ((result = snd_seq_event_input(m_sequencer, &event)) >= 0 || result == -ENOSPC)) {
            if (result == -ENOSPC) {
                tellLoss(
                    QStringLiteral("More came in than there was room for; messages are lost."));
                continue;
            }
            if (!event || event->type != SND_SEQ_EVENT_SYSEX) {
                continue;
            }
            for (std::size_t i = 0; i < Ports; ++i) {
                if (event->dest.port == m_ports[i]) {
                    m_callbacks.received(static_cast<int>(i) + 1,
                                         QByteArray(static_cast<const char *>(event->data.ext.ptr),
                                                    static_cast<qsizetype>(event->data.ext.len)));
                }
            }
        }
        if (m_open && result < 0 && result != -EAGAIN && result != -EINTR) {
            m_callbacks.died();
            return;
        }
    }
}
