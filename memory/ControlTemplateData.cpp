// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/ControlTemplateData.h"

namespace
{

bool replace(QString &field, const QString &text)
{
    if (field == text) {
        return false;
    }
    field = text;
    return true;
}

std::size_t knobIndex(const ParamAddress &address)
{
    return static_cast<std::size_t>(address.getParamAddress(2));
}

const NumericParameter NoParameter;

} // namespace

bool ControlTemplateData::setParam(const ParamAddress &address, int value)
{
    if (address.isCCNumAdr()) {
        return address.isControllerAdr() && controllers[knobIndex(address)].setCCNum(value);
    }
    if (address.isDispFormAdr()) {
        return address.isControllerAdr() && controllers[knobIndex(address)].setDispFormat(value);
    }
    if (address.isControlTypeAdr()) {
        return ctrlType.setCurrentValue(value);
    }
    return false;
}

bool ControlTemplateData::setParam(const ParamAddress &address, const QString &text)
{
    if (address.isTemplateNameAdr()) {
        return setTemplateName(text);
    }
    if (address.isVSTiNameAdr()) {
        return setVSTiName(text);
    }
    if (address.isDisplayNameAdr() && address.isControllerAdr()) {
        return controllers[knobIndex(address)].setDisplayName(text);
    }
    if (address.isRemoteTagIDAdr() && address.isControllerAdr()) {
        return controllers[knobIndex(address)].setRemoteTagID(text);
    }
    return false;
}

bool ControlTemplateData::setTemplateName(const QString &name)
{
    return replace(templateName, name);
}

bool ControlTemplateData::setVSTiName(const QString &name)
{
    return replace(vstiName, name);
}

bool ControlTemplateData::setCtrlType(const NumericParameter &type)
{
    if (ctrlType == type) {
        return false;
    }
    ctrlType = type;
    return true;
}

bool ControlTemplateData::setController(const ControllerData &controller, int index)
{
    if (!isValidControllerIndex(index)) {
        return false;
    }
    controllers[static_cast<std::size_t>(index)] = controller;
    return true;
}

const NumericParameter &ControlTemplateData::getParam(const ParamAddress &address) const
{
    if (address.isControllerAdr()) {
        if (address.isCCNumAdr()) {
            return controllers[knobIndex(address)].getCCNum();
        }
        if (address.isDispFormAdr()) {
            return controllers[knobIndex(address)].getDispFormat();
        }
        return NoParameter;
    }
    return address.isControlTypeAdr() ? ctrlType : NoParameter;
}

QString ControlTemplateData::getParamQString(const ParamAddress &address) const
{
    if (address.isTemplateNameAdr()) {
        return templateName;
    }
    if (address.isVSTiNameAdr()) {
        return vstiName;
    }
    if (address.isControllerAdr()) {
        if (address.isDisplayNameAdr()) {
            return controllers[knobIndex(address)].getDisplayName();
        }
        if (address.isRemoteTagIDAdr()) {
            return controllers[knobIndex(address)].getRemoteTagID();
        }
    }
    return QString();
}

ControllerData ControlTemplateData::getController(int index) const
{
    return isValidControllerIndex(index) ? controllers[static_cast<std::size_t>(index)]
                                         : ControllerData();
}
