// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/generator/Shapes.h"

#include "fonts/ApplicationFonts.h"
#include "images/generator/Palette.h"

#include <QtGui/QFontMetrics>
#include <QtGui/QPainterPath>

namespace shapes
{
namespace
{

QString letters(std::string_view text)
{
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

// The columns at the end of each glyph that part it from the next.
int spaceBehind(Face face)
{
    return face == Face::Expanded ? 2 : 1;
}

void drawText(QPainter &painter, const QFont &with, int x, int baseline, std::string_view text,
              const QColor &color)
{
    painter.save();
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    painter.setFont(with);
    painter.setPen(color);
    painter.drawText(QPoint(x, baseline), letters(text));
    painter.restore();
}

} // namespace

QFont font(Face face, int magnification)
{
    QFont result(QString(face == Face::Small   ? FontFamilyQRL8
                         : face == Face::Large ? FontFamilyQRL10
                                               : FontFamilyQRL8Expanded));
    result.setStyleHint(QFont::AnyStyle, QFont::NoAntialias);
    result.setHintingPreference(QFont::PreferNoHinting);
    result.setPixelSize((face == Face::Large ? 10 : 8) * magnification);
    return result;
}

int textWidth(Face face, std::string_view text, int magnification)
{
    const int advance = QFontMetrics(font(face)).horizontalAdvance(letters(text));
    return (advance - spaceBehind(face)) * magnification;
}

int capHeight(Face face)
{
    return face == Face::Large ? 8 : 7;
}

void textLeft(QPainter &painter, Face face, int x, int baseline, std::string_view text,
              const QColor &color)
{
    drawText(painter, font(face), x, baseline, text, color);
}

void textRight(QPainter &painter, Face face, int right, int baseline, std::string_view text,
               const QColor &color)
{
    textLeft(painter, face, right - textWidth(face, text), baseline, text, color);
}

void textCentred(QPainter &painter, Face face, const QRect &within, std::string_view text,
                 const QColor &color)
{
    const int x = within.left() + (within.width() - textWidth(face, text) + 1) / 2;
    const int top = within.top() + (within.height() - capHeight(face)) / 2;
    textLeft(painter, face, x, top + capHeight(face), text, color);
}

void textScaled(QPainter &painter, Face face, int magnification, int x, int baseline,
                std::string_view text, const QColor &color)
{
    drawText(painter, font(face, magnification), x, baseline, text, color);
}

void rounded(QPainter &painter, const QRectF &rect, qreal radius, const QBrush &brush)
{
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

void roundedEdge(QPainter &painter, const QRectF &rect, qreal radius, const QColor &color)
{
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    path.addRoundedRect(rect, radius, radius);
    const qreal inner = qMax(0.0, radius - 1);
    path.addRoundedRect(rect.adjusted(1, 1, -1, -1), inner, inner);
    painter.fillPath(path, color);
}

void plate(QPainter &painter, const QRect &rect)
{
    rounded(painter, rect, 3, palette::shade);
    rounded(painter, rect.adjusted(0, 0, 0, -1), 3, palette::light);
    rounded(painter, rect.adjusted(1, 1, 0, -1), 2.5, palette::groove);
    rounded(painter, rect.adjusted(1, 1, -1, -1), 2.5, palette::plate);
}

void grooveAcross(QPainter &painter, int x, int y, int width)
{
    painter.fillRect(QRect(x, y, width, 1), palette::groove);
    painter.fillRect(QRect(x, y + 1, width, 1), palette::light);
}

void grooveDown(QPainter &painter, int x, int y, int height)
{
    painter.fillRect(QRect(x, y, 1, height), palette::groove);
    painter.fillRect(QRect(x + 1, y, 1, height), palette::light);
}

void heading(QPainter &painter, int x, int baseline, int right, std::string_view text)
{
    textLeft(painter, Face::Expanded, x, baseline, text, palette::quietInk);
    const int ruleX = x + textWidth(Face::Expanded, text) + 7;
    if (ruleX < right) {
        grooveAcross(painter, ruleX, baseline - 4, right - ruleX);
    }
}

void well(QPainter &painter, const QRect &rect, const QColor &ground)
{
    // The lower lip catches the light that the upper one keeps off the ground.
    rounded(painter, rect.adjusted(0, 1, 0, 1), 2.5, palette::light);
    rounded(painter, rect, 2.5, palette::grey(122));
    const QRectF inside = QRectF(rect).adjusted(1, 1, -1, -1);
    rounded(painter, inside, 1.5, ground);
    QLinearGradient shadow(inside.topLeft(), inside.topLeft() + QPointF(0, 3));
    shadow.setColorAt(0, palette::grey(0, 46));
    shadow.setColorAt(1, palette::grey(0, 0));
    rounded(painter, inside, 1.5, shadow);
}

void display(QPainter &painter, const QRect &rect)
{
    rounded(painter, rect.adjusted(0, 1, 0, 1), 4, palette::light);
    rounded(painter, rect, 4, palette::bezel);
    roundedEdge(painter, rect, 4, palette::grey(30));
    const QRectF inside = QRectF(rect).adjusted(3, 3, -3, -3);
    rounded(painter, inside, 2, palette::glass);
    // The backlight fades towards the rim; the bezel throws its shadow on the glass.
    QLinearGradient shadow(inside.topLeft(), inside.topLeft() + QPointF(0, 7));
    shadow.setColorAt(0, palette::grey(0, 52));
    shadow.setColorAt(0.35, palette::grey(0, 18));
    shadow.setColorAt(1, palette::grey(0, 0));
    rounded(painter, inside, 2, shadow);
    QLinearGradient side(inside.topLeft(), inside.topLeft() + QPointF(5, 0));
    side.setColorAt(0, palette::grey(0, 30));
    side.setColorAt(1, palette::grey(0, 0));
    rounded(painter, inside, 2, side);
}

void lampWindow(QPainter &painter, const QRect &rect)
{
    rounded(painter, rect.adjusted(0, 1, 0, 1), 3, palette::light);
    rounded(painter, rect, 3, palette::grey(30));
    rounded(painter, rect.adjusted(1, 1, -1, -1), 2, palette::window);
}

QColor keyInk(Key state)
{
    return state == Key::Rest ? palette::ink : palette::accent;
}

void key(QPainter &painter, const QRect &rect, Key state)
{
    keySocket(painter, rect);
    keyFace(painter, QRectF(rect).adjusted(1, 1, -1, -1), state);
}

void keySocket(QPainter &painter, const QRectF &socket)
{
    rounded(painter, socket, 3, palette::outline);
}

void keyFace(QPainter &painter, const QRectF &face, Key state)
{
    if (state == Key::Down) {
        rounded(painter, face, 2, palette::keyDown);
        QLinearGradient shadow(face.topLeft(), face.topLeft() + QPointF(0, 4));
        shadow.setColorAt(0, palette::grey(0, 150));
        shadow.setColorAt(1, palette::grey(0, 0));
        rounded(painter, face, 2, shadow);
        return;
    }
    rounded(painter, face, 2, palette::grey(178));
    const QRectF top = face.adjusted(0, 0, 0, -1);
    rounded(painter, top, 2, palette::grey(250));
    QLinearGradient slope(face.topLeft(), face.bottomLeft());
    slope.setColorAt(0, palette::keyTop);
    slope.setColorAt(1, palette::keyBottom);
    rounded(painter, top.adjusted(0, 1, 0, 0), 2, slope);
}

void stripKey(QPainter &painter, const QRect &rect, Key state)
{
    const QRectF socket(rect);
    rounded(painter, socket, 3, palette::stripShade);
    const QRectF face = socket.adjusted(1, 1, -1, -1);
    if (state == Key::Down) {
        rounded(painter, face, 2, palette::grey(26));
        return;
    }
    rounded(painter, face, 2, palette::grey(64));
    rounded(painter, face.adjusted(0, 0, 0, -1), 2, palette::grey(112));
    rounded(painter, face.adjusted(0, 1, 0, -1), 2, palette::grey(84));
}

void lampSocket(QPainter &painter, const QRectF &circle)
{
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette::light);
    painter.drawEllipse(circle.translated(0, 0.75));
    painter.setBrush(palette::grey(108));
    painter.drawEllipse(circle);
    const QRectF lens = circle.adjusted(1, 1, -1, -1);
    QRadialGradient dull(lens.center() - QPointF(lens.width() / 5, lens.height() / 5),
                         lens.width() * 0.7);
    dull.setColorAt(0, palette::grey(92));
    dull.setColorAt(1, palette::grey(52));
    painter.setBrush(dull);
    painter.drawEllipse(lens);
    painter.restore();
}

void lampLit(QPainter &painter, const QRectF &circle)
{
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 92, 0));
    painter.drawEllipse(circle);
    const QRectF lens = circle.adjusted(0.75, 0.75, -0.75, -0.75);
    QRadialGradient glow(lens.center(), lens.width() / 2);
    glow.setColorAt(0, palette::accentCore);
    glow.setColorAt(0.45, QColor(64, 236, 52));
    glow.setColorAt(1, palette::accent);
    painter.setBrush(glow);
    painter.drawEllipse(lens);
    painter.restore();
}

