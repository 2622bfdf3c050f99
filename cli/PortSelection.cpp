// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/PortSelection.h"

#include "memory/RemoteMemAPI.h"
#include "midi/ComuController.h"

namespace
{

QString quoted(const QStringList &names)
{
    return QLatin1Char('"') + names.join(QStringLiteral("\", \"")) + QLatin1Char('"');
}

} // namespace

PortSelection::PortSelection(RemoteMemAPI *api)
{
    const QStringList inputs = api->getInputPortList();
    const QStringList outputs = api->getOutputPortList();
    m_hasPorts = !inputs.isEmpty() || !outputs.isEmpty();
    m_isServiceSilent = api->getComuController()->isServiceSilent();
    m_joinedNames = joinedDeviceNames(inputs, outputs);
    m_instruments = recognizeDevicePorts(inputs, outputs);
    m_instruments.removeIf(
        [this](const PortInfo &instrument) { return m_joinedNames.contains(instrument.name); });
}

QString PortSelection::whyNone() const
{
    if (m_isServiceSilent) {
        return QStringLiteral("No instrument was found: the MIDI service does not answer.");
    }
    return m_hasPorts ? QStringLiteral("No instrument was found among the MIDI ports.")
                      : QStringLiteral("No instrument was found: there are no MIDI ports. Is the "
                                       "instrument connected, or a MIDI service running?");
}

QString PortSelection::whatIsJoined() const
{
    return m_joinedNames.isEmpty()
               ? QString()
               : QStringLiteral("More than one instrument is named %1, and their ports can't be "
                                "told apart. Connect one of them alone, or name another.")
                     .arg(quoted(m_joinedNames));
}

ExitCode PortSelection::select(const QString &name, PortInfo *instrument, QString *error) const
{
    // Without a name one of those could be meant, too.
    if (name.isEmpty() ? !m_joinedNames.isEmpty() : m_joinedNames.contains(name)) {
        *error = whatIsJoined();
        return ExitCode::NoInstrument;
    }
    if (m_instruments.isEmpty()) {
        *error = whyNone();
        return m_isServiceSilent ? ExitCode::BrokenOff : ExitCode::NoInstrument;
    }
    QStringList names;
    for (const PortInfo &candidate : m_instruments) {
        if (name.isEmpty() || candidate.name == name) {
            *instrument = candidate;
            return ExitCode::Done;
        }
        names.append(candidate.name);
    }
    *error =
        QStringLiteral("No instrument \"%1\" was found; there is %2.").arg(name, quoted(names));
    return ExitCode::NoInstrument;
}
