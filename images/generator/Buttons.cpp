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
using shapes::Key;

Key stateOf(int row)
{
    return row == 0 ? Key::Rest : Key::Down;
}

QRect whole(const QSize &size)
{
    return {QPoint(), size};
}

void captionKey(QPainter &painter, const QSize &size, int row, std::string_view caption)
{
    const Key state = stateOf(row);
    shapes::key(painter, whole(size), state);
    shapes::textCentred(painter, Face::Small, whole(size), caption, shapes::keyInk(state));
}

QColor stripInk(int row)
{
    return row == 0 ? palette::stripInk : palette::accent;
}

void stripKeyOf(QPainter &painter, const QSize &size, int row)
{
    shapes::stripKey(painter, whole(size), stateOf(row));
}

// Three rows: at rest, the upper half pressed, the lower half pressed.
void spinKey(QPainter &painter, const QSize &size, int row)
{
    const int half = (size.height() + 1) / 2;
    const QRect upper(0, 0, size.width(), half);
    const QRect lower(0, half - 1, size.width(), size.height() - half + 1);
    shapes::key(painter, upper, row == 1 ? Key::Down : Key::Rest);
    shapes::key(painter, lower, row == 2 ? Key::Down : Key::Rest);
    const int centre = size.width() / 2;
    const QColor ink = palette::ink;
    shapes::arrow(painter, QPoint(centre, 3), 3, shapes::Direction::Up,
                  row == 1 ? palette::accent : ink);
    shapes::arrow(painter, QPoint(centre, size.height() - 4), 3, shapes::Direction::Down,
                  row == 2 ? palette::accent : ink);
}

// A key that opens a list.
void popupKey(QPainter &painter, const QSize &size, int row)
{
    const Key state = stateOf(row);
    shapes::key(painter, whole(size), state);
    const int x = 5;
    const int width = size.width() - 2 * x;
    const int top = (size.height() - 7) / 2;
    const QColor ink = shapes::keyInk(state);
    for (int index = 0; index < 3; ++index) {
        painter.fillRect(QRect(x, top + index * 3, width, 1), ink);
    }
}

void radio(QPainter &painter, const QSize &size, int row, qreal diameter)
{
    const QRectF lamp((size.width() - diameter) / 2, (size.height() - diameter) / 2, diameter,
                      diameter);
    shapes::key(painter, whole(size), Key::Rest);
    shapes::lampSocket(painter, lamp);
    if (row != 0) {
        painter.save();
        painter.setPen(Qt::NoPen);
        QRadialGradient halo(lamp.center(), size.width() / 2.0);
        halo.setColorAt(0, QColor(0, 204, 0, 170));
        halo.setColorAt(1, QColor(0, 204, 0, 0));
        painter.setBrush(halo);
        painter.drawRoundedRect(QRectF(whole(size)).adjusted(1, 1, -1, -1), 2, 2);
        painter.restore();
        shapes::lampLit(painter, lamp);
    }
}

} // namespace

