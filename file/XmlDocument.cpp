// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/XmlDocument.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStringConverter>
#include <QtCore/QStringDecoder>
#include <QtCore/QXmlStreamReader>

#include <algorithm>
#include <functional>

namespace
{

bool isForbidden(char16_t unit)
{
    const bool isControl = unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r';
    return isControl || unit == 0xFFFE || unit == 0xFFFF;
}

bool refuse(const QString &reason, qint64 atLine, QString *message, int *line)
{
    *message = reason;
    *line = static_cast<int>(atLine);
    return false;
}

// The text in the encoding that its mark, its first characters or its declaration tell. All that
// follows reads what comes of it, so nothing sees other characters than were looked at here.
bool decode(const QByteArray &bytes, QString *text)
{
    QXmlStreamReader beginning(bytes);
    beginning.readNext();
    const auto marked = QStringConverter::encodingForData(bytes, u'<');
    QStringDecoder decoder;
    if (marked.has_value()) {
        decoder = QStringDecoder(*marked);
    } else if (beginning.documentEncoding().isEmpty()) {
        decoder = QStringDecoder(QStringDecoder::Utf8);
    } else {
        decoder = QStringDecoder(beginning.documentEncoding().toLatin1().constData());
    }
    if (!decoder.isValid()) {
        return false;
    }
    *text = decoder.decode(bytes);
    return !decoder.hasError();
}

// The parser compares each attribute of a tag with all others before it tells of the tag, so the
// tags are looked at before it. Text that is not well formed may be misread from there on; the
// parser stops at the same place. Returns the offset of the first tag with too many, or -1.
qsizetype overloadedTag(QStringView text)
{
    qsizetype start = text.indexOf(u'<');
    while (start >= 0) {
        const QStringView rest = text.sliced(start);
        qsizetype end = -1;
        const auto skipTo = [&](QStringView terminator) {
            const qsizetype found = rest.indexOf(terminator);
            end = found < 0 ? -1 : start + found + terminator.size();
        };
        if (rest.startsWith(u"<!--")) {
            skipTo(u"-->");
        } else if (rest.startsWith(u"<![CDATA[")) {
            skipTo(u"]]>");
        } else if (rest.startsWith(u"<?")) {
            skipTo(u"?>");
        } else if (rest.startsWith(u"<!")) {
            end = start + 2;
        } else {
            int attributes = 0;
            QChar quote;
            for (qsizetype i = 1; i < rest.size() && end < 0; ++i) {
                const QChar character = rest.at(i);
                if (!quote.isNull()) {
                    if (character == quote) {
                        quote = QChar();
                    }
                } else if (character == u'"' || character == u'\'') {
                    quote = character;
                    if (++attributes > XmlDocument::MaximumAttributes) {
                        return start;
                    }
                } else if (character == u'>') {
                    end = start + i + 1;
                }
            }
        }
        start = end < 0 ? -1 : text.indexOf(u'<', end);
    }
    return -1;
}

// The tree of the tokens that a reader has come by: elements and texts as QDomDocument's own parser
// makes them, which would read all the text once more.
class Tree
{
public:
    QDomDocument document() const { return m_document; }
    void add(const QXmlStreamReader &reader)
    {
        switch (reader.tokenType()) {
        case QXmlStreamReader::DTD:
            m_document = QDomDocument(reader.dtdName().toString());
            m_node = m_document;
            break;
        case QXmlStreamReader::StartElement:
            openElement(reader);
            break;
        case QXmlStreamReader::EndElement:
            m_node = m_node.parentNode();
            break;
        case QXmlStreamReader::Characters:
            if (reader.isCDATA()) {
                m_node.appendChild(m_document.createCDATASection(reader.text().toString()));
            } else if (!reader.text().trimmed().isEmpty()) {
                m_node.appendChild(m_document.createTextNode(reader.text().toString()));
            }
            break;
        default:
            break;
        }
    }

private:
    void openElement(const QXmlStreamReader &reader)
    {
        QDomElement element = m_document.createElementNS(reader.namespaceUri().toString(),
                                                         reader.qualifiedName().toString());
        const QXmlStreamAttributes attributes = reader.attributes();
        for (const QXmlStreamAttribute &attribute : attributes) {
            element.setAttributeNS(attribute.namespaceUri().toString(),
                                   attribute.qualifiedName().toString(),
                                   attribute.value().toString());
        }
        m_node = m_node.appendChild(element);
    }

