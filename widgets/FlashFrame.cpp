// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FlashFrame.h"

#include <QtCore/QTimerEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>

namespace
{

constexpr int ShownMs = 500;
constexpr int HeldMs = 100;
const QColor FrameColor(0, 255, 0, 255);

QPixmap outline(const QSize &size, qreal ratio)
{
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    // Filled, since a line of more than one device pixel would lie across the edge.
    const int right = size.width() - 1;
    const int bottom = size.height() - 1;
    painter.fillRect(0, 0, size.width(), 1, FrameColor);
    painter.fillRect(0, bottom, size.width(), 1, FrameColor);
    painter.fillRect(0, 0, 1, size.height(), FrameColor);
    painter.fillRect(right, 0, 1, size.height(), FrameColor);
    return pixmap;
}

} // namespace

FlashFrame::FlashFrame(QWidget *parent)
    : QLabel(parent)
{
    setFocusPolicy(Qt::ClickFocus);
}

void FlashFrame::start(QWidget *parent, const QRect &rect)
{
    if (parent == nullptr) {
        return;
    }
    const QRect place = rect.isValid() ? rect : parent->rect();
    start(parent, place.x(), place.y(), place.width(), place.height());
}

void FlashFrame::start(QWidget *parent, int x, int y, int width, int height)
{
    const QSize size = QSize(width, height).boundedTo(QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    if (parent == nullptr || size.isEmpty()) {
        return;
    }
    auto *frame = new FlashFrame(parent);
    frame->setGeometry(QRect(QPoint(x, y), size));
    frame->setPixmap(outline(size, parent->devicePixelRatioF()));
    frame->show();
    frame->repaint();
    frame->startTimer(ShownMs);
}

void FlashFrame::timerEvent(QTimerEvent *event)
{
    killTimer(event->timerId());
    if (hasFocus() && QGuiApplication::mouseButtons() != Qt::NoButton) {
        if (!m_pixmapRemoved) {
            m_pixmapRemoved = true;
            setPixmap(QPixmap());
            repaint();
        }
        startTimer(HeldMs);
        return;
    }
    hide();
    if (QWidget *parent = parentWidget()) {
        parent->repaint();
    }
    deleteLater();
}
