// SPDX-License-Identifier: GPL-3.0-or-later
#include "vsti/ParameterDescription.h"

#include "app/Constants.h"

#include <QtXml/QDomDocument>

namespace
{

// The contents of a remote identifier of a plug-in's parameter 0.
constexpr quint32 FirstParameter = 4201;
constexpr int IdDigits = 9;

// About as many bytes as are read and built. Hundreds of thousands of parameters take a tenth.
constexpr qint64 MaximumWork = 256 * 1024 * 1024;
constexpr qint64 WorkOfElement = 32;
constexpr qint64 WorkOfName = 24;
constexpr qint64 WorkOfKey = 64;

// All arithmetic is unsigned, since overflow is then defined.
quint32 valueOfUnit(QStringView text, const ParameterDescription::Keys &keys)
{
    const QString unit = text.trimmed().toString();
    const auto key = keys.constFind(unit);
    return static_cast<quint32>(key != keys.cend() ? *key : unit.toInt());
}

// a-b-c is a-(b-c): each minus turns the sign of all that follows.
quint32 valueOfSum(QStringView text, const ParameterDescription::Keys &keys)
{
    quint32 sum = 0;
    bool isNegative = false;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text.at(i) != u'+' && text.at(i) != u'-') {
            continue;
        }
        const quint32 value = valueOfUnit(text.sliced(start, i - start), keys);
        sum = isNegative ? sum - value : sum + value;
        if (i < text.size() && text.at(i) == u'-') {
            isNegative = !isNegative;
        }
        start = i + 1;
    }
    return sum;
}

} // namespace

ParameterDescription::ParameterDescription(QList<VSTiInfo::Parameter> *list,
                                           QHash<QString, QStringList> *map)
    : m_list(list)
    , m_map(map)
    , m_workLeft(MaximumWork)
{
}

void ParameterDescription::appendTree(const QDomElement &element, const Keys &keys,
                                      const QStringList &prefix)
{
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (!spend(WorkOfElement)) {
            return;
        }
        const QString tag = child.tagName();
        if (tag == TagParam) {
            appendParameter(child, keys, prefix);
        } else if (tag == TagGroup && child.hasAttribute(AttributeGroupName) &&
                   prefix.size() < VSTiInfo::MaximumGroups &&
                   spend(WorkOfName * (prefix.size() + 1))) {
            const QStringList path = prefix + QStringList(child.attribute(AttributeGroupName));
            const QString templateName = child.attribute(AttributeGroupTemplate);
            if (templateName.isEmpty()) {
                appendTree(child, keys, path);
            } else {
                appendTemplate(child, keys, path, templateName);
            }
        }
    }
}

void ParameterDescription::appendParameter(const QDomElement &element, const Keys &keys,
                                           const QStringList &prefix)
{
    const QString expression = element.attribute(AttributeParamID);
    if (expression.isEmpty() || !element.hasAttribute(AttributeParamName) ||
        !spend(expression.size())) {
        return;
    }
    const quint32 contents = static_cast<quint32>(valueOf(expression, keys)) + FirstParameter;
    const QString id = QString::number(contents, 16).rightJustified(IdDigits, QLatin1Char('0'));
    if (!m_map->contains(id) && spend(WorkOfName * (prefix.size() + 1))) {
        const QStringList path = prefix + QStringList(element.attribute(AttributeParamName));
        m_list->append({id, path});
        m_map->insert(id, path);
    }
}

void ParameterDescription::appendTemplate(const QDomElement &group, Keys keys,
                                          const QStringList &prefix, const QString &templateName)
{
    const QString values = group.attribute(AttributeGroupValues);
    if (!values.isEmpty() && !spend(values.size() + WorkOfKey * keys.size())) {
        return;
    }
    for (const QString &definition : values.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const qsizetype equals = definition.indexOf(QLatin1Char('='));
        const QString left = definition.left(equals).trimmed();
        const QString right = definition.mid(equals + 1).trimmed();
        if (equals >= 0 && !left.isEmpty() && !right.isEmpty()) {
            keys.insert(left, valueOf(right, keys));
        }
    }

    if (!m_hasTemplates) {
        m_hasTemplates = true;
        const QDomElement root = group.ownerDocument().documentElement();
        for (QDomElement candidate = root.firstChildElement(TagControlTemplate);
             !candidate.isNull(); candidate = candidate.nextSiblingElement(TagControlTemplate)) {
            const QString name = candidate.attribute(AttributeTemplateName);
            if (!m_templates.contains(name)) {
                m_templates.insert(name, candidate);
            }
        }
    }
    const auto found = m_templates.constFind(templateName);
    if (found != m_templates.cend() && !m_underWay.contains(templateName)) {
        m_underWay.insert(templateName);
        appendTree(*found, keys, prefix);
        m_underWay.remove(templateName);
    }
}

int ParameterDescription::valueOf(const QString &expression, const Keys &keys)
{
    quint32 product = 1;
    qsizetype start = 0;
    while (start >= 0) {
        const qsizetype end = expression.indexOf(QLatin1Char('*'), start);
        const qsizetype length = (end < 0 ? expression.size() : end) - start;
        product *= valueOfSum(QStringView(expression).sliced(start, length), keys);
        start = end < 0 ? -1 : end + 1;
    }
    return static_cast<int>(product);
}

bool ParameterDescription::spend(qint64 work)
{
    m_workLeft = m_workLeft < work ? 0 : m_workLeft - work;
    return m_workLeft > 0;
}
