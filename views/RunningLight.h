// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QLabel;
class QPixmap;

// The light that runs across a panel while something lasts of which no end is known.

inline constexpr int RunningLightPeriodMs = 50;

// Draws the light on the label at this step, 0 being the first: it slides in from the left, runs to
// the right edge, and starts again. Returns the step that follows. Thread: GUI.
[[nodiscard]] int drawRunningLight(QLabel *label, const QPixmap &light, int step);
