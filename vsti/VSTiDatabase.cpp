// SPDX-License-Identifier: GPL-3.0-or-later
// The files of VSTiInfo: what the database and the preset file hold, and whether a plug-in is still
// the one that the database tells of.
//
//   VSTiDatabase.xml  dawlist
//                       daw name                            one section per DAW ever scanned
//                         vsti name path time size version  one instrument
//                           group name                      nests
//                             parameter id name             the id: a type digit, ten digits
//   VSTiPreset.xml    vstilist
//                       vsti name
//                         group, parameter                  as above
#include "vsti/VSTiInfo.h"

#include "app/Constants.h"
#include "file/EditorData.h"
#include "vsti/PluginXml.h"

#include <QtCore/QDateTime>
#include <QtCore/QDirIterator>
#include <QtCore/QSaveFile>
#include <QtCore/QTextStream>
#include <QtXml/QDomDocument>

#include <algorithm>

namespace
{

constexpr int Indent = 4;
// Above an instrument's groups: the list, the DAW and the instrument itself.
constexpr int InstrumentIndent = 2;
static_assert(VSTiInfo::MaximumGroups + InstrumentIndent + 2 == PluginXml::Limits.depth,
              "a parameter below as many groups as there may be can be read again");

bool isDocument(const QDomDocument &document, const QString &docType, const QString &rootTag)
{
    return document.doctype().name() == docType && document.documentElement().tagName() == rootTag;
}

QString timeOf(const QFileInfo &fileInfo)
{
    return fileInfo.lastModified().toString(Qt::ISODate);
}

QDomElement sectionOf(const QDomElement &root, const QString &daw)
{
    const QString written = XmlDocument::writable(daw);
    QDomElement section = root.firstChildElement(TagDAW);
    while (!section.isNull() && section.attribute(AttributeDAWName) != written) {
        section = section.nextSiblingElement(TagDAW);
    }
    return section;
}

// Reads the tree of one instrument.
class TreeReader
{
public:
    TreeReader(QList<VSTiInfo::Parameter> *list, QHash<QString, QStringList> *map,
               qint64 *namesLeft)
        : m_list(list)
        , m_map(map)
        , m_namesLeft(namesLeft)
    {
    }

    void read(const QDomElement &element, const QStringList &prefix)
    {
        for (QDomElement child = element.firstChildElement(); !child.isNull();
             child = child.nextSiblingElement()) {
            const QString tag = child.tagName();
            if (tag == TagParameter) {
                readParameter(child, prefix);
            } else if (tag == TagParameterGroup &&
                       child.hasAttribute(AttributeParameterGroupName)) {
                read(child, prefix + QStringList(child.attribute(AttributeParameterGroupName)));
            }
        }
    }

private:
    void readParameter(const QDomElement &element, const QStringList &prefix)
    {
        const QString written = element.attribute(AttributeParameterID);
        if (written.isEmpty() || !element.hasAttribute(AttributeParameterName)) {
            return;
        }
        const QString id = EditorData::translateVdremoteparam2Tremoteparam(written);
        if (m_map->contains(id)) {
            return;
        }
        *m_namesLeft -= prefix.size() + 1;
        if (*m_namesLeft < 0) {
            *m_namesLeft = -1;
            return;
        }
        const QStringList path = prefix + QStringList(element.attribute(AttributeParameterName));
        m_list->append({id, path});
        m_map->insert(id, path);
    }

    QList<VSTiInfo::Parameter> *m_list;
    QHash<QString, QStringList> *m_map;
    qint64 *m_namesLeft;
};

// Writes the tree of one instrument: a path's groups are made once, by whoever comes first.
class TreeWriter
{
public:
    TreeWriter(QDomDocument *document, const QDomElement &instrument)
        : m_document(document)
        , m_groups{instrument}
    {
    }

    void append(const VSTiInfo::Parameter &parameter)
    {
        const qsizetype groups =
            std::min<qsizetype>(parameter.path.size() - 1, VSTiInfo::MaximumGroups);
        qsizetype at = 0;
        for (qsizetype i = 0; i < groups; ++i) {
            at = groupBelow(at, XmlDocument::writable(parameter.path.at(i)));
        }
        QDomElement element = m_document->createElement(TagParameter);
        element.setAttribute(
            AttributeParameterID,
            XmlDocument::writable(EditorData::translateTremoteparam2Vdremoteparam(parameter.id)));
        element.setAttribute(AttributeParameterName,
                             XmlDocument::writable(parameter.path.constLast()));
        m_groups[at].appendChild(element);
    }

private:
    qsizetype groupBelow(qsizetype parent, const QString &name)
    {
        const auto key = qMakePair(parent, name);
        const auto found = m_indices.constFind(key);
        if (found != m_indices.cend()) {
            return *found;
        }
        QDomElement group = m_document->createElement(TagParameterGroup);
        group.setAttribute(AttributeParameterGroupName, name);
        m_groups[parent].appendChild(group);
        m_groups.append(group);
        m_indices.insert(key, m_groups.size() - 1);
        return m_groups.size() - 1;
    }

