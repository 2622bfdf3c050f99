// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QColor>
#include <QtGui/QFont>

class QPainter;
class QRect;
class QRectF;
class QString;
class QPoint;
class QPointF;

// What the parts of the instrument's front panel are drawn with. The colours are those of the
// editor, so that the two windows are seen to belong together. Thread: GUI.
namespace InstrumentLooks
{

constexpr QColor grey(int value, int alpha = 255)
{
    return {value, value, value, alpha};
}

inline constexpr QColor Body = grey(204);
inline constexpr QColor Plate = grey(212);
inline constexpr QColor Ink = grey(55);
inline constexpr QColor QuietInk = grey(76);
inline constexpr QColor Light = grey(238);
inline constexpr QColor Shade = grey(158);
inline constexpr QColor Groove = grey(172);
inline constexpr QColor Outline = grey(96);

inline constexpr QColor Strip = grey(58);
inline constexpr QColor StripLight = grey(92);
inline constexpr QColor StripShade = grey(34);
inline constexpr QColor StripInk = grey(224);
inline constexpr QColor StripQuietInk = grey(176);

inline constexpr QColor Bezel = grey(48);
inline constexpr QColor Glass{190, 205, 192};
inline constexpr QColor GlassEdge{150, 167, 154};
inline constexpr QColor GlassRule{163, 180, 167};
inline constexpr QColor GlassInk = grey(40);
inline constexpr QColor GlassQuietInk{74, 86, 77};
inline constexpr QColor Cell{190, 205, 192};
inline constexpr QColor CellLifted{233, 243, 226};

inline constexpr QColor KeyTop = grey(234);
inline constexpr QColor KeyBottom = grey(216);
inline constexpr QColor KeyDown = grey(44);

inline constexpr QColor Accent{0, 204, 0};
inline constexpr QColor AccentCore{190, 255, 176};
inline constexpr QColor LampOff = grey(66);

enum class Face { Small, Large, Expanded };

// Crisp at every whole magnification.
QFont font(Face face, int magnification = 1);
// Without the gap behind the last letter.
int textWidth(Face face, const QString &text, int magnification = 1);
// The text, or as much of its start as fits into the width with a mark of the cut behind it.
QString fitted(Face face, const QString &text, int width, int magnification = 1);

void text(QPainter &painter, Face face, const QPoint &baseline, const QString &text,
          const QColor &color, int magnification = 1);
void textRight(QPainter &painter, Face face, const QPoint &baselineEnd, const QString &text,
               const QColor &color, int magnification = 1);
void textCentred(QPainter &painter, Face face, const QRect &within, const QString &text,
                 const QColor &color);

void rounded(QPainter &painter, const QRectF &rect, qreal radius, const QColor &color);
void roundedEdge(QPainter &painter, const QRectF &rect, qreal radius, const QColor &color);
// A lamp of four pixels and its halo.
void lamp(QPainter &painter, const QPointF &center, bool lit);

} // namespace InstrumentLooks
