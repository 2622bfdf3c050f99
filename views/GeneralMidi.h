// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

// The names of the control changes, by their number: in full, for choosing one, and in at most
// seven characters, which a cell of the LCD holds. Code that uses them allows a null entry, for a
// number without a name.
inline constexpr int ControlChangeCount = 128;
extern const std::array<const char *, ControlChangeCount> GeneralMidiCCName;
extern const std::array<const char *, ControlChangeCount> GeneralMidiDisplayName;
