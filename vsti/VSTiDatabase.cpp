// SPDX-License-Identifier: GPL-3.0-or-later
// The files of VSTiInfo: what the database and the preset file hold, and whether a plug-in is still
// the one that the database tells of.
//
//   VSTiDatabase.xml  dawlist
//                       daw name                            one section per DAW ever scanned
//                         vsti name path time size version  one instrument
//                           group, parameter                InstrumentTree.h tells of these
//   VSTiPreset.xml    vstilist
//                       vsti name
//                         group, parameter
//
// The database is read and written in a stream: a tree of it would take a gigabyte on a machine
// with many plug-ins.
#include "vsti/VSTiInfo.h"

#include "app/Constants.h"
#include "vsti/InstrumentTree.h"
#include "vsti/PluginXml.h"

#include <QtCore/QBuffer>
#include <QtCore/QDateTime>
#include <QtCore/QDirIterator>
#include <QtCore/QSaveFile>
#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>
#include <QtXml/QDomDocument>

#include <algorithm>

namespace
{

constexpr int IndentBlanks = 4;
constexpr int SectionIndent = 1;
constexpr int InstrumentIndent = 2;
constexpr int ParameterIndent = 3;
static_assert(ParameterIndent + VSTiInfo::MaximumGroups + 1 == PluginXml::MaximumDepth,
              "a parameter below as many groups as there may be can be read again");

QString timeOf(const QFileInfo &fileInfo)
{
    return fileInfo.lastModified().toString(Qt::ISODate);
}

// --- The database as it stands -------------------------------------------------------------------

// Goes to the root. False if the text is no database.
bool enterDatabase(QXmlStreamReader *stream)
{
    bool isDatabase = false;
    while (!stream->atEnd() && stream->readNext() != QXmlStreamReader::StartElement) {
        if (stream->isDTD()) {
            isDatabase = stream->dtdName() == DatabaseDocType;
        }
    }
    return isDatabase && stream->qualifiedName() == TagDAWList;
}

bool isSectionOf(const QXmlStreamReader &stream, const QString &daw)
{
    return stream.isStartElement() && stream.qualifiedName() == TagDAW &&
           stream.attributes().value(AttributeDAWName) == XmlDocument::writable(daw);
}

// Walks through the whole text but the first section of a DAW, which is told by a call of its own.
class KeptTokens
{
public:
    KeptTokens(const QString &text, const QString &daw)
        : m_text(text)
        , m_daw(daw)
    {
        QXmlStreamReader stream(text);
        m_isDatabase = !text.isEmpty() && enterDatabase(&stream);
    }

    bool isEmpty() const { return m_text.isEmpty(); }
    // False: to be kept as it stands, a list of sections is no part of it.
    bool isDatabase() const { return m_isDatabase; }

