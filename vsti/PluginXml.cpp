// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/PluginXml.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtXml/QDomDocument>

namespace
{

constexpr int IndentBlanks = 4;

// As an attribute's value or a text in UTF-8: the longest references have six characters.
qint64 writtenBytes(const QString &text)
{
    qint64 bytes = 0;
    for (const QChar character : text) {
        const char16_t unit = character.unicode();
        const bool isReference =
            unit < 0x20 || unit == '<' || unit == '>' || unit == '&' || unit == '"' || unit == '\'';
        bytes += isReference ? 6 : unit < 0x80 ? 1 : 3;
    }
    return bytes;
}

} // namespace

bool PluginXml::parseData(const QByteArray &text, QDomDocument *document)
{
    QString message;
    int line = 0;
    return XmlDocument::parse(text, document, &message, &line, Limits);
}

bool PluginXml::parseFile(QFile &file, QDomDocument *document)
{
    *document = QDomDocument();
    // Opening a pipe would wait for its writer.
    if (!QFileInfo(file.fileName()).isFile() || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray text = file.read(Limits.bytes + 1);
    const bool complete = file.error() == QFileDevice::NoError;
    file.close();
    return complete && parseData(text, document);
}

PluginXml::Size &PluginXml::Size::operator+=(const Size &other)
{
    bytes += other.bytes;
    elements += other.elements;
    attributes += other.attributes;
    return *this;
}

bool PluginXml::Size::fits() const
{
    return bytes <= Limits.bytes && elements <= Limits.elements && attributes <= Limits.attributes;
}

PluginXml::Size PluginXml::sizeOf(const QDomNode &node, int indent)
{
    Size size;
    // Tag and end tag stand on lines of their own, each with brackets, a slash and a line end.
    size.bytes = 2 * (IndentBlanks * indent + writtenBytes(node.nodeName()) + 4) +
                 writtenBytes(node.nodeValue());
    if (node.isElement()) {
        size.elements = 1;
        const QDomNamedNodeMap attributes = node.attributes();
        size.attributes = attributes.count();
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomNode attribute = attributes.item(i);
            // A blank, an equals sign and two quotes.
            size.bytes +=
                writtenBytes(attribute.nodeName()) + writtenBytes(attribute.nodeValue()) + 4;
        }
    }
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling()) {
        size += sizeOf(child, indent + 1);
    }
    return size;
}
