// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

// The kinds of MIDI traffic. Each channel kind is one bit, so that a filter can be a mask.
enum MPEventType : std::uint32_t {
    MPEventNone = 1, // no event; in the ring it is the stop record
    MPEventNRPN = 2,
    MPEventRPN = 4,
    MPEventBankProgram = 8,
    MPEventActiveSensing = 16,
    MPEventNoteOff = 32,
    MPEventNoteOn = 64,
    MPEventPolyPressure = 128,
    MPEventControlChange = 256,
    MPEventProgramChange = 512,
    MPEventChannelPressure = 1024,
    MPEventPitchBend = 2048,
    MPEventSysEx = 0x10000,
    MPEventSysExContinuation = 0x20000,
    // An event with one of these bits carries its bytes in longData.
    MPEventLongMask = 0x3F0000,
};

// The one record of all MIDI traffic in both directions, copied as plain bytes through the ring.
//
//   short message  shortData[0], shortData[1]: the data bytes; active sensing has 0xFE in [1]
//   long message   length bytes at longData, without the leading 0xF0 or 0xF7
//
// Ownership of longData: on input, the transport that delivers the event, for the length of the
// call; on output, whoever sends, likewise. An event on its own is an OwnedMPEvent.
struct tagMPEVENT
{
    std::uint32_t eventType = MPEventNone;
    std::int32_t portID = 0;
    std::int32_t channel = 0;      // 0 to 15; 0 for system messages
    std::uint64_t timeCounter = 0; // running number over all input ports
    std::int32_t inputMark = 0;    // 1 on input
    std::uint32_t length = 0;      // bytes at longData; 0 for short messages
    unsigned char shortData[4] = {0, 0, 0, 0};
    unsigned char *longData = nullptr;
    unsigned char reserved[24] = {};
};
// 960 records fill the ring of 69120 bytes exactly.
static_assert(sizeof(tagMPEVENT) == 72, "the ring is sized for records of 72 bytes");

// An output event on the heap together with its byte array (new unsigned char[]).
struct MPEventDeleter
{
    void operator()(tagMPEVENT *event) const
    {
        if (event != nullptr) {
            delete[] event->longData;
            delete event;
        }
    }
};
using OwnedMPEvent = std::unique_ptr<tagMPEVENT, MPEventDeleter>;
