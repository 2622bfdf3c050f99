// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FileAddress.h"

#include "app/Constants.h"
#include "app/PlainText.h"
#include "file/XmlDocument.h"
#include "memory/BankData.h"
#include "memory/ControllerData.h"
#include "memory/RemoteMemAPI.h"

#include <algorithm>

namespace
{

// The memory takes longer names, but the instrument has no room for them.
constexpr int LongestTemplateName = 13;
constexpr int LongestVSTiName = 12;

const QString EditWord = QStringLiteral("edit");
const QString StoredWord = QStringLiteral("stored");
const QString RemoteNumberName = QStringLiteral("remoteNumber");
const QString CurrentTemplateWord = QStringLiteral("currentTemplateNumber");

QString bankWord(int bank)
{
    return bank == Bank::EditBuffer ? EditWord : StoredWord;
}

QString knobName(int knob)
{
    return QLatin1String(LCDSelectAddressUpper[knob]);
}

QString listOf(const QList<FileField> &fields)
{
    QStringList names;
    for (const FileField &field : fields) {
        names.append(field.name);
    }
    return names.join(QStringLiteral(", "));
}

const FileField *find(const QList<FileField> &fields, const QString &name)
{
    const auto found = std::find_if(fields.cbegin(), fields.cend(),
                                    [&](const FileField &field) { return field.name == name; });
    return found == fields.cend() ? nullptr : &*found;
}

// Digits alone: the conversion would take blanks and a plus sign, too.
bool isDigits(const QString &text)
{
    return !text.isEmpty() &&
           std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

bool isPlainNumber(const QString &text, int minimum, int maximum, int *value)
{
    bool isNumber = false;
    *value = text.toInt(&isNumber);
    return isDigits(text) && isNumber && *value >= minimum && *value <= maximum;
}

} // namespace

const QList<FileField> &FileField::ofTemplate()
{
    static const QList<FileField> fields = {
        {QStringLiteral("templateName"), ParamAddress::TemplateName, true, LongestTemplateName},
        {QStringLiteral("vstiName"), ParamAddress::VSTiName, true, LongestVSTiName},
        {QStringLiteral("controlType"), ParamAddress::ControlType, false, 1}};
    return fields;
}

const QList<FileField> &FileField::ofKnob()
{
    static const QList<FileField> fields = {
        {QStringLiteral("displayName"), ParamAddress::DisplayName, true,
         ControllerData::MaximumDisplayNameLength},
        {QStringLiteral("ccNumber"), ParamAddress::CCNumber, false, 127},
        {QStringLiteral("displayFormat"), ParamAddress::DisplayFormat, false, 1},
        {RemoteNumberName, ParamAddress::RemoteNumber, true,
         ControllerData::MaximumRemoteTagIDLength}};
    return fields;
}

FileAddress FileAddress::currentTemplateNumber()
{
    FileAddress address;
    address.m_address = ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1);
    address.m_field = {CurrentTemplateWord, -1, false, ParamAddress::TemplateCount - 1};
    address.m_countsFromOne = true;
    return address;
}

QList<FileAddress> FileAddress::ofTemplate(int bank, int template_)
{
    QList<FileAddress> addresses;
    const auto append = [&](int controller, int parameter, const FileField &field) {
        FileAddress address;
        address.m_address = ParamAddress(bank, template_, controller, parameter);
        address.m_field = field;
        addresses.append(address);
    };
    for (const FileField &field : FileField::ofTemplate()) {
        append(field.number, -1, field);
    }
    for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
        for (const FileField &field : FileField::ofKnob()) {
            append(knob, field.number, field);
        }
    }
    return addresses;
}

QString FileAddress::name() const
{
    const QString bank = bankWord(m_address.getParamAddress(0));
    if (m_countsFromOne) {
        return bank + QLatin1Char('/') + m_field.name;
    }
    const int knob = m_address.getParamAddress(2);
    return QStringLiteral("%1/%2/").arg(bank).arg(m_address.getParamAddress(1) + 1) +
           (m_address.isControllerAdr() ? knobName(knob) + QLatin1Char('/') : QString()) +
           m_field.name;
}