void arrow(QPainter &painter, const QPoint &tip, int height, Direction direction,
           const QColor &color)
{
    // From the middle of the tip's pixel and without antialiasing the rows are 1, 3, 5 ... pixels
    // wide and symmetric; at two device pixels per pixel the steps become half as high.
    const qreal x = tip.x() + 0.5;
    const qreal top = direction == Direction::Up ? tip.y() : tip.y() + 1;
    const qreal base = direction == Direction::Up ? top + height : top - height;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(
        QPolygonF{QPointF(x, top), QPointF(x + height, base), QPointF(x - height, base)});
    painter.restore();
}

void cabinet(QPainter &painter, const QRect &rect, int stripHeight)
{
    painter.fillRect(rect, palette::cabinetEdge);
    const QRect inside = rect.adjusted(1, 1, -1, -1);
    painter.fillRect(inside, palette::body);
    // Light on the upper and left edge of the body, shade on the others.
    const int bodyTop = rect.top() + stripHeight;
    painter.fillRect(QRect(inside.left(), bodyTop, 1, inside.bottom() - bodyTop + 1),
                     palette::light);
    painter.fillRect(QRect(inside.right(), bodyTop, 1, inside.bottom() - bodyTop + 1),
                     palette::shade);
    painter.fillRect(QRect(inside.left(), inside.bottom(), inside.width(), 1), palette::shade);

    const QRect stripRect(inside.left(), inside.top(), inside.width(), stripHeight - 1);
    painter.fillRect(stripRect, palette::strip);
    painter.fillRect(QRect(stripRect.left(), stripRect.top(), stripRect.width(), 1),
                     palette::stripLight);
    painter.fillRect(QRect(stripRect.left(), stripRect.bottom(), stripRect.width(), 1),
                     palette::stripShade);
    painter.fillRect(QRect(inside.left(), bodyTop, inside.width(), 1), palette::light);
}

} // namespace shapes
