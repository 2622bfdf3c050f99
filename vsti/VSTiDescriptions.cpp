// SPDX-License-Identifier: GPL-3.0-or-later
// How a maker's description of parameters changes what VSTiInfo knows of a plug-in.
#include "vsti/VSTiInfo.h"

#include "app/Constants.h"
#include "vsti/ParameterDescription.h"
#include "vsti/PluginXml.h"

#include <QtCore/QFile>
#include <QtXml/QDomDocument>

void VSTiInfo::updateParameterListFromVSTXMLFile(QFile &file, const QString &vstiName, bool primary)
{
    QDomDocument document;
    if (PluginXml::parseFile(file, &document)) {
        updateParameterListFromVSTXMLDomDocument(document, vstiName, primary);
    }
}

void VSTiInfo::updateParameterListFromVSTXMLData(const QByteArray &data, const QString &vstiName,
                                                 bool primary)
{
    QDomDocument document;
    if (PluginXml::parseData(data, &document)) {
        updateParameterListFromVSTXMLDomDocument(document, vstiName, primary);
    }
}

void VSTiInfo::updateParameterListFromVSTXMLDomDocument(const QDomDocument &document,
                                                        const QString &vstiName, bool primary)
{
    const QDomElement root = document.documentElement();
    if (root.tagName() != TagVSTParametersStructure) {
        return;
    }
    QList<Parameter> described;
    QHash<QString, QStringList> describedMap;
    appendParameterTreeFromVSTXML(&described, &describedMap, root, {}, {});
    if (primary) {
        extendParameterList(described, vstiName);
    } else {
        refineParameterList(described, vstiName);
    }
}

void VSTiInfo::refineParameterList(const QList<Parameter> &described, const QString &vstiName)
{
    // Of a plug-in that is known by name only nothing can survive, and a preset may still come.
    const auto known = parameterMaps.constFind(vstiName);
    if (known == parameterMaps.cend()) {
        return;
    }
    QList<Parameter> list;
    QHash<QString, QStringList> map;
    const auto appendIfKnown = [&](const Parameter &parameter) {
        if (known->contains(parameter.id) && !map.contains(parameter.id)) {
            list.append(parameter);
            map.insert(parameter.id, parameter.path);
        }
    };
    // Hosts know the bypass switch, so the makers' descriptions don't tell of it.
    if (known->contains(BypassID)) {
        appendIfKnown({BypassID, known->value(BypassID)});
    }
    for (const Parameter &parameter : described) {
        appendIfKnown(parameter);
    }
    parameterLists.insert(vstiName, list);
    parameterMaps.insert(vstiName, map);
}

void VSTiInfo::extendParameterList(const QList<Parameter> &described, const QString &vstiName)
{
    if (described.isEmpty()) {
        return;
    }
    QList<Parameter> &list = parameterLists[vstiName];
    QHash<QString, QStringList> &map = parameterMaps[vstiName];
    QHash<QString, qsizetype> places;
    for (qsizetype i = list.size() - 1; i >= 0; --i) {
        places.insert(list.at(i).id, i);
    }
    for (const Parameter &parameter : described) {
        const auto place = places.constFind(parameter.id);
        if (place != places.cend()) {
            list[*place].path = parameter.path;
        } else {
            list.append(parameter);
        }
        map.insert(parameter.id, parameter.path);
    }
}

void VSTiInfo::appendParameterTreeFromVSTXML(QList<Parameter> *list,
                                             QHash<QString, QStringList> *map,
                                             const QDomElement &element,
                                             const QHash<QString, int> &keys,
                                             const QStringList &prefix)
{
    ParameterDescription(list, map).appendTree(element, keys, prefix);
}

void VSTiInfo::appendParameterTemplateFromVSTXML(
    QList<Parameter> *list, QHash<QString, QStringList> *map, const QDomElement &group,
    const QHash<QString, int> &keys, const QStringList &prefix, const QString &templateName)
{
    ParameterDescription(list, map).appendTemplate(group, keys, prefix, templateName);
}

int VSTiInfo::getIntValue(const QString &expression, const QHash<QString, int> &keys) const
{
    return ParameterDescription::valueOf(expression, keys);
}
