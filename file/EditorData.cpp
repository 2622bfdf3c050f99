// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/EditorData.h"

#include "file/XmlDocument.h"
#include "memory/ControlTemplateData.h"
#include "memory/RemoteMemAPI.h"

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>
#include <limits>

const QString EditorData::FileVersion = QStringLiteral("1.0");
const QString EditorData::DocType = QStringLiteral("TARN_TERNRemoteEditorFile");
const QString EditorData::TagEditorBank = QStringLiteral("bank");
const QString EditorData::TagBankInfo = QStringLiteral("bankInfo");
const QString EditorData::TagCurrentTemplateNumber = QStringLiteral("templateNumber");
const QString EditorData::AttributeVersion = QStringLiteral("version");
const QString EditorData::AttributeTemplateNumber = QStringLiteral("number");
const QString EditorData::AttributeBankNumber = QStringLiteral("banknumber");
const QString EditorData::AttributeKnobNumber = QStringLiteral("number");

namespace
{

const QString TagBank = QStringLiteral("bank");
const QString TagTemplateNumber = QStringLiteral("template%1");
const QString TagEditBuffTemplateNumber = QStringLiteral("editBuffTemplate%1");
const QString TagTemplate = QStringLiteral("template");
const QString TagTemplateName = QStringLiteral("name");
const QString TagTemplateVSTiName = QStringLiteral("vstiname");
const QString TagTemplateControlType = QStringLiteral("controltype");
const QString TagController = QStringLiteral("controller");
const QString TagControllerDisplayName = QStringLiteral("displayname");
const QString TagControllerCCNumber = QStringLiteral("ccnumber");
const QString TagControllerDisplayFormat = QStringLiteral("displayformat");
const QString TagControllerRemoteNumber = QStringLiteral("remotenumber");

const std::array<QString, ParamAddress::KnobCount> k_tag_knobs = {
    QStringLiteral("knobA1"), QStringLiteral("knobB1"), QStringLiteral("knobC1"),
    QStringLiteral("knobD1"), QStringLiteral("knobA2"), QStringLiteral("knobB2"),
    QStringLiteral("knobC2"), QStringLiteral("knobD2"), QStringLiteral("knobA3"),
    QStringLiteral("knobB3"), QStringLiteral("knobC3"), QStringLiteral("knobD3")};

// T form: digits of the contents behind the type digit. Vd form likewise.
constexpr int HexDigits = 8;
constexpr int DecimalDigits = 10;

bool isRefused(const QDomElement &element, const QString &tag)
{
    return element.isNull() || (!tag.isEmpty() && element.tagName() != tag);
}

// 0 for a text that is no number. One too large for its type becomes the type's limit, so that the
// parameter's bounds refuse it, as they refuse any that is out of range.
long decimalNumber(const QString &text)
{
    bool isNumber = false;
    const qlonglong value = text.toLongLong(&isNumber);
    if (isNumber) {
        return static_cast<long>(value);
    }
    static const QRegularExpression digits(QStringLiteral("^\\s*([+-]?)[0-9]+\\s*$"));
    const QRegularExpressionMatch match = digits.match(text);
    if (!match.hasMatch()) {
        return 0;
    }
    return match.captured(1) == QLatin1String("-") ? std::numeric_limits<long>::min()
                                                   : std::numeric_limits<long>::max();
}

void appendValue(QDomDocument *document, QDomElement *parent, const QString &tag,
                 const QString &text)
{
    QDomElement element = document->createElement(tag);
    parent->appendChild(element);
    XmlDocument::appendText(document, &element, text);
}

} // namespace

// --- Memory to XML -------------------------------------------------------------------------------

void getStringParamToDomElement(RemoteMemAPI *api, QDomDocument *document, QDomElement *parent,
                                const QString &tag, int bank, int template_, int controller,
                                int parameter)
{
    appendValue(document, parent, tag,
                api->getParamQString(ParamAddress(bank, template_, controller, parameter)));
}

void getNumericParamToDomElement(RemoteMemAPI *api, QDomDocument *document, QDomElement *parent,
                                 const QString &tag, int bank, int template_, int controller,
                                 int parameter)
{
    const int value =
        api->getParam(ParamAddress(bank, template_, controller, parameter)).getCurrentValue();
    appendValue(document, parent, tag, QString::number(value));
}

