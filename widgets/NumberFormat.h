// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

// The text of a number by a printf format, with a point as the decimal sign whatever the locale.
//
// The first conversion of the format shows the number: "aAeEfFgG" as it is, "di" and "xXou" cut to
// a whole one. Flags, width and precision are as in C, the last two at most 99. "%%" is a percent
// sign. A conversion that takes no number, and every one after the first, stands as it is written:
// a format comes from a form and never makes the program read what is not there.
QString formatNumber(const QString &format, double number);
