// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/AlsaInstrumentPorts.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <vector>

namespace
{

// The kernel's own limit, in cells of some 30 bytes: a burst of fifty dumps.
constexpr std::size_t PoolCells = 2000;
// How long a full pool on the other side is waited for before the next try, and how often; the
// kernel has no way to tell that a subscriber has room again.
constexpr int RetryMs = 1;
constexpr int Retries = 5000;

void printNothing(const char * /*file*/, int /*line*/, const char * /*function*/, int /*error*/,
                  const char * /*format*/, ...)
{
}

} // namespace

AlsaInstrumentPorts::~AlsaInstrumentPorts()
{
    close();
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

void AlsaInstrumentPorts::close()
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
}

// False when the ports close meanwhile.
bool AlsaInstrumentPorts::waitForRoom()
{
    pollfd fds[2] = {};
    if (snd_seq_poll_descriptors(m_sequencer, fds, 1, POLLOUT) != 1) {
        return false;
    }
    fds[1].fd = m_quitFd;
    fds[1].events = POLLIN;
    while (poll(fds, 2, -1) < 0 && errno == EINTR) {
    }
    return fds[1].revents == 0;
}

void AlsaInstrumentPorts::send(int port, const QByteArray &bytes)
{
    const MutexLocker locker(m_sendMutex);
    if (!m_open || !m_sequencer) {
        return;
    }
    snd_seq_event_t event;
    snd_seq_ev_clear(&event);
    snd_seq_ev_set_source(&event,
                          static_cast<unsigned char>(m_ports[static_cast<std::size_t>(port - 1)]));
    snd_seq_ev_set_subs(&event);
    snd_seq_ev_set_direct(&event);
    QByteArray data = bytes;
    if (bytes == QByteArrayLiteral("\xFE")) {
        event.type = SND_SEQ_EVENT_SENSING;
        snd_seq_ev_set_fixed(&event);
    } else {
        snd_seq_ev_set_sysex(&event, static_cast<unsigned>(data.size()), data.data());
    }
    for (int i = 0; i < Retries && m_open; ++i) {
        const int result = snd_seq_event_output_direct(m_sequencer, &event);
        if (result >= 0 || (result != -EAGAIN && result != -ENOMEM && result != -ENOSPC)) {
            return;
        }
        if (result == -EAGAIN && !waitForRoom()) {
            return;
        }
        // Our own pool has room by now, so the full one is the subscriber's.
        poll(nullptr, 0, RetryMs);
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
        snd_seq_event_t *event = nullptr;
        int result = 0;
        // -ENOSPC tells that the kernel dropped events; those behind them still come.
        while (m_open &&
               ((result = snd_seq_event_input(m_sequencer, &event)) >= 0 || result == -ENOSPC)) {
            if (result < 0 || !event || event->type != SND_SEQ_EVENT_SYSEX) {
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
        if (result < 0 && result != -EAGAIN && result != -EINTR) {
            m_callbacks.died();
            return;
        }
    }
}
