// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Specimens.h"

#include "app/Constants.h"
#include "app/Shortcuts.h"
#include "fonts/ApplicationFonts.h"
#include "images/Artwork.h"
#include "widgets/CFrame.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"

#include <QtGui/QAction>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QScrollBar>

namespace
{

// A key that belongs to one menu alone: the same menu stands on several pages.
QAction *entry(QMenu *menu, const QString &words, const QKeySequence &keys = {},
               bool enabled = true)
{
    QAction *made = menu->addAction(words);
    made->setShortcutContext(Qt::WidgetShortcut);
    made->setShortcut(keys);
    made->setEnabled(enabled);
    return made;
}

} // namespace

namespace Specimens
{

QPixmap image(const QString &name)
{
    return artwork(QStringLiteral(":/images/%1.png").arg(name), qApp->devicePixelRatio());
}

void say(QWidget *widget, const QString &says)
{
    widget->setAccessibleName(says);
    widget->setToolTip(says);
}

COnOffButton *button(QWidget *parent, const QRect &place, const QString &imageName,
                     const QString &says)
{
    auto *made = new COnOffButton(parent);
    made->setGeometry(place);
    made->setCombinedImage(image(imageName));
    made->setHasDownImage(false);
    say(made, says);
    return made;
}

CRadioButton *radio(QWidget *parent, const QRect &place, const QString &imageName,
                    const QString &says)
{
    auto *made = new CRadioButton(parent);
    made->setGeometry(place);
    made->setCombinedImage(image(imageName));
    made->setHasDownImage(false);
    say(made, says);
    return made;
}

CSpinButton *spin(QWidget *parent, const QRect &place, const QString &imageName,
                  const QString &says)
{
    auto *made = new CSpinButton(parent);
    made->setGeometry(place);
    made->setCombinedImage(image(imageName));
    say(made, says);
    return made;
}

CText *text(QWidget *parent, const QRect &place, const QString &words, Qt::Alignment alignment)
{
    auto *made = new CText(parent);
    made->setGeometry(place);
    made->setAlignment(alignment);
    made->setText(words);
    return made;
}

CFrame *frame(QWidget *parent, const QRect &place, const QString &imageName)
{
    auto *made = new CFrame(parent);
    made->setGeometry(place);
    if (!imageName.isEmpty()) {
        made->setBackgroundPixmap(image(imageName));
    }
    return made;
}

void field(QWidget *parent, const QRect &editor)
{
    // Where the view's background has one: for a line of 14, and for one of 15 pixels.
    constexpr QRect Lower(115, 26, 141, 16);
    constexpr QRect Higher(51, 305, 149, 17);
    constexpr int Edge = 5;
    const QRect from = editor.height() < 15 ? Lower : Higher;
    const QSize size(editor.width() + 6, from.height());
    const QPixmap view = image(QStringLiteral("trn_bak_main"));
    const qreal ratio = view.devicePixelRatio();
    QPixmap well(size * ratio);
    well.setDevicePixelRatio(ratio);
    QPainter painter(&well);
    const auto draw = [&](const QRectF &to, const QRectF &source) {
        painter.drawPixmap(to, view, QRectF(source.topLeft() * ratio, source.size() * ratio));
    };
    const int height = from.height();
    draw(QRectF(0, 0, Edge, height), QRectF(from.left(), from.top(), Edge, height));
    draw(QRectF(Edge, 0, size.width() - 2 * Edge, height),
         QRectF(from.left() + Edge, from.top(), 1, height));
    draw(QRectF(size.width() - Edge, 0, Edge, height),
         QRectF(from.right() + 1 - Edge, from.top(), Edge, height));
    painter.end();
    frame(parent, {editor.topLeft() - QPoint(3, 1), size}, {})->setBackgroundPixmap(well);
}

CListView *list(QWidget *parent, const QRect &place, const QRect &scrollBarPlace)
{
    auto *made = new CListView(parent);
    made->setGeometry(place);
    QFont font(FontFamilyQRL10);
    font.setPixelSize(10);
    made->setFont(font);
    made->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    made->setBackgroundOddRowColor(QColor(71, 71, 71));
    made->setBackgroundEvenRowColor(QColor(89, 89, 89));
    made->setItemMarginWidth(5);
    made->setTrim(true);
    auto *scrollBar = new QScrollBar(Qt::Vertical, parent);
    scrollBar->setGeometry(scrollBarPlace);
    made->setScrollBar(scrollBar);
    return made;
}

QLabel *picture(QWidget *parent, const QRect &place, const QString &imageName, const QString &says)
{
    auto *made = new QLabel(parent);
    made->setGeometry(place);
    made->setPixmap(image(imageName));
    say(made, says);
    return made;
}

void fillFileMenu(QMenu *menu)
{
    entry(menu, MenuFileNew, ShortcutFileNew);
    entry(menu, MenuFileOpen, ShortcutFileOpen);
    entry(menu, MenuFileSave, ShortcutFileSave);
    entry(menu, MenuFileSaveAs, ShortcutFileSaveAs);
    entry(menu, MenuFileImportTemplate, ShortcutImportTemplate, false);
    menu->addSeparator();
    entry(menu, MenuFileSetup, ShortcutFileSetup);
    QMenu *database = menu->addMenu(MenuFileVSTiDatabase);
    database->setFont(menu->font());
    entry(database, MenuFileVSTiDatabaseFullScan, ShortcutFileVSTiDatabaseFullScan);
    entry(database, MenuFileVSTiDatabaseUpdate, ShortcutFileVSTiDatabaseUpdate);
}

void fillEditMenu(QMenu *menu)
{
    entry(menu, MenuEditCopy, ShortcutEditCopy);
    entry(menu, MenuEditPaste, ShortcutEditPaste, false);
    menu->addSeparator();
    entry(menu, MenuEditInitialize, ShortcutEditInitialize);
    entry(menu, MenuEditResetStored, ShortcutEditResetStored, false);
    entry(menu, MenuEditRestoreHW, ShortcutEditRestoreHW);
    entry(menu, MenuEditResetFactory, ShortcutEditResetFactory);
}

void fillHelpMenu(QMenu *menu)
{
    entry(menu, MenuHelpManual, ShortcutHelpManual);
    entry(menu, MenuHelpAbout, ShortcutHelpAbout);
}

QMenuBar *menuBar(QWidget *parent, const QRect &place)
{
    auto *bar = new QMenuBar(parent);
    bar->setNativeMenuBar(false);
    bar->setGeometry(place);
    bar->setFont(parent->font());
    using Fill = void (*)(QMenu *);
    const std::pair<QString, Fill> menus[] = {
        {MenuFileMenu, fillFileMenu}, {MenuEditMenu, fillEditMenu}, {MenuHelpMenu, fillHelpMenu}};
    for (const auto &[words, fill] : menus) {
        QMenu *menu = bar->addMenu(words);
        menu->setFont(parent->font());
        fill(menu);
    }
    return bar;
}

void titleStrip(QWidget *parent)
{
    button(parent, {19, 6, 15, 15}, QStringLiteral("vd_nsw_window"), QStringLiteral("Close"));
    button(parent, {38, 6, 15, 15}, QStringLiteral("vd_nsw_window_small"),
           QStringLiteral("Minimize"));
    button(parent, {57, 6, 15, 15}, QStringLiteral("vd_nsw_window_front"),
           QStringLiteral("Stay on top"))
        ->setCheckable(true);
    menuBar(parent, {79, 6, 97, 15});
}

CText *caption(QWidget *parent, int x, int y, const QString &words, int width)
{
    return text(parent, {x, y, width, 13}, words);
}

void setWindowPalette(QWidget *widget)
{
    QPalette palette = widget->palette();
    const QColor ink(55, 55, 55);
    const QColor ground(204, 204, 204);
    for (const auto role :
         {QPalette::WindowText, QPalette::Dark, QPalette::Text, QPalette::ButtonText,
          QPalette::Shadow, QPalette::Highlight, QPalette::Link}) {
        palette.setColor(role, ink);
    }
    for (const auto role :
         {QPalette::Button, QPalette::Midlight, QPalette::Base, QPalette::Window}) {
        palette.setColor(role, ground);
    }
    palette.setColor(QPalette::Mid, QColor(102, 102, 102));
    palette.setColor(QPalette::LinkVisited, QColor(102, 102, 102));
    palette.setColor(QPalette::HighlightedText, QColor(174, 155, 130));
    palette.setColor(QPalette::AlternateBase, QColor(220, 220, 220));
    widget->setPalette(palette);
}

} // namespace Specimens
