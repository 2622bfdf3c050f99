// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/generator/Drawings.h"
#include "images/generator/Geometry.h"
#include "images/generator/Palette.h"
#include "images/generator/Shapes.h"

namespace drawings
{
namespace
{

using namespace overlaypanel;
using shapes::Face;

// Content of a box, from the left edge of its fields to the right edge of its buttons.
constexpr int contentLeft = portPulldown.left();
constexpr int contentRight = portPulldown.right() + 1;
// Where a message or a question stands. Its first line is the message's widget.
constexpr QRect display(82, 138, 279, 98);

// The window's body without its light, and the box above it.
void panel(QPainter &painter, std::string_view title)
{
    const QRect all(QPoint(), size);
    painter.fillRect(all, palette::dimmed);
    painter.fillRect(QRect(0, 0, size.width(), 1), palette::grey(70));
    painter.fillRect(QRect(0, 0, 1, size.height()), palette::grey(70));
    painter.fillRect(QRect(0, size.height() - 1, size.width(), 1), palette::grey(150));
    painter.fillRect(QRect(size.width() - 1, 0, 1, size.height()), palette::grey(150));

    // A soft shadow, as far below as it is wide.
    for (int spread = 12; spread > 0; --spread) {
        const QRectF shadow = QRectF(box).adjusted(-spread, -spread + 5, spread, spread + 5);
        shapes::rounded(painter, shadow, spread + 1, palette::grey(0, 7));
    }
    shapes::cabinet(painter, box, mainwindow::stripHeight);
    shapes::textLeft(painter, Face::Expanded, message.left(), box.top() + 17, title,
                     palette::stripInk);
    // Sets the row of buttons apart.
    shapes::grooveAcross(painter, contentLeft, buttonRow - 13, contentRight - contentLeft);
}

void line(QPainter &painter, Face face, int top, std::string_view text)
{
    shapes::textCentred(painter, face,
                        QRect(message.left(), top, message.width(), message.height()), text,
                        palette::ink);
}

enum class Sign { Question, Caution };

// A disc above the message, centred on it.
void sign(QPainter &painter, Sign which)
{
    const QRectF disc(message.center().x() + 0.5 - 11, display.top() + 16, 22, 22);
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette::ink);
    painter.drawEllipse(disc);
    painter.restore();
    const std::string_view mark = which == Sign::Question ? "?" : "!";
    const int width = shapes::textWidth(Face::Small, mark, 2);
    shapes::textScaled(painter, Face::Small, 2, static_cast<int>(disc.left()) + (22 - width) / 2,
                       static_cast<int>(disc.top()) + 18, mark, palette::cellLifted);
}

void messagePanel(QPainter &painter, std::string_view title, Sign which)
{
    panel(painter, title);
    shapes::display(painter, display);
    sign(painter, which);
}

void resetPanel(QPainter &painter, std::string_view question)
{
    messagePanel(painter, "RESET", Sign::Question);
    line(painter, Face::Large, message.top(), question);
    line(painter, Face::Small, message.top() + 18, "All templates in the editor are replaced.");
}

void portField(QPainter &painter, const QRect &pulldown, std::string_view caption)
{
    shapes::textLeft(painter, Face::Small, contentLeft + 1, pulldown.top() - 5, caption,
                     palette::ink);
    // Up to the key at the right end.
    shapes::well(painter, pulldown.adjusted(0, 0, -21, -1), palette::field);
}

void lightStrip(QPainter &painter)
{
    shapes::display(painter, runningMessage.adjusted(-5, -7, 5, 7));
}

} // namespace

void panelAbout(QPainter &painter, int, int)
{
    panel(painter, "ABOUT");
    shapes::display(painter, QRect(display.left(), 128, display.width(), 98));
    constexpr std::string_view name = "TARN/TERN";
    const int width = shapes::textWidth(Face::Expanded, name, 2);
    shapes::textScaled(painter, Face::Expanded, 2, message.center().x() - width / 2, 157, name,
                       palette::ink);
}

void panelSynchronisation(QPainter &painter, int, int)
{
    panel(painter, "SYNCHRONISATION");
    portField(painter, portPulldown, "MIDI Port");
    lightStrip(painter);
}

void panelScan(QPainter &painter, int, int)
{
    panel(painter, "VSTi DATABASE");
    lightStrip(painter);
}

void panelSetup(QPainter &painter, int, int)
{
    panel(painter, "SETUP");
    portField(painter, portPulldown, "MIDI Port");
    portField(painter, dawPulldown, "DAW");
}

void panelSaveChange(QPainter &painter, int, int)
{
    messagePanel(painter, "SAVE", Sign::Question);
}

void panelExitAnyway(QPainter &painter, int, int)
{
    messagePanel(painter, "PLEASE CONFIRM", Sign::Question);
}

void panelPortError(QPainter &painter, int, int)
{
    messagePanel(painter, "MIDI PORT", Sign::Caution);
    line(painter, Face::Small, message.top() + 18, "This MIDI port could not be opened.");
}

void panelCaution(QPainter &painter, int, int)
{
    messagePanel(painter, "CAUTION", Sign::Caution);
}

void panelResetStored(QPainter &painter, int, int)
{
    resetPanel(painter, "Reset to the stored data?");
}

void panelResetOriginal(QPainter &painter, int, int)
{
    resetPanel(painter, "Reset to the original data at startup?");
}

void panelResetFactory(QPainter &painter, int, int)
{
    resetPanel(painter, "Reset to the factory settings?");
}

void synchronisationError(QPainter &painter, int, int)
{
    const QRect all(QPoint(), runningMessage.size());
    shapes::textCentred(painter, Face::Large, all, "Communication error. Please try again.",
                        palette::warning);
}

} // namespace drawings
