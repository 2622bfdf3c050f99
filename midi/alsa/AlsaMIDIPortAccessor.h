// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TUniMIDIPortAccessor.h"

#include <memory>

class AlsaClient;

// The catalogue of the ALSA sequencer's ports but our own and the system's; empty without a
// sequencer. Thread: GUI.
class AlsaMIDIPortAccessor : public TUniMIDIPortAccessor
{
public:
    AlsaMIDIPortAccessor();
    ~AlsaMIDIPortAccessor() override;

    // Reads the sequencer's list, which identifierForIndex() then goes by.
    int getNumPorts(int direction) override;
    QString identifierForIndex(int direction, int index) override;

private:
    const std::shared_ptr<AlsaClient> m_client;
    QStringList m_inputNames;
    QStringList m_outputNames;
};
