// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

// One recognised instrument: a family of five input and five output ports with a known name.
struct PortInfo
{
    QString name;
    int activeSensePort = 0;      // input port number of family member ActiveSensePort
    int communicationInPort = 0;  // input port number of family member CommunicationPort
    int communicationOutPort = 0; // output port number of family member CommunicationPort

    bool operator==(const PortInfo &) const = default;
};

// The instruments among the ports. Both lists hold encoded names ("NUMBER;NAME", see
// TMIDIPortAccessor); a name that is no family member is passed over, and a family counts only with
// exactly the members 1 to 5 on each side. In the order of the communication input number, so that
// the first is the same at every start.
QList<PortInfo> recognizeDevicePorts(const QStringList &inputPorts, const QStringList &outputPorts);

// The names that several instruments bear, sorted. Above, such instruments join in one, whose ports
// are now the one's and now the other's: who sends there can't know to whom.
QStringList joinedDeviceNames(const QStringList &inputPorts, const QStringList &outputPorts);
