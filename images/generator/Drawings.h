// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QPainter;

// What the catalogue is made of. Each draws one slice of one picture with its corner at the origin;
// pictures of a single slice leave the category and the row aside.
namespace drawings
{

// Windows.cpp
void windowLarge(QPainter &painter, int category, int row);
void windowSmall(QPainter &painter, int category, int row);
void pointer(QPainter &painter, int category, int row);

// Views.cpp
void templateView(QPainter &painter, int category, int row);
void libraryView(QPainter &painter, int category, int row);
void selectedCell(QPainter &painter, int category, int row);
void tabRemote(QPainter &painter, int category, int row);
void tabCc(QPainter &painter, int category, int row);
void tabLibraryRemote(QPainter &painter, int category, int row);

// Panels.cpp
void panelAbout(QPainter &painter, int category, int row);
void panelSynchronisation(QPainter &painter, int category, int row);
void panelScan(QPainter &painter, int category, int row);
void panelSetup(QPainter &painter, int category, int row);
void panelSaveChange(QPainter &painter, int category, int row);
void panelExitAnyway(QPainter &painter, int category, int row);
void panelPortError(QPainter &painter, int category, int row);
void panelCaution(QPainter &painter, int category, int row);
void panelResetStored(QPainter &painter, int category, int row);
void panelResetOriginal(QPainter &painter, int category, int row);
void panelResetFactory(QPainter &painter, int category, int row);
void synchronisationError(QPainter &painter, int category, int row);

// Buttons.cpp
void windowClose(QPainter &painter, int category, int row);
void windowMinimize(QPainter &painter, int category, int row);
void windowOnTop(QPainter &painter, int category, int row);
void windowSize(QPainter &painter, int category, int row);
void store(QPainter &painter, int category, int row);
void library(QPainter &painter, int category, int row);
void libraryOk(QPainter &painter, int category, int row);
void libraryCancel(QPainter &painter, int category, int row);
void libraryImport(QPainter &painter, int category, int row);
void libraryFile(QPainter &painter, int category, int row);
void ok(QPainter &painter, int category, int row);
void cancel(QPainter &painter, int category, int row);
void yes(QPainter &painter, int category, int row);
void no(QPainter &painter, int category, int row);
void start(QPainter &painter, int category, int row);
void retry(QPainter &painter, int category, int row);
void spinLarge(QPainter &painter, int category, int row);
void spinSmall(QPainter &painter, int category, int row);
void popupLarge(QPainter &painter, int category, int row);
void popupSmall(QPainter &painter, int category, int row);
void pulldown(QPainter &painter, int category, int row);
void radioFormat(QPainter &painter, int category, int row);
void radioType(QPainter &painter, int category, int row);

// Lamps.cpp
void lampOnline(QPainter &painter, int category, int row);
void lampBankEdit(QPainter &painter, int category, int row);
void lampFileEdit(QPainter &painter, int category, int row);
void movingLight(QPainter &painter, int category, int row);
void storeGlow(QPainter &painter, int category, int row);

// The lamp of the window's upper left corner, in the coordinates of its picture; unlit it is part
// of the window's background.
void onlineLamp(QPainter &painter, bool lit);

} // namespace drawings
