// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

struct tagMPEVENT;

// Receives what a transport has parsed.
class TMIDIReaderRefConInterface
{
public:
    // Thread: the transport's pusher thread. The event and its bytes live for the call only.
    virtual void midiIn(tagMPEVENT *event) = 0;
    virtual ~TMIDIReaderRefConInterface() = default;
};
