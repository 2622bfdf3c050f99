// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/PortSelection.h"

#include "memory/RemoteMemAPI.h"

PortSelection::PortSelection(RemoteMemAPI *api)
{
    const QStringList inputs = api->getInputPortList();
    const QStringList outputs = api->getOutputPortList();
    m_hasPorts = !inputs.isEmpty() || !outputs.isEmpty();
    m_instruments = recognizeDevicePorts(inputs, outputs);
}

QString PortSelection::whyNone() const
{
    return m_hasPorts ? QStringLiteral("No instrument was found among the MIDI ports.")
                      : QStringLiteral("No instrument was found: there are no MIDI ports. Is the "
                                       "instrument connected, or a MIDI service running?");
}

bool PortSelection::select(const QString &name, PortInfo *instrument, QString *error) const
{
    if (m_instruments.isEmpty()) {
        *error = whyNone();
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
