// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/ParamAddress.h"

#include "memory/AddressTransTable.h"

#include <QtCore/QDebug>

ParamAddress::ParamAddress(AddressTransTable *table)
    : addressTransTable(table)
{
}

ParamAddress::ParamAddress(int newBank, int newTemplate, int newController, int newParameter)
{
    setParamAddress(newBank, newTemplate, newController, newParameter);
}

void ParamAddress::initParamAddress()
{
    bank = None;
    template_ = None;
    controller = None;
    parameter = None;
}

void ParamAddress::setParamAddress(int newBank, int newTemplate, int newController,
                                   int newParameter)
{
    const auto replace = [](int &field, int value) {
        if (value != None) {
            field = value;
        }
    };
    replace(bank, newBank);
    replace(template_, newTemplate);
    replace(controller, newController);
    replace(parameter, newParameter);
}

void ParamAddress::setParamAddress(int newBank, int newTemplate, const char *name, int newParameter)
{
    setParamAddress(newBank, newTemplate, None, newParameter);
    if (name == nullptr) {
        return;
    }
    const QStringList parts = splitNamedAdr(name);
    // A name without a part, such as "/", names nothing.
    controller = parts.isEmpty() ? None : String2ParamAdr(parts.first());
    parameter = parts.isEmpty() ? None : String2ParamAdr(parts.last());
}

void ParamAddress::setParamAddress(int newBank, int newTemplate, int newController,
                                   const char *name)
{
    setParamAddress(newBank, newTemplate, newController, None);
    if (name == nullptr) {
        return;
    }
    const int number = String2ParamAdr(name);
    parameter = number;

    const QString word = QString::fromLocal8Bit(name);
    for (const char *global :
         {"fileName", "isOnline", "bankEditFlag", "fileEditFlag", "libraryEditFlag"}) {
        if (word == QLatin1String(global)) {
            bank = number;
            template_ = None;
            controller = None;
            parameter = None;
            return;
        }
    }
    for (const char *templateLevel : {"templateName", "controlType", "vstiName"}) {
        if (word == QLatin1String(templateLevel)) {
            controller = number;
            parameter = None;
            return;
        }
    }
    for (const char *bankLevel : {"bankAvailableFlag", "currentTemplateNumber"}) {
        if (word == QLatin1String(bankLevel)) {
            template_ = number;
            controller = None;
            parameter = None;
            return;
        }
    }
}

int ParamAddress::getParamAddress(int index) const
{
    switch (index) {
    case 0:
        return bank;
    case 1:
        return template_;
    case 2:
        return controller;
    case 3:
        return parameter;
    default:
        return None;
    }
}

bool ParamAddress::operator==(const ParamAddress &other) const
{
    return bank == other.bank && template_ == other.template_ && controller == other.controller &&
           parameter == other.parameter;
}

void ParamAddress::PrintParamAddress() const
{
    qDebug("ParamAddress is (%d, %d, %d, %d)\n", bank, template_, controller, parameter);
}

QStringList ParamAddress::splitNamedAdr(const char *name)
{
    return QString::fromLocal8Bit(name).split(QLatin1Char('/'), Qt::SkipEmptyParts);
}

int ParamAddress::String2ParamAdr(const QString &name) const
{
    if (addressTransTable == nullptr) {
        return None;
    }
    return addressTransTable->getTable().value(name, None);
}

int ParamAddress::String2ParamAdr(const char *name) const
{
    return String2ParamAdr(QString::fromLocal8Bit(name));
}

bool ParamAddress::isStringParamAdr() const
{
    return isTemplateNameAdr() || isVSTiNameAdr() || isDisplayNameAdr() || isRemoteTagIDAdr();
}

bool ParamAddress::isNumericParamAdr() const
{
    return isCCNumAdr() || isDispFormAdr() || isControlTypeAdr() || isBankAvailFlagAdr() ||
           isCurrentTemplateNumAdr() || isBankEditFlagAdr() || isFileEditFlagAdr() ||
           isOnlineStateAdr();
}

bool ParamAddress::isParamUsedInOnlyEditor() const
{
    return isBankEditFlagAdr() || isFileNameAdr() || isFileEditFlagAdr() || isOnlineStateAdr() ||
           isBankAvailFlagAdr();
}
