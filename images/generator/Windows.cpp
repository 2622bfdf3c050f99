// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/generator/Drawings.h"
#include "images/generator/Geometry.h"
#include "images/generator/Palette.h"
#include "images/generator/Shapes.h"

#include <QtGui/QPainterPath>

namespace drawings
{
namespace
{

using shapes::Face;

// The window's right margin for lettering is the view's.
constexpr int marginRight = mainwindow::view.x() + templateview::size.width();

void window(QPainter &painter, const QSize &size)
{
    shapes::cabinet(painter, QRect(QPoint(), size), mainwindow::stripHeight);

    // The menus' black line.
    const QRect menu = mainwindow::menu;
    shapes::rounded(painter, QRectF(menu).adjusted(-1, -1, 1, 2), 2, palette::stripLight);
    shapes::rounded(painter, QRectF(menu).adjusted(-1, -1, 1, 1), 2, palette::stripShade);
    painter.fillRect(menu, palette::menu);

    const int baseline = 17;
    constexpr std::string_view maker = "TARN/TERN";
    constexpr std::string_view product = "Remote Editor";
    const int productX = marginRight - shapes::textWidth(Face::Small, product);
    shapes::textLeft(painter, Face::Small, productX, baseline, product, palette::stripQuietInk);
    shapes::textRight(painter, Face::Expanded, productX - 8, baseline, maker, palette::stripInk);

    const QRect lamp = mainwindow::online;
    shapes::lampWindow(painter, lamp.adjusted(0, -3, 0, 2));
    painter.save();
    painter.translate(lamp.topLeft());
    onlineLamp(painter, false);
    painter.restore();
}

} // namespace

void windowLarge(QPainter &painter, int, int)
{
    window(painter, mainwindow::large);
}

void windowSmall(QPainter &painter, int, int)
{
    window(painter, mainwindow::small);
}

void pointer(QPainter &painter, int, int)
{
    // White inside of black inside of white would be three colours where two do: black shows on the
    // light panel, its white rim on the dark lists.
    const QPolygon outline({{0, 0}, {0, 17}, {4, 13}, {7, 19}, {10, 18}, {7, 12}, {12, 12}});
    const QPolygonF inside(
        {{1, 2.4}, {1, 14.6}, {4.3, 11.3}, {7.5, 17.7}, {8.7, 17.2}, {5.5, 11}, {9.6, 11}});
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawPolygon(outline);
    painter.setBrush(Qt::black);
    painter.drawPolygon(inside);
    painter.restore();
}

} // namespace drawings
