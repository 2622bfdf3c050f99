// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "midi/TMIDIPortAccessor.h"

// The part of the catalogue that every platform shares: the ids and the settings they are kept in.
//
// Settings (default QSettings), each a list of strings; the two lists of a direction run in
// parallel and keep ports that are absent now:
//   /preferences/SystemPorts/Input/portNames    encoded name + "<[Inp]>"
//   /preferences/SystemPorts/Input/portIds      QUuid as text
//   /preferences/SystemPorts/Output/portNames   encoded name + "<[Out]>"
//   /preferences/SystemPorts/Output/portIds     QUuid as text
class TUniMIDIPortAccessor : public TMIDIPortAccessor
{
public:
    void qUuids(int direction, QList<QUuid> &ids) const override;
    QString encodedName(const QUuid &id) const override;
    QString friendlyName(const QUuid &id) const override;
    int portID(const QUuid &id) const override;

    // The lists are empty because the platform's service doesn't answer, and not for want of one.
    virtual bool isServiceSilent() const { return false; }
    // Reads the platform's ports anew and writes what is new of them to the settings.
    void updatePortInfo();

private:
    void updateDirection(int direction);
};