    // token(stream, depth) for each token to keep, the depth being that of the root at the root's
    // own tags. section() once, if the text is a database: where the old section stands, or at the
    // end of the list.
    template <typename Token, typename Section>
    void walk(Token token, Section section) const
    {
        QXmlStreamReader stream(m_text);
        bool isSectionTold = !m_isDatabase;
        int depth = 0;
        while (!stream.atEnd()) {
            stream.readNext();
            if (stream.hasError()) {
                return;
            }
            if (stream.isStartElement()) {
                if (!isSectionTold && depth == SectionIndent && isSectionOf(stream, m_daw)) {
                    section();
                    isSectionTold = true;
                    stream.skipCurrentElement();
                    continue;
                }
                token(stream, depth);
                ++depth;
            } else if (stream.isEndElement()) {
                --depth;
                if (depth == 0 && !isSectionTold) {
                    section();
                    isSectionTold = true;
                }
                token(stream, depth);
            } else if (!stream.isStartDocument() && !stream.isEndDocument() &&
                       !stream.isWhitespace()) {
                token(stream, depth);
            }
        }
    }

private:
    QString m_text;
    QString m_daw;
    bool m_isDatabase = false;
};

PluginXml::Size sizeOf(const KeptTokens &kept)
{
    PluginXml::Size size;
    kept.walk(
        [&size](const QXmlStreamReader &stream, int depth) {
            if (stream.isStartElement()) {
                size.addElement(stream.qualifiedName(), depth);
                for (const QXmlStreamAttribute &attribute : stream.attributes()) {
                    size.addAttribute(attribute.qualifiedName(), attribute.value());
                }
            } else if (!stream.isEndElement()) {
                size.addText(stream.text(), depth);
            }
        },
        [] {});
    return size;
}

// --- A new section -------------------------------------------------------------------------------

void writeInstrument(QXmlStreamWriter *stream, const QXmlStreamAttributes &attributes,
                     const InstrumentTreeWriter &tree)
{
    stream->writeStartElement(TagVSTi);
    stream->writeAttributes(attributes);
    tree.write(stream);
    stream->writeEndElement();
}

QXmlStreamAttributes attributesOf(const QString &name, const VSTiInfo::VSTiFileInfo &info)
{
    // The control groups have no file, and QFileInfo none to be asked about.
    const QString path =
        info.fileInfo.filePath().isEmpty() ? QString() : info.fileInfo.absoluteFilePath();
    // Not the one that is kept, which remembers what it once saw.
    const QFileInfo now(path);
    QXmlStreamAttributes attributes;
    attributes.append(AttributeVSTiName, XmlDocument::writable(name));
    attributes.append(AttributeVSTiPath, XmlDocument::writable(path));
    attributes.append(AttributeVSTiTime, timeOf(now));
    attributes.append(AttributeVSTiSize, QString::number(getVSTiFileSize(now)));
    attributes.append(AttributeVSTiVersion, QString::number(info.version));
    return attributes;
}

PluginXml::Size sizeOfInstrument(const QXmlStreamAttributes &attributes,
                                 const InstrumentTreeWriter &tree)
{
    PluginXml::Size size = tree.size();
    size.addElement(TagVSTi, InstrumentIndent);
    for (const QXmlStreamAttribute &attribute : attributes) {
        size.addAttribute(attribute.qualifiedName(), attribute.value());
    }
    return size;
}

// So that one with an endless list takes no other's room.
QStringList smallestFirst(QStringList names,
                          const QHash<QString, QList<VSTiInfo::Parameter>> &parameterLists)
{
    names.sort();
    std::stable_sort(names.begin(), names.end(), [&](const QString &a, const QString &b) {
        return parameterLists.value(a).size() < parameterLists.value(b).size();
    });
    return names;
}

bool replaceFile(const QString &path, const QByteArray &text)
{
    // Nobody makes the folder before something is to be written there.
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile target(path);
    // What is in the buffer when it commits, it counts as written even if the disk is full.
    return target.open(QIODevice::WriteOnly) && target.write(text) == text.size() &&
           target.flush() && target.commit();
}

} // namespace

// --- Presets -------------------------------------------------------------------------------------

void VSTiInfo::createParameterListFromPreset(QFile &file)
{
    QDomDocument document;
    if (!PluginXml::parseFile(file, &document) || document.doctype().name() != PresetDocType ||
        document.documentElement().tagName() != TagVSTiList) {
        return;
    }
    m_namesLeft = PluginXml::MaximumNames;
    for (QDomElement vsti = document.documentElement().firstChildElement(TagVSTi);
         !vsti.isNull() && m_namesLeft >= 0; vsti = vsti.nextSiblingElement(TagVSTi)) {
        const QString name = vsti.attribute(AttributeVSTiName);
        if (!name.isEmpty() && !parameterMaps.contains(name)) {
            QList<Parameter> list;
            appendParameterTree(&list, name, vsti, {});
            parameterLists.insert(name, list);
        }
    }
}

void VSTiInfo::appendParameterTree(QList<Parameter> *list, const QString &vstiName,
                                   const QDomElement &element, const QStringList &prefix)
{
    QHash<QString, QStringList> map = parameterMaps.take(vstiName);
    InstrumentTreeReader(list, &map, &m_namesLeft).read(element, prefix);
    // A name without parameters stays unknown here, so that another list can still come for it.
    if (!map.isEmpty()) {
        parameterMaps.insert(vstiName, map);
    }
}

// --- Database ------------------------------------------------------------------------------------

void VSTiInfo::createParameterListFromDatabase(QFile &file)
{
    QString text;
    if (!PluginXml::readDatabase(file, &text)) {
        return;
    }
    QXmlStreamReader stream(text);
    if (!enterDatabase(&stream)) {
        return;
    }
    while (stream.readNextStartElement() && !isSectionOf(stream, currentDAW)) {
        stream.skipCurrentElement();
    }
    if (!stream.isStartElement()) {
        return;
    }
    m_namesLeft = PluginXml::MaximumNames;
    while (m_namesLeft >= 0 && stream.readNextStartElement()) {
        if (stream.qualifiedName() != TagVSTi || !createParameterListFromEntry(&stream)) {
            stream.skipCurrentElement();
        }
    }
}

