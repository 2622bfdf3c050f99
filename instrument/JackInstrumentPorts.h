// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "instrument/ByteRing.h"
#include "instrument/InstrumentPorts.h"

#include <jack/jack.h>
#include <semaphore.h>

#include <array>
#include <atomic>
#include <thread>

// The instrument on JACK, named as the bridge from ALSA names it there: one client "a2j" with
// the ports "DEVICE [N] (capture): Port1" to 5, which send, and "DEVICE [N] (playback): Port1" to
// 5, which receive.
//
// The process callback moves records between the two rings and JACK's buffers, nothing more. What
// does not fit a period waits for the next, and what follows it waits behind it.
class JackInstrumentPorts : public InstrumentPorts
{
public:
    JackInstrumentPorts();
    // Closes, unless the server has died; then the client is left to the end of the process.
    ~JackInstrumentPorts() override;

    bool open(const QString &deviceName, Callbacks callbacks, QString *error) override;
    void send(int port, const QByteArray &bytes) override;
    bool close() override;

private:
    static constexpr std::size_t Ports = 5;

    static int processCallback(jack_nframes_t frames, void *self);
    static void shutdownCallback(jack_status_t code, const char *reason, void *self);
    void process(jack_nframes_t frames);
    void deliver(); // the thread that hands on what was received
    void endDelivery();

    jack_client_t *m_client = nullptr;
    std::array<jack_port_t *, Ports> m_sources{};
    std::array<jack_port_t *, Ports> m_destinations{};
    Callbacks m_callbacks;
    ByteRing m_outgoing;
    ByteRing m_incoming;
    sem_t m_received; // posted for the delivering thread
    sem_t m_room;     // posted for a sender that waits for room
    std::atomic<bool> m_senderWaits{false};
    std::atomic<bool> m_open{false};
    std::atomic<bool> m_dead{false};
    std::atomic<bool> m_quit{false};
    std::thread m_delivery;
};
