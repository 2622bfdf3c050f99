// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ParamAddress.h"

#include <QtCore/QString>

#include <memory>

class MemController;
class RemoteMemAPI;

// Base of bound objects: owns the controller and forwards to it. Thread: GUI. Without a controller
// every call does nothing, or gives 0, a null string or null.
class MemControllerHelper
{
public:
    MemControllerHelper();
    virtual ~MemControllerHelper();
    MemControllerHelper(const MemControllerHelper &) = delete;
    MemControllerHelper &operator=(const MemControllerHelper &) = delete;

    virtual void assign() = 0;
    virtual void postInitialize() {}

    MemController *getController() const { return controller.get(); }
    // Takes it over and deletes the old one; null is ignored.
    void setController(MemController *newController);

    bool setParam(long value);
    bool setParam(const QString &text);
    int getParam() const; // the current value
    QString getParamQString() const;
    int getParamMaxValue() const;
    int getParamMinValue() const;

    void setParamAddressNumeric(int bank, int template_, int controllerNumber, int parameter);
    void setParamAddress(int bank, int template_, int controllerNumber, const char *name);
    void setParamAddress(int bank, int template_, const char *name);
    // Change one number of the address.
    void setBankAdr(int bank);
    void setTemplateAdr(int template_);
    void setKnobAdr(int knob);

    ParamAddress *getParamAddress() const;
    RemoteMemAPI *getMemapiOfController() const;

protected:
    // Deletes the controller; the caller has unregistered the observer.
    void dropController();

private:
    std::unique_ptr<MemController> controller;
};