QDomElement EditorData::getBankDomElement(RemoteMemAPI *api, QDomDocument *document, int bank,
                                          const QString &tag, bool withEditBuffer)
{
    // One moment of the memory, also while the instrument sends.
    const RecursiveMutexLocker lock(api->memoryMutex);
    QDomElement element = document->createElement(tag.isEmpty() ? TagBank : tag);
    const auto appendTemplates = [&](int source, const QString &numberedTag) {
        for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
            element.appendChild(
                getTemplateDomElement(api, document, source, number, numberedTag.arg(number + 1)));
        }
    };
    appendTemplates(bank, TagTemplateNumber);
    if (withEditBuffer) {
        appendTemplates(Bank::EditBuffer, TagEditBuffTemplateNumber);
        QDomElement info = document->createElement(TagBankInfo);
        getNumericParamToDomElement(api, document, &info, TagCurrentTemplateNumber,
                                    Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1);
        element.appendChild(info);
    }
    return element;
}

QDomElement EditorData::getTemplateDomElement(RemoteMemAPI *api, QDomDocument *document, int bank,
                                              int template_, const QString &tag)
{
    QDomElement element = document->createElement(tag.isEmpty() ? TagTemplate : tag);
    getStringParamToDomElement(api, document, &element, TagTemplateName, bank, template_,
                               ParamAddress::TemplateName, -1);
    getStringParamToDomElement(api, document, &element, TagTemplateVSTiName, bank, template_,
                               ParamAddress::VSTiName, -1);
    getNumericParamToDomElement(api, document, &element, TagTemplateControlType, bank, template_,
                                ParamAddress::ControlType, -1);
    for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
        element.appendChild(getControllerDomElement(api, document, bank, template_, knob,
                                                    k_tag_knobs[static_cast<std::size_t>(knob)]));
    }
    return element;
}

QDomElement EditorData::getControllerDomElement(RemoteMemAPI *api, QDomDocument *document, int bank,
                                                int template_, int controller, const QString &tag)
{
    QDomElement element = document->createElement(tag.isEmpty() ? TagController : tag);
    getStringParamToDomElement(api, document, &element, TagControllerDisplayName, bank, template_,
                               controller, ParamAddress::DisplayName);
    getNumericParamToDomElement(api, document, &element, TagControllerCCNumber, bank, template_,
                                controller, ParamAddress::CCNumber);
    getNumericParamToDomElement(api, document, &element, TagControllerDisplayFormat, bank,
                                template_, controller, ParamAddress::DisplayFormat);
    getStringParamToDomElement(api, document, &element, TagControllerRemoteNumber, bank, template_,
                               controller, ParamAddress::RemoteNumber);
    return element;
}

// --- XML to memory -------------------------------------------------------------------------------

bool setStringParamFromDomElement(RemoteMemAPI *api, const QDomElement &parent, const QString &,
                                  const QString &tag, int bank, int template_, int controller,
                                  int parameter)
{
    const QDomElement child = parent.firstChildElement(tag);
    if (child.isNull()) {
        return false;
    }
    const QString text = child.text();
    api->setParam(ParamAddress(bank, template_, controller, parameter),
                  tag == TagControllerRemoteNumber ? text.toLower() : text);
    return true;
}

bool EditorData::setNumericParamFromDomElement(RemoteMemAPI *api, const QDomElement &parent,
                                               const QString &, const QString &tag, int bank,
                                               int template_, int controller, int parameter)
{
    const QDomElement child = parent.firstChildElement(tag);
    if (child.isNull()) {
        return false;
    }
    api->setParam(ParamAddress(bank, template_, controller, parameter),
                  decimalNumber(child.text()));
    return true;
}

bool EditorData::setBankDomElement(RemoteMemAPI *api, const QDomElement &element, int bank,
                                   const QString &docType, bool fromEditBuffer, const QString &tag)
{
    if (isRefused(element, tag)) {
        return false;
    }
    if (docType != DocType) {
        return true;
    }
    const QString &numberedTag = fromEditBuffer ? TagEditBuffTemplateNumber : TagTemplateNumber;
    bool complete = true;
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        const QDomElement child = element.firstChildElement(numberedTag.arg(number + 1));
        complete = setTemplateDomElement(api, child, bank, number, docType, QString()) && complete;
    }
    return complete;
}

