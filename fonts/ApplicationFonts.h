// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

// The program's own font families. Each is drawn pixel by pixel for one size, and is crisp there
// and at whole multiples of it, whatever hinting the system asks for. With letter spacing of a
// fraction of a pixel, ask for QFont::PreferNoHinting: under full hinting Qt rounds each advance
// before it adds the spacing, and a hole opens at every tenth letter.

// Labels, menus, editors and popups; 8 pixels. Line spacing 10 pixels.
inline constexpr QLatin1String FontFamilyQRL8("Corvan QRL 8");
// Template number, lists and messages; 10 pixels. Line spacing 12 pixels.
inline constexpr QLatin1String FontFamilyQRL10("Corvan QRL 10");
// Headings in the artwork; 8 pixels. Line spacing 10 pixels.
inline constexpr QLatin1String FontFamilyQRL8Expanded("Corvan QRL8 Expanded");

// Makes the three families known to QFont. Called once the QGuiApplication stands and before the
// style is set, since a widget that asks for an unknown family keeps what Qt put in its place. A
// second call only repeats the answer. False if the font database refused one of them; text then
// shows in a substitute of Qt's.
// Thread: GUI.
bool loadApplicationFonts();
