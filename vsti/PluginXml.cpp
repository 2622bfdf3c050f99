// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/PluginXml.h"

#include <QtCore/QFile>
#include <QtXml/QDomDocument>

namespace
{

constexpr int IndentBlanks = 4;

// As an attribute's value or a text in UTF-8: the longest references have six characters.
qint64 writtenBytes(QStringView text)
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
    return XmlDocument::parse(text, document, &message, &line, TreeLimits);
}

bool PluginXml::parseFile(QFile &file, QDomDocument *document)
{
    *document = QDomDocument();
    QByteArray text;
    return XmlDocument::read(&file, TreeLimits.bytes, &text) && parseData(text, document);
}

bool PluginXml::readDatabase(QFile &file, QString *characters)
{
    QByteArray text;
    QString message;
    int line = 0;
    return XmlDocument::read(&file, DatabaseLimits.bytes, &text) &&
           XmlDocument::accept(text, characters, &message, &line, DatabaseLimits);
}

void PluginXml::Size::addElement(QStringView tag, int indent)
{
    ++elements;
    // Tag and end tag stand on lines of their own, each with brackets, a slash and a line end.
    bytes += 2 * (IndentBlanks * indent + writtenBytes(tag) + 4);
}

void PluginXml::Size::addAttribute(QStringView name, QStringView value)
{
    ++attributes;
    // A blank, an equals sign and two quotes.
    bytes += writtenBytes(name) + writtenBytes(value) + 4;
}

void PluginXml::Size::addText(QStringView text, int indent)
{
    // A comment has seven characters around its text, a section twelve.
    bytes += IndentBlanks * indent + writtenBytes(text) + 16;
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
    return bytes <= DatabaseLimits.bytes && elements <= DatabaseLimits.elements &&
           attributes <= DatabaseLimits.attributes;
}
