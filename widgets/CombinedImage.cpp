// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CombinedImage.h"

#include "images/Artwork.h"

#include <QtGui/QPainter>

#include <algorithm>

namespace
{

int placed(int room, int size, bool atEnd, bool centred)
{
    if (atEnd) {
        return room - size;
    }
    return centred ? (room - size) / 2 : 0;
}

} // namespace

void CombinedImage::setImageCategories(int categories)
{
    m_imageCategories = std::max(categories, 1);
    setCategory(m_category);
}

void CombinedImage::setCategory(int category)
{
    m_category = std::clamp(category, 0, m_imageCategories - 1);
}

void CombinedImage::paint(QPainter *painter, const QRect &rect, Qt::Alignment alignment, int row,
                          int rows) const
{
    const QSize whole = m_pixmap.deviceIndependentSize().toSize();
    const QSize slice(whole.width() / m_imageCategories, whole.height() / std::max(rows, 1));
    if (slice.isEmpty() || row < 0 || row >= rows) {
        return;
    }
    const QPoint at(placed(rect.width(), slice.width(), alignment.testFlag(Qt::AlignRight),
                           alignment.testFlag(Qt::AlignHCenter)),
                    placed(rect.height(), slice.height(), alignment.testFlag(Qt::AlignBottom),
                           alignment.testFlag(Qt::AlignVCenter)));
    const QPoint from(m_category * slice.width(), row * slice.height());
    const QPixmap picture = artworkFor(m_pixmap, painter->device()->devicePixelRatioF());
    const qreal ratio = picture.devicePixelRatio();
    painter->drawPixmap(QRectF(rect.topLeft() + at, slice), picture,
                        QRectF(QPointF(from) * ratio, QSizeF(slice) * ratio));
}
