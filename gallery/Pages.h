// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

class CPopupList;
class CPopupTree;
class QMenu;
class QWidget;

// The gallery's pages. Each function makes one page with its size set, unparented; the caller owns
// it. Objects bound to the memory become live when the window walks over them. Thread: GUI.
namespace Pages
{

// The main window with its template page, live.
QWidget *templatePage();
// The main window, small.
QWidget *smallWindowPage();
// The main window with its library page.
QWidget *libraryPage();
// All panels that are shown over the views.
QWidget *panelsPage();
// Each picture of a control, in each of its states, and a live one beside them.
QWidget *controlsPage();
// Several controls on one parameter; each follows the others.
QWidget *boundPage();
// Lists of few and of many rows, marks, icons, trimming; scroll bars.
QWidget *listsPage();
// Buttons that open each popup and menu.
QWidget *popupsPage();
// What that page opens. The popups delete themselves when they close; the menu is its parent's.
CPopupList *popupList();
CPopupTree *popupTree();
QMenu *menu(QWidget *parent);
// The three fonts, with the program's own texts.
QWidget *textsPage();
// All pictures by name.
QWidget *artworkPage();

} // namespace Pages
