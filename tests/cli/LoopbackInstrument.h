// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "instrument/VirtualInstrument.h"
#include "midi/loopback/LoopbackHub.h"

// A virtual instrument at the other end of the loopback's cable.
class LoopbackInstrument
{
public:
    explicit LoopbackInstrument(const InstrumentMemory &memory = InstrumentMemory(),
                                const QString &name = QStringLiteral("Corvan TARN/TERN"))
        : instrument(memory)
    {
        m_device = LoopbackHub::instance().plug(
            name, VirtualInstrument::PortCount,
            [this](int port, const QByteArray &bytes) { instrument.receive(port, bytes); });
        instrument.setOutput([this](int port, const QByteArray &bytes) {
            LoopbackHub::instance().send(m_device, port, bytes);
        });
    }
    ~LoopbackInstrument()
    {
        LoopbackHub::instance().unplug(m_device);
        instrument.stop();
        instrument.setOutput({});
    }
    LoopbackInstrument(const LoopbackInstrument &) = delete;
    LoopbackInstrument &operator=(const LoopbackInstrument &) = delete;

    // False for a text that is no fault.
    bool setFault(const QString &text)
    {
        FaultPlan plan;
        QString error;
        if (!text.isEmpty() && !plan.add(text, &error)) {
            return false;
        }
        instrument.setFaultPlan(plan);
        return true;
    }

    VirtualInstrument instrument;

private:
    int m_device = 0;
};
