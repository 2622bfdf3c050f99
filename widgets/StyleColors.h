// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QColor>

// The colours of what Qt draws: menu bar, menus, scroll bars, line edits and popups. The names
// ending in "Backgorund" are historical spellings.

inline constexpr QColor colorPaletteBase(153, 153, 153);
inline constexpr QColor colorPaletteText(24, 15, 2);
inline constexpr QColor colorPaletteHighlight(24, 15, 2);
inline constexpr QColor colorPaletteHighlightedText(0, 204, 0);
inline constexpr QColor colorPaletteFrame(255, 255, 255);

inline constexpr QColor colorScrollBarBackground(102, 102, 102);
inline constexpr QColor colorScrollBarForeground(24, 15, 2);
inline constexpr QColor colorListViewLine(24, 15, 2);

inline constexpr QColor colorMenuBarEnableBackgorund(0, 0, 0);
inline constexpr QColor colorMenuBarEnableText(220, 220, 220);
inline constexpr QColor colorMenuBarDisableBackgorund(0, 0, 0);
inline constexpr QColor colorMenuBarDisableText(102, 102, 102);
inline constexpr QColor colorMenuBarSelectBackground(0, 0, 0);
inline constexpr QColor colorMenuBarSelectText(0, 204, 0);

inline constexpr QColor colorMenuEnableBackground(153, 153, 153);
inline constexpr QColor colorMenuEnableText(24, 15, 2);
inline constexpr QColor colorMenuDisableBackground(153, 153, 153);
inline constexpr QColor colorMenuDisableText(102, 102, 102);
inline constexpr QColor colorMenuSunkenBackground(0, 0, 0);
inline constexpr QColor colorMenuSunkenText(0, 204, 0);
inline constexpr QColor colorMenuSelectBackground(24, 15, 2);
inline constexpr QColor colorMenuSelectText(0, 204, 0);
