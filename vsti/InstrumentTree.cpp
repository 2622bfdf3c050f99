// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/InstrumentTree.h"

#include "app/Constants.h"
#include "file/EditorData.h"

#include <QtCore/QXmlStreamReader>
#include <QtCore/QXmlStreamWriter>
#include <QtXml/QDomElement>

#include <algorithm>

// --- Reading -------------------------------------------------------------------------------------

InstrumentTreeReader::InstrumentTreeReader(QList<VSTiInfo::Parameter> *list,
                                           QHash<QString, QStringList> *map, qint64 *namesLeft)
    : m_list(list)
    , m_map(map)
    , m_namesLeft(namesLeft)
{
}

void InstrumentTreeReader::read(const QDomElement &element, const QStringList &prefix)
{
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag == TagParameter && child.hasAttribute(AttributeParameterName)) {
            append(child.attribute(AttributeParameterID), child.attribute(AttributeParameterName),
                   prefix);
        } else if (tag == TagParameterGroup && child.hasAttribute(AttributeParameterGroupName)) {
            read(child, prefix + QStringList(child.attribute(AttributeParameterGroupName)));
        }
    }
}

void InstrumentTreeReader::read(QXmlStreamReader *stream, const QStringList &prefix)
{
    while (stream->readNextStartElement()) {
        const QStringView tag = stream->qualifiedName();
        const QXmlStreamAttributes attributes = stream->attributes();
        if (tag == TagParameterGroup && attributes.hasAttribute(AttributeParameterGroupName)) {
            read(stream,
                 prefix + QStringList(attributes.value(AttributeParameterGroupName).toString()));
            continue;
        }
        if (tag == TagParameter && attributes.hasAttribute(AttributeParameterName)) {
            append(attributes.value(AttributeParameterID).toString(),
                   attributes.value(AttributeParameterName).toString(), prefix);
        }
        stream->skipCurrentElement();
    }
}

void InstrumentTreeReader::append(const QString &writtenId, const QString &name,
                                  const QStringList &prefix)
{
    if (writtenId.isEmpty() || *m_namesLeft < 0) {
        return;
    }
    const QString id = EditorData::translateVdremoteparam2Tremoteparam(writtenId);
    if (m_map->contains(id)) {
        return;
    }
    *m_namesLeft -= prefix.size() + 1;
    if (*m_namesLeft >= 0) {
        const QStringList path = prefix + QStringList(name);
        m_list->append({id, path});
        m_map->insert(id, path);
    }
}

// --- Writing -------------------------------------------------------------------------------------

InstrumentTreeWriter::InstrumentTreeWriter(const QList<VSTiInfo::Parameter> &list, int indent)
{
    m_nodes.append(Node());
    for (const VSTiInfo::Parameter &parameter : list) {
        const int groups = static_cast<int>(
            std::min<qsizetype>(parameter.path.size() - 1, VSTiInfo::MaximumGroups));
        qsizetype parent = 0;
        for (int i = 0; i < groups; ++i) {
            parent = groupBelow(parent, XmlDocument::writable(parameter.path.at(i)), indent + i);
        }
        const QString id = EditorData::translateTremoteparam2Vdremoteparam(parameter.id);
        appendNode(
            parent,
            {XmlDocument::writable(id), XmlDocument::writable(parameter.path.constLast()), {}},
            indent + groups);
    }
}

qsizetype InstrumentTreeWriter::groupBelow(qsizetype parent, const QString &name, int indent)
{
    const auto key = qMakePair(parent, name);
    const auto found = m_groups.constFind(key);
    if (found != m_groups.cend()) {
        return *found;
    }
    const qsizetype group = appendNode(parent, {QString(), name, {}}, indent);
    m_groups.insert(key, group);
    return group;
}

qsizetype InstrumentTreeWriter::appendNode(qsizetype parent, const Node &node, int indent)
{
    m_nodes[parent].children.append(m_nodes.size());
    m_nodes.append(node);
    m_size.addElement(node.id.isNull() ? TagParameterGroup : TagParameter, indent);
    m_size.addAttribute(AttributeParameterName, node.name);
    if (!node.id.isNull()) {
        m_size.addAttribute(AttributeParameterID, node.id);
    }
    return m_nodes.size() - 1;
}

void InstrumentTreeWriter::writeChildren(QXmlStreamWriter *stream, qsizetype parent) const
{
    for (const qsizetype child : m_nodes.at(parent).children) {
        const Node &node = m_nodes.at(child);
        if (node.id.isNull()) {
            stream->writeStartElement(TagParameterGroup);
            stream->writeAttribute(AttributeParameterGroupName, node.name);
            writeChildren(stream, child);
            stream->writeEndElement();
        } else {
            stream->writeEmptyElement(TagParameter);
            stream->writeAttribute(AttributeParameterID, node.id);
            stream->writeAttribute(AttributeParameterName, node.name);
        }
    }
}
