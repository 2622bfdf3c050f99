// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Document.h"

#include "cli/FileAddress.h"
#include "memory/RemoteMemAPI.h"
#include "protocol/SysExBytes.h"

namespace
{

QString carriedText(const QString &text, int width)
{
    QString carried;
    for (const QChar character : text.left(width)) {
        carried.append(QLatin1Char(static_cast<char>(SysEx::dataByte(character))));
    }
    while (carried.endsWith(QLatin1Char(' '))) {
        carried.chop(1);
    }
    return carried;
}

void carry(BankData *bank)
{
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        for (const FileField &field : FileField::ofTemplate()) {
            const ParamAddress place(0, number, field.number, -1);
            if (field.isText) {
                bank->setParam(place, carriedText(bank->getParamQString(place), field.limit));
            }
        }
        for (int knob = 0; knob < ParamAddress::KnobCount; ++knob) {
            for (const FileField &field : FileField::ofKnob()) {
                const ParamAddress place(0, number, knob, field.number);
                if (field.isText) {
                    bank->setParam(place, carriedText(bank->getParamQString(place), field.limit));
                }
            }
        }
    }
}

QString shown(const FileAddress &address, const BankData &bank)
{
    const QString value = address.value(bank);
    return address.isText() ? QLatin1Char('"') + value + QLatin1Char('"') : value;
}

void compare(const FileAddress &address, const BankData &a, const BankData &b, QStringList *lines)
{
    if (address.value(a) != address.value(b)) {
        lines->append(QStringLiteral("%1: %2 -> %3")
                          .arg(address.name(), shown(address, a), shown(address, b)));
    }
}

void compareBanks(int bank, const BankData &a, const BankData &b, QStringList *lines)
{
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        if (a.getTemplate(number) == b.getTemplate(number)) {
            continue;
        }
        for (const FileAddress &address : FileAddress::ofTemplate(bank, number)) {
            compare(address, a, b, lines);
        }
    }
}

} // namespace

Document Document::of(const RemoteMemAPI &api, int editBank, int storedBank)
{
    Document document{api.getBank(editBank), api.getBank(storedBank)};
    const ParamAddress current(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1);
    document.edit.setParam(current, api.getParam(current).getCurrentValue());
    return document;
}

Document Document::asCarried() const
{
    Document carried = *this;
    carry(&carried.edit);
    carry(&carried.stored);
    return carried;
}

QStringList differences(const Document &a, const Document &b, DocumentParts parts)
{
    QStringList lines;
    compare(FileAddress::currentTemplateNumber(), a.edit, b.edit, &lines);
    compareBanks(Bank::EditBuffer, a.edit, b.edit, &lines);
    if (parts == DocumentParts::All) {
        compareBanks(Bank::Stored, a.stored, b.stored, &lines);
    }
    return lines;
}
