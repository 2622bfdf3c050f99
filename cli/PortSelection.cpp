// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/PortSelection.h"

#include "memory/RemoteMemAPI.h"

PortSelection::PortSelection(RemoteMemAPI *api)
    : m_instruments(recognizeDevicePorts(api->getInputPortList(), api->getOutputPortList()))
{
}

bool PortSelection::select(const QString &name, PortInfo *instrument, QString *error) const
{
    if (m_instruments.isEmpty()) {
        *error = QStringLiteral("No instrument was found among the MIDI ports.");
        return false;
    }
    QStringList names;
    for (const PortInfo &candidate : m_instruments) {
        if (name.isEmpty() || candidate.name == name) {
            *instrument = candidate;
            return true;
        }
        names.append(QLatin1Char('"') + candidate.name + QLatin1Char('"'));
    }
    *error = QStringLiteral("No instrument \"%1\" was found; there is %2.")
                 .arg(name, names.join(QStringLiteral(", ")));
    return false;
}
