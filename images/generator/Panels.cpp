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
constexpr int contentRight = buttonColumns.back() + button.width();
constexpr int bezel = 3;

// A display whose glass is as wide as the content.
constexpr QRect displayBetween(int top, int bottom)
{
    return {contentLeft - bezel, top, contentRight - contentLeft + 2 * bezel, bottom - top};
}

// Where a message or a question stands, with a sign above it.
constexpr int displayTop = 133;
constexpr QRect messageDisplay = displayBetween(displayTop, 229);
constexpr QRect questionDisplay = displayBetween(displayTop, 239);

enum class Close { Button, None };

// The window's body without its light, and the box above it.
void panel(QPainter &painter, std::string_view title, Close close)
{
    const QRect all(QPoint(), size);
    painter.fillRect(all, palette::dimmed);
    // Set into the window: its upper and left edges throw a shadow.
    constexpr int depth = 9;
    QLinearGradient above(0, 0, 0, depth);
    above.setColorAt(0, palette::grey(0, 70));
    above.setColorAt(1, palette::grey(0, 0));
    painter.fillRect(QRect(0, 0, size.width(), depth), above);
    QLinearGradient left(0, 0, depth, 0);
    left.setColorAt(0, palette::grey(0, 55));
    left.setColorAt(1, palette::grey(0, 0));
    painter.fillRect(QRect(0, 0, depth, size.height()), left);
    painter.fillRect(QRect(0, 0, size.width(), 1), palette::grey(64));
    painter.fillRect(QRect(0, 0, 1, size.height()), palette::grey(64));
    painter.fillRect(QRect(0, size.height() - 1, size.width(), 1), palette::light);
    painter.fillRect(QRect(size.width() - 1, 0, 1, size.height()), palette::light);

    // A soft shadow, as far below as it is wide.
    for (int spread = 12; spread > 0; --spread) {
        const QRectF shadow = QRectF(box).adjusted(-spread, -spread + 5, spread, spread + 5);
        shapes::rounded(painter, shadow, spread + 1, palette::grey(0, 7));
    }
    shapes::cabinet(painter, box, mainwindow::stripHeight);
    // Without a close button the title begins where that would.
    const int titleX = close == Close::Button ? message.left() : closeButton.left() + 8;
    shapes::textLeft(painter, Face::Expanded, titleX, box.top() + 17, title, palette::stripInk);
}

// Sets the row of buttons apart.
void buttonRule(QPainter &painter)
{
    shapes::grooveAcross(painter, contentLeft, buttonRow - 14, contentRight - contentLeft);
}

void line(QPainter &painter, Face face, int top, std::string_view text)
{
    shapes::textCentred(painter, face,
                        QRect(message.left(), top, message.width(), message.height()), text,
                        palette::ink);
}

enum class Sign { Question, Caution };

// A disc above the message, centred on it.
void sign(QPainter &painter, Sign which, int top)
{
    constexpr int diameter = 22;
    const QRect disc(message.center().x() - diameter / 2 + 1, top, diameter, diameter);
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette::ink);
    painter.drawEllipse(QRectF(disc));
    painter.restore();
    const std::string_view mark = which == Sign::Question ? "?" : "!";
    const int width = shapes::textWidth(Face::Small, mark, 2);
    shapes::textScaled(painter, Face::Small, 2, disc.left() + (diameter - width) / 2,
                       disc.top() + 18, mark, palette::cellLifted);
}

void messagePanel(QPainter &painter, std::string_view title, Close close, Sign which)
{
    panel(painter, title, close);
    shapes::display(painter, messageDisplay);
    sign(painter, which, displayTop + 15);
    buttonRule(painter);
}

void resetPanel(QPainter &painter, std::string_view question)
{
    panel(painter, "RESET", Close::None);
    shapes::display(painter, questionDisplay);
    sign(painter, Sign::Question, displayTop + 14);
    buttonRule(painter);
    line(painter, Face::Large, message.top(), question);
    line(painter, Face::Small, message.top() + 20, "All templates in the editor will be replaced.");
}

void portField(QPainter &painter, const QRect &pulldown, std::string_view caption)
{
    shapes::textLeft(painter, Face::Small, pulldown.left() + 1, pulldown.top() - 5, caption,
                     palette::ink);
    // Up to the key at the right end.
    shapes::well(painter, pulldown.adjusted(0, 0, -21, -1), palette::field);
}

// The places of the running light, unlit.
void lights(QPainter &painter)
{
    constexpr int step = 7;
    for (int x = 0; x < runningLight.width(); x += step) {
        const QRectF light(runningLight.left() + x, runningLight.top(), step - 1,
                           runningLight.height());
        shapes::rounded(painter, light, 1, palette::cell);
    }
}

