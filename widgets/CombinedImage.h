// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QRect>
#include <QtGui/QPixmap>

class QPainter;

// The one picture that all looks of a control are cut from: a grid whose columns are categories and
// whose rows are states. A plain value. Thread: GUI.
class CombinedImage
{
public:
    QPixmap pixmap() const { return m_pixmap; }
    void setPixmap(const QPixmap &pixmap) { m_pixmap = pixmap; }
    // How many columns there are; at least 1.
    int imageCategories() const { return m_imageCategories; }
    void setImageCategories(int categories);
    // The column that shows; raised or lowered to one that exists.
    int category() const { return m_category; }
    void setCategory(int category);

    // Draws the slice of a row, of so many, at the place that the alignment gives in the rectangle.
    // Nothing for a row that the picture doesn't have.
    void paint(QPainter *painter, const QRect &rect, Qt::Alignment alignment, int row,
               int rows) const;

private:
    QPixmap m_pixmap;
    int m_imageCategories = 1;
    int m_category = 0;
};
