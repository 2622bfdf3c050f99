// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentFile.h"

#include "instrument/InstrumentMemory.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QSaveFile>
#include <QtCore/QSet>
#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>

// <!DOCTYPE TARN_TERNRemoteEditorFile>
// bank version="1.0"
//     template1 .. template50                   the stored bank
//     editBuffTemplate1 .. editBuffTemplate50   the edit buffer
//         name  vstiname  controltype  knobA1 .. knobD3
//             displayname  ccnumber  displayformat  remotenumber
//     bankInfo
//         templateNumber                        the current template, from 0

namespace
{

constexpr const char *KnobTags[InstrumentKnobCount] = {"knobA1", "knobB1", "knobC1", "knobD1",
                                                       "knobA2", "knobB2", "knobC2", "knobD2",
                                                       "knobA3", "knobB3", "knobC3", "knobD3"};

const QString DocumentType = QStringLiteral("TARN_TERNRemoteEditorFile");
constexpr float NewestVersion = 1.0F;

QString storedTag(int number)
{
    return QStringLiteral("template%1").arg(number + 1);
}

QString editBufferTag(int number)
{
    return QStringLiteral("editBuffTemplate%1").arg(number + 1);
}

// --- Reading ------------------------------------------------------------------------------------

// Walks the document once. Every function that reads an element is entered at its start and leaves
// at its end; after the first error it returns false all the way up.
class Reader
{
public:
    explicit Reader(const QByteArray &xml)
        : m_xml(xml)
    {
    }

    bool read(InstrumentMemory *memory)
    {
        if (!readProlog() || !readRoot(memory)) {
            return false;
        }
        while (!m_xml.atEnd()) {
            m_xml.readNext();
        }
        return !m_xml.hasError() || fail({});
    }

    QString error() const { return m_error; }

private:
    bool fail(const QString &text)
    {
        if (m_error.isEmpty()) {
            m_error = m_xml.hasError() ? QStringLiteral("Parse error at line %1. (%2)")
                                             .arg(m_xml.lineNumber())
                                             .arg(m_xml.errorString())
                                       : text;
        }
        return false;
    }

    bool readProlog()
    {
        while (!m_xml.atEnd()) {
            switch (m_xml.readNext()) {
            case QXmlStreamReader::DTD:
                if (!m_xml.entityDeclarations().isEmpty() ||
                    !m_xml.notationDeclarations().isEmpty() || m_xml.text().contains(u'[')) {
                    return fail(QStringLiteral("The document type declares things of its own."));
                }
                if (m_xml.dtdName() != DocumentType) {
                    return fail(QStringLiteral("File is not an editor file."));
                }
                m_typed = true;
                break;
            case QXmlStreamReader::StartElement:
                return m_typed || fail(QStringLiteral("File is not an editor file."));
            default:
                break;
            }
        }
        return fail(QStringLiteral("File is empty."));
    }

    bool readRoot(InstrumentMemory *memory)
    {
        if (m_xml.name() != QStringLiteral("bank")) {
            return fail(QStringLiteral("Root tag ID name is different."));
        }
        bool isNumber = false;
        const float version =
            m_xml.attributes().value(QStringLiteral("version")).toFloat(&isNumber);
        if (!isNumber || !(version <= NewestVersion)) {
            return fail(QStringLiteral("It doesn't correspond to this version."));
        }

        QHash<QString, InstrumentTemplate *> wanted;
        for (int n = 0; n < InstrumentTemplateCount; ++n) {
            const auto index = static_cast<std::size_t>(n);
            wanted.insert(storedTag(n), &memory->stored[index]);
            wanted.insert(editBufferTag(n), &memory->editBuffer[index]);
        }
        bool hasInfo = false;
        while (m_xml.readNextStartElement()) {
            const QString tag = m_xml.name().toString();
            if (InstrumentTemplate *target = wanted.take(tag)) {
                if (!readTemplate(tag, target)) {
                    return false;
                }
            } else if (tag == QStringLiteral("bankInfo") && !hasInfo) {
                hasInfo = true;
                if (!readInfo(memory)) {
                    return false;
                }
            } else {
                m_xml.skipCurrentElement();
            }
        }
        if (m_xml.hasError()) {
            return fail({});
        }
        for (int n = 0; n < InstrumentTemplateCount; ++n) {
            for (const QString &tag : {storedTag(n), editBufferTag(n)}) {
                if (wanted.contains(tag)) {
                    return missing({}, tag);
                }
            }
        }
        return hasInfo || missing({}, QStringLiteral("bankInfo"));
    }

