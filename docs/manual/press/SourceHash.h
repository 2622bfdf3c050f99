// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>

// What the manual is made from, in 64 hexadecimal digits: the texts and pictures below the folder
// docs/manual, with their names. Empty if one of them can't be read. The typesetter writes it into
// the PDF, and a test compares the two, so that nobody edits the one and forgets the other.
inline QByteArray manualSourceHash(const QString &folder)
{
    const QDir source(folder);
    QStringList names = source.entryList({QStringLiteral("*.html"), QStringLiteral("*.css")},
                                         QDir::Files, QDir::Name);
    const QDir figures(source.filePath(QStringLiteral("figures")));
    for (const QString &name :
         figures.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name)) {
        names.append(QStringLiteral("figures/") + name);
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QString &name : qAsConst(names)) {
        QFile file(source.filePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            return {};
        }
        const QByteArray bytes = file.readAll();
        hash.addData(name.toUtf8() + ' ' + QByteArray::number(bytes.size()) + '\n');
        hash.addData(bytes);
    }
    return names.isEmpty() ? QByteArray() : hash.result().toHex();
}

// How the PDF carries it, among its document information.
inline QString manualHashMark(const QByteArray &hash)
{
    return QStringLiteral("source sha256:") + QString::fromLatin1(hash);
}
