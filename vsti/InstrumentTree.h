// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "vsti/PluginXml.h"
#include "vsti/VSTiInfo.h"

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QPair>

class QDomElement;
class QXmlStreamReader;
class QXmlStreamWriter;

// The groups and parameters of one instrument, as elements:
//
//   group name        nests
//   parameter id name the id: a type digit and ten decimal digits

// From a tree or a stream into an instrument's list and map, neither of which may be null. Of ids
// that repeat the first counts. namesLeft: how many more names the paths may hold; it turns
// negative when a parameter is left out for it.
class InstrumentTreeReader
{
public:
    InstrumentTreeReader(QList<VSTiInfo::Parameter> *list, QHash<QString, QStringList> *map,
                         qint64 *namesLeft);

    // The children of the element, with the prefix in front of every path.
    void read(const QDomElement &element, const QStringList &prefix);
    // The same of the element that the stream has just begun; the stream then stands at its end.
    void read(QXmlStreamReader *stream, const QStringList &prefix);

private:
    void append(const QString &writtenId, const QString &name, const QStringList &prefix);

    QList<VSTiInfo::Parameter> *m_list;
    QHash<QString, QStringList> *m_map;
    qint64 *m_namesLeft;
};

// From a list into a stream. A path's groups are made by whoever comes first.
class InstrumentTreeWriter
{
public:
    // indent: of the outermost groups and parameters, in levels.
    InstrumentTreeWriter(const QList<VSTiInfo::Parameter> &list, int indent);

    const PluginXml::Size &size() const { return m_size; }
    void write(QXmlStreamWriter *stream) const { writeChildren(stream, 0); }

private:
    struct Node
    {
        QString id; // null for a group
        QString name;
        QList<qsizetype> children;
    };

    qsizetype groupBelow(qsizetype parent, const QString &name, int indent);
    qsizetype appendNode(qsizetype parent, const Node &node, int indent);
    void writeChildren(QXmlStreamWriter *stream, qsizetype parent) const;

    QList<Node> m_nodes; // the first is the instrument
    QHash<QPair<qsizetype, QString>, qsizetype> m_groups;
    PluginXml::Size m_size;
};
