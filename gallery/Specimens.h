// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QRect>
#include <QtCore/QString>
#include <QtGui/QPixmap>

class CFrame;
class CListView;
class COnOffButton;
class CRadioButton;
class CSpinButton;
class CText;
class QLabel;
class QMenu;
class QMenuBar;
class QScrollBar;
class QWidget;

// The gallery's ways of making one control of each kind. Every widget made here is a child of the
// parent given, and so owned by it. Thread: GUI.
namespace Specimens
{

// ":/images/NAME.png" at the scale of the screen.
QPixmap image(const QString &name);

// What a picture means to one who doesn't see it, or not what it is: accessible name and tool tip.
void say(QWidget *widget, const QString &says);

// A button whose picture has the two rows off and on. Here and below, says is said of the picture.
COnOffButton *button(QWidget *parent, const QRect &place, const QString &imageName,
                     const QString &says);
CRadioButton *radio(QWidget *parent, const QRect &place, const QString &imageName,
                    const QString &says);
CSpinButton *spin(QWidget *parent, const QRect &place, const QString &imageName,
                  const QString &says);
CText *text(QWidget *parent, const QRect &place, const QString &words,
            Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter);
CFrame *frame(QWidget *parent, const QRect &place, const QString &imageName = {});
// The well that an editor lies in, as the backgrounds of the views have it. Make it before the
// editor.
void field(QWidget *parent, const QRect &editor);
// A list with the looks of the library, driven by the scroll bar that is made beside it.
CListView *list(QWidget *parent, const QRect &place, const QRect &scrollBarPlace);

QLabel *picture(QWidget *parent, const QRect &place, const QString &imageName, const QString &says);

// The program's own menus. Their commands do nothing here; some are off, so that one sees it.
void fillFileMenu(QMenu *menu);
void fillEditMenu(QMenu *menu);
void fillHelpMenu(QMenu *menu);
// File, Edit and Help, in a menu bar that fills the place.
QMenuBar *menuBar(QWidget *parent, const QRect &place);

// What the title strip of the window holds: close, minimise, stay on top and the menus.
void titleStrip(QWidget *parent);

// A line of dark text that says what stands below it.
CText *caption(QWidget *parent, int x, int y, const QString &words, int width = 260);

// The palette of the window: lettering 55 on 204.
void setWindowPalette(QWidget *widget);

} // namespace Specimens
