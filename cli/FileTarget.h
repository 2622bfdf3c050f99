// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitCode.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

class Console;
class Workspace;

// Files that a command reads and writes, with the failures told to the console: the file's name,
// then the text. Thread: GUI.
namespace FileTarget
{

// Opens the file as the document.
ExitCode load(Workspace *workspace, Console *console, const QString &path);
// Whether both names lead to one file.
bool isSameFile(const QString &a, const QString &b);
// Saves the document.
ExitCode save(Workspace *workspace, Console *console, const QString &path);
// Whether a file of that name could be written, told before an instrument is bothered for it.
// What only the writing itself shows is left to the writing.
ExitCode checkWritable(Console *console, const QString &path);
// The same for a backup, which must not be there yet.
ExitCode checkBackup(Console *console, const QString &path);
// Replaces the file in one step; refuses what is there and no plain file.
ExitCode write(Console *console, const QString &path, const QByteArray &bytes);
// Refuses what is no plain file, and one of more than limit bytes.
ExitCode read(Console *console, const QString &path, qint64 limit, QByteArray *bytes);

} // namespace FileTarget
