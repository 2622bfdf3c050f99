// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "protocol/MessageDecoder.h"
#include "protocol/ProtocolHarness.h"
#include "protocol/SysExParamChangeAddressTransTable.h"

// A decoder of its own before a door that has an output alone, so that everything received runs on
// the test's thread. The counters are this decoder's and are raised by hand.
class DecoderRig
{
public:
    DecoderRig()
    {
        makeBanks(&api);
        api.createMIDIOutput(RecordingDevice::MessagePort);
    }

    bool process(const QByteArray &message, std::uint32_t type = MPEventSysEx)
    {
        ExactEvent exact(message, type);
        return decoder.Process(exact.event);
    }
    // Every message of it was taken.
    bool processAll(const QList<QByteArray> &messages)
    {
        bool good = true;
        for (const QByteArray &message : messages) {
            good = process(message) && good;
        }
        return good;
    }

    QString text(const ParamAddress &address) const { return api.getParamQString(address); }
    int number(const ParamAddress &address) const
    {
        return api.getParam(address).getCurrentValue();
    }

    // All that a memory holds, to see that nothing changed. Banks 0 to 8 and the flags.
    QByteArray snapshot() const
    {
        QByteArray bytes;
        for (int bank = 0; bank < 9; ++bank) {
            for (int template_ = 0; template_ < 50; ++template_) {
                appendTemplate(&bytes, bank, template_);
            }
            bytes.append(QByteArray::number(number(currentTemplateAddress(bank)))).append('|');
        }
        for (const int flag : {-2, -3, -5, -6}) {
            bytes.append(QByteArray::number(number(ParamAddress(flag, -1, -1, -1)))).append('|');
        }
        return bytes;
    }

    RecordingDevice device;
    RemoteMemAPI api;
    RunSignals runSignals{&api};
    SysExParamChangeAddressTransTable table;
    MessageDecoder decoder{RecordingDevice::MessagePort, &api, 6, 0x7F, 0x15, &table,
                           api.getAddressTransTable()};

private:
    void appendTemplate(QByteArray *bytes, int bank, int template_) const
    {
        const ControlTemplateData data = api.getTemplateData(bank, template_);
        bytes->append(data.getTemplateName().toUtf8()).append('|');
        bytes->append(data.getVSTiName().toUtf8()).append('|');
        bytes->append(QByteArray::number(data.getCtrlType().getCurrentValue())).append('|');
        for (int knob = 0; knob < 12; ++knob) {
            const ControllerData controller = data.getController(knob);
            bytes->append(controller.getDisplayName().toUtf8()).append('|');
            bytes->append(controller.getRemoteTagID().toUtf8()).append('|');
            bytes->append(QByteArray::number(controller.getCCNum().getCurrentValue())).append('|');
            bytes->append(QByteArray::number(controller.getDispFormat().getCurrentValue()))
                .append('|');
        }
    }
};
