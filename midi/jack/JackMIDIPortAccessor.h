// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TUniMIDIPortAccessor.h"

#include <memory>

class JackClient;

// The catalogue of the JACK server's MIDI ports but our own; empty without a server. Thread: GUI.
class JackMIDIPortAccessor : public TUniMIDIPortAccessor
{
public:
    JackMIDIPortAccessor();
    ~JackMIDIPortAccessor() override;

    // Reads the server's list, which identifierForIndex() then goes by.
    int getNumPorts(int direction) override;
    QString identifierForIndex(int direction, int index) override;
    bool isServiceSilent() const override;

private:
    const std::shared_ptr<JackClient> m_client;
    QStringList m_inputNames;
    QStringList m_outputNames;
};
