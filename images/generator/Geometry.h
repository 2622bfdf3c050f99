// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QRect>
#include <QtCore/QSize>

#include <array>

// Where the widgets lie, in pixels of the picture that lies under them. What the artwork draws for
// a widget (a well for a field, a socket for a lamp, a caption beside a button) is placed from here
// and from nowhere else, so that both stay in step. The forms hold the same numbers.

namespace mainwindow
{
inline constexpr QSize large(470, 465);
inline constexpr QSize small(470, 324);
inline constexpr QRect menu(79, 6, 97, 15);
inline constexpr QRect online(14, 36, 87, 7);
inline constexpr QPoint view(14, 48);
inline constexpr QPoint overlay(14, 31);
inline constexpr QRect closeButton(19, 6, 15, 15);
inline constexpr QRect minimizeButton(38, 6, 15, 15);
inline constexpr QRect onTopButton(57, 6, 15, 15);
inline constexpr QRect sizeButtonLarge(437, 455, 19, 10);
inline constexpr QRect sizeButtonSmall(437, 314, 19, 10);
// The dark strip with buttons, menus and the program's name.
inline constexpr int stripHeight = 27;
} // namespace mainwindow

// The knobs of a template stand in four columns and three rows, here and in the library.
struct KnobGrid
{
    std::array<int, 4> columns;
    std::array<int, 3> rows;
    QSize cell;

    constexpr QRect at(int column, int row) const
    {
        return {
            QPoint(columns[static_cast<std::size_t>(column)], rows[static_cast<std::size_t>(row)]),
            cell};
    }
};

namespace templateview
{
inline constexpr QSize size(442, 402);
inline constexpr int smallHeight = 261;
inline constexpr QRect fileName(63, 2, 234, 13);
inline constexpr QRect bankEditLamp(312, 4, 9, 9);
inline constexpr QRect fileEditLamp(325, 4, 9, 9);
inline constexpr QRect storeFlash(338, 1, 48, 16);
inline constexpr QRect storeButton(339, 2, 46, 14);
inline constexpr QRect libraryButton(390, 2, 46, 14);
inline constexpr QRect templateNumber(9, 27, 106, 14);
inline constexpr QRect templateName(118, 27, 135, 14);
inline constexpr QRect templateSpin(258, 24, 19, 19);
inline constexpr QRect templatePopup(278, 24, 19, 19);
inline constexpr QRect vstiName(340, 27, 73, 14);
inline constexpr QRect vstiPopup(417, 24, 19, 19);

inline constexpr QRect controllerPanel(0, 54, 442, 207);
inline constexpr QRect remoteRadio(13, 80, 19, 18);
inline constexpr QRect ccRadio(49, 80, 19, 18);
// Inside the view; the form tells them from the corner of the display's frame, which is 81, 94.
inline constexpr KnobGrid knobs{{82, 166, 250, 334}, {116, 165, 214}, {71, 23}};

inline constexpr QRect settingPanel(0, 266, 442, 136);
inline constexpr QRect remoteTab(8, 288, 38, 106);
inline constexpr QRect remoteParameter(54, 306, 146, 15);
inline constexpr QRect remotePopup(202, 304, 19, 18);
inline constexpr QRect ccTab(230, 288, 38, 106);
inline constexpr QRect ccNumber(278, 306, 44, 15);
inline constexpr QRect ccSpin(325, 304, 19, 18);
inline constexpr QRect ccPopup(413, 304, 19, 18);
inline constexpr QRect displayName(277, 340, 123, 15);
inline constexpr QRect formatPlain(325, 376, 19, 18);
inline constexpr QRect formatCentred(413, 376, 19, 18);
} // namespace templateview

namespace libraryview
{
inline constexpr QSize size(442, 402);
inline constexpr QRect okButton(339, 2, 46, 14);
inline constexpr QRect cancelButton(390, 2, 46, 14);
inline constexpr QRect fileName(10, 25, 153, 13);
inline constexpr QRect fileButton(168, 22, 19, 19);
// Lower than its widget, so that it stays clear of the list below.
inline constexpr QSize fileKey(19, 15);
inline constexpr QRect importButton(225, 25, 46, 14);
inline constexpr QRect importList(7, 43, 198, 185);
inline constexpr QRect importScroll(207, 40, 16, 191);
inline constexpr QRect templateList(225, 38, 198, 195);
inline constexpr QRect templateScroll(425, 40, 16, 191);
// Both lists show eleven rows from here on.
inline constexpr int firstRow = 43;
inline constexpr int rowHeight = 15;
inline constexpr int rowPitch = 17;
inline constexpr int visibleRows = 11;
inline constexpr QRect preview(0, 242, 442, 161);
inline constexpr QRect vsti(95, 263, 153, 13);
inline constexpr QRect tab(8, 262, 38, 132);
inline constexpr KnobGrid knobs{{104, 188, 272, 356}, {298, 334, 369}, {71, 21}};
} // namespace libraryview

namespace overlaypanel
{
inline constexpr QSize size(442, 419);
inline constexpr QRect closeButton(68, 95, 15, 15);
inline constexpr QSize button(51, 15);
inline constexpr int buttonRow = 287;
inline constexpr std::array buttonColumns{194, 249, 304};
inline constexpr QRect message(91, 190, 263, 14);
inline constexpr QRect port(92, 150, 239, 15);
inline constexpr QRect portPulldown(89, 149, 265, 18);
inline constexpr QRect daw(92, 198, 239, 15);
inline constexpr QRect dawPulldown(89, 197, 265, 18);
inline constexpr QRect runningLight(91, 214, 259, 10);
inline constexpr QRect runningMessage(91, 212, 263, 14);
inline constexpr QRect scannedFile(91, 232, 263, 12);
inline constexpr std::array aboutLines{170, 186, 202};
// The dialogue box stands around its close button as the window stands around its own.
inline constexpr QRect box(61, 89, 320, 228);
} // namespace overlaypanel
