// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "instrument/InstrumentPorts.h"

#include <alsa/asoundlib.h>

#include <array>
#include <atomic>
#include <set>
#include <thread>
#include <vector>

// The instrument on the ALSA sequencer: one client with the device's name and the duplex ports
// "Port1" to "Port5".
//
// The sequencer empties the whole inbox of a receiver that has no room for an event. So each one's
// room is asked for first, and it is waited for.
class AlsaInstrumentPorts : public InstrumentPorts
{
public:
    ~AlsaInstrumentPorts() override;

    bool open(const QString &deviceName, Callbacks callbacks, QString *error) override;
    void send(int port, const QByteArray &bytes) override;
    bool close() override;

private:
    static constexpr std::size_t Ports = 5;

    void readEvents();
    void tellLoss(const QString &what) const;
    // Under m_sendMutex.
    std::vector<snd_seq_addr_t> receivers(int port) const;
    void sendTo(const snd_seq_addr_t &receiver, snd_seq_event_t *event);

    // Taken by send() for its length and by close() once the waits of send() are broken off. The
    // reader uses the sequencer without it: reading and writing share nothing in the library.
    Mutex m_sendMutex;
    snd_seq_t *m_sequencer = nullptr;
    std::array<int, Ports> m_ports{};
    std::set<int> m_stuck; // clients that had no room for as long as one waits; under m_sendMutex
    Callbacks m_callbacks;
    int m_quitFd = -1; // readable once the ports close
    std::atomic<bool> m_open{false};
    std::thread m_reader;
};
