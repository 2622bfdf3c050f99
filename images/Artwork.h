// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtGui/QPixmap>

// Every picture lies in the program twice, as ":/images/name.png" and, drawn for two device pixels
// per pixel, as ":/images/name@2x.png". QPixmap loads the file that it is told and knows the second
// by its name: its device pixel ratio is then 2, and its size in device independent pixels that of
// the first. It doesn't choose between the two; these do.
//
// All take the path of the first file. A path without a counterpart, or of no picture at all, is
// used as it is. A picture once loaded stays until the application ends.

// The path of the file for this many device pixels per pixel. Between the two it is the finer one,
// since a picture looks better made smaller than made larger.
QString artworkFile(const QString &path, qreal devicePixelRatio);

// The picture for this many device pixels per pixel; null if there is none. Thread: GUI.
QPixmap artwork(const QString &path, qreal devicePixelRatio);

// The picture for the finest screen there is. For code that loads its pictures once, such as a
// form, which says the path as a literal of Latin letters. Thread: GUI.
QPixmap artwork(const char *path);

// The same picture for a screen of this many device pixels per pixel: what a widget paints that was
// given `picture` by one of the above, since its window may have moved to another screen. A pixmap
// from elsewhere comes back as it is. Thread: GUI.
QPixmap artworkFor(const QPixmap &picture, qreal devicePixelRatio);
