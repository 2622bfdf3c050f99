// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/LoopbackCable.h"

#include "instrument/VirtualInstrument.h"
#include "midi/loopback/LoopbackHub.h"

#include <utility>

LoopbackCable::LoopbackCable(VirtualInstrument &instrument, const QString &deviceName)
    : m_instrument(instrument)
    , m_deviceName(deviceName)
{
    m_instrument.setOutput([this](int port, const QByteArray &bytes) { send(port, bytes); });
}

LoopbackCable::~LoopbackCable()
{
    LoopbackCable::setPlugged(false);
    m_instrument.setOutput({});
}

bool LoopbackCable::isPlugged() const
{
    const MutexLocker lock(m_handleMutex);
    return m_handle != 0;
}

void LoopbackCable::setPlugged(bool plugged)
{
    int pulled = 0;
    {
        const MutexLocker lock(m_handleMutex);
        if (plugged == (m_handle != 0)) {
            return;
        }
        if (plugged) {
            // Under the lock: the first message may come at once, and its answer needs the handle.
            m_handle = LoopbackHub::instance().plug(
                m_deviceName, VirtualInstrument::PortCount,
                [this](int port, const QByteArray &bytes) { receive(port, bytes); });
        } else {
            pulled = std::exchange(m_handle, 0);
        }
    }
    if (pulled != 0) {
        // Without the lock: this waits for calls under way, which may be sending.
        LoopbackHub::instance().unplug(pulled);
    }
}

void LoopbackCable::setActivityCallback(std::function<void()> callback)
{
    const MutexLocker lock(m_activityMutex);
    m_activity = std::move(callback);
}

void LoopbackCable::receive(int port, const QByteArray &bytes)
{
    {
        const MutexLocker lock(m_activityMutex);
        if (m_activity) {
            m_activity();
        }
    }
    m_instrument.receive(port, bytes);
}

void LoopbackCable::send(int port, const QByteArray &bytes)
{
    int handle = 0;
    {
        const MutexLocker lock(m_handleMutex);
        handle = m_handle;
    }
    if (handle != 0) {
        LoopbackHub::instance().send(handle, port, bytes);
    }
}
