// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

class QDir;
class QFile;
class RemoteMemAPI;

// Editor files (".Q7V"): a document type declaration, and a root element "bank" with the attribute
// version="1.0" and the children that EditorData tells. UTF-8, no XML declaration, indent 4.
//
// Without state. Thread: GUI. A failed load leaves the memory as it was, a failed save the file.
// error may be null; otherwise it takes the text that the user is to see.
class EditorFile
{
public:
    // Writes bank as the stored templates and bank 0 as the edit buffer. The file, which need not
    // be open, is replaced in one step and keeps its permissions. Touches no flag.
    static bool save(RemoteMemAPI *api, int bank, QFile *file, QString *error);
    // fullDocument: stored templates to bank 1, edit buffer and template number to bank 0; callers
    // pass bank 1. Otherwise the stored templates alone, to bank. Nothing of it goes to the
    // instrument, and no edit flag rises.
    static bool load(RemoteMemAPI *api, int bank, QFile *file, bool fullDocument, QString *error);
    // Saves under a new name of prefix, a UUID and suffix in the folder.
    static bool create(RemoteMemAPI *api, int bank, const QDir &folder, const QString &prefix,
                       const QString &suffix, QString *error);
};
