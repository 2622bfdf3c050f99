// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/alsa/AlsaMIDIPortAccessor.h"

#include "midi/alsa/AlsaClient.h"

AlsaMIDIPortAccessor::AlsaMIDIPortAccessor()
    : m_client(AlsaClient::shared())
{
}

AlsaMIDIPortAccessor::~AlsaMIDIPortAccessor() = default;

int AlsaMIDIPortAccessor::getNumPorts(int direction)
{
    QStringList &names = direction == Input ? m_inputNames : m_outputNames;
    names = m_client->ports(portDirection(direction));
    return static_cast<int>(names.size());
}

QString AlsaMIDIPortAccessor::identifierForIndex(int direction, int index)
{
    return (direction == Input ? m_inputNames : m_outputNames).value(index);
}
