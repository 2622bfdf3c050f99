// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentSwitch.h"

#include "instrument/InstrumentLooks.h"

#include <QtGui/QPainter>

namespace looks = InstrumentLooks;

namespace
{

constexpr QSize SwitchSize(88, 20);
constexpr QRectF Track(52, 3, 32, 14);

} // namespace

InstrumentSwitch::InstrumentSwitch(const QString &text, QWidget *parent)
    : QCheckBox(text, parent)
{
    setFixedSize(SwitchSize);
    setFocusPolicy(Qt::StrongFocus);
}

QSize InstrumentSwitch::sizeHint() const
{
    return SwitchSize;
}

bool InstrumentSwitch::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void InstrumentSwitch::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (hasFocus()) {
        looks::roundedEdge(painter, rect(), 3, looks::grey(128));
    }
    looks::textRight(painter, looks::Face::Expanded, QPoint(static_cast<int>(Track.left()) - 6, 14),
                     text(), isChecked() ? looks::StripInk : looks::StripQuietInk);
    looks::rounded(painter, Track.adjusted(0, 0, 0, 1), 7, looks::StripLight);
    looks::rounded(painter, Track, 7, looks::grey(24));
    const qreal travel = Track.width() - Track.height();
    const QRectF knob(Track.left() + (isChecked() ? travel : 0) + 2, Track.top() + 2,
                      Track.height() - 4, Track.height() - 4);
    looks::lamp(painter, QPointF(isChecked() ? Track.left() + 9 : Track.right() - 9, 10),
                isChecked());
    QLinearGradient cap(knob.topLeft(), knob.bottomLeft());
    cap.setColorAt(0, isDown() ? looks::grey(190) : looks::grey(240));
    cap.setColorAt(1, isDown() ? looks::grey(140) : looks::grey(180));
    painter.setPen(Qt::NoPen);
    painter.setBrush(cap);
    painter.drawEllipse(knob);
}
