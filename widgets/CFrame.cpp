// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CFrame.h"

#include "images/Artwork.h"

#include <QtGui/QPainter>

CFrame::CFrame(QWidget *parent)
    : QFrame(parent)
    , DoubleBuffer(this)
{
    setFocusPolicy(Qt::ClickFocus);
}

void CFrame::setBackgroundPixmap(const QPixmap &pixmap)
{
    m_backgroundPixmap = pixmap;
    updateDoubleBuffer();
}

void CFrame::paintDoubleBuffer(QPainter *painter)
{
    painter->drawPixmap(0, 0,
                        artworkFor(m_backgroundPixmap, painter->device()->devicePixelRatioF()));
}

QPixmap CFrame::finishedPicture(qreal devicePixelRatio) const
{
    const QPixmap picture = artworkFor(m_backgroundPixmap, devicePixelRatio);
    const bool isWhole = picture.devicePixelRatio() == devicePixelRatio &&
                         picture.size() == size() * devicePixelRatio;
    return isWhole ? picture : QPixmap();
}

bool CFrame::event(QEvent *event)
{
    return eventDoubleBuffer(event) || QFrame::event(event);
}

void CFrame::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    // A larger frame shows more of its picture.
    updateDoubleBuffer();
}
