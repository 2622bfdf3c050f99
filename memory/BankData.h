// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ControlTemplateData.h"
#include "memory/NumericParameter.h"
#include "memory/ParamAddress.h"

#include <vector>

// One bank of fifty templates, with its edit flag, its available flag and the number of the
// template that is being edited in it. Setters return true only on a change. A bad index is
// harmless everywhere: writes give false, reads a default object.
class BankData
{
public:
    // available: initial value of the available flag.
    explicit BankData(int available = 1);

    // Compares first; true if the place really changed.
    bool setTemplate(const ControlTemplateData &source, int index);
    const ControlTemplateData &getTemplate(int index) const;
    ControlTemplateData getCopiedTemplate(int index) const { return getTemplate(index); }
    // Null when the address names no template.
    ControlTemplateData *AccessTemplate(const ParamAddress &address);
    const ControlTemplateData *AccessTemplate(const ParamAddress &address) const;

    bool setParam(const ParamAddress &address, int value);
    bool setParam(const ParamAddress &address, const QString &text);
    const NumericParameter &getParam(const ParamAddress &address) const;
    QString getParamQString(const ParamAddress &address) const;

    // Whether the value changed; one outside 0 to 1 is refused.
    bool setEditFlag(int value) { return editFlag.setCurrentValue(value); }
    bool setBankAvailableFlag(int value) { return bankAvailableFlag.setCurrentValue(value); }
    const NumericParameter &getBankAvailableFlag() const { return bankAvailableFlag; }

    static bool isValidTemplateIndex(int index)
    {
        return index >= 0 && index < ParamAddress::TemplateCount;
    }

private:
    std::vector<ControlTemplateData> templates; // exactly 50
    NumericParameter editFlag{0, 1, 0};
    NumericParameter bankAvailableFlag;
    NumericParameter currentTemplateNumber{0, ParamAddress::TemplateCount - 1, 0};
};
