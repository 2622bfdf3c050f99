// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentLooks.h"

#include "fonts/ApplicationFonts.h"

#include <QtCore/QString>
#include <QtGui/QFontMetrics>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

namespace InstrumentLooks
{
namespace
{

// The fonts of the interface draw this character as a narrow ellipsis.
const QChar CutMark(u'\uFB02');

int size(Face face)
{
    return face == Face::Large ? 10 : 8;
}

int capHeight(Face face)
{
    return face == Face::Large ? 8 : 7;
}

int gapBehind(Face face)
{
    return face == Face::Expanded ? 2 : 1;
}

} // namespace

QFont font(Face face, int magnification)
{
    QFont result(QString(face == Face::Small   ? FontFamilyQRL8
                         : face == Face::Large ? FontFamilyQRL10
                                               : FontFamilyQRL8Expanded));
    result.setStyleHint(QFont::AnyStyle, QFont::NoAntialias);
    result.setHintingPreference(QFont::PreferNoHinting);
    result.setPixelSize(size(face) * magnification);
    return result;
}

int textWidth(Face face, const QString &text, int magnification)
{
    if (text.isEmpty()) {
        return 0;
    }
    return (QFontMetrics(font(face)).horizontalAdvance(text) - gapBehind(face)) * magnification;
}

QString fitted(Face face, const QString &text, int width, int magnification)
{
    if (textWidth(face, text, magnification) <= width) {
        return text;
    }
    QString start = text;
    while (!start.isEmpty()) {
        start.chop(1);
        QString cut = start.trimmed() + CutMark;
        if (textWidth(face, cut, magnification) <= width) {
            return cut;
        }
    }
    return {};
}

void text(QPainter &painter, Face face, const QPoint &baseline, const QString &text,
          const QColor &color, int magnification)
{
    painter.save();
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    painter.setFont(font(face, magnification));
    painter.setPen(color);
    painter.drawText(baseline, text);
    painter.restore();
}

void textRight(QPainter &painter, Face face, const QPoint &baselineEnd, const QString &string,
               const QColor &color, int magnification)
{
    const QPoint width(textWidth(face, string, magnification), 0);
    text(painter, face, baselineEnd - width, string, color, magnification);
}

void textCentred(QPainter &painter, Face face, const QRect &within, const QString &string,
                 const QColor &color)
{
    const int x = within.left() + (within.width() - textWidth(face, string) + 1) / 2;
    const int top = within.top() + (within.height() - capHeight(face)) / 2;
    text(painter, face, QPoint(x, top + capHeight(face)), string, color);
}

void rounded(QPainter &painter, const QRectF &rect, qreal radius, const QColor &color)
{
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    painter.fillPath(path, color);
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

void lamp(QPainter &painter, const QPointF &center, bool lit)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (lit) {
        QRadialGradient halo(center, 7);
        QColor glow = Accent;
        glow.setAlpha(130);
        halo.setColorAt(0, glow);
        glow.setAlpha(0);
        halo.setColorAt(1, glow);
        painter.setBrush(halo);
        painter.drawEllipse(center, 7, 7);
    }
    painter.setBrush(lit ? grey(20) : grey(40));
    painter.drawEllipse(center, 4, 4);
    painter.setBrush(lit ? Accent : LampOff);
    painter.drawEllipse(center, 3, 3);
    painter.setBrush(lit ? AccentCore : grey(110));
    painter.drawEllipse(center - QPointF(0.6, 0.8), 1.1, 1.1);
    painter.restore();
}

} // namespace InstrumentLooks