bool VSTiInfo::createParameterListFromEntry(QXmlStreamReader *stream)
{
    const QXmlStreamAttributes attributes = stream->attributes();
    const QString name = attributes.value(AttributeVSTiName).toString();
    const QString path = attributes.value(AttributeVSTiPath).toString();
    const QString time = attributes.value(AttributeVSTiTime).toString();
    const QString size = attributes.value(AttributeVSTiSize).toString();
    const int version = attributes.value(AttributeVSTiVersion).toInt();
    if (name.isEmpty() || path.isEmpty() || time.isEmpty() || size.isEmpty() ||
        parameterMaps.contains(name)) {
        return false;
    }
    // The size comes last: it is a walk through the whole bundle.
    const QFileInfo fileInfo(path);
    const bool isUpToDate = (version == 2 || version == 3) && fileInfo.exists() &&
                            timeOf(fileInfo) == time &&
                            getVSTiFileSize(fileInfo) == size.toLongLong();
    if (!isUpToDate) {
        return false;
    }
    QList<Parameter> list;
    QHash<QString, QStringList> map;
    InstrumentTreeReader(&list, &map, &m_namesLeft).read(stream, {});
    // Half a list would pass for the whole one; without any the next scan asks the plug-in again.
    if (m_namesLeft >= 0) {
        if (!map.isEmpty()) {
            parameterMaps.insert(name, map);
        }
        parameterLists.insert(name, list);
        fileInfos.insert(name, {fileInfo, version});
    }
    return true;
}

bool VSTiInfo::writeParameterListDatabase(QFile &file) const
{
    // What cannot be read is no text, and lost.
    QString text;
    PluginXml::readDatabase(file, &text);
    KeptTokens kept(text, currentDAW);
    PluginXml::Size size = sizeOf(kept);
    if (!size.fits()) {
        // Nothing that was written here grows when it is written again.
        kept = KeptTokens(QString(), currentDAW);
        size = {};
    }
    size.addElement(TagDAWList, 0);
    size.addElement(TagDAW, SectionIndent);
    size.addAttribute(AttributeDAWName, XmlDocument::writable(currentDAW));

    QBuffer written;
    written.open(QIODevice::WriteOnly);
    QXmlStreamWriter stream(&written);
    stream.setAutoFormatting(true);
    stream.setAutoFormattingIndent(IndentBlanks);
    const auto writeSection = [&] {
        stream.writeStartElement(TagDAW);
        stream.writeAttribute(AttributeDAWName, XmlDocument::writable(currentDAW));
        for (const QString &name : smallestFirst(fileInfos.keys(), parameterLists)) {
            const InstrumentTreeWriter tree(parameterLists.value(name), ParameterIndent);
            const QXmlStreamAttributes attributes = attributesOf(name, fileInfos.value(name));
            PluginXml::Size sizeWithIt = size;
            sizeWithIt += sizeOfInstrument(attributes, tree);
            // An instrument that would make the file one that is refused when it is read again is
            // left out: the next scan asks it anew, and the others keep their places.
            if (sizeWithIt.fits()) {
                size = sizeWithIt;
                writeInstrument(&stream, attributes, tree);
            }
        }
        stream.writeEndElement();
    };
    const auto writeToken = [&](const QXmlStreamReader &token, int) {
        if (token.isDTD()) {
            // The writer would begin the file with an empty line.
            written.write(token.text().toUtf8());
        } else {
            stream.writeCurrentToken(token);
        }
    };
    if (kept.isEmpty()) {
        written.write("<!DOCTYPE " + DatabaseDocType.toUtf8() + '>');
    }
    kept.walk(writeToken, writeSection);
    if (!kept.isDatabase()) {
        stream.writeStartElement(TagDAWList);
        writeSection();
        stream.writeEndElement();
    }
    stream.writeEndDocument();
    return replaceFile(file.fileName(), written.data());
}

// --- Sizes ---------------------------------------------------------------------------------------

qint64 getVSTiFileSize(const QFileInfo &fileInfo)
{
    if (!fileInfo.isDir()) {
        return fileInfo.size();
    }
    // Unsigned, since files with holes can tell any size.
    quint64 sum = 0;
    QStringList folders(fileInfo.absoluteFilePath());
    while (!folders.isEmpty()) {
        QDirIterator entries(folders.takeLast(),
                             QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        while (entries.hasNext()) {
            entries.next();
            const QFileInfo entry = entries.fileInfo();
            if (!entry.isDir()) {
                sum += static_cast<quint64>(entry.size());
            } else if (!entry.isSymLink()) {
                folders.append(entry.absoluteFilePath());
            }
        }
    }
    return static_cast<qint64>(sum);
}
