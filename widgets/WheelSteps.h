// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QtGlobal>

// Makes whole steps of the angles that a wheel turns by. A notch of a common wheel is 120; fine
// wheels and touchpads send parts of it, which are kept until they make a step.
class WheelSteps
{
public:
    static constexpr int Notch = 120;

    // angle: in eighths of a degree, above 0 away from the user. The steps that are due, in that
    // direction.
    int take(int angle)
    {
        m_rest += angle;
        const auto steps = static_cast<int>(m_rest / Notch);
        m_rest %= Notch;
        return steps;
    }

private:
    qint64 m_rest = 0;
};
