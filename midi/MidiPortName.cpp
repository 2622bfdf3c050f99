// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/MidiPortName.h"

#include <QtCore/QRegularExpression>

QString midiPortName(const QString &device, const QString &endpoint, int index)
{
    const QString deviceName = device.isEmpty() ? QStringLiteral("Unknown Device") : device;
    QString endpointName =
        endpoint.isEmpty() ? QStringLiteral("Port #%1").arg(index + 1) : endpoint;
    endpointName.remove(deviceName + QLatin1Char(' '), Qt::CaseSensitive);
    return deviceName + QLatin1Char(' ') + endpointName;
}

QString linuxMidiPortName(const QString &device, const QString &endpoint, int index)
{
    static const QRegularExpression trailingNumber(QStringLiteral("\\bMIDI ([0-9]+)\\z"));
    QString readable = endpoint;
    readable.replace(trailingNumber, QStringLiteral("Port\\1"));
    return midiPortName(device, readable, index);
}
