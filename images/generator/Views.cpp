// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/generator/Drawings.h"
#include "images/generator/Geometry.h"
#include "images/generator/Palette.h"
#include "images/generator/Shapes.h"

namespace drawings
{
namespace
{

using shapes::Face;

// Lettering of a view keeps clear of its edges by as much as its widgets do.
constexpr int marginLeft = 9;
constexpr int marginRight = 436;

constexpr std::array<std::string_view, 4> columnMarks{"A", "B", "C", "D"};
constexpr std::array<std::string_view, 3> rowMarks{"1", "2", "3"};

void paintBody(QPainter &painter, const QSize &size)
{
    painter.fillRect(QRect(QPoint(), size), palette::body);
}

// A field around a widget that shows or edits text, up to two pixels before the key behind it.
void fieldAround(QPainter &painter, const QRect &widget, int right)
{
    const QRect outer = widget.adjusted(-3, -1, 0, 1);
    shapes::well(painter, QRect(outer.topLeft(), QSize(right - outer.left(), outer.height())),
                 palette::field);
}

// Marks and the places of the cells. The letters stand above the first row, the numbers in a column
// of their own beside the grid.
void knobGrid(QPainter &painter, const QRect &display, const KnobGrid &grid, int letterBaseline,
              int numberCentre)
{
    shapes::display(painter, display);
    const QRect first = grid.at(0, 0);
    const QRect last = grid.at(3, 2);
    const QRect glass = display.adjusted(3, 3, -3, -3);
    const bool numbersRight = numberCentre > last.right();
    const int ruleX = numbersRight ? (last.right() + 7) : first.left() - 6;
    painter.fillRect(QRect(ruleX, first.top(), 1, last.bottom() - first.top() + 1),
                     palette::glassRule);
    painter.fillRect(QRect(glass.left() + 5, letterBaseline + 4, glass.width() - 10, 1),
                     palette::glassRule);
    for (int column = 0; column < 4; ++column) {
        const QRect cell = grid.at(column, 0);
        shapes::textCentred(painter, Face::Expanded,
                            QRect(cell.left(), letterBaseline - 7, cell.width(), 7),
                            columnMarks[static_cast<std::size_t>(column)], palette::ink);
    }
    for (int row = 0; row < 3; ++row) {
        const QRect cell = grid.at(0, row);
        shapes::textCentred(painter, Face::Expanded,
                            QRect(numberCentre - 10, cell.top(), 21, cell.height()),
                            rowMarks[static_cast<std::size_t>(row)], palette::ink);
        for (int column = 0; column < 4; ++column) {
            const QRectF place(grid.at(column, row));
            shapes::rounded(painter, place, 2, palette::cell);
            shapes::roundedEdge(painter, place, 2, palette::cellEdge);
        }
    }
}

// The tab says which of the two kinds of control is meant, and lights up when it is in force.
void paintTab(QPainter &painter, const QSize &size, std::string_view caption, bool lit)
{
    const QRectF all{QPointF(), QSizeF(size)};
    const qreal centre = size.width() / 2.0;
    // Lamp and caption stand together in the middle.
    const int top = size.height() / 2 - 14;
    const QRectF lamp(centre - 4.5, top, 9, 9);
    if (lit) {
        shapes::rounded(painter, all, 3, palette::grey(30));
        shapes::rounded(painter, all.adjusted(1, 1, -1, -1), 2, palette::strip);
        painter.save();
        painter.setPen(Qt::NoPen);
        QRadialGradient halo(lamp.center(), 19);
        halo.setColorAt(0, QColor(0, 204, 0, 130));
        halo.setColorAt(1, QColor(0, 204, 0, 0));
        painter.setBrush(halo);
        painter.drawRoundedRect(all.adjusted(1, 1, -1, -1), 2, 2);
        painter.restore();
        shapes::lampLit(painter, lamp);
    } else {
        shapes::rounded(painter, all, 3, palette::shade);
        shapes::rounded(painter, all.adjusted(1, 1, -1, -1), 2, palette::light);
        shapes::rounded(painter, all.adjusted(1, 2, -1, -1), 2, palette::body);
        shapes::lampSocket(painter, lamp);
    }
    shapes::textCentred(painter, Face::Small, QRect(0, top + 17, size.width(), 7), caption,
                        lit ? palette::stripInk : palette::ink);
}

void tabAt(QPainter &painter, const QRect &place, std::string_view caption, bool lit)
{
    painter.save();
    painter.translate(place.topLeft());
    paintTab(painter, place.size(), caption, lit);
    painter.restore();
}

// The row of knobs on the instrument that a row of the display stands for.
void engravedKnobs(QPainter &painter, int x, int centre, int row)
{
    constexpr qreal radius = 5.5;
    constexpr int pitch = 14;
    // Pointers as someone has left them; a row of equal ones would look like a pattern.
    constexpr std::array<std::array<int, 4>, 3> degrees{
        {{-120, 20, 60, -40}, {100, 0, -70, -20}, {30, 130, -100, 70}}};
    painter.save();
    for (int column = 0; column < 4; ++column) {
        const QPointF middle(x + radius + column * pitch, centre + 0.5);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette::light, 1));
        painter.drawEllipse(middle + QPointF(0, 1), radius - 0.5, radius - 0.5);
        painter.setPen(QPen(palette::shade, 1));
        painter.drawEllipse(middle, radius - 0.5, radius - 0.5);
        painter.translate(middle);
        const int turn = degrees[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
        painter.rotate(turn);
        painter.setPen(QPen(palette::outline, 1, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(QPointF(0, -1), QPointF(0, -4.5));
        painter.rotate(-turn);
        painter.translate(-middle);
    }
    painter.restore();
}

void label(QPainter &painter, int x, int baseline, std::string_view text)
{
    shapes::textLeft(painter, Face::Small, x, baseline, text, palette::ink);
}

// Beside a key, in line with its middle, ending before it.
void labelBefore(QPainter &painter, const QRect &keyRect, int gap, std::string_view text)
{
    const int top = keyRect.top() + (keyRect.height() - 7) / 2;
    shapes::textRight(painter, Face::Small, keyRect.left() - gap, top + 7, text, palette::ink);
}

} // namespace

void templateView(QPainter &painter, int, int)
{
    using namespace templateview;
    paintBody(painter, size);

    // The document.
    label(painter, marginLeft, fileName.top() + 10, "Document");
    fieldAround(painter, fileName, fileName.right() + 3);
    shapes::lampSocket(painter, QRectF(bankEditLamp));
    shapes::lampSocket(painter, QRectF(fileEditLamp));
    // The key is there only while there is something to store; without it its place says what it
    // is, unlit as the online lamp.
    shapes::keySocket(painter, QRectF(storeButton));
    shapes::keyFace(painter, QRectF(storeButton).adjusted(1, 1, -1, -1), shapes::Key::Down);
    shapes::textCentred(painter, Face::Small, storeButton, "STORE", palette::unlitInk);

    // The template.
    shapes::plate(painter, QRect(0, 20, size.width(), 28));
    fieldAround(painter, templateName, templateSpin.left() - 2);
    labelBefore(painter, vstiName, 6, "VSTi");
    fieldAround(painter, vstiName, vstiPopup.left() - 2);

    // The twelve knobs.
    shapes::plate(painter, controllerPanel);
    const QRect display(74, 84, marginRight - 74, 171);
    const int captions = 76;
    shapes::textCentred(painter, Face::Small, QRect(remoteRadio.left() - 10, captions - 7, 39, 7),
                        "Remote", palette::ink);
    shapes::textCentred(painter, Face::Small, QRect(ccRadio.left() - 10, captions - 7, 39, 7), "CC",
                        palette::ink);
    shapes::heading(painter, display.left() + 1, captions, marginRight, "REMOTE CONTROL KNOBS");
    knobGrid(painter, display, knobs, 105, 419);
    for (int row = 0; row < 3; ++row) {
        engravedKnobs(painter, 10, knobs.at(0, row).center().y(), row);
    }

    // The knob that is selected.
    shapes::plate(painter, settingPanel);
    const int baseline = settingPanel.top() + 14;
    shapes::heading(painter, marginLeft, baseline, marginRight, "SELECTED KNOB");
    shapes::grooveDown(painter, 225, remoteTab.top(), remoteTab.height());
    tabAt(painter, templateview::remoteTab, "Remote", false);
    tabAt(painter, templateview::ccTab, "CC", false);
    label(painter, remoteParameter.left() - 2, remoteParameter.top() - 5, "Parameter");
    fieldAround(painter, remoteParameter, remotePopup.left() - 2);
    const int left = displayName.left() - 3;
    label(painter, left + 1, ccNumber.top() - 5, "CC Number");
    shapes::well(painter, QRect(left, ccNumber.top() - 1, ccSpin.left() - 2 - left, 17),
                 palette::field);
    labelBefore(painter, ccPopup, 5, "CC List");
    label(painter, left + 1, displayName.top() - 5, "Display Name");
    fieldAround(painter, displayName, displayName.right() + 3);
    label(painter, left + 1, formatPlain.top() - 6, "Display Format");
    labelBefore(painter, formatPlain, 4, "0 to 127");
    labelBefore(painter, formatCentred, 4, "-64 to +63");
}

void libraryView(QPainter &painter, int, int)
{
    using namespace libraryview;
    paintBody(painter, size);

    shapes::heading(painter, marginLeft, okButton.top() + 10, okButton.left() - 8, "LIBRARY");
    fieldAround(painter, fileName, fileButton.left() - 2);
    shapes::textRight(painter, Face::Small, templateScroll.right(), importButton.top() + 10,
                      "Templates", palette::ink);

    // Both lists and their scroll bars. The rows show where no list covers them.
    for (const auto &[list, scroll] :
         {std::pair(importList, importScroll), std::pair(templateList, templateScroll)}) {
        const QRect ground(list.left(), scroll.top(), scroll.right() - list.left() + 1,
                           scroll.height());
        painter.fillRect(ground.adjusted(0, 0, 0, 1), palette::light);
        painter.fillRect(ground, palette::listGround);
        for (int row = 0; row < visibleRows; ++row) {
            painter.fillRect(QRect(list.left(), firstRow + row * rowPitch, list.width(), rowHeight),
                             row % 2 == 0 ? palette::listEven : palette::listOdd);
        }
        painter.fillRect(scroll, palette::grey(102));
        painter.fillRect(QRect(ground.left(), ground.top(), ground.width(), 1), palette::grey(30));
    }

    // Until a file is open no list covers this. It lies inside of one row, so that nothing of it
    // shows between the rows of the list later.
    constexpr int hintRow = 5;
    shapes::textCentred(
        painter, Face::Large,
        QRect(importList.left(), firstRow + hintRow * rowPitch, importList.width(), rowHeight),
        "Open a file to import from", palette::listInk);

    // The template under the cursor.
    shapes::plate(painter,
                  QRect(0, preview.top() - 3, size.width(), size.height() - preview.top() + 3));
    shapes::heading(painter, marginLeft, preview.top() + 12, marginRight, "PREVIEW");
    tabAt(painter, tab, "CC", true);
    labelBefore(painter, vsti, 8, "VSTi");
    fieldAround(painter, vsti, vsti.right() + 3);
    knobGrid(painter, QRect(84, 280, marginRight - 84, 117), knobs, 292, 92);
}

void selectedCell(QPainter &painter, int, int)
{
    const QRectF all{QPointF(), QSizeF(templateview::knobs.cell)};
    // Lifted: its edge is dark and it throws a shadow on the glass.
    shapes::rounded(painter, all, 3, palette::grey(0, 70));
    const QRectF face = all.adjusted(0, 0, 0, -1);
    shapes::rounded(painter, face, 2.5, palette::grey(72));
    shapes::rounded(painter, face.adjusted(1, 1, -1, -1), 1.5, palette::cellLifted);
}

void tabRemote(QPainter &painter, int, int)
{
    paintTab(painter, templateview::remoteTab.size(), "Remote", true);
}

void tabCc(QPainter &painter, int, int)
{
    paintTab(painter, templateview::ccTab.size(), "CC", true);
}

void tabLibraryRemote(QPainter &painter, int, int)
{
    paintTab(painter, libraryview::tab.size(), "Remote", true);
}

} // namespace drawings
