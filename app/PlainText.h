// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

// Text that a terminal only shows. Files, instruments and operands bring others, too.
namespace PlainText
{

// What a terminal obeys instead of showing it: controls, of which some consist of one character
// beyond ASCII, and the marks that turn the direction of what follows.
inline bool isObeyed(QChar character)
{
    const char16_t unit = character.unicode();
    return character.category() == QChar::Other_Control || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

// The text with a replacement character for each of these but line feeds and tabs.
inline QString shown(const QString &text)
{
    QString result = text;
    for (QChar &character : result) {
        if (isObeyed(character) && character != u'\n' && character != u'\t') {
            character = QChar::ReplacementCharacter;
        }
    }
    return result;
}

} // namespace PlainText