    bool readInfo(InstrumentMemory *memory)
    {
        const QString place = QStringLiteral("bankInfo");
        const QString tag = QStringLiteral("templateNumber");
        bool found = false;
        while (m_xml.readNextStartElement()) {
            if (m_xml.name() == tag && !found) {
                found = true;
                quint8 value = 0;
                if (!readNumber(place, InstrumentTemplateCount - 1, &value)) {
                    return false;
                }
                memory->currentTemplate = value;
            } else {
                m_xml.skipCurrentElement();
            }
        }
        if (m_xml.hasError()) {
            return fail({});
        }
        return found || missing(place, tag);
    }

    bool readTemplate(const QString &place, InstrumentTemplate *target)
    {
        QSet<QString> left = {QStringLiteral("name"), QStringLiteral("vstiname"),
                              QStringLiteral("controltype")};
        QHash<QString, InstrumentKnob *> knobs;
        for (std::size_t k = 0; k < InstrumentKnobCount; ++k) {
            knobs.insert(QLatin1String(KnobTags[k]), &target->knobs[k]);
        }
        while (m_xml.readNextStartElement()) {
            const QString tag = m_xml.name().toString();
            bool good = true;
            if (InstrumentKnob *knob = knobs.take(tag)) {
                good = readKnob(place + u'/' + tag, knob);
            } else if (!left.remove(tag)) {
                m_xml.skipCurrentElement();
            } else if (tag == QStringLiteral("name")) {
                good = readText(&target->templateName);
            } else if (tag == QStringLiteral("vstiname")) {
                good = readText(&target->vstiName);
            } else {
                good = readNumber(place, 1, &target->controlType);
            }
            if (!good) {
                return false;
            }
        }
        if (m_xml.hasError()) {
            return fail({});
        }
        if (!left.isEmpty()) {
            return missing(place, *left.cbegin());
        }
        return knobs.isEmpty() || missing(place, knobs.cbegin().key());
    }

    bool readKnob(const QString &place, InstrumentKnob *knob)
    {
        QSet<QString> left = {QStringLiteral("displayname"), QStringLiteral("ccnumber"),
                              QStringLiteral("displayformat"), QStringLiteral("remotenumber")};
        while (m_xml.readNextStartElement()) {
            const QString tag = m_xml.name().toString();
            bool good = true;
            if (!left.remove(tag)) {
                m_xml.skipCurrentElement();
            } else if (tag == QStringLiteral("displayname")) {
                good = readText(&knob->displayName);
            } else if (tag == QStringLiteral("ccnumber")) {
                good = readNumber(place, 127, &knob->ccNumber);
            } else if (tag == QStringLiteral("displayformat")) {
                good = readNumber(place, 1, &knob->displayFormat);
            } else {
                good = readText(&knob->remoteId);
                knob->remoteId.set(knob->remoteId.padded().toLower());
            }
            if (!good) {
                return false;
            }
        }
        if (m_xml.hasError()) {
            return fail({});
        }
        return left.isEmpty() || missing(place, *left.cbegin());
    }

    template <std::size_t Width>
    bool readText(InstrumentText<Width> *target)
    {
        const QString text = m_xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
        if (m_xml.hasError()) {
            return fail({});
        }
        QByteArray ascii;
        for (const QChar c : text.left(static_cast<qsizetype>(Width))) {
            ascii.append(c.unicode() < 0x80 ? static_cast<char>(c.unicode()) : '?');
        }
        target->set(ascii);
        return true;
    }

    bool readNumber(const QString &place, int maximum, quint8 *target)
    {
        const QString tag = m_xml.name().toString();
        const QString text = m_xml.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
        if (m_xml.hasError()) {
            return fail({});
        }
        bool isNumber = false;
        const int value = text.trimmed().toInt(&isNumber);
        if (!isNumber || value < 0 || value > maximum) {
            return fail(
                QStringLiteral("%1/%2 is not a number from 0 to %3.").arg(place, tag).arg(maximum));
        }
        *target = static_cast<quint8>(value);
        return true;
    }

    bool missing(const QString &place, const QString &tag)
    {
        return fail(QStringLiteral("Parameter is not found. (%1)")
                        .arg(place.isEmpty() ? tag : place + u'/' + tag));
    }

