// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QRect>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QPainter>

#include <string_view>

// The few shapes that all artwork is made of, lit from above left. Coordinates are device
// independent pixels; the painter is scaled by the caller and antialiases curves. Rectangles are
// filled to their last pixel.
namespace shapes
{

enum class Face {
    Small,    // captions, 7 pixels high
    Large,    // questions and messages, 8 pixels high
    Expanded, // headings, 7 pixels high and wide
};

QFont font(Face face, int magnification = 1);
// Of the letters that show, without the space behind the last one.
int textWidth(Face face, std::string_view text, int magnification = 1);
int capHeight(Face face);

// On whole pixels and without antialiasing, as the program's widgets write. The baseline is the row
// below a capital's last one.
void textLeft(QPainter &painter, Face face, int x, int baseline, std::string_view text,
              const QColor &color);
void textRight(QPainter &painter, Face face, int right, int baseline, std::string_view text,
               const QColor &color);
void textCentred(QPainter &painter, Face face, const QRect &within, std::string_view text,
                 const QColor &color);
void textScaled(QPainter &painter, Face face, int magnification, int x, int baseline,
                std::string_view text, const QColor &color);

void rounded(QPainter &painter, const QRectF &rect, qreal radius, const QBrush &brush);
// One pixel wide, just inside of the rectangle.
void roundedEdge(QPainter &painter, const QRectF &rect, qreal radius, const QColor &color);

// A part of the panel that stands out by less than a millimetre.
void plate(QPainter &painter, const QRect &rect);
// A heading with a rule behind it, up to the given x.
void heading(QPainter &painter, int x, int baseline, int right, std::string_view text);
void grooveAcross(QPainter &painter, int x, int y, int width);
void grooveDown(QPainter &painter, int x, int y, int height);

// A field to read or type in, set into the panel. The rectangle is the outer one.
void well(QPainter &painter, const QRect &rect, const QColor &ground);
// The display: dark bezel of three pixels, pale glass.
void display(QPainter &painter, const QRect &rect);
// A row of unlit lamps, or what else shines, behind dark glass.
void lampWindow(QPainter &painter, const QRect &rect);

enum class Key { Rest, Down };
// A key on the light panel. Its socket belongs to it: one pixel all around.
void key(QPainter &painter, const QRect &rect, Key state);
// Without its socket.
void keyFace(QPainter &painter, const QRectF &face, Key state);
void keySocket(QPainter &painter, const QRectF &socket);
// A key of the dark title strip.
void stripKey(QPainter &painter, const QRect &rect, Key state);
QColor keyInk(Key state);

void lampSocket(QPainter &painter, const QRectF &circle);
void lampLit(QPainter &painter, const QRectF &circle);

enum class Direction { Up, Down };
// A triangle of this many rows. The tip is the pixel at its end.
void arrow(QPainter &painter, const QPoint &tip, int height, Direction direction,
           const QColor &color);

// Frame of the window and of the dialogue boxes: dark strip above, body below.
void cabinet(QPainter &painter, const QRect &rect, int stripHeight);

} // namespace shapes
