// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TMIDIPortAccessor.h"

#include <cstdlib>
#include <cstring>

QStringList TMIDIPortAccessor::getPortList(int direction) const
{
    return direction == Input ? m_inputPorts.values() : m_outputPorts.values();
}

QStringList TMIDIPortAccessor::getInputPortList() const
{
    return getPortList(Input);
}

QStringList TMIDIPortAccessor::getOutputPortList() const
{
    return getPortList(Output);
}

char16_t *PrivateCreateOLEString(const QString &text)
{
    const auto units = static_cast<std::size_t>(text.size());
    auto *copy = static_cast<char16_t *>(std::malloc((units + 1) * sizeof(char16_t)));
    if (copy != nullptr) {
        std::memcpy(copy, text.utf16(), units * sizeof(char16_t));
        copy[units] = 0;
    }
    return copy;
}
