// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FileTarget.h"

#include "cli/Console.h"
#include "cli/Workspace.h"
#include "file/PlaceToWrite.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

namespace
{

const QString NotWritten = QStringLiteral("Failed in the file writing.");
const QString NotFound = QStringLiteral("File was not found.");
const QString NotOpened = QStringLiteral("File could not be opened.");

ExitCode fail(Console *console, const QString &path, const QString &text)
{
    console->note(QStringLiteral("%1: %2").arg(path, text));
    return ExitCode::Failed;
}

} // namespace

ExitCode FileTarget::load(Workspace *workspace, Console *console, const QString &path)
{
    QString error;
    return workspace->load(path, &error) ? ExitCode::Done : fail(console, path, error);
}

ExitCode FileTarget::save(Workspace *workspace, Console *console, const QString &path)
{
    QString error;
    return workspace->save(path, &error) ? ExitCode::Done : fail(console, path, error);
}

bool FileTarget::isSameFile(const QString &a, const QString &b)
{
    const QFileInfo first(a);
    const QFileInfo second(b);
    return first == second || (first.exists() && second.exists() &&
                               first.canonicalFilePath() == second.canonicalFilePath());
}

ExitCode FileTarget::checkWritable(Console *console, const QString &path)
{
    const QString place = placeToWrite(path);
    const QFileInfo file(place);
    // A file is replaced and not written over, so its folder must allow it too.
    const QFileInfo folder(file.absolutePath());
    const bool isPossible = !place.isEmpty() && folder.isDir() && folder.isWritable() &&
                            (!file.exists() || file.isWritable());
    return isPossible ? ExitCode::Done : fail(console, path, NotWritten);
}

ExitCode FileTarget::checkBackup(Console *console, const QString &path)
{
    if (QFileInfo::exists(path)) {
        return fail(console, path,
                    QStringLiteral("The file is there already, and a backup replaces none."));
    }
    return checkWritable(console, path);
}

ExitCode FileTarget::write(Console *console, const QString &path, const QByteArray &bytes)
{
    // A device or a pipe would be replaced, too, by whoever may do that.
    const ExitCode result = checkWritable(console, path);
    if (result != ExitCode::Done) {
        return result;
    }
    const QString place = placeToWrite(path);
    QSaveFile file(place);
    if (!file.open(QIODevice::WriteOnly)) {
        return fail(console, path, NotWritten);
    }
    keepOwnerAndMode(place, &file);
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit()) {
        return fail(console, path, NotWritten);
    }
    return ExitCode::Done;
}

ExitCode FileTarget::read(Console *console, const QString &path, qint64 limit, QByteArray *bytes)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        return fail(console, path, NotFound);
    }
    QFile file(path);
    // Opening a pipe or a device could wait for ever.
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
        return fail(console, path, NotOpened);
    }
    *bytes = file.read(limit + 1);
    if (file.error() != QFileDevice::NoError) {
        return fail(console, path, NotOpened);
    }
    if (bytes->size() > limit) {
        return fail(console, path, QStringLiteral("The file is longer than %1 bytes.").arg(limit));
    }
    return ExitCode::Done;
}
