// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TAppMIDIOut.h"

#include "midi/MIDIBinding.h"
#include "midi/MPEvent.h"

#include <limits>

namespace
{

constexpr unsigned NoteOffStatus = 0x80;
constexpr unsigned NoteOnStatus = 0x90;
constexpr unsigned PolyPressureStatus = 0xA0;
constexpr unsigned ControlChangeStatus = 0xB0;
constexpr unsigned ProgramChangeStatus = 0xC0;
constexpr unsigned ChannelPressureStatus = 0xD0;
constexpr unsigned PitchBendStatus = 0xE0;
constexpr unsigned char SysExStatus = 0xF0;
constexpr unsigned char SysExContinuationStatus = 0xF7;

constexpr unsigned BankSelectMsb = 0x00;
constexpr unsigned BankSelectLsb = 0x20;
constexpr unsigned NrpnMsb = 0x63;
constexpr unsigned NrpnLsb = 0x62;
constexpr unsigned RpnMsb = 0x65;
constexpr unsigned RpnLsb = 0x64;
constexpr unsigned DataEntryMsb = 0x06;
constexpr unsigned DataEntryLsb = 0x26;

} // namespace

TAppMIDIOut::TAppMIDIOut() = default;

TAppMIDIOut::~TAppMIDIOut() = default;

bool TAppMIDIOut::openPort(int port)
{
    m_transport.reset(MIDITransportInstance());
    if (!m_transport->openOutput(port)) {
        m_transport.reset();
        return false;
    }
    return true;
}

TMIDITransport::Link TAppMIDIOut::link() const
{
    return m_transport != nullptr ? m_transport->link() : TMIDITransport::Link::Connected;
}

void TAppMIDIOut::abandon()
{
    if (m_transport != nullptr) {
        m_transport->abandon();
    }
}

std::uint32_t TAppMIDIOut::midiOut(const tagMPEVENT &event)
{
    const auto channel = static_cast<unsigned>(event.channel);
    const unsigned char *data = event.shortData;
    // A compound message stops at its failed part.
    const auto control = [&](unsigned controller, unsigned value) {
        return midiOut(channel, ControlChangeStatus, controller, value, 2) == MidiSuccess;
    };
    const auto fourControls = [&](unsigned first, unsigned second) {
        return control(first, data[0]) && control(second, data[1]) &&
                       control(DataEntryMsb, data[2]) && control(DataEntryLsb, data[3])
                   ? MidiSuccess
                   : MidiFailure;
    };
    switch (event.eventType) {
    case MPEventSysEx:
    case MPEventSysExContinuation: {
        if (m_transport == nullptr || (event.longData == nullptr && event.length > 0) ||
            event.length > static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max())) {
            return MidiFailure;
        }
        const unsigned char status =
            event.eventType == MPEventSysEx ? SysExStatus : SysExContinuationStatus;
        return m_transport->outputData(static_cast<int>(event.length), event.longData, status)
                   ? MidiSuccess
                   : MidiFailure;
    }
    case MPEventNRPN:
        return fourControls(NrpnMsb, NrpnLsb);
    case MPEventRPN:
        return fourControls(RpnMsb, RpnLsb);
    case MPEventBankProgram:
        if (!control(BankSelectMsb, data[0]) || !control(BankSelectLsb, data[1])) {
            return MidiFailure;
        }
        return midiOut(channel, ProgramChangeStatus, data[2], 0, 1);
    case MPEventNoteOff:
        return midiOut(channel, NoteOffStatus, data[0], data[1], 2);
    case MPEventNoteOn:
        return event.length != 0 ? MidiFailure
                                 : midiOut(channel, NoteOnStatus, data[0], data[1], 2);
    case MPEventPolyPressure:
        return midiOut(channel, PolyPressureStatus, data[0], data[1], 2);
    case MPEventControlChange:
        return midiOut(channel, ControlChangeStatus, data[0], data[1], 2);
    case MPEventProgramChange:
        return midiOut(channel, ProgramChangeStatus, data[0], 0, 1);
    case MPEventChannelPressure:
        return midiOut(channel, ChannelPressureStatus, data[0], 0, 1);
    case MPEventPitchBend:
        return midiOut(channel, PitchBendStatus, data[0], data[1], 2);
    default:
        return MidiFailure;
    }
}

std::uint32_t TAppMIDIOut::midiOut(unsigned channel, unsigned status, unsigned data1,
                                   unsigned data2, int length)
{
    if (m_transport == nullptr || length < 1 || length > 2) {
        return MidiFailure;
    }
    const unsigned char data[2] = {static_cast<unsigned char>(data1),
                                   static_cast<unsigned char>(data2)};
    return m_transport->outputData(length, data,
                                   static_cast<unsigned char>(status | (channel & 0x0F)))
               ? MidiSuccess
               : MidiFailure;
}
