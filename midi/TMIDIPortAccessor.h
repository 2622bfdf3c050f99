// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUuid>

// The catalogue of ports: a stable QUuid for each, kept in the settings across runs, and an encoded
// name "NUMBER;NAME" with its current number. Numbers are 1-based positions in the platform's list.
//
// direction: 0 is input, any other value output. Owner: ComuController. Thread: GUI.
class TMIDIPortAccessor
{
public:
    static constexpr int Input = 0;
    static constexpr int Output = 1;

    virtual ~TMIDIPortAccessor() = default;
    // Appends the direction's ids in the order of their port numbers.
    virtual void qUuids(int direction, QList<QUuid> &ids) const = 0;
    // "0;<unknown port name>" for a null or unknown id.
    virtual QString encodedName(const QUuid &id) const = 0;
    virtual QString friendlyName(const QUuid &id) const = 0;
    // 0 for a null or unknown id.
    virtual int portID(const QUuid &id) const = 0;
    virtual int getNumPorts(int direction) = 0;
    // The name of the port at the 0-based index; empty for one that is to be passed over.
    virtual QString identifierForIndex(int direction, int index) = 0;

    // The encoded names, in the order of the ids.
    QStringList getPortList(int direction) const;
    QStringList getInputPortList() const;
    QStringList getOutputPortList() const;

protected:
    QMap<QUuid, QString> m_inputPorts;
    QMap<QUuid, QString> m_outputPorts;
};

// A malloc copy of the text's UTF-16 units with a terminating zero; the caller frees it.
char16_t *PrivateCreateOLEString(const QString &text);