    QXmlStreamReader m_xml;
    QString m_error;
    bool m_typed = false;
};

// --- Writing ------------------------------------------------------------------------------------

template <std::size_t Width>
void writeText(QXmlStreamWriter &xml, const QString &tag, const InstrumentText<Width> &text)
{
    xml.writeStartElement(tag);
    xml.writeCharacters(QString()); // an end tag of its own also for an empty text
    for (const char c : text.trimmed()) {
        // A carriage return as such would be read back as a line feed, so it goes as a reference;
        // the other control characters but tabulator and line feed have no form in XML 1.0 at all.
        if (c == '\r') {
            xml.writeEntityReference(QStringLiteral("#13"));
        } else if (c < ' ' && c != '\t' && c != '\n') {
            xml.writeCharacters(QStringLiteral("?"));
        } else {
            xml.writeCharacters(QString(QLatin1Char(c)));
        }
    }
    xml.writeEndElement();
}

void writeNumber(QXmlStreamWriter &xml, const QString &tag, int value)
{
    xml.writeTextElement(tag, QString::number(value));
}

void writeTemplate(QXmlStreamWriter &xml, const QString &tag, const InstrumentTemplate &source)
{
    xml.writeStartElement(tag);
    writeText(xml, QStringLiteral("name"), source.templateName);
    writeText(xml, QStringLiteral("vstiname"), source.vstiName);
    writeNumber(xml, QStringLiteral("controltype"), source.controlType);
    for (std::size_t k = 0; k < InstrumentKnobCount; ++k) {
        const InstrumentKnob &knob = source.knobs[k];
        xml.writeStartElement(QLatin1String(KnobTags[k]));
        writeText(xml, QStringLiteral("displayname"), knob.displayName);
        writeNumber(xml, QStringLiteral("ccnumber"), knob.ccNumber);
        writeNumber(xml, QStringLiteral("displayformat"), knob.displayFormat);
        writeText(xml, QStringLiteral("remotenumber"), knob.remoteId);
        xml.writeEndElement();
    }
    xml.writeEndElement();
}

} // namespace

bool InstrumentFile::parse(const QByteArray &xml, InstrumentMemory *memory, QString *error)
{
    if (xml.size() > MaxFileSize) {
        *error = QStringLiteral("File is too large to be an editor file.");
        return false;
    }
    InstrumentMemory result;
    Reader reader(xml);
    if (!reader.read(&result)) {
        *error = reader.error();
        return false;
    }
    *memory = result;
    return true;
}

bool InstrumentFile::load(const QString &path, InstrumentMemory *memory, QString *error)
{
    QFile file(path);
    if (!file.exists()) {
        *error = QStringLiteral("File was not found.");
        return false;
    }
    // Opening a pipe or a device could wait for ever.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("File could not be opened.");
        return false;
    }
    // One byte more than allowed, so that a file without an end is told apart without reading it.
    const QByteArray xml = file.read(MaxFileSize + 1);
    if (file.error() != QFileDevice::NoError) {
        *error = QStringLiteral("File could not be opened.");
        return false;
    }
    return parse(xml, memory, error);
}

QByteArray InstrumentFile::print(const InstrumentMemory &memory)
{
    QByteArray result;
    QBuffer buffer(&result);
    buffer.open(QIODevice::WriteOnly);
    QXmlStreamWriter xml(&buffer);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(4);
    xml.writeDTD(QStringLiteral("<!DOCTYPE TARN_TERNRemoteEditorFile>"));
    xml.writeStartElement(QStringLiteral("bank"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    for (int n = 0; n < InstrumentTemplateCount; ++n) {
        writeTemplate(xml, storedTag(n), memory.stored[static_cast<std::size_t>(n)]);
    }
    for (int n = 0; n < InstrumentTemplateCount; ++n) {
        writeTemplate(xml, editBufferTag(n), memory.editBuffer[static_cast<std::size_t>(n)]);
    }
    xml.writeStartElement(QStringLiteral("bankInfo"));
    writeNumber(xml, QStringLiteral("templateNumber"), memory.currentTemplate);
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    // The writer's formatting begins every line with a line feed, the first included.
    return result.startsWith('\n') ? result.mid(1) : result;
}

bool InstrumentFile::save(const QString &path, const InstrumentMemory &memory, QString *error)
{
    // Replacing in one step would put a plain file in the place of a device or a pipe.
    const QFileInfo existing(path);
    if (existing.exists() && !existing.isFile()) {
        *error = QStringLiteral("Failed in the file writing. (not a file)");
        return false;
    }
    const QByteArray xml = print(memory);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(xml) != xml.size() || !file.flush() ||
        !file.commit()) {
        *error = QStringLiteral("Failed in the file writing. (%1)").arg(file.errorString());
        return false;
    }
    return true;
}
