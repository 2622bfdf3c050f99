// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentKey.h"

#include "instrument/InstrumentLooks.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace looks = InstrumentLooks;

namespace
{

constexpr QSize KeySize(58, 22);
constexpr int LampX = 9;

} // namespace

InstrumentKey::InstrumentKey(Face face, const QString &text, QWidget *parent)
    : QPushButton(text, parent)
    , m_face(face)
{
    setFixedSize(KeySize);
}

QSize InstrumentKey::sizeHint() const
{
    return KeySize;
}

bool InstrumentKey::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void InstrumentKey::setHasLamp(bool hasLamp)
{
    if (m_hasLamp != hasLamp) {
        m_hasLamp = hasLamp;
        update();
    }
}

void InstrumentKey::setLit(bool lit)
{
    if (m_lit != lit) {
        m_lit = lit;
        update();
    }
}

void InstrumentKey::setDimmed(bool dimmed)
{
    if (m_dimmed != dimmed) {
        m_dimmed = dimmed;
        update();
    }
}

bool InstrumentKey::isLit() const
{
    return isCheckable() ? isChecked() : m_lit;
}

void InstrumentKey::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool down = isDown();
    const QRectF all(rect());
    looks::rounded(painter, all, 3.5, looks::Light);
    looks::rounded(painter, all.adjusted(0, 0, 0, -1), 3.5, looks::Outline);
    const QRectF cap = all.adjusted(1, 1, -1, -2);
    QPainterPath shape;
    shape.addRoundedRect(cap, 2.5, 2.5);
    QLinearGradient top(cap.topLeft(), cap.bottomLeft());
    top.setColorAt(0, down ? looks::KeyDown : looks::KeyTop);
    top.setColorAt(1, down ? looks::grey(58) : looks::KeyBottom);
    painter.fillPath(shape, top);
    if (hasFocus()) {
        looks::roundedEdge(painter, cap.adjusted(1.5, 1.5, -1.5, -1.5), 1.5, looks::Outline);
    }

    const QColor ink = m_dimmed ? looks::Shade : down ? looks::Accent : looks::Ink;
    if (m_face == Face::Caption) {
        QRect within(0, 0, width(), height() - 1);
        if (m_hasLamp) {
            looks::lamp(painter, QPointF(LampX, height() / 2.0 - 0.5), isLit());
            within.setLeft(LampX + 4);
        }
        looks::textCentred(painter, looks::Face::Small, within, text(), ink);
    } else {
        const qreal sign = m_face == Face::ArrowUp ? 1 : -1;
        const QPointF middle(width() / 2.0, (height() - 1) / 2.0);
        const QPolygonF arrow({middle + QPointF(-5, 2.5 * sign), middle + QPointF(5, 2.5 * sign),
                               middle + QPointF(0, -2.5 * sign)});
        QPainterPath path;
        path.addPolygon(arrow);
        path.closeSubpath();
        painter.fillPath(path, ink);
    }
}
