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
#include "file/XmlDocument.h"

#include <QtCore/QFile>
#include <QtXml/QDomDocument>

namespace
{

// The deepest plug-in trees have some ten levels.
constexpr int MaximumDepth = 256;
// Room for hundreds of instruments with thousands of parameters each, for several DAWs. A text at
// these limits takes about a gigabyte for the moment that it is read.
constexpr qint64 MaximumBytes = 128 * 1024 * 1024;
constexpr int MaximumElements = 1000000;
constexpr XmlDocument::Limits FileLimits = {MaximumDepth, MaximumBytes, MaximumElements};
// A path holds the names of all its groups, so many parameters below many groups would take the
// square of what the text takes.
constexpr qint64 MaximumNames = 16 * 1024 * 1024;

// False for what is no file, cannot be read, or is not to be parsed.
bool parseFile(QFile &file, QDomDocument *document)
{
    // Opening a pipe would wait for a writer.
    if (!QFileInfo(file.fileName()).isFile() || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray text = file.read(MaximumBytes + 1);
    file.close();
    QString message;
    int line = 0;
    return XmlDocument::parse(text, document, &message, &line, FileLimits);
}

} // namespace

void VSTiInfo::createParameterListFromPreset(QFile &file)
{
    QDomDocument document;
    if (!parseFile(file, &document) || document.doctype().name() != PresetDocType ||
        document.documentElement().tagName() != TagVSTiList) {
        return;
    }
    m_namesLeft = MaximumNames;
    for (QDomElement vsti = document.documentElement().firstChildElement(TagVSTi); !vsti.isNull();
         vsti = vsti.nextSiblingElement(TagVSTi)) {
        const QString name = vsti.attribute(AttributeVSTiName);
        if (!name.isEmpty() && !parameterMaps.contains(name)) {
            QList<Parameter> list;
            appendParameterTree(&list, name, vsti, {});
            parameterLists.insert(name, list);
        }
    }
}

void VSTiInfo::createParameterListFromDatabase(QFile &) {}

bool VSTiInfo::writeParameterListDatabase(QFile &) const
{
    return false;
}

void VSTiInfo::appendParameterTree(QList<Parameter> *list, const QString &vstiName,
                                   const QDomElement &element, const QStringList &prefix)
{
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag == TagParameter) {
            const QString written = child.attribute(AttributeParameterID);
            if (written.isEmpty() || !child.hasAttribute(AttributeParameterName)) {
                continue;
            }
            const QString id = EditorData::translateVdremoteparam2Tremoteparam(written);
            const QStringList path = prefix + QStringList(child.attribute(AttributeParameterName));
            if (m_namesLeft < path.size()) {
                m_namesLeft = 0;
                return;
            }
            QHash<QString, QStringList> &map = parameterMaps[vstiName];
            if (!map.contains(id)) {
                list->append({id, path});
                map.insert(id, path);
                m_namesLeft -= path.size();
            }
        } else if (tag == TagParameterGroup && child.hasAttribute(AttributeParameterGroupName)) {
            appendParameterTree(list, vstiName, child,
                                prefix + QStringList(child.attribute(AttributeParameterGroupName)));
        }
    }
}

qint64 getVSTiFileSize(const QFileInfo &fileInfo)
{
    return fileInfo.size();
}
