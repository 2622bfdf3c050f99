// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/generator/Drawings.h"
#include "images/generator/Geometry.h"
#include "images/generator/Palette.h"
#include "images/generator/Shapes.h"

#include <algorithm>
#include <cmath>

namespace drawings
{
namespace
{

void editLamp(QPainter &painter, const QSize &size)
{
    shapes::lampLit(painter, QRectF(QPointF(), QSizeF(size)));
}

} // namespace

void onlineLamp(QPainter &painter, bool lit)
{
    const QSize size = mainwindow::online.size();
    const QRectF bar(6, 1.5, 12, 4);
    if (lit) {
        painter.save();
        painter.setPen(Qt::NoPen);
        QRadialGradient halo(bar.center(), 16);
        halo.setColorAt(0, QColor(0, 204, 0, 150));
        halo.setColorAt(1, QColor(0, 204, 0, 0));
        painter.setBrush(halo);
        painter.drawRect(QRectF(1, 0, 34, size.height()));
        painter.restore();
        shapes::rounded(painter, bar, 2, palette::accent);
        shapes::rounded(painter, bar.adjusted(2, 1, -2, -1), 1, palette::accentCore);
    } else {
        shapes::rounded(painter, bar, 2, palette::lampOff);
    }
    shapes::textLeft(painter, shapes::Face::Expanded, 26, size.height(), "ONLINE",
                     lit ? palette::accent : palette::unlitInk);
}

void lampOnline(QPainter &painter, int, int)
{
    painter.fillRect(QRect(QPoint(1, 0), mainwindow::online.size() - QSize(2, 0)), palette::window);
    onlineLamp(painter, true);
}

void lampBankEdit(QPainter &painter, int, int)
{
    editLamp(painter, templateview::bankEditLamp.size());
}

void lampFileEdit(QPainter &painter, int, int)
{
    editLamp(painter, templateview::fileEditLamp.size());
}

// Lights of seven pixels, brightest at the head. Dark lettering lies above them, so that none is
// darker than the accent.
void movingLight(QPainter &painter, int, int)
{
    constexpr int step = 7;
    constexpr int count = 8;
    for (int index = 0; index < count; ++index) {
        const qreal strength = std::pow((index + 1) / static_cast<qreal>(count), 1.6);
        QColor color = palette::accent;
        color.setAlphaF(static_cast<float>(strength));
        shapes::rounded(painter,
                        QRectF(index * step, 0, step - 1, overlaypanel::runningLight.height()), 1,
                        color);
    }
}

void storeGlow(QPainter &painter, int, int)
{
    const QRectF all{QPointF(), QSizeF(templateview::storeFlash.size())};
    shapes::rounded(painter, all, 4, QColor(0, 204, 0, 150));
    shapes::rounded(painter, all.adjusted(0.75, 0.75, -0.75, -0.75), 3.5, palette::accent);
    shapes::rounded(painter, all.adjusted(2, 2, -2, -2), 2.5, palette::accentCore);
}

} // namespace drawings
