// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// One bounded integer. Values outside the bounds are refused whole, never clamped. Every setter
// returns true only if its field really changed; further up that decides over notifications, edit
// flags and messages.
class NumericParameter
{
public:
    // A target of assignment, and the meaningless result of a failed read.
    NumericParameter() = default;
    // The current value becomes initial only if that lies within the bounds (inclusive).
    NumericParameter(int min, int max, int initial);

    bool setMaxValue(int value);
    bool setMinValue(int value);
    bool setInitialValue(int value);
    bool setCurrentValue(int value);

    int getCurrentValue() const { return currentValue; }
    int getMaxValue() const { return maxValue; }
    int getMinValue() const { return minValue; }
    int getInitialValue() const { return initialValue; }

    // Compares current values alone.
    bool operator==(const NumericParameter &other) const
    {
        return currentValue == other.currentValue;
    }

private:
    int currentValue = 0;
    int maxValue = 0;
    int minValue = 0;
    int initialValue = 0;
};
