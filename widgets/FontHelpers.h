// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

class QFontMetrics;
class QWidget;

// Fits texts to the fonts of the interface, which are made of whole pixels. Thread: GUI.

// What stands for the part that was cut off. The fonts of the interface draw this character, a
// ligature of no use to them, as a narrow ellipsis.
inline const QString TrimLabel(QChar(u'\uFB02'));

// Gives the widget and all widgets in it the sizes at which the interface's fonts are crisp. A
// widget without a font of its own takes that of its parent, if that one has its own. Called once
// by each view and panel, on itself, after its widgets are made.
void adjustFont(QWidget *widget);

// The text as it is if it is at most width pixels wide in the widget's font; else as much of its
// start as fits together with TrimLabel, and TrimLabel. Empty if not even one character fits.
QString trimText(QWidget *widget, const QString &text, int width);

// How many characters remain if they are taken off the end of the text, one after the other and at
// least one, until the rest fits into width pixels with the label behind it. 0: none fits. A pair
// of surrogates goes as one. The time is that of measuring the text a few times, however long it
// is.
qsizetype trimmedLength(const QFontMetrics &metrics, const QString &text, const QString &label,
                        int width);
