// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/COnOffButton.h"
#include "widgets/CText.h"
#include "widgets/FontHelpers.h"

#include <QtGui/QPainter>
#include <QtWidgets/QLabel>

#include <functional>

using namespace Specimens;

namespace
{

constexpr QSize PanelSize(442, 419);
constexpr int Gap = 12;
constexpr QRect MessagePlace(91, 190, 263, 14);

void close(QWidget *panel)
{
    button(panel, {68, 95, 15, 15}, QStringLiteral("vd_nsw_close"), QStringLiteral("Close"));
}

// The row of buttons, right-aligned at the same place on every panel.
void buttons(QWidget *panel, const QStringList &names)
{
    int x = 304 - 55 * (static_cast<int>(names.size()) - 1);
    for (const QString &name : names) {
        button(panel, {x, 287, 51, 15}, QStringLiteral("vd_nsw_%1").arg(name.toLower()), name);
        x += 55;
    }
}

void message(QWidget *panel, const QString &words)
{
    QFont large(FontFamilyQRL10);
    large.setPixelSize(10);
    text(panel, MessagePlace, words, Qt::AlignCenter)->setFont(large);
}

void about(QWidget *panel)
{
    close(panel);
    const QString lines[] = {QStringLiteral("TARN/TERN Remote Editor Ver.1.1.8"),
                             QStringLiteral("Free software, GNU GPL 3 or later"),
                             QStringLiteral("Artwork and fonts are this project's own")};
    int y = 170;
    for (const QString &line : lines) {
        text(panel, {91, y, 263, 14}, line, Qt::AlignCenter);
        y += 16;
    }
}

// says: what is chosen here; words: what has been.
void portRow(QWidget *panel, int y, const QString &says, const QString &words)
{
    text(panel, {92, y + 1, 239, 15}, words);
    button(panel, {89, y, 265, 18}, QStringLiteral("vd_nsw_pulldown"), says)
        ->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void setup(QWidget *panel)
{
    close(panel);
    portRow(panel, 149, QStringLiteral("MIDI port"), QStringLiteral("TARN/TERN Port1"));
    portRow(panel, 197, QStringLiteral("DAW"), QStringLiteral("Other"));
    buttons(panel, {QStringLiteral("OK"), QStringLiteral("Cancel")});
}

// The running light: one picture that passes behind its window in steps.
void light(QWidget *panel, int step)
{
    constexpr int StepWidth = 7;
    const QPixmap led = image(QStringLiteral("trn_led_autosync"));
    auto *shown = new QLabel(panel);
    shown->setGeometry({91, 214, 259, 10});
    QPixmap pixmap(shown->size() * led.devicePixelRatio());
    pixmap.setDevicePixelRatio(led.devicePixelRatio());
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const int width = qRound(led.deviceIndependentSize().width());
    painter.drawPixmap((step + 1) * StepWidth - width, 0, led);
    painter.end();
    shown->setPixmap(pixmap);
    say(shown, QStringLiteral("Looking for software instruments"));
}

void synchronise(QWidget *panel)
{
    close(panel);
    portRow(panel, 149, QStringLiteral("MIDI port"), QStringLiteral("TARN/TERN Port1"));
    buttons(panel, {QStringLiteral("Start"), QStringLiteral("Cancel")});
}

void synchroniseFailed(QWidget *panel)
{
    close(panel);
    portRow(panel, 149, QStringLiteral("MIDI port"), QStringLiteral("TARN/TERN Port1"));
    picture(panel, {91, 212, 263, 14}, QStringLiteral("t27r_txt_error"),
            QStringLiteral("Communication error. Please try again."));
    buttons(panel, {QStringLiteral("Retry"), QStringLiteral("Cancel")});
}

void scan(QWidget *panel)
{
    light(panel, 20);
    text(panel, {91, 232, 263, 12}, QStringLiteral("PolySynth.vst3"), Qt::AlignCenter);
}

struct Panel
{
    const char *image;
    std::function<void(QWidget *)> fill;
};

} // namespace

QWidget *Pages::panelsPage()
{
    const auto yes = QStringLiteral("Yes");
    const auto no = QStringLiteral("No");
    const auto ok = QStringLiteral("OK");
    const auto cancel = QStringLiteral("Cancel");
    const Panel panels[] = {
        {"trn_bak_set", setup},
        {"trn_bak_autosync", synchronise},
        {"trn_bak_autosync", synchroniseFailed},
        {"trn_bak_start", scan},
        {"trn_bak_about", about},
        {"trn_bak_save_change",
         [=](QWidget *panel) {
             close(panel);
             message(panel, QStringLiteral(" Save changes?"));
             buttons(panel, {yes, no, cancel});
         }},
        {"trn_bak_exit_anyway",
         [=](QWidget *panel) {
             close(panel);
             message(panel, QStringLiteral("Unsaved changes. Exit anyway?"));
             buttons(panel, {yes, no});
         }},
        {"trn_bak_exit_anyway",
         [=](QWidget *panel) {
             close(panel);
             message(panel, QStringLiteral("Are you sure?"));
             buttons(panel, {yes, no});
         }},
        {"trn_bak_port_error",
         [=](QWidget *panel) {
             message(panel, QStringLiteral("TARN/TERN Port1"));
             buttons(panel, {ok});
         }},
        {"trn_bak_rename_caution",
         [=](QWidget *panel) {
             message(panel, QStringLiteral(" MIDI port is not found."));
             buttons(panel, {ok});
         }},
        {"trn_bak_reset_stored",
         [=](QWidget *panel) {
             buttons(panel, {ok, cancel});
         }},
        {"trn_bak_reset_original",
         [=](QWidget *panel) {
             buttons(panel, {ok, cancel});
         }},
        {"trn_bak_reset_factoryset",
         [=](QWidget *panel) {
             buttons(panel, {ok, cancel});
         }},
    };
    const int count = static_cast<int>(std::ssize(panels));
    CFrame *made = frame(nullptr, {0, 0, 2 * PanelSize.width() + 3 * Gap,
                                   (count + 1) / 2 * (PanelSize.height() + Gap) + Gap});
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    for (int i = 0; i < count; ++i) {
        const QPoint at(Gap + i % 2 * (PanelSize.width() + Gap),
                        Gap + i / 2 * (PanelSize.height() + Gap));
        const Panel &panel = panels[static_cast<std::size_t>(i)];
        panel.fill(frame(made, QRect(at, PanelSize), QString::fromLatin1(panel.image)));
    }
    adjustFont(made);
    return made;
}
