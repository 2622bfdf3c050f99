// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/XmlDocument.h"

#include <QtCore/QXmlStreamReader>

#include <algorithm>

namespace
{

bool isForbidden(char16_t unit)
{
    const bool isControl = unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r';
    return isControl || unit == 0xFFFE || unit == 0xFFFF;
}

// The streaming pass. False with message and line set if the text is not to be parsed.
bool check(const QByteArray &text, QString *message, int *line)
{
    QXmlStreamReader reader(text);
    const auto refuse = [&](const QString &reason) {
        *message = reason;
        *line = static_cast<int>(reader.lineNumber());
        return false;
    };
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > XmlDocument::MaximumDepth) {
                return refuse(QStringLiteral("The elements are nested too deeply."));
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::DTD:
            if (!reader.entityDeclarations().isEmpty()) {
                return refuse(QStringLiteral("Entity declarations are not allowed."));
            }
            break;
        case QXmlStreamReader::EntityReference:
            return refuse(QStringLiteral("Entity references are not allowed."));
        default:
            break;
        }
    }
    return !reader.hasError() || refuse(reader.errorString());
}

} // namespace

bool XmlDocument::parse(const QByteArray &text, QDomDocument *document, QString *message, int *line)
{
    *document = QDomDocument();
    if (text.size() > MaximumBytes) {
        *message = QStringLiteral("The document is too large.");
        *line = 1;
        return false;
    }
    if (!check(text, message, line)) {
        return false;
    }
    if (!document->setContent(text, true, message, line)) {
        *document = QDomDocument();
        return false;
    }
    return true;
}

QString XmlDocument::writable(const QString &text)
{
    QString result = text;
    for (qsizetype i = 0; i < result.size(); ++i) {
        const QChar character = result.at(i);
        if (character.isHighSurrogate() && i + 1 < result.size() &&
            result.at(i + 1).isLowSurrogate()) {
            ++i;
        } else if (character.isSurrogate() || isForbidden(character.unicode())) {
            result[i] = QLatin1Char('?');
        }
    }
    return result;
}

void XmlDocument::appendText(QDomDocument *document, QDomElement *element, const QString &text)
{
    const QString safe = writable(text);
    // A carriage return survives only as a character reference, which a section has none of.
    const bool isBlank =
        !safe.isEmpty() && std::all_of(safe.begin(), safe.end(), [](QChar character) {
            return character == QLatin1Char(' ') || character == QLatin1Char('\t') ||
                   character == QLatin1Char('\n');
        });
    if (isBlank) {
        element->appendChild(document->createCDATASection(safe));
    } else {
        element->appendChild(document->createTextNode(safe));
    }
}