// What all this is for: a keyboard, whose nineteen white keys are as wide as the content.
void keyboard(QPainter &painter, int top, int height)
{
    constexpr int whiteKeys = 19;
    constexpr int width = (contentRight - contentLeft) / whiteKeys;
    static_assert(width * whiteKeys == contentRight - contentLeft);
    const QRect bed(contentLeft - bezel, top, contentRight - contentLeft + 2 * bezel, height);
    shapes::rounded(painter, QRectF(bed).adjusted(0, 1, 0, 1), 4, palette::light);
    shapes::rounded(painter, bed, 4, palette::bezel);
    shapes::roundedEdge(painter, bed, 4, palette::grey(30));
    const int keyTop = top + bezel;
    const int keyHeight = height - 2 * bezel;
    const int blackHeight = keyHeight * 3 / 5;
    for (int index = 0; index < whiteKeys; ++index) {
        const QRectF whiteKey(contentLeft + index * width + 0.5, keyTop, width - 1, keyHeight);
        shapes::rounded(painter, whiteKey, 1.5, palette::grey(176));
        shapes::rounded(painter, whiteKey.adjusted(0, 0, 0, -2), 1.5, palette::grey(232));
        painter.fillRect(QRectF(whiteKey.left(), whiteKey.top(), whiteKey.width(), 3),
                         palette::grey(196));
    }
    // None between the third and the fourth key of an octave, and none behind its last.
    constexpr int octave = 7;
    for (int index = 1; index < whiteKeys; ++index) {
        if (index % octave == 0 || index % octave == 3) {
            continue;
        }
        const QRectF blackKey(contentLeft + index * width - 4, keyTop, 8, blackHeight);
        shapes::rounded(painter, blackKey, 1.5, palette::grey(30));
        shapes::rounded(painter, blackKey.adjusted(1, 0, -1, -3), 1, palette::grey(72));
    }
}

} // namespace

void panelAbout(QPainter &painter, int, int)
{
    panel(painter, "ABOUT", Close::Button);
    shapes::display(painter, displayBetween(133, 233));
    constexpr std::string_view name = "TARN/TERN";
    const int width = shapes::textWidth(Face::Expanded, name, 2);
    shapes::textScaled(painter, Face::Expanded, 2, message.center().x() + 1 - width / 2, 159, name,
                       palette::ink);
    keyboard(painter, 243, 54);
}

void panelSynchronisation(QPainter &painter, int, int)
{
    panel(painter, "SYNCHRONISATION", Close::Button);
    portField(painter, portPulldown, "MIDI Port");
    shapes::display(painter,
                    displayBetween(runningMessage.top() - 12, runningMessage.bottom() + 13));
    lights(painter);
    buttonRule(painter);
}

void panelScan(QPainter &painter, int, int)
{
    panel(painter, "VSTi DATABASE", Close::None);
    line(painter, Face::Large, 146, "Looking for software instruments.");
    line(painter, Face::Small, 164, "With many plug-ins this takes a few minutes.");
    shapes::display(painter, displayBetween(runningMessage.top() - 12, scannedFile.bottom() + 10));
    lights(painter);
}

void panelSetup(QPainter &painter, int, int)
{
    panel(painter, "SETUP", Close::Button);
    portField(painter, portPulldown, "MIDI Port");
    portField(painter, dawPulldown, "DAW");
    buttonRule(painter);
}

void panelSaveChange(QPainter &painter, int, int)
{
    messagePanel(painter, "SAVE", Close::Button, Sign::Question);
}

void panelExitAnyway(QPainter &painter, int, int)
{
    messagePanel(painter, "PLEASE CONFIRM", Close::Button, Sign::Question);
}

void panelPortError(QPainter &painter, int, int)
{
    panel(painter, "MIDI PORT", Close::None);
    shapes::display(painter, messageDisplay);
    sign(painter, Sign::Caution, displayTop + 11);
    buttonRule(painter);
    line(painter, Face::Small, message.top() - 19, "The MIDI port can't be opened:");
}

void panelCaution(QPainter &painter, int, int)
{
    messagePanel(painter, "CAUTION", Close::None, Sign::Caution);
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
    // In reverse, as displays of this kind say what must not be overlooked.
    const QRect all(QPoint(), runningMessage.size());
    shapes::rounded(painter, all, 2, palette::ink);
    shapes::textCentred(painter, Face::Large, all, "Communication error. Please try again.",
                        palette::cellLifted);
}

} // namespace drawings
