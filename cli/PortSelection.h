// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/DevicePortList.h"

class RemoteMemAPI;

// The instruments that are there now, and the choice among them. The ports are read once: a command
// does not wait for an instrument to appear. Thread: GUI.
class PortSelection
{
public:
    explicit PortSelection(RemoteMemAPI *api);

    const QList<PortInfo> &instruments() const { return m_instruments; }
    // The instrument of that name, or the first for an empty name. False if there is none; *error
    // then says so.
    bool select(const QString &name, PortInfo *instrument, QString *error) const;

    // What a person is told when there is no instrument.
    QString whyNone() const;

private:
    bool m_hasPorts;
    QList<PortInfo> m_instruments;
};
