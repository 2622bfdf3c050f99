// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/ComuController.h"
#include "protocol/MessageEncoder.h"
#include "protocol/ProtocolHarness.h"
#include "protocol/SysExParamChangeAddressTransTable.h"

// An encoder of its own, beside a door that has an input and so a decoder, whose counters it
// raises. All of it runs on the test's thread, so that what goes out is there on return.
class EncoderRig
{
public:
    EncoderRig()
    {
        makeBanks(&api);
        api.createMIDIInput(RecordingDevice::SensingPort, RecordingDevice::MessagePort);
        api.getComuController()->requestPort(1, RecordingDevice::MessagePort, 0, nullptr);
    }

    // Hands a message of any bytes to the queue.
    bool buffer(const QByteArray &message)
    {
        OwnedMPEvent event(new tagMPEVENT);
        event->eventType = MPEventSysEx;
        event->portID = RecordingDevice::MessagePort;
        event->length = static_cast<std::uint32_t>(message.size());
        event->longData = new unsigned char[static_cast<std::size_t>(message.size())];
        std::memcpy(event->longData, message.constData(), static_cast<std::size_t>(message.size()));
        if (!encoder.bufferingMsg(event.get())) {
            return false;
        }
        static_cast<void>(event.release()); // the queue's now
        return true;
    }

    // One call of sendMessage: what it lets out.
    QList<QByteArray> step()
    {
        device.take();
        encoder.sendMessage(nullptr);
        return device.take();
    }

    RecordingDevice device;
    RemoteMemAPI api;
    RunSignals runSignals{&api};
    SysExParamChangeAddressTransTable table;
    MessageEncoder encoder{0x7F,
                           0x14,
                           &table,
                           api.getComuController(),
                           RecordingDevice::MessagePort,
                           api.getAddressTransTable(),
                           &api};
};
