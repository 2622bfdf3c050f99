// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TUniMIDIPortAccessor.h"

#include <CoreMIDI/CoreMIDI.h>

// The catalogue of CoreMIDI's ports, and the owner of the one client that all transports share: it
// lives as long as any accessor does. Thread: GUI.
class TMacMIDIPortAccessor : public TUniMIDIPortAccessor
{
public:
    TMacMIDIPortAccessor();
    ~TMacMIDIPortAccessor() override;
    TMacMIDIPortAccessor(const TMacMIDIPortAccessor &) = delete;
    TMacMIDIPortAccessor &operator=(const TMacMIDIPortAccessor &) = delete;

    int getNumPorts(int direction) override;
    QString identifierForIndex(int direction, int index) override;

    static MIDIClientRef s_client;  // 0 if CoreMIDI gave none
    static int s_midiClientCounter; // accessors alive
};

// Empty for a null text. The caller keeps the text.
QString CFStringToQString(CFStringRef text);
