// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TUniMIDIPortAccessor.h"

// The catalogue of the loopback's ports, the same in both directions: those of all plugged devices,
// in the order of plugging. Thread: GUI.
class LoopbackMIDIPortAccessor : public TUniMIDIPortAccessor
{
public:
    int getNumPorts(int direction) override;
    QString identifierForIndex(int direction, int index) override;
};
