// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "instrument/InstrumentPorts.h"

#include <alsa/asoundlib.h>

#include <array>
#include <atomic>
#include <thread>

// The instrument on the ALSA sequencer: one client with the device's name and the duplex ports
// "Port1" to "Port5".
class AlsaInstrumentPorts : public InstrumentPorts
{
public:
    ~AlsaInstrumentPorts() override;

    bool open(const QString &deviceName, Callbacks callbacks, QString *error) override;
    void send(int port, const QByteArray &bytes) override;
    void close() override;

private:
    static constexpr std::size_t Ports = 5;

    void readEvents();
    bool waitForRoom();

    // Taken by send() for its length and by close() once the waits of send() are broken off. The
    // reader uses the sequencer without it: reading and writing share nothing in the library.
    Mutex m_sendMutex;
    snd_seq_t *m_sequencer = nullptr;
    std::array<int, Ports> m_ports{};
    Callbacks m_callbacks;
    int m_quitFd = -1; // readable once the ports close
    std::atomic<bool> m_open{false};
    std::thread m_reader;
};