bool FileAddress::parse(const QString &text, FileAddress *address, QString *error)
{
    const auto fail = [&](const QString &why) {
        *error = QStringLiteral("\"%1\" is no address: %2").arg(text, why);
        return false;
    };
    const QStringList words = text.split(QLatin1Char('/'));
    const bool isEdit = words.first() == EditWord;
    if (!isEdit && words.first() != StoredWord) {
        return fail(QStringLiteral("it begins with \"edit\" or \"stored\"."));
    }
    if (words.size() == 2 && words.at(1) == CurrentTemplateWord) {
        if (!isEdit) {
            return fail(QStringLiteral("the current template belongs to \"edit\"."));
        }
        *address = currentTemplateNumber();
        return true;
    }
    int number = 0;
    if (words.size() < 2 || !isDigits(words.at(1))) {
        return fail(QStringLiteral("\"%1\" is followed by the number of a template%2.")
                        .arg(words.first(),
                             isEdit ? QStringLiteral(" or by \"%1\"").arg(CurrentTemplateWord)
                                    : QString()));
    }
    if (!isPlainNumber(words.at(1), 1, ParamAddress::TemplateCount, &number)) {
        return fail(QStringLiteral("templates are numbered from 1 to %1.")
                        .arg(ParamAddress::TemplateCount));
    }
    const int bank = isEdit ? Bank::EditBuffer : Bank::Stored;
    FileAddress found;
    if (words.size() == 3) {
        if (const FileField *field = find(FileField::ofTemplate(), words.at(2))) {
            found.m_address = ParamAddress(bank, number - 1, field->number, -1);
            found.m_field = *field;
            *address = found;
            return true;
        }
    } else if (words.size() == 4) {
        for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
            const FileField *field = find(FileField::ofKnob(), words.at(3));
            if (words.at(2) == knobName(knob) && field != nullptr) {
                found.m_address = ParamAddress(bank, number - 1, knob, field->number);
                found.m_field = *field;
                *address = found;
                return true;
            }
        }
    }
    return fail(QStringLiteral("a template has %1, and knobA1 to knobD3 with %2.")
                    .arg(listOf(FileField::ofTemplate()), listOf(FileField::ofKnob())));
}

QString FileAddress::value(const BankData &bank) const
{
    if (m_field.isText) {
        return bank.getParamQString(m_address);
    }
    return QString::number(bank.getParam(m_address).getCurrentValue() + (m_countsFromOne ? 1 : 0));
}

bool FileAddress::setValue(RemoteMemAPI *api, const QString &text, QString *error) const
{
    const auto fail = [&](const QString &why) {
        *error = QStringLiteral("\"%1\" is no value for %2: %3").arg(text, name(), why);
        return false;
    };
    if (m_field.isText) {
        // An identifier is kept in small letters, and of one letter these may be two.
        const bool isIdentifier = m_field.name == RemoteNumberName;
        const auto size = isIdentifier ? text.toLower().size() : text.size();
        if (size > m_field.limit) {
            return fail(QStringLiteral("it has %1 characters, and %2 is the most.")
                            .arg(size)
                            .arg(m_field.limit));
        }
        if (std::any_of(text.cbegin(), text.cend(), PlainText::isObeyed) ||
            XmlDocument::writable(text) != text) {
            return fail(QStringLiteral("it holds a character that can't be written."));
        }
        api->setParam(m_address, text);
        return true;
    }
    const int offset = m_countsFromOne ? 1 : 0;
    int number = 0;
    if (!isPlainNumber(text, offset, m_field.limit + offset, &number)) {
        return fail(QStringLiteral("it must be a whole number from %1 to %2.")
                        .arg(offset)
                        .arg(m_field.limit + offset));
    }
    api->setParam(m_address, number - offset);
    return true;
}
