// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FontHelpers.h"

#include <QtGui/QFont>
#include <QtGui/QFontMetrics>
#include <QtWidgets/QWidget>

#include <algorithm>

namespace
{

const QLatin1String SmallFamily("Corvan QRL 8");
constexpr int SmallPixelSize = 8;
constexpr qreal SmallLetterSpacingPx = 0.1;
const QLatin1String LargeFamily("Corvan QRL 10");
constexpr int LargePixelSize = 10;

// Kerning, ligatures and letters that change their form by what follows can make a text narrower by
// one more character. None of that reaches farther, or takes more away, than this.
constexpr qsizetype ShapingReach = 64;
constexpr qint64 ShapingHeights = 12;

} // namespace

void adjustFont(QWidget *widget)
{
    if (!widget) {
        return;
    }
    if (widget->testAttribute(Qt::WA_SetFont)) {
        QFont font = widget->font();
        font.setStyleHint(QFont::AnyStyle, QFont::NoAntialias);
        // The letters lie on whole pixels as they are. Hinting would round their widths, and the
        // letter spacing of a tenth of a pixel with them, to unequal gaps.
        font.setHintingPreference(QFont::PreferNoHinting);
        const QString family = font.family();
        if (family == SmallFamily) {
            font.setPixelSize(SmallPixelSize);
            font.setLetterSpacing(QFont::AbsoluteSpacing, SmallLetterSpacingPx);
            widget->setFont(font);
        } else if (family == LargeFamily) {
            font.setPixelSize(LargePixelSize);
            widget->setFont(font);
        }
    } else if (const QWidget *parent = widget->parentWidget();
               parent && parent->testAttribute(Qt::WA_SetFont)) {
        widget->setFont(parent->font());
    }
    const QObjectList children = widget->children();
    for (QObject *child : children) {
        adjustFont(qobject_cast<QWidget *>(child));
    }
}

qsizetype trimmedLength(const QFontMetrics &metrics, const QString &text, const QString &label,
                        int width)
{
    const auto advance = [&](qsizetype length) {
        return metrics.horizontalAdvance(text.left(length) + label);
    };
    // Halving finds an end of the lengths that fit, measuring mostly short texts. It would be the
    // longest one if every character made the text wider; so look a little farther.
    qsizetype fitting = 0;
    qsizetype tooLong = text.size();
    while (tooLong - fitting > 1) {
        const qsizetype middle = fitting + (tooLong - fitting) / 2;
        (advance(middle) <= width ? fitting : tooLong) = middle;
    }
    const qsizetype last = std::min(fitting + ShapingReach, text.size() - 1);
    const qint64 widest = width + ShapingHeights * metrics.height();
    for (qsizetype length = fitting + 1; length <= last; ++length) {
        const int measured = advance(length);
        if (measured <= width) {
            fitting = length;
        } else if (measured > widest) {
            break;
        }
    }
    if (fitting > 0 && text.at(fitting - 1).isHighSurrogate()) {
        --fitting;
    }
    return fitting;
}

QString trimText(QWidget *widget, const QString &text, int width)
{
    if (!widget) {
        return text;
    }
    const QFontMetrics metrics = widget->fontMetrics();
    if (metrics.horizontalAdvance(text) <= width) {
        return text;
    }
    const qsizetype length = trimmedLength(metrics, text, TrimLabel, width);
    return length > 0 ? text.left(length) + TrimLabel : QString();
}
