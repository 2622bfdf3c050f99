// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/CListView.h"
#include "widgets/CText.h"
#include "widgets/FontHelpers.h"

#include <QtWidgets/QScrollBar>

using namespace Specimens;

namespace
{

constexpr int ManyRows = 100000;

void few(QWidget *page)
{
    caption(page, 20, 20, QStringLiteral("three columns, an icon, marks"));
    CListView *list = Specimens::list(page, {20, 40, 300, 191}, {325, 40, 16, 191});
    list->setColumnCount(3);
    list->setColumnWidthHint(QStringLiteral("40,140"));
    for (int i = 0; i < 50; ++i) {
        list->addItem({QStringLiteral("%1").arg(i + 1, 2, 10, QLatin1Char('0')),
                       QStringLiteral("A name that is too long for its column"),
                       QStringLiteral("CC#=%1").arg(i, 3, 10, QLatin1Char('0'))});
    }
    list->setItemIcon(1, image(QStringLiteral("t27r_led_edit_f")));
    list->setItemIcon(4, image(QStringLiteral("trn_led_edit_t")));
    list->addMark(2);
    list->addMark(6);
    list->setValue(3);
    list->selectList();
}

void many(QWidget *page)
{
    caption(page, 380, 20, QStringLiteral("a hundred thousand rows, not selected"));
    CListView *list = Specimens::list(page, {380, 40, 200, 191}, {585, 40, 16, 191});
    for (int i = 0; i < ManyRows; ++i) {
        list->addItem({QStringLiteral("%1  Template").arg(i + 1, 6, 10, QLatin1Char('0'))});
    }
    list->setValue(50000);
    list->adjustScroll();
}

void scrollBars(QWidget *page)
{
    caption(page, 20, 256,
            QStringLiteral("scroll bars: nothing to scroll, at the start, inside, at the end"));
    const struct
    {
        int maximum;
        int pageStep;
        int value;
    } states[] = {{0, 10, 0}, {100, 10, 0}, {100, 50, 40}, {100, 10, 100}};
    int at = 0;
    for (const auto &state : states) {
        auto *vertical = new QScrollBar(Qt::Vertical, page);
        vertical->setGeometry({20 + at * 30, 280, 16, 150});
        auto *horizontal = new QScrollBar(Qt::Horizontal, page);
        horizontal->setGeometry({180, 280 + at * 30, 250, 16});
        for (QScrollBar *bar : {vertical, horizontal}) {
            bar->setRange(0, state.maximum);
            bar->setPageStep(state.pageStep);
            bar->setValue(state.value);
        }
        ++at;
    }
}

} // namespace

QWidget *Pages::listsPage()
{
    CFrame *made = frame(nullptr, {0, 0, 640, 460});
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    few(made);
    many(made);
    scrollBars(made);
    adjustFont(made);
    return made;
}
