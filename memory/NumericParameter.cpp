// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/NumericParameter.h"

namespace
{

bool replace(int &field, int value)
{
    if (field == value) {
        return false;
    }
    field = value;
    return true;
}

} // namespace

NumericParameter::NumericParameter(int min, int max, int initial)
    : maxValue(max)
    , minValue(min)
    , initialValue(initial)
{
    setCurrentValue(initial);
}

bool NumericParameter::setMaxValue(int value)
{
    return replace(maxValue, value);
}

bool NumericParameter::setMinValue(int value)
{
    return replace(minValue, value);
}

bool NumericParameter::setInitialValue(int value)
{
    return replace(initialValue, value);
}

bool NumericParameter::setCurrentValue(int value)
{
    return value >= minValue && value <= maxValue && replace(currentValue, value);
}
