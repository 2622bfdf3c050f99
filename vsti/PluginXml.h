// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "file/XmlDocument.h"

#include <QtCore/QByteArray>

class QDomDocument;
class QDomNode;
class QFile;

// The XML files that tell of plug-ins: database, presets and parameter descriptions. All pass
// XmlDocument's look at hostile text, with more room than an editor file needs.
namespace PluginXml
{

// Room for hundreds of instruments with thousands of parameters each, for several DAWs. The deepest
// parameter trees have some ten levels. A parameter has two attributes, an instrument five.
inline constexpr XmlDocument::Limits Limits = {256, 128 * 1024 * 1024, 1000000, 3000000};
// A path holds the names of all its groups, so many parameters below many groups would take the
// square of what the text takes.
inline constexpr qint64 MaximumNames = 16 * 1024 * 1024;

// False, with an empty document, for what is no regular file, cannot be read, or is refused.
bool parseFile(QFile &file, QDomDocument *document);
bool parseData(const QByteArray &text, QDomDocument *document);

// What a tree takes of the limits once it is written: the bytes may be fewer.
struct Size
{
    qint64 bytes = 0;
    qint64 elements = 0;
    qint64 attributes = 0;

    Size &operator+=(const Size &other);
    bool fits() const;
};

// indent: of the node itself, in levels.
Size sizeOf(const QDomNode &node, int indent);

} // namespace PluginXml
