// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QColor>

// The colours of the artwork. Text colours stand beside the grounds that they are drawn on; every
// such pair has a contrast of at least 4.5 to 1, which a test computes from these constants.
namespace palette
{

constexpr QColor grey(int value, int alpha = 255)
{
    return {value, value, value, alpha};
}

// The window: body and lettering are those of the window's own palette, which Qt's widgets use.
inline constexpr QColor body = grey(204);
inline constexpr QColor ink = grey(55);
// Headings and what is secondary.
inline constexpr QColor quietInk = grey(76);
inline constexpr QColor plate = grey(212);
inline constexpr QColor light = grey(238);
inline constexpr QColor shade = grey(158);
inline constexpr QColor groove = grey(172);
inline constexpr QColor outline = grey(96);
inline constexpr QColor cabinetEdge = grey(40);

// The title strip of the window and of the dialogue boxes.
inline constexpr QColor strip = grey(58);
inline constexpr QColor stripLight = grey(92);
inline constexpr QColor stripShade = grey(34);
inline constexpr QColor stripInk = grey(224);
inline constexpr QColor stripQuietInk = grey(168);
inline constexpr QColor menu = grey(0);

// What is active. Nothing else in the window has a colour but the backlight.
inline constexpr QColor accent{0, 204, 0};
inline constexpr QColor accentCore{190, 255, 176};

// The display: ground, the cells that aren't selected, the selected one, and fields to type in.
inline constexpr QColor glass{190, 205, 192};
inline constexpr QColor glassEdge{150, 167, 154};
inline constexpr QColor cell{180, 196, 183};
inline constexpr QColor cellEdge{160, 178, 164};
inline constexpr QColor cellLifted{233, 243, 226};
inline constexpr QColor glassRule{163, 180, 167};
inline constexpr QColor field{220, 226, 218};
inline constexpr QColor bezel = grey(48);

// Keys: at rest and pressed, with their captions (ink and accent).
inline constexpr QColor keyTop = grey(234);
inline constexpr QColor keyBottom = grey(216);
inline constexpr QColor keyDown = grey(44);

// Lamps and captions behind which no light burns.
inline constexpr QColor lampOff = grey(66);
inline constexpr QColor window = grey(44);
inline constexpr QColor unlitInk{140, 152, 140};

// The dark lists.
inline constexpr QColor listGround = grey(55);
inline constexpr QColor listOdd = grey(71);
inline constexpr QColor listEven = grey(89);
inline constexpr QColor listInk = grey(182);

// What surrounds a dialogue box: the body, dimmed.
inline constexpr QColor dimmed = grey(118);

} // namespace palette
