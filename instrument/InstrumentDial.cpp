// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentDial.h"

#include "instrument/InstrumentLooks.h"

#include <QtCore/QtMath>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>

namespace looks = InstrumentLooks;

namespace
{

constexpr QSize DialSize(104, 88);
constexpr QPointF Center(52, 28);
constexpr qreal RingRadius = 21.5;
constexpr qreal RingWidth = 3;
constexpr qreal CapRadius = 16;
constexpr QRect NameRect(2, 56, 100, 14);
constexpr int DetailBaseline = 82;

// From the lower left over the top to the lower right.
constexpr qreal StartDegrees = 225;
constexpr qreal SweepDegrees = 270;

constexpr int Middle = 64;
constexpr int EighthsPerNotch = 120;
constexpr qreal ValuesPerPixel = 1;
constexpr qreal FineValuesPerPixel = 0.2;

QRectF around(qreal radius)
{
    return {Center.x() - radius, Center.y() - radius, 2 * radius, 2 * radius};
}

} // namespace

InstrumentDial::InstrumentDial(QWidget *parent)
    : QDial(parent)
{
    setRange(0, 127);
    setPageStep(16);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::SizeVerCursor);
    setFixedSize(DialSize);
}

QSize InstrumentDial::sizeHint() const
{
    return DialSize;
}

void InstrumentDial::setCaption(const Caption &caption)
{
    if (m_caption != caption) {
        m_caption = caption;
        update();
    }
}

void InstrumentDial::setFormat(Format format)
{
    if (m_format != format) {
        m_format = format;
        update();
    }
}

void InstrumentDial::setSelected(bool selected)
{
    if (m_selected != selected) {
        m_selected = selected;
        update();
    }
}

void InstrumentDial::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_lastY = event->globalPosition().y();
    m_dragged = 0;
    setSliderDown(true);
    event->accept();
}

void InstrumentDial::mouseMoveEvent(QMouseEvent *event)
{
    if (!isSliderDown()) {
        event->ignore();
        return;
    }
    // From where the value is now, not from where the drag began: the other end of the cable may
    // have moved it meanwhile.
    const bool fine = (event->modifiers() & Qt::ShiftModifier) != 0;
    m_dragged +=
        (m_lastY - event->globalPosition().y()) * (fine ? FineValuesPerPixel : ValuesPerPixel);
    m_lastY = event->globalPosition().y();
    const int whole = static_cast<int>(m_dragged);
    m_dragged -= whole;
    setValue(value() + whole);
    event->accept();
}

void InstrumentDial::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        setSliderDown(false);
    }
    event->accept();
}

void InstrumentDial::wheelEvent(QWheelEvent *event)
{
    m_wheelEighths += event->angleDelta().y();
    const int notches = m_wheelEighths / EighthsPerNotch;
    m_wheelEighths -= notches * EighthsPerNotch;
    const bool fine = (event->modifiers() & Qt::ShiftModifier) != 0;
    setValue(value() + notches * (fine ? 1 : m_notch));
    event->accept();
}

void InstrumentDial::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (hasFocus()) {
        looks::rounded(painter, rect(), 4, looks::grey(222));
        looks::roundedEdge(painter, rect(), 4, looks::Outline);
    }
    paintRing(painter);
    paintCap(painter);
    paintCaption(painter);
}

void InstrumentDial::paintRing(QPainter &painter) const
{
    const auto arc = [&](qreal from, qreal to, const QColor &color, qreal width) {
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::FlatCap));
        painter.drawArc(around(RingRadius), qRound((StartDegrees - from * SweepDegrees) * 16),
                        qRound(-(to - from) * SweepDegrees * 16));
    };
    painter.save();
    painter.setBrush(Qt::NoBrush);
    arc(-0.012, 1.012, looks::grey(40), RingWidth + 2);
    arc(0, 1, looks::LampOff, RingWidth);
    const qreal at = static_cast<qreal>(value()) / maximum();
    const qreal origin = m_format == Format::Bipolar ? static_cast<qreal>(Middle) / maximum() : 0.0;
    // At its origin the ring still shows a point of light.
    const qreal least = 0.018;
    const qreal low = qMax(0.0, qMin(at, origin) - least);
    const qreal high = qMin(1.0, qMax(at, origin) + least);
    arc(low, high, looks::Accent, RingWidth);
    painter.restore();
}

void InstrumentDial::paintCap(QPainter &painter) const
{
    painter.save();
    painter.setPen(Qt::NoPen);
    QRadialGradient shadow(Center + QPointF(0, 2), CapRadius + 3);
    shadow.setColorAt(0.8, looks::grey(0, 90));
    shadow.setColorAt(1, looks::grey(0, 0));
    painter.setBrush(shadow);
    painter.drawEllipse(Center + QPointF(0, 2), CapRadius + 3, CapRadius + 3);

    QLinearGradient skirt(around(CapRadius).topLeft(), around(CapRadius).bottomLeft());
    skirt.setColorAt(0, looks::grey(104));
    skirt.setColorAt(1, looks::grey(26));
    painter.setBrush(skirt);
    painter.drawEllipse(Center, CapRadius, CapRadius);

    const qreal top = CapRadius - 2;
    QLinearGradient face(around(top).topLeft(), around(top).bottomLeft());
    face.setColorAt(0, looks::grey(66));
    face.setColorAt(1, looks::grey(48));
    painter.setBrush(face);
    painter.drawEllipse(Center, top, top);

    const qreal at = static_cast<qreal>(value()) / maximum();
    const qreal angle = qDegreesToRadians(StartDegrees - at * SweepDegrees);
    const QPointF direction(qCos(angle), -qSin(angle));
    painter.setPen(QPen(looks::grey(244), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(Center + direction * 6, Center + direction * (top - 1.5));
    painter.restore();
}

void InstrumentDial::paintCaption(QPainter &painter) const
{
    looks::rounded(painter, NameRect, 2, looks::GlassEdge);
    looks::rounded(painter, QRectF(NameRect).adjusted(1, 1, -1, -1), 1.5,
                   m_selected ? looks::CellLifted : looks::Cell);
    looks::textCentred(painter, looks::Face::Small, NameRect,
                       looks::fitted(looks::Face::Small, m_caption.name, NameRect.width() - 8),
                       looks::GlassInk);
    looks::text(painter, looks::Face::Small, QPoint(NameRect.left() + 3, DetailBaseline),
                m_caption.detail, looks::QuietInk);
    looks::textRight(painter, looks::Face::Small, QPoint(NameRect.right() - 2, DetailBaseline),
                     m_caption.value, looks::Ink);
}
