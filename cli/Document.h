// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/BankData.h"

#include <QtCore/QStringList>

class RemoteMemAPI;

// What a file or an instrument holds, copied out of the memory: a plain value to compare.
struct Document
{
    BankData edit;
    BankData stored;

    // The current template number is always bank 0's.
    static Document of(const RemoteMemAPI &api, int editBank, int storedBank);

    // What of it arrives at an instrument: texts cut to their fields, characters outside ASCII as
    // '?', without the blanks at the end.
    Document asCarried() const;
};

// Which parts of a document take part in a comparison.
enum class DocumentParts { All, EditBufferOnly };

// One line for each value that differs, template by template: "ADDRESS: a -> b".
QStringList differences(const Document &a, const Document &b,
                        DocumentParts parts = DocumentParts::All);