    QDomDocument *m_document;
    QList<QDomElement> m_groups; // the first is the instrument
    QHash<QPair<qsizetype, QString>, qsizetype> m_indices;
};

QDomElement instrumentElement(QDomDocument *document, const QString &name,
                              const VSTiInfo::VSTiFileInfo &info,
                              const QList<VSTiInfo::Parameter> &parameters)
{
    // The control groups have no file, and QFileInfo none to be asked about.
    const QString path =
        info.fileInfo.filePath().isEmpty() ? QString() : info.fileInfo.absoluteFilePath();
    // Not the one that is kept, which remembers what it once saw.
    const QFileInfo now(path);
    QDomElement element = document->createElement(TagVSTi);
    element.setAttribute(AttributeVSTiName, XmlDocument::writable(name));
    element.setAttribute(AttributeVSTiPath, XmlDocument::writable(path));
    element.setAttribute(AttributeVSTiTime, timeOf(now));
    element.setAttribute(AttributeVSTiSize, QString::number(getVSTiFileSize(now)));
    element.setAttribute(AttributeVSTiVersion, QString::number(info.version));
    TreeWriter writer(document, element);
    for (const VSTiInfo::Parameter &parameter : parameters) {
        writer.append(parameter);
    }
    return element;
}

bool replaceFile(const QString &path, const QDomDocument &document)
{
    QByteArray text;
    QTextStream stream(&text);
    document.save(stream, Indent);
    stream.flush();
    // Nobody makes the folder before something is to be written there.
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile target(path);
    return target.open(QIODevice::WriteOnly) && target.write(text) == text.size() &&
           target.commit();
}

} // namespace

void VSTiInfo::createParameterListFromPreset(QFile &file)
{
    QDomDocument document;
    if (!PluginXml::parseFile(file, &document) ||
        !isDocument(document, PresetDocType, TagVSTiList)) {
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

void VSTiInfo::createParameterListFromDatabase(QFile &file)
{
    QDomDocument document;
    if (!PluginXml::parseFile(file, &document) ||
        !isDocument(document, DatabaseDocType, TagDAWList)) {
        return;
    }
    const QDomElement section = sectionOf(document.documentElement(), currentDAW);
    m_namesLeft = PluginXml::MaximumNames;
    for (QDomElement vsti = section.firstChildElement(TagVSTi); !vsti.isNull();
         vsti = vsti.nextSiblingElement(TagVSTi)) {
        const QString name = vsti.attribute(AttributeVSTiName);
        const QString path = vsti.attribute(AttributeVSTiPath);
        const QString time = vsti.attribute(AttributeVSTiTime);
        const QString size = vsti.attribute(AttributeVSTiSize);
        const int version = vsti.attribute(AttributeVSTiVersion).toInt();
        if (name.isEmpty() || path.isEmpty() || time.isEmpty() || size.isEmpty() ||
            parameterMaps.contains(name)) {
            continue;
        }
        // The size comes last: it is a walk through the whole bundle.
        const QFileInfo fileInfo(path);
        const bool isUpToDate = (version == 2 || version == 3) && fileInfo.exists() &&
                                timeOf(fileInfo) == time &&
                                getVSTiFileSize(fileInfo) == size.toLongLong();
        if (!isUpToDate) {
            continue;
        }
        QList<Parameter> list;
        appendParameterTree(&list, name, vsti, {});
        if (m_namesLeft < 0) {
            // Half a list would pass for the whole one. The next scan asks the plug-in again.
            parameterMaps.remove(name);
            return;
        }
        parameterLists.insert(name, list);
        fileInfos.insert(name, {fileInfo, version});
    }
}

bool VSTiInfo::writeParameterListDatabase(QFile &file) const
{
    QDomDocument document;
    QDomElement root;
    QDomElement oldSection;
    if (!PluginXml::parseFile(file, &document)) {
        document = QDomDocument(DatabaseDocType);
    } else if (isDocument(document, DatabaseDocType, TagDAWList)) {
        root = document.documentElement();
        oldSection = sectionOf(root, currentDAW);
    }
    if (root.isNull()) {
        root = document.createElement(TagDAWList);
        document.appendChild(root);
    }
    QDomElement section = document.createElement(TagDAW);
    section.setAttribute(AttributeDAWName, XmlDocument::writable(currentDAW));
    if (oldSection.isNull()) {
        root.appendChild(section);
    } else {
        root.replaceChild(section, oldSection);
    }

    // An instrument that would make the file one that is refused when it is read again is left out:
    // the next scan asks it anew, and the others keep their places.
    PluginXml::Size size = PluginXml::sizeOf(document, 0);
    for (auto entry = fileInfos.cbegin(); entry != fileInfos.cend(); ++entry) {
        const QList<Parameter> parameters = parameterLists.value(entry.key());
        if (size.elements + parameters.size() >= PluginXml::Limits.elements) {
            continue;
        }
        const QDomElement element =
            instrumentElement(&document, entry.key(), entry.value(), parameters);
        PluginXml::Size sizeWithIt = size;
        sizeWithIt += PluginXml::sizeOf(element, InstrumentIndent);
        if (sizeWithIt.fits()) {
            section.appendChild(element);
            size = sizeWithIt;
        }
    }
    return replaceFile(file.fileName(), document);
}

void VSTiInfo::appendParameterTree(QList<Parameter> *list, const QString &vstiName,
                                   const QDomElement &element, const QStringList &prefix)
{
    QHash<QString, QStringList> map = parameterMaps.take(vstiName);
    TreeReader(list, &map, &m_namesLeft).read(element, prefix);
    // A name without parameters stays unknown here, so that another list can still come for it.
    if (!map.isEmpty()) {
        parameterMaps.insert(vstiName, map);
    }
}

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
