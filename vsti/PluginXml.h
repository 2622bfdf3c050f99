// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "file/XmlDocument.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringView>

class QDomDocument;
class QFile;

// The XML files that tell of plug-ins: database, presets and parameter descriptions. All pass
// XmlDocument's look at hostile text, with more room than an editor file needs.
namespace PluginXml
{

// The deepest parameter trees have some ten levels.
inline constexpr int MaximumDepth = 256;
// Presets and descriptions become a tree, which takes some three kilobytes for each parameter.
inline constexpr XmlDocument::Limits TreeLimits = {MaximumDepth, 16 * 1024 * 1024, 200000, 1000000};
// The database is read and written in a stream. There is room for hundreds of instruments with
// thousands of parameters each, for several DAWs. A parameter has two attributes, an instrument
// five.
inline constexpr XmlDocument::Limits DatabaseLimits = {MaximumDepth, 128 * 1024 * 1024, 1000000,
                                                       3000000};
// A path holds the names of all its groups, so many parameters below many groups would take the
// square of what the text takes.
inline constexpr qint64 MaximumNames = 16 * 1024 * 1024;

// False, with an empty document, for what is no regular file, cannot be read, or is refused.
bool parseFile(QFile &file, QDomDocument *document);
bool parseData(const QByteArray &text, QDomDocument *document);
// The characters of the database, to be read in a stream.
bool readDatabase(QFile &file, QString *characters);

// What a part of the database takes of the limits once it is written; the bytes may be fewer.
struct Size
{
    qint64 bytes = 0;
    qint64 elements = 0;
    qint64 attributes = 0;

    // indent: in levels.
    void addElement(QStringView tag, int indent);
    void addAttribute(QStringView name, QStringView value);
    void addText(QStringView text, int indent);
    Size &operator+=(const Size &other);
    bool fits() const;
};

} // namespace PluginXml
