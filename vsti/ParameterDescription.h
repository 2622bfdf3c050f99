// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "vsti/VSTiInfo.h"

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtXml/QDomElement>

// Reads a description of parameters that a plug-in's maker wrote (".vstxml").
//
//   VSTParametersStructure
//     Param name id                  also in Group and Template
//     Group name [template values]   nests; with a template its contents come from there
//     Template name                  Groups and Params, at the top level only
//
// "values" defines keys for the template and all below it: "key=expression;key=expression". An id
// and a value are expressions over integers and keys, see valueOf(). The first parameter of an id
// and the first template of a name count.
//
// A description is hostile until read: a template is not expanded within itself, a group below the
// 252nd is left out with what it holds, and what templates within templates multiply to is cut off
// at a fixed amount of work. One object reads one document. Thread: any.
class ParameterDescription
{
public:
    using Keys = QHash<QString, int>;

    // Into both, neither of which may be null.
    ParameterDescription(QList<VSTiInfo::Parameter> *list, QHash<QString, QStringList> *map);

    // The children of the element, with the prefix in front of every path.
    void appendTree(const QDomElement &element, const Keys &keys, const QStringList &prefix);
    // The named template of the group's document, with the group's values as keys.
    void appendTemplate(const QDomElement &group, Keys keys, const QStringList &prefix,
                        const QString &templateName);

    // The value of an expression. The grammar is as makers have counted on: a product of sums, so
    // that 2+3*4 is 20, and a minus takes all that follows in its sum, so that 10-3-2 is 9. What is
    // neither a key nor a number counts as 0. The arithmetic wraps at 32 bits.
    static int valueOf(const QString &expression, const Keys &keys);

private:
    void appendParameter(const QDomElement &element, const Keys &keys, const QStringList &prefix);
    // False once nothing is left.
    bool spend(qint64 work);

    QList<VSTiInfo::Parameter> *m_list;
    QHash<QString, QStringList> *m_map;
    QHash<QString, QDomElement> m_templates;
    bool m_hasTemplates = false; // they are looked for when the first is asked for
    QSet<QString> m_underWay;    // templates being expanded
    qint64 m_workLeft;
};
