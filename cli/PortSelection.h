// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitCode.h"
#include "midi/DevicePortList.h"

class RemoteMemAPI;

// The instruments that are there now, and the choice among them. The ports are read once: a command
// does not wait for an instrument to appear. Thread: GUI.
class PortSelection
{
public:
    explicit PortSelection(RemoteMemAPI *api);

    // Without those that can't be told apart.
    const QList<PortInfo> &instruments() const { return m_instruments; }
    // The instrument of that name, or the first for an empty name. If there is none, or more than
    // one of the name, *error says so.
    ExitCode select(const QString &name, PortInfo *instrument, QString *error) const;

    // What a person is told when there is no instrument.
    QString whyNone() const;
    // There is a MIDI service that doesn't answer, so that nothing is known of any instrument.
    bool isServiceSilent() const { return m_isServiceSilent; }
    // What a person is told of instruments that can't be told apart; empty if there are none.
    QString whatIsJoined() const;

private:
    bool m_hasPorts;
    bool m_isServiceSilent;
    QStringList m_joinedNames;
    QList<PortInfo> m_instruments;
};
