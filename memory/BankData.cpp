// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/BankData.h"

BankData::BankData(int available)
    : templates(ParamAddress::TemplateCount)
    , bankAvailableFlag(0, 1, available)
{
}

bool BankData::setTemplate(const ControlTemplateData &source, int index)
{
    if (!isValidTemplateIndex(index)) {
        return false;
    }
    ControlTemplateData &place = templates[static_cast<std::size_t>(index)];
    if (place == source) {
        return false;
    }
    place = source;
    return true;
}

const ControlTemplateData &BankData::getTemplate(int index) const
{
    static const ControlTemplateData noTemplate;
    return isValidTemplateIndex(index) ? templates[static_cast<std::size_t>(index)] : noTemplate;
}

ControlTemplateData *BankData::AccessTemplate(const ParamAddress &address)
{
    const int index = address.getParamAddress(1);
    return isValidTemplateIndex(index) ? &templates[static_cast<std::size_t>(index)] : nullptr;
}

const ControlTemplateData *BankData::AccessTemplate(const ParamAddress &address) const
{
    const int index = address.getParamAddress(1);
    return isValidTemplateIndex(index) ? &templates[static_cast<std::size_t>(index)] : nullptr;
}

bool BankData::setParam(const ParamAddress &address, int value)
{
    if (address.isBankEditFlagAdr()) {
        return setEditFlag(value);
    }
    if (address.isBankAvailFlagAdr()) {
        return setBankAvailableFlag(value);
    }
    if (address.isCurrentTemplateNumAdr()) {
        return currentTemplateNumber.setCurrentValue(value);
    }
    ControlTemplateData *place = AccessTemplate(address);
    return place != nullptr && place->setParam(address, value);
}

bool BankData::setParam(const ParamAddress &address, const QString &text)
{
    if (!address.isBankParamAdr()) {
        return false;
    }
    ControlTemplateData *place = AccessTemplate(address);
    return place != nullptr && place->setParam(address, text);
}

const NumericParameter &BankData::getParam(const ParamAddress &address) const
{
    static const NumericParameter noParameter;
    if (address.isBankAvailFlagAdr()) {
        return bankAvailableFlag;
    }
    if (address.isBankEditFlagAdr()) {
        return editFlag;
    }
    if (address.isCurrentTemplateNumAdr()) {
        return currentTemplateNumber;
    }
    const ControlTemplateData *place = AccessTemplate(address);
    return place != nullptr ? place->getParam(address) : noParameter;
}

QString BankData::getParamQString(const ParamAddress &address) const
{
    const ControlTemplateData *place = AccessTemplate(address);
    return place != nullptr ? place->getParamQString(address) : QString();
}
