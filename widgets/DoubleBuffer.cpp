// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/DoubleBuffer.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QWidget>

DoubleBuffer::DoubleBuffer(QWidget *served)
    : widget(served)
{
}

DoubleBuffer::~DoubleBuffer() = default;

QPixmap DoubleBuffer::finishedPicture(qreal) const
{
    return QPixmap();
}

void DoubleBuffer::updateDoubleBuffer()
{
    if (!polished) {
        return;
    }
    dirty = true;
    widget->update();
}

void DoubleBuffer::repaintDoubleBuffer()
{
    if (!polished) {
        return;
    }
    dirty = true;
    widget->repaint();
}

bool DoubleBuffer::eventDoubleBuffer(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Polish:
        polished = true;
        updateDoubleBufferPixmap();
        return true;
    case QEvent::Show:
        updateDoubleBufferPixmap();
        return false;
    case QEvent::Paint: {
        updateDoubleBufferPixmap();
        QPainter painter(widget);
        painter.drawPixmap(0, 0, bufferPixmap);
        return true;
    }
    default:
        return false;
    }
}

void DoubleBuffer::updateDoubleBufferPixmap()
{
    const qreal ratio = widget->devicePixelRatioF();
    // A window that has moved to a screen with another scale is told by nothing but its paint
    // event.
    if (!dirty && bufferPixmap.devicePixelRatio() == ratio) {
        return;
    }
    if (widget->width() <= 0 || widget->height() <= 0) {
        return;
    }
    const QPixmap finished = finishedPicture(ratio);
    bufferPixmap = finished.isNull() ? paintedPicture(ratio) : finished;
    dirty = false;
}

QPixmap DoubleBuffer::paintedPicture(qreal ratio)
{
    QPixmap pixmap(widget->size() * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setFont(widget->font());
    painter.setPen(widget->palette().color(widget->foregroundRole()));
    painter.setBackground(widget->palette().brush(widget->backgroundRole()));
    painter.setLayoutDirection(widget->layoutDirection());
    // The fonts are made of whole pixels; smoothing would only blur them.
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    paintDoubleBuffer(&painter);
    painter.end();
    return pixmap;
}

bool DoubleBuffer::changesLettering(const QEvent *event)
{
    switch (event->type()) {
    case QEvent::FontChange:
    case QEvent::PaletteChange:
    case QEvent::EnabledChange:
    case QEvent::ActivationChange:
        return true;
    default:
        return false;
    }
}