    // With a document type that has no name, for a text that tells of none.
    QDomDocument m_document{QString()};
    QDomNode m_node = m_document;
};

// The streaming pass, which hands on each token that it has nothing against. False with message and
// line set if the text is refused.
bool check(const QString &text, const XmlDocument::Limits &limits,
           const std::function<void(const QXmlStreamReader &)> &handOn, QString *message, int *line)
{
    const qsizetype overloaded = overloadedTag(text);
    if (overloaded >= 0) {
        return refuse(QStringLiteral("The element has too many attributes."),
                      1 + QStringView(text).first(overloaded).count(u'\n'), message, line);
    }
    QXmlStreamReader reader(text);
    const auto refuseHere = [&](const QString &reason) {
        return refuse(reason, reader.lineNumber(), message, line);
    };
    int depth = 0;
    int elements = 0;
    qint64 attributes = 0;
    bool hasDocumentType = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++elements > limits.elements) {
                return refuseHere(QStringLiteral("The document has too many elements."));
            }
            if (++depth > limits.depth) {
                return refuseHere(QStringLiteral("The elements are nested too deeply."));
            }
            attributes += reader.attributes().size();
            if (attributes > limits.attributes) {
                return refuseHere(QStringLiteral("The document has too many attributes."));
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::DTD:
            if (hasDocumentType || elements > 0) {
                return refuseHere(QStringLiteral("The document type is out of place."));
            }
            hasDocumentType = true;
            if (!reader.entityDeclarations().isEmpty()) {
                return refuseHere(QStringLiteral("Entity declarations are not allowed."));
            }
            // Their default values would join every element that they name.
            if (reader.text().contains(QLatin1String("<!ATTLIST"))) {
                return refuseHere(QStringLiteral("Attribute declarations are not allowed."));
            }
            break;
        case QXmlStreamReader::EntityReference:
            return refuseHere(QStringLiteral("Entity references are not allowed."));
        default:
            break;
        }
        handOn(reader);
    }
    return !reader.hasError() || refuseHere(reader.errorString());
}

// The characters of a text that is not too large and passes the check. False as there.
bool take(const QByteArray &text, const XmlDocument::Limits &limits,
          const std::function<void(const QXmlStreamReader &)> &handOn, QString *characters,
          QString *message, int *line)
{
    if (text.size() > limits.bytes) {
        return refuse(QStringLiteral("The document is too large."), 1, message, line);
    }
    if (!decode(text, characters)) {
        return refuse(QStringLiteral("Encountered incorrectly encoded content."), 1, message, line);
    }
    return check(*characters, limits, handOn, message, line);
}

} // namespace

bool XmlDocument::read(QFile *file, qint64 limit, QByteArray *bytes)
{
    // Opening a pipe or a device could wait for ever.
    if (!QFileInfo(file->fileName()).isFile() || !file->open(QIODevice::ReadOnly)) {
        return false;
    }
    // Room for the limit would be taken at once, whatever the file's size, and the allocator takes
    // the largest block that has come and gone as a measure of what to hold back ever after.
    *bytes = file->read(std::min(file->size(), limit) + 1);
    const bool complete = file->error() == QFileDevice::NoError;
    file->close();
    return complete;
}

bool XmlDocument::accept(const QByteArray &text, QString *characters, QString *message, int *line,
                         const Limits &limits)
{
    if (!take(
            text, limits, [](const QXmlStreamReader &) {}, characters, message, line)) {
        characters->clear();
        return false;
    }
    return true;
}

bool XmlDocument::parse(const QByteArray &text, QDomDocument *document, QString *message, int *line,
                        const Limits &limits)
{
    *document = QDomDocument();
    Tree tree;
    QString characters;
    const auto add = [&tree](const QXmlStreamReader &reader) { tree.add(reader); };
    if (!take(text, limits, add, &characters, message, line)) {
        return false;
    }
    *document = tree.document();
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
    // What the parser takes for blank, and drops even if it is written as character references. A
    // section keeps all of it but carriage returns, which come back as line ends.
    const bool isBlank =
        !safe.isEmpty() &&
        std::all_of(safe.begin(), safe.end(), [](QChar character) { return character.isSpace(); });
    if (isBlank) {
        element->appendChild(document->createCDATASection(safe));
    } else {
        element->appendChild(document->createTextNode(safe));
    }
}
