// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDITransport.h"

#include <cstdint>
#include <memory>

struct tagMPEVENT;

// Result codes of the MIDI path.
inline constexpr std::uint32_t MidiSuccess = 0;
inline constexpr std::uint32_t MidiFailure = 0x80000008;

// The application's end of an open output port: turns an event into bytes. Owner: ComuController.
// Thread: whoever sends, under the port's mutex.
class TAppMIDIOut
{
public:
    TAppMIDIOut();
    ~TAppMIDIOut();

    // port: 1-based; false if the binding has no such port.
    bool openPort(int port);
    // As TMIDITransport's; Connected and nothing without an open port. Thread: GUI.
    TMIDITransport::Link link() const;
    void abandon();

    // MidiFailure for a kind that is never sent (active sensing among them), for a note on that
    // carries long data, and when the transport refuses; a compound message stops at its failed
    // part.
    std::uint32_t midiOut(const tagMPEVENT &event);
    // One channel message: status or-ed with the channel's low nibble, then length (1 or 2) data
    // bytes.
    std::uint32_t midiOut(unsigned channel, unsigned status, unsigned data1, unsigned data2,
                          int length);

private:
    std::unique_ptr<TMIDITransport> m_transport;
};
