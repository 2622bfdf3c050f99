// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/TUniMIDIPortAccessor.h"

#include "app/Constants.h"

#include <QtCore/QSettings>

#include <algorithm>

namespace
{

struct DirectionKeys
{
    QString names;
    QString ids;
    QString marker; // ends each stored name
};

DirectionKeys keysOf(int direction)
{
    if (direction == TMIDIPortAccessor::Input) {
        return {QStringLiteral("/preferences/SystemPorts/Input/portNames"),
                QStringLiteral("/preferences/SystemPorts/Input/portIds"),
                QStringLiteral("<[Inp]>")};
    }
    return {QStringLiteral("/preferences/SystemPorts/Output/portNames"),
            QStringLiteral("/preferences/SystemPorts/Output/portIds"), QStringLiteral("<[Out]>")};
}

// Ports are listed often, and a store of what is there already would have each listing wait for the
// disk.
void storeIfChanged(QSettings &settings, const QString &key, const QStringList &list)
{
    if (!settings.contains(key) || settings.value(key).toStringList() != list) {
        settings.setValue(key, list);
    }
}

QString encoded(int number, const QString &name)
{
    // Put together rather than by arg(), which would read a "%1" in a device's name.
    return QString::number(number) + PortIDNameAndNumberDelimiter + name;
}

// The names without number and marker that a stored catalogue holds; empty if it is damaged.
QStringList storedNames(const QStringList &names, const QStringList &ids, const QString &marker)
{
    const auto isNullId = [](const QString &id) { return QUuid(id).isNull(); };
    if (names.size() != ids.size() || std::any_of(ids.cbegin(), ids.cend(), isNullId)) {
        return {};
    }
    QStringList known;
    for (const QString &entry : names) {
        const QStringList parts = entry.split(PortIDNameAndNumberDelimiter);
        if (parts.size() < 2) {
            return {};
        }
        QString name = parts.at(1);
        known.append(name.remove(marker));
    }
    return known;
}

} // namespace

void TUniMIDIPortAccessor::qUuids(int direction, QList<QUuid> &ids) const
{
    const QMap<QUuid, QString> &ports = direction == Input ? m_inputPorts : m_outputPorts;
    QMap<unsigned int, QUuid> byNumber;
    for (auto port = ports.cbegin(); port != ports.cend(); ++port) {
        const QStringList parts =
            port.value().split(PortIDNameAndNumberDelimiter, Qt::SkipEmptyParts);
        if (parts.size() >= 2) {
            byNumber.insert(parts.first().toUInt(), port.key());
        }
    }
    ids.append(byNumber.values());
}

QString TUniMIDIPortAccessor::encodedName(const QUuid &id) const
{
    if (!id.isNull()) {
        if (const auto port = m_inputPorts.constFind(id); port != m_inputPorts.cend()) {
            return port.value();
        }
        if (const auto port = m_outputPorts.constFind(id); port != m_outputPorts.cend()) {
            return port.value();
        }
    }
    return encoded(0, QStringLiteral("<unknown port name>"));
}

QString TUniMIDIPortAccessor::friendlyName(const QUuid &id) const
{
    return encodedName(id).section(PortIDNameAndNumberDelimiter, 1, 1);
}

int TUniMIDIPortAccessor::portID(const QUuid &id) const
{
    return encodedName(id).section(PortIDNameAndNumberDelimiter, 0, 0).toInt();
}

void TUniMIDIPortAccessor::updatePortInfo()
{
    m_inputPorts.clear();
    m_outputPorts.clear();
    updateDirection(Input);
    updateDirection(Output);
}

void TUniMIDIPortAccessor::updateDirection(int direction)
{
    const DirectionKeys keys = keysOf(direction);
    QMap<QUuid, QString> &ports = direction == Input ? m_inputPorts : m_outputPorts;

    QSettings settings;
    QStringList names;
    QStringList ids;
    if (settings.contains(keys.names)) {
        names = settings.value(keys.names).toStringList();
        ids = settings.value(keys.ids).toStringList();
    }
    QStringList knownNames = storedNames(names, ids, keys.marker);
    if (knownNames.isEmpty()) {
        names.clear();
        ids.clear();
    }
    QStringList workingIds = ids;

    const int count = getNumPorts(direction);
    for (int i = 0; i < count; ++i) {
        const QString name = identifierForIndex(direction, i);
        if (name.isEmpty()) {
            continue;
        }
        const QString encodedPort = encoded(i + 1, name);
        const qsizetype position = knownNames.indexOf(name);
        QString id;
        // The two lists can lose step with each other, since equal names go together and equal ids
        // do; a name whose id is gone is a new port.
        if (position >= 0 && position < workingIds.size()) {
            id = workingIds.at(position);
            knownNames.removeAll(name);
            workingIds.removeAll(id);
        } else {
            id = QUuid::createUuid().toString();
            names.append(encodedPort + keys.marker);
            ids.append(id);
        }
        ports.insert(QUuid(id), encodedPort);
    }
    storeIfChanged(settings, keys.names, names);
    storeIfChanged(settings, keys.ids, ids);
}
