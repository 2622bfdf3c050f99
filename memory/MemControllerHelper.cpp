// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/MemControllerHelper.h"

#include "memory/MemController.h"

namespace
{
constexpr const char *NoName = nullptr;
}

MemControllerHelper::MemControllerHelper() = default;
MemControllerHelper::~MemControllerHelper() = default;

void MemControllerHelper::setController(MemController *newController)
{
    if (newController != nullptr && newController != controller.get()) {
        controller.reset(newController);
    }
}

void MemControllerHelper::dropController()
{
    controller.reset();
}

bool MemControllerHelper::setParam(long value)
{
    return controller != nullptr && controller->setParam(value);
}

bool MemControllerHelper::setParam(const QString &text)
{
    return controller != nullptr && controller->setParam(text);
}

int MemControllerHelper::getParam() const
{
    return controller != nullptr ? controller->getParam().getCurrentValue() : 0;
}

QString MemControllerHelper::getParamQString() const
{
    return controller != nullptr ? controller->getParamQString() : QString();
}

int MemControllerHelper::getParamMaxValue() const
{
    return controller != nullptr ? controller->getParam().getMaxValue() : 0;
}

int MemControllerHelper::getParamMinValue() const
{
    return controller != nullptr ? controller->getParam().getMinValue() : 0;
}

void MemControllerHelper::setParamAddressNumeric(int bank, int template_, int controllerNumber,
                                                 int parameter)
{
    if (controller != nullptr) {
        controller->setParamAddressNumeric(bank, template_, controllerNumber, parameter);
    }
}

void MemControllerHelper::setParamAddress(int bank, int template_, int controllerNumber,
                                          const char *name)
{
    if (controller != nullptr) {
        controller->setParamAddress(bank, template_, controllerNumber, name);
    }
}

void MemControllerHelper::setParamAddress(int bank, int template_, const char *name)
{
    if (controller != nullptr) {
        controller->setParamAddress(bank, template_, name);
    }
}

void MemControllerHelper::setBankAdr(int bank)
{
    setParamAddress(bank, ParamAddress::None, NoName);
}

void MemControllerHelper::setTemplateAdr(int template_)
{
    setParamAddress(ParamAddress::None, template_, NoName);
}

void MemControllerHelper::setKnobAdr(int knob)
{
    setParamAddress(ParamAddress::None, ParamAddress::None, knob, NoName);
}

ParamAddress *MemControllerHelper::getParamAddress() const
{
    return controller != nullptr ? controller->getParamAddress() : nullptr;
}

RemoteMemAPI *MemControllerHelper::getMemapiOfController() const
{
    return controller != nullptr ? controller->getMemAPI() : nullptr;
}
