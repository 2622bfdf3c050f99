// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

struct InstrumentMemory;

// The instrument's memory as an editor file (.Q7V): stored bank, edit buffer and current template.
// The edit flag and the reserved byte have no place in such a file; they are 0 after a load.
//
// Loading is strict, since what is loaded is meant to be served to an editor as it stands: a
// missing element, a number that is none or lies out of range, entities, a document type with
// declarations of its own, or more than MaxFileSize bytes refuse the file, with a text that says
// where. Of elements that appear twice the first counts, unknown ones are passed over. Texts longer
// than the instrument's field are cut, characters outside ASCII become '?', and identifiers lower
// case, as they would on the way through an editor.
//
// Thread: any, no state.
class InstrumentFile
{
public:
    static constexpr qint64 MaxFileSize = qint64{16} * 1024 * 1024;

    // On failure false, *error told, *memory as it was.
    [[nodiscard]] static bool load(const QString &path, InstrumentMemory *memory, QString *error);
    [[nodiscard]] static bool parse(const QByteArray &xml, InstrumentMemory *memory,
                                    QString *error);

    // Replaces the file in one step; on failure false, *error told, the old file as it was.
    // Characters that XML 1.0 forbids are written as '?'.
    [[nodiscard]] static bool save(const QString &path, const InstrumentMemory &memory,
                                   QString *error);
    static QByteArray print(const InstrumentMemory &memory);
};
