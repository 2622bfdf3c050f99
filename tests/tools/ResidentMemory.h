// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QFile>

// What memory of this process is resident, in KiB. 0 where the system doesn't tell. Any thread.
inline qint64 residentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').constFirst().toLongLong();
        }
    }
    return 0;
}
