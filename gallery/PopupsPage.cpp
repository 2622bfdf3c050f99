// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/COnOffButton.h"
#include "widgets/CPopupList.h"
#include "widgets/CPopupListWidget.h"
#include "widgets/CPopupTree.h"
#include "widgets/CPopupTreeWidget.h"
#include "widgets/CText.h"
#include "widgets/FontHelpers.h"

#include <QtGui/QAction>
#include <QtGui/QPainter>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>

using namespace Specimens;

namespace
{

QFont smallFont()
{
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    font.setStyleHint(QFont::AnyStyle, QFont::NoAntialias);
    return font;
}

// Of the full size of an icon: a smaller one is drawn larger, the more pixels the screen has.
QPixmap lampIcon()
{
    constexpr int Size = 16;
    const QPixmap lamp = image(QStringLiteral("t27r_led_edit_f"));
    const qreal ratio = lamp.devicePixelRatio();
    QPixmap made(QSize(Size, Size) * ratio);
    made.setDevicePixelRatio(ratio);
    made.fill(Qt::transparent);
    QPainter painter(&made);
    const int corner = (Size - qRound(lamp.deviceIndependentSize().width())) / 2;
    painter.drawPixmap(corner, corner, lamp);
    return made;
}

QTreeWidgetItem *folder(QTreeWidgetItem *parent, const QString &name, const QStringList &leaves)
{
    auto *made = new QTreeWidgetItem(parent, {name});
    for (const QString &leaf : leaves) {
        new QTreeWidgetItem(made, {leaf});
    }
    return made;
}

} // namespace

CPopupList *Pages::popupList()
{
    auto *made = new CPopupList;
    made->resize(140, 552);
    CPopupListWidget *list = made->getListWidget();
    list->setFont(smallFont());
    list->setGridSize({138, 11});
    list->setResizeMode(QListView::Adjust);
    for (int i = 0; i < 50; ++i) {
        list->addItem(QStringLiteral("%1%2 : Template %2")
                          .arg(i < 9 ? QStringLiteral("  ") : QString())
                          .arg(i + 1));
    }
    list->setCurrentRow(4);
    return made;
}

CPopupTree *Pages::popupTree()
{
    auto *made = new CPopupTree;
    made->resize(200, 277);
    CPopupTreeWidget *tree = made->getTreeWidget();
    tree->setFont(smallFont());
    auto *track = new QTreeWidgetItem(tree, {QStringLiteral("Track Control")});
    new QTreeWidgetItem(track, {QStringLiteral("No Assign")});
    new QTreeWidgetItem(track, {QStringLiteral("Volume")});
    new QTreeWidgetItem(track, {QStringLiteral("Pan Left-Right")});
    folder(track, QStringLiteral("QuickCtrl"),
           {QStringLiteral("QuickCtrl 1"), QStringLiteral("QuickCtrl 2")});
    auto *instrument = new QTreeWidgetItem(tree, {QStringLiteral("Polyphonic One")});
    QTreeWidgetItem *filter = folder(instrument, QStringLiteral("Filter"),
                                     {QStringLiteral("Cutoff"), QStringLiteral("Resonance"),
                                      QStringLiteral("Env Amount"), QStringLiteral("Key Follow")});
    folder(instrument, QStringLiteral("Amplifier"),
           {QStringLiteral("Attack"), QStringLiteral("Decay"), QStringLiteral("Sustain")});
    track->setExpanded(true);
    instrument->setExpanded(true);
    filter->setExpanded(true);
    tree->setCurrentItem(filter->child(1));
    return made;
}

QMenu *Pages::menu(QWidget *parent)
{
    auto *made = new QMenu(parent);
    made->setFont(smallFont());
    made->addSection(QStringLiteral("A section"));
    QAction *first = made->addAction(QStringLiteral("&Checked"));
    first->setCheckable(true);
    first->setChecked(true);
    made->addAction(QStringLiteral("&Not checked"))->setCheckable(true);
    QAction *off = made->addAction(QStringLiteral("Checked, &off"));
    off->setCheckable(true);
    off->setChecked(true);
    off->setEnabled(false);
    made->addSeparator();
    made->addAction(lampIcon(), QStringLiteral("With an &icon"));
    QAction *plain = made->addAction(QStringLiteral("&Default"));
    made->setDefaultAction(plain);
    QAction *key = made->addAction(QStringLiteral("With a &key"));
    key->setShortcutContext(Qt::WidgetShortcut);
    key->setShortcut(QKeySequence(QStringLiteral("Ctrl+Backspace")));
    QMenu *more = made->addMenu(QStringLiteral("&More"));
    more->setFont(smallFont());
    more->addAction(QStringLiteral("One"));
    more->addAction(QStringLiteral("Two"));
    made->addAction(QStringLiteral("Can't be chosen"))->setEnabled(false);
    return made;
}

QWidget *Pages::popupsPage()
{
    CFrame *made = frame(nullptr, {0, 0, 640, 460});
    setWindowPalette(made);
    made->setFont(smallFont());
    menuBar(made, {20, 20, 97, 15});
    caption(made, 140, 20, QStringLiteral("the program's menus"));

    CText *chosen = caption(made, 60, 160, QStringLiteral("nothing chosen yet"));
    const auto below = [](QWidget *widget) {
        return QRect(widget->mapToGlobal(QPoint(0, 0)), widget->size());
    };
    COnOffButton *list = button(made, {20, 60, 19, 19}, QStringLiteral("vd_nsw_popup_s"),
                                QStringLiteral("Popup list"));
    caption(made, 60, 63, QStringLiteral("popup list"));
    QObject::connect(list, &COnOffButton::clicked, chosen, [chosen, list, below] {
        const QListWidgetItem *item = Pages::popupList()->exec(below(list));
        chosen->setText(item == nullptr ? QStringLiteral("nothing chosen") : item->text());
    });
    COnOffButton *tree = button(made, {20, 90, 19, 18}, QStringLiteral("vd_nsw_popup"),
                                QStringLiteral("Popup tree"));
    caption(made, 60, 93, QStringLiteral("popup tree"));
    QObject::connect(tree, &COnOffButton::clicked, chosen, [chosen, tree, below] {
        const QTreeWidgetItem *item = Pages::popupTree()->exec(below(tree));
        chosen->setText(item == nullptr ? QStringLiteral("nothing chosen") : item->text(0));
    });
    COnOffButton *context =
        button(made, {20, 120, 19, 18}, QStringLiteral("vd_nsw_popup"), QStringLiteral("Menu"));
    caption(made, 60, 123, QStringLiteral("menu with every kind of entry"));
    QObject::connect(context, &COnOffButton::clicked, made, [made, context, below] {
        QMenu *opened = Pages::menu(made);
        opened->setAttribute(Qt::WA_DeleteOnClose);
        opened->popup(below(context).topRight());
    });

    caption(made, 20, 200, QStringLiteral("line edit of the style"));
    const QRect place(23, 220, 160, 14);
    field(made, place);
    auto *edit = new QLineEdit(QStringLiteral("A line of text"), made);
    edit->setGeometry(place);
    edit->setFrame(false);
    edit->setAccessibleName(QStringLiteral("Line of text"));
    adjustFont(made);
    return made;
}
