// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/jack/JackMIDIPortAccessor.h"

#include "midi/jack/JackClient.h"

JackMIDIPortAccessor::JackMIDIPortAccessor()
    : m_client(JackClient::shared())
{
}

JackMIDIPortAccessor::~JackMIDIPortAccessor() = default;

int JackMIDIPortAccessor::getNumPorts(int direction)
{
    QStringList &names = direction == Input ? m_inputNames : m_outputNames;
    names = m_client->ports(portDirection(direction));
    return static_cast<int>(names.size());
}

QString JackMIDIPortAccessor::identifierForIndex(int direction, int index)
{
    return (direction == Input ? m_inputNames : m_outputNames).value(index);
}

bool JackMIDIPortAccessor::isServiceSilent() const
{
    return m_client->isUnanswered();
}
