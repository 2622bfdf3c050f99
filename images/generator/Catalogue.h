// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QSize>
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <span>

// One picture of the program. A combined picture is a grid of slices: the columns are categories,
// the rows are the states of a control, from rest down.
struct Artwork
{
    // Draws one slice with its upper left corner at the painter's origin.
    using Draw = void (*)(QPainter &painter, int category, int row);

    const char *name;
    QSize slice;
    int categories;
    int rows;
    Draw draw;

    constexpr QSize size() const { return {slice.width() * categories, slice.height() * rows}; }
};

// Every picture of the program, each once.
std::span<const Artwork> catalogue();

// The picture at one or two device pixels per pixel; its device pixel ratio is set.
QImage render(const Artwork &artwork, int ratio);
