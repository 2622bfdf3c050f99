// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"
#include "instrument/InstrumentCable.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

class VirtualInstrument;

// The cable from a virtual instrument to the loopback binding of the same program, which the
// executable links. It takes the instrument's output for itself.
//
// The instrument is not owned and outlives the cable. Pulled out, the ports are gone for the
// editor; put back, they return under the same name, and what had them open takes them up again.
// Threads: as InstrumentCable.
class LoopbackCable : public InstrumentCable
{
public:
    // Not plugged in yet. The name is the device's part of the names of the ports.
    LoopbackCable(VirtualInstrument &instrument, const QString &deviceName);
    ~LoopbackCable() override;

    bool isPlugged() const override;
    void setPlugged(bool plugged) override;
    void setActivityCallback(std::function<void()> callback) override;

private:
    void receive(int port, const QByteArray &bytes);
    void send(int port, const QByteArray &bytes);

    VirtualInstrument &m_instrument;
    const QString m_deviceName;
    mutable Mutex m_handleMutex;
    int m_handle = 0; // guarded by m_handleMutex; 0 while pulled out
    Mutex m_activityMutex;
    std::function<void()> m_activity; // guarded by m_activityMutex
};
