// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Console.h"
#include "cli/Interruption.h"
#include "cli/TrnRemote.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>

#include <initializer_list>

inline QString operator""_q(const char *text, std::size_t length)
{
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

// A word of a command line, from a literal or a text.
struct Word
{
    Word(const char *literal)
        : text(QString::fromUtf8(literal))
    {
    }
    Word(const QString &string)
        : text(string)
    {
    }
    QString text;
};

// Runs command lines as the program does, with what it writes kept.
class CliHarness
{
public:
    // The exit code.
    int run(std::initializer_list<Word> words, Interruption *interruption = nullptr)
    {
        QStringList texts;
        for (const Word &word : words) {
            texts.append(word.text);
        }
        return runWords(texts, interruption);
    }
    int runWords(const QStringList &words, Interruption *interruption = nullptr)
    {
        QBuffer outDevice(&out);
        QBuffer errDevice(&err);
        outDevice.open(QIODevice::WriteOnly | QIODevice::Truncate);
        errDevice.open(QIODevice::WriteOnly | QIODevice::Truncate);
        Console console(&outDevice, &errDevice, isWatched, isWatched);
        Interruption none;
        return trnRemote(QStringList{QStringLiteral("trn-remote")} + words, &console,
                         interruption == nullptr ? &none : interruption,
                         [this](const QString &service) { chosenMidi = service; });
    }
    QString path(const QString &name) const { return m_folder.filePath(name); }
    bool write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }
    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    bool exists(const QString &name) const { return QFile::exists(path(name)); }
    QJsonObject json() const { return QJsonDocument::fromJson(out).object(); }

    QByteArray out;
    QByteArray err;
    QString chosenMidi;
    bool isWatched = false;

private:
    QTemporaryDir m_folder;
};
