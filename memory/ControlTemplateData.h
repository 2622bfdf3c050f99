// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ControllerData.h"
#include "memory/NumericParameter.h"
#include "memory/ParamAddress.h"

#include <QtCore/QString>

#include <array>

// One template: what the twelve knobs do for one software instrument. Names have no limit at this
// level; the control type is 0 or 1. Setters return true only on a change, where not told
// otherwise.
class ControlTemplateData
{
public:
    ControlTemplateData() = default;

    // By address: the bank and template fields take no part. An address that names nothing here
    // gives false.
    bool setParam(const ParamAddress &address, int value);
    bool setParam(const ParamAddress &address, const QString &text);

    bool setTemplateName(const QString &name);
    bool setVSTiName(const QString &name);
    // Replaces the whole parameter, with its bounds, if the current values differ.
    bool setCtrlType(const NumericParameter &type);
    // True whether or not the knob differs; false for an index outside 0 to 11.
    bool setController(const ControllerData &controller, int index);

    // A harmless default for an address that names nothing here.
    const NumericParameter &getParam(const ParamAddress &address) const;
    QString getParamQString(const ParamAddress &address) const;

    // Of a template that lives on, a reference; of a temporary one, the text itself.
    const QString &getTemplateName() const & { return templateName; }
    QString getTemplateName() && { return templateName; }
    const QString &getVSTiName() const & { return vstiName; }
    QString getVSTiName() && { return vstiName; }
    NumericParameter getCtrlType() const { return ctrlType; }
    // Without a copy; null for an index outside 0 to 11.
    const ControllerData *AccessController(int index) const
    {
        return isValidControllerIndex(index) ? &controllers[static_cast<std::size_t>(index)]
                                             : nullptr;
    }
    // A default knob for an index outside 0 to 11.
    ControllerData getController(int index) const;

    static bool isValidControllerIndex(int index)
    {
        return index >= 0 && index < ParamAddress::KnobCount;
    }

    // The knobs are compared in their order.
    bool operator==(const ControlTemplateData &other) const = default;

private:
    QString templateName;
    NumericParameter ctrlType{0, 1, 0};
    std::array<ControllerData, ParamAddress::KnobCount> controllers;
    QString vstiName;
};
