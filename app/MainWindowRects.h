// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QPoint>
#include <QtCore/QRect>
#include <QtCore/QSize>

// The fixed layout of the main window, in pixels.
inline constexpr QSize EditorWindowLargeSize(470, 465);
inline constexpr QSize EditorWindowSmallSize(470, 324);
inline constexpr const char *EditorWindowLargePixmap = ":/images/trn_bak_1.png";
inline constexpr const char *EditorWindowSmallPixmap = ":/images/trn_bak_s.png";
inline constexpr QSize ViewMainStackLargeSize(442, 402);
inline constexpr QSize ViewMainStackSmallSize(442, 261);
inline constexpr QRect EditorWindowControlButtonLargeRect(437, 455, 19, 10);
inline constexpr QRect EditorWindowControlButtonSmallRect(437, 314, 19, 10);
inline constexpr QRect EditorMenuRect(79, 6, 97, 15);
// Where every panel stands.
inline constexpr QPoint EditorViewPos(14, 31);
