// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/PulldownMenu.h"

#include <QtGui/QScreen>

#include <algorithm>

namespace
{

// All in pixels.
constexpr int MenuWidth = 265;
constexpr int TextWidth = 229;
constexpr int RoomToTheRight = 270;

// Blanks at the end, as many as fit.
QString filledUp(QString text, const QFontMetrics &metrics)
{
    const QChar blank(u' ');
    if (metrics.horizontalAdvance(blank) <= 0) {
        return text;
    }
    while (metrics.horizontalAdvance(text + blank) <= TextWidth) {
        text += blank;
    }
    return text;
}

} // namespace

PulldownMenu::PulldownMenu(QWidget *panel, const QStringList &texts)
    : QMenu(panel)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setFont(panel->window()->font());
    setCursor(panel->cursor());
    setFixedWidth(MenuWidth);
    const QFontMetrics metrics(font());
    for (qsizetype index = 0; index < texts.size(); ++index) {
        // A port may be called anything, and what is an ampersand there marks no key here.
        QString text = filledUp(texts.at(index), metrics);
        text.replace(u'&', QStringLiteral("&&"));
        connect(addAction(text), &QAction::triggered, this,
                [this, index] { Q_EMIT chosen(static_cast<int>(index)); });
    }
}

void PulldownMenu::open(const QPoint &position, int roomBelow)
{
    QPoint place = parentWidget()->mapToGlobal(position);
    const QRect edges = parentWidget()->screen()->geometry();
    const int room = std::max(roomBelow, sizeHint().height());
    if (place.x() + RoomToTheRight > edges.right()) {
        place.setX(edges.right() + 1 - RoomToTheRight);
    }
    if (place.y() + room > edges.bottom()) {
        place.setY(edges.bottom() + 1 - room);
    }
    popup(QPoint(std::max(place.x(), edges.left()), std::max(place.y(), edges.top())));
}
