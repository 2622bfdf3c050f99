// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/DevicePortList.h"

#include "app/Constants.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>
#include <optional>

namespace
{

constexpr int FamilySize = 5;

// Family number to port number.
using FamilyMembers = QHash<int, int>;
// By direction: false is input, true output.
using Family = QHash<bool, FamilyMembers>;

struct Member
{
    QString family;
    int number;
    int port;
};

// None for a name that is no family member's.
std::optional<Member> familyMember(const QString &encodedName)
{
    const qsizetype delimiter = encodedName.indexOf(PortIDNameAndNumberDelimiter);
    if (delimiter < 1) {
        return {};
    }
    bool ok = false;
    const int portNumber = encodedName.left(delimiter).toInt(&ok);
    QString name = encodedName.mid(delimiter + PortIDNameAndNumberDelimiter.size());
    if (!ok || name.isEmpty() || !name.contains(PortNameNumberReplace)) {
        return {};
    }
    name.replace(PortNameNumberReplace, PortNameNumberDelimiter + QStringLiteral("\\1"));
    const qsizetype separator = name.lastIndexOf(PortNameNumberDelimiter);
    if (separator < 1) {
        return {};
    }
    const int familyNumber = name.mid(separator + PortNameNumberDelimiter.size()).toInt(&ok);
    if (!ok) {
        return {};
    }
    return Member{name.left(separator), familyNumber, portNumber};
}

void addPort(QHash<QString, Family> &families, bool isOutput, const QString &encodedName)
{
    if (const std::optional<Member> member = familyMember(encodedName)) {
        families[member->family][isOutput][member->number] = member->port;
    }
}

bool isWhole(const FamilyMembers &members)
{
    if (members.size() != FamilySize) {
        return false;
    }
    for (int number = 1; number <= FamilySize; ++number) {
        if (!members.contains(number)) {
            return false;
        }
    }
    return true;
}

} // namespace

QList<PortInfo> recognizeDevicePorts(const QStringList &inputPorts, const QStringList &outputPorts)
{
    QHash<QString, Family> families;
    for (const QString &port : inputPorts) {
        addPort(families, false, port);
    }
    for (const QString &port : outputPorts) {
        addPort(families, true, port);
    }

    QList<PortInfo> devices;
    for (auto family = families.cbegin(); family != families.cend(); ++family) {
        const FamilyMembers inputs = family->value(false);
        const FamilyMembers outputs = family->value(true);
        if (family.key().contains(PortNameFilter) && isWhole(inputs) && isWhole(outputs)) {
            devices.append({family.key(), inputs.value(ActiveSensePort),
                            inputs.value(CommunicationPort), outputs.value(CommunicationPort)});
        }
    }
    std::sort(devices.begin(), devices.end(), [](const PortInfo &a, const PortInfo &b) {
        return a.communicationInPort != b.communicationInPort
                   ? a.communicationInPort < b.communicationInPort
                   : a.name < b.name;
    });
    return devices;
}

QStringList joinedDeviceNames(const QStringList &inputPorts, const QStringList &outputPorts)
{
    QStringList names;
    for (const QStringList &ports : {inputPorts, outputPorts}) {
        QHash<QString, QSet<int>> families;
        for (const QString &port : ports) {
            const std::optional<Member> member = familyMember(port);
            if (!member || !member->family.contains(PortNameFilter)) {
                continue;
            }
            QSet<int> &numbers = families[member->family];
            if (numbers.contains(member->number) && !names.contains(member->family)) {
                names.append(member->family);
            }
            numbers.insert(member->number);
        }
    }
    names.sort();
    return names;
}
