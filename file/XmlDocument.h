// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtXml/QDomDocument>

class QFile;

// XML from outside: files, clipboard and drops all pass through here. Nothing of it may cost more
// than it is worth, so a streaming pass looks at all of it, and a tree is built of no more than has
// passed.
namespace XmlDocument
{

// Deeper nesting is hostile: the tree's own functions recurse. A bank has four levels.
inline constexpr int MaximumDepth = 64;
// A bank has some 400 KB. The tree takes many times the text's size.
inline constexpr qint64 MaximumBytes = 16 * 1024 * 1024;
// Each costs the tree some 300 bytes, whatever it costs the text. An editor file
// has 6,403.
inline constexpr int MaximumElements = 500000;
// The parser's time grows with the square of an element's attributes. A bank has one.
inline constexpr int MaximumAttributes = 1000;

// An attribute costs the tree some 550 bytes. An editor file has one.
inline constexpr int MaximumAttributesInAll = 200000;

// What a document may have. The defaults are an editor file's; documents of another make bring
// their own.
struct Limits
{
    int depth = MaximumDepth;
    qint64 bytes = MaximumBytes;
    int elements = MaximumElements;
    qint64 attributes = MaximumAttributesInAll; // of all elements together
};

// The bytes of a regular file, which is opened and closed: one more than the limit at most, so that
// what is too large is refused by the following. False for anything else than a regular file, and
// if it can't be read.
bool read(QFile *file, qint64 limit, QByteArray *bytes);

// The look alone, for who reads the characters in a stream and so needs no tree. False as below,
// and the characters are then empty.
bool accept(const QByteArray &text, QString *characters, QString *message, int *line,
            const Limits &limits = {});

// Builds the tree of elements and texts, and of the document type the name; comments and processing
// instructions are left out. False for malformed text, for one that exceeds a limit, and for one
// that declares entities or attributes; message and line (from 1) then tell what and where, and the
// document is empty. Neither pointer may be null.
bool parse(const QByteArray &text, QDomDocument *document, QString *message, int *line,
           const Limits &limits = {});

// The text with '?' in place of each character that XML 1.0 forbids, so that what is written can be
// read back.
QString writable(const QString &text);

// Appends the text to the element as a text node. Text of blanks alone (any of Unicode's) goes in
// as a CDATA section, since the parser drops it otherwise; its carriage returns come back as line
// ends.
void appendText(QDomDocument *document, QDomElement *element, const QString &text);

} // namespace XmlDocument