void windowClose(QPainter &painter, int, int row)
{
    const QSize size = mainwindow::closeButton.size();
    stripKeyOf(painter, size, row);
    painter.save();
    painter.setPen(QPen(stripInk(row), 1.6, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(QPointF(4.5, 4.5), QPointF(10.5, 10.5));
    painter.drawLine(QPointF(10.5, 4.5), QPointF(4.5, 10.5));
    painter.restore();
}

void windowMinimize(QPainter &painter, int, int row)
{
    stripKeyOf(painter, mainwindow::minimizeButton.size(), row);
    painter.fillRect(QRect(4, 9, 7, 2), stripInk(row));
}

void windowOnTop(QPainter &painter, int, int row)
{
    stripKeyOf(painter, mainwindow::onTopButton.size(), row);
    // A window in front of another one.
    const QColor ink = stripInk(row);
    shapes::roundedEdge(painter, QRectF(6, 3, 6, 6), 0, row == 0 ? palette::stripQuietInk : ink);
    painter.fillRect(QRect(3, 6, 6, 6), ink);
}

void windowSize(QPainter &painter, int category, int row)
{
    const QSize size = mainwindow::sizeButtonLarge.size();
    const Key state = stateOf(row);
    // Grows out of the window's lower edge, whose outline goes on below it.
    constexpr int hidden = 4;
    shapes::key(painter, QRect(0, 0, size.width(), size.height() + hidden), state);
    painter.fillRect(QRect(0, size.height() - 1, size.width(), 1), palette::cabinetEdge);
    const int centre = size.width() / 2;
    if (category == 0) {
        shapes::arrow(painter, QPoint(centre, 6), 3, shapes::Direction::Down,
                      shapes::keyInk(state));
    } else {
        shapes::arrow(painter, QPoint(centre, 3), 3, shapes::Direction::Up, shapes::keyInk(state));
    }
}

void store(QPainter &painter, int, int row)
{
    // The glow behind this key shines through where other keys have their socket, which lies in the
    // view's background here.
    const QRect all = whole(templateview::storeButton.size());
    const Key state = stateOf(row);
    shapes::keyFace(painter, QRectF(all).adjusted(1, 1, -1, -1), state);
    shapes::textCentred(painter, Face::Small, all, "STORE", shapes::keyInk(state));
}

void library(QPainter &painter, int, int row)
{
    captionKey(painter, templateview::libraryButton.size(), row, "LIBRARY");
}

void libraryOk(QPainter &painter, int, int row)
{
    captionKey(painter, libraryview::okButton.size(), row, "OK");
}

void libraryCancel(QPainter &painter, int, int row)
{
    captionKey(painter, libraryview::cancelButton.size(), row, "CANCEL");
}

void libraryImport(QPainter &painter, int, int row)
{
    captionKey(painter, libraryview::importButton.size(), row, "IMPORT");
}

void libraryFile(QPainter &painter, int, int row)
{
    const QSize size = libraryview::fileKey;
    const Key state = stateOf(row);
    shapes::key(painter, whole(size), state);
    // A folder.
    const QColor ink = shapes::keyInk(state);
    const QColor ground = state == Key::Rest ? palette::keyTop : palette::keyDown;
    painter.fillRect(QRect(5, 3, 4, 1), ink);
    painter.fillRect(QRect(4, 4, 6, 1), ink);
    painter.fillRect(QRect(4, 5, 11, 6), ink);
    painter.fillRect(QRect(5, 6, 9, 1), ground);
}

void ok(QPainter &painter, int, int row)
{
    captionKey(painter, overlaypanel::button, row, "OK");
}

void cancel(QPainter &painter, int, int row)
{
    captionKey(painter, overlaypanel::button, row, "Cancel");
}

void yes(QPainter &painter, int, int row)
{
    captionKey(painter, overlaypanel::button, row, "Yes");
}

void no(QPainter &painter, int, int row)
{
    captionKey(painter, overlaypanel::button, row, "No");
}

void start(QPainter &painter, int, int row)
{
    captionKey(painter, overlaypanel::button, row, "Start");
}

void retry(QPainter &painter, int, int row)
{
    captionKey(painter, overlaypanel::button, row, "Retry");
}

void spinLarge(QPainter &painter, int, int row)
{
    spinKey(painter, templateview::templateSpin.size(), row);
}

void spinSmall(QPainter &painter, int, int row)
{
    spinKey(painter, templateview::ccSpin.size(), row);
}

void popupLarge(QPainter &painter, int, int row)
{
    popupKey(painter, templateview::templatePopup.size(), row);
}

void popupSmall(QPainter &painter, int, int row)
{
    popupKey(painter, templateview::ccPopup.size(), row);
}

void pulldown(QPainter &painter, int, int row)
{
    const QSize size(19, overlaypanel::portPulldown.height());
    const Key state = stateOf(row);
    shapes::key(painter, whole(size), state);
    shapes::arrow(painter, QPoint(size.width() / 2, 11), 5, shapes::Direction::Down,
                  shapes::keyInk(state));
}

void radioFormat(QPainter &painter, int, int row)
{
    radio(painter, templateview::formatPlain.size(), row, 8);
}

void radioType(QPainter &painter, int, int row)
{
    radio(painter, templateview::remoteRadio.size(), row, 10);
}

} // namespace drawings