bool EditorData::setTemplateDomElement(RemoteMemAPI *api, const QDomElement &element, int bank,
                                       int template_, const QString &docType, const QString &tag)
{
    if (isRefused(element, tag)) {
        return false;
    }
    bool complete = setStringParamFromDomElement(api, element, docType, TagTemplateName, bank,
                                                 template_, ParamAddress::TemplateName, -1);
    complete = setStringParamFromDomElement(api, element, docType, TagTemplateVSTiName, bank,
                                            template_, ParamAddress::VSTiName, -1) &&
               complete;
    complete = setNumericParamFromDomElement(api, element, docType, TagTemplateControlType, bank,
                                             template_, ParamAddress::ControlType, -1) &&
               complete;
    for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
        const QDomElement child =
            element.firstChildElement(k_tag_knobs[static_cast<std::size_t>(knob)]);
        complete = setControllerDomElement(api, child, bank, template_, knob, docType, QString()) &&
                   complete;
    }
    return complete;
}

bool EditorData::setControllerDomElement(RemoteMemAPI *api, const QDomElement &element, int bank,
                                         int template_, int controller, const QString &docType,
                                         const QString &tag)
{
    if (isRefused(element, tag)) {
        return false;
    }
    bool complete =
        setStringParamFromDomElement(api, element, docType, TagControllerDisplayName, bank,
                                     template_, controller, ParamAddress::DisplayName);
    complete = setNumericParamFromDomElement(api, element, docType, TagControllerCCNumber, bank,
                                             template_, controller, ParamAddress::CCNumber) &&
               complete;
    complete =
        setNumericParamFromDomElement(api, element, docType, TagControllerDisplayFormat, bank,
                                      template_, controller, ParamAddress::DisplayFormat) &&
        complete;
    complete = setStringParamFromDomElement(api, element, docType, TagControllerRemoteNumber, bank,
                                            template_, controller, ParamAddress::RemoteNumber) &&
               complete;
    return complete;
}

// --- Checking before writing ---------------------------------------------------------------------

namespace
{

bool isTextWithin(const QDomElement &parent, const QString &tag, qsizetype longest)
{
    const QDomElement child = parent.firstChildElement(tag);
    return !child.isNull() && child.text().size() <= longest;
}

bool isNumberWithin(const QDomElement &parent, const QString &tag, const NumericParameter &bounds)
{
    bool isNumber = false;
    const int value = parent.firstChildElement(tag).text().toInt(&isNumber);
    return isNumber && value >= bounds.getMinValue() && value <= bounds.getMaxValue();
}

} // namespace

bool EditorData::isWholeTemplateElement(const QDomElement &element, const QString &tag)
{
    static const ControlTemplateData bounds;
    if (isRefused(element, tag) || element.firstChildElement(TagTemplateName).isNull() ||
        element.firstChildElement(TagTemplateVSTiName).isNull() ||
        !isNumberWithin(element, TagTemplateControlType, bounds.getCtrlType())) {
        return false;
    }
    return std::all_of(k_tag_knobs.begin(), k_tag_knobs.end(), [&element](const QString &knob) {
        return isWholeControllerElement(element.firstChildElement(knob), knob);
    });
}

bool EditorData::isWholeControllerElement(const QDomElement &element, const QString &tag)
{
    static const ControllerData bounds;
    return !isRefused(element, tag) &&
           isTextWithin(element, TagControllerDisplayName,
                        ControllerData::MaximumDisplayNameLength) &&
           isNumberWithin(element, TagControllerCCNumber, bounds.getCCNum()) &&
           isNumberWithin(element, TagControllerDisplayFormat, bounds.getDispFormat()) &&
           isTextWithin(element, TagControllerRemoteNumber,
                        ControllerData::MaximumRemoteTagIDLength);
}

// --- Remote identifiers --------------------------------------------------------------------------

QString EditorData::translateVdremoteparam2Tremoteparam(const QString &vd)
{
    const QString full = vd.rightJustified(DecimalDigits + 1, QLatin1Char('0'));
    const qulonglong contents = full.right(DecimalDigits).toULongLong();
    return full.left(1) + QString::number(contents, 16).rightJustified(HexDigits, QLatin1Char('0'));
}

QString EditorData::translateTremoteparam2Vdremoteparam(const QString &t)
{
    return t.left(1) + QString::number(getRemoteParamContentsFromTRemoteStringParam(t))
                           .rightJustified(DecimalDigits, QLatin1Char('0'));
}

unsigned EditorData::getRemoteParamContentsFromTRemoteStringParam(const QString &t)
{
    return t.right(HexDigits).toUInt(nullptr, 16);
}

unsigned EditorData::getRemoteParamTypeFromTRemoteStringParam(const QString &t)
{
    return t.left(1).toUInt(nullptr, 16);
}
