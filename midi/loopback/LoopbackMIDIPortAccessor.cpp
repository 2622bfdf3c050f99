// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/loopback/LoopbackMIDIPortAccessor.h"

#include "midi/MIDIBinding.h"
#include "midi/loopback/LoopbackHub_p.h"

TUniMIDIPortAccessor *MIDIPortAccessor()
{
    auto *accessor = new LoopbackMIDIPortAccessor;
    accessor->updatePortInfo();
    return accessor;
}

int LoopbackMIDIPortAccessor::getNumPorts(int /*direction*/)
{
    return LoopbackHub::instance().d->portCount();
}

QString LoopbackMIDIPortAccessor::identifierForIndex(int /*direction*/, int index)
{
    return LoopbackHub::instance().d->portName(index);
}
