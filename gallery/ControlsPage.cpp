// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"
#include "widgets/FlashFrame.h"
#include "widgets/FontHelpers.h"

using namespace Specimens;

namespace
{

struct Kind
{
    const char *image;
    const char *says;
    int width;
    int height;
    int categories;
};

constexpr Kind Buttons[] = {
    {"vd_nsw_window", "Close", 15, 15, 1},
    {"vd_nsw_window_small", "Minimize", 15, 15, 1},
    {"vd_nsw_window_front", "Stay on top", 15, 15, 1},
    {"t27r_tsw_size", "Window size", 19, 10, 2},
    {"t27r_nsw_store", "Store", 46, 14, 1},
    {"vd_tsw_lib_open", "Library", 46, 14, 1},
    {"t27r_nsw_lib_import", "Import", 46, 14, 1},
    {"t27r_nsw_ok_2", "OK", 46, 14, 1},
    {"t27r_nsw_cancel_2", "Cancel", 46, 14, 1},
    {"t27r_nsw_file", "Open a file", 19, 19, 1},
    {"vd_nsw_popup", "Choose from a list", 19, 18, 1},
    {"vd_nsw_popup_s", "Choose from a list", 19, 19, 1},
    {"vd_nsw_pulldown", "Choose from a list", 265, 18, 1},
    {"vd_nsw_close", "Close", 15, 15, 1},
    {"vd_nsw_yes", "Yes", 51, 15, 1},
    {"vd_nsw_no", "No", 51, 15, 1},
    {"vd_nsw_ok", "OK", 51, 15, 1},
    {"vd_nsw_cancel", "Cancel", 51, 15, 1},
    {"vd_nsw_start", "Start", 51, 15, 1},
    {"vd_nsw_retry", "Retry", 51, 15, 1},
};

constexpr int RowHeight = 26;
constexpr int FirstRow = 44;
constexpr int NameX = 20;
constexpr int OffX = 180;
constexpr int OnX = 260;
constexpr int LiveX = 340;
constexpr int OtherX = 640;

// Keeps its state whatever is done to it: a specimen, not a control.
template <typename Button>
void freeze(Button *shown, bool on)
{
    shown->setCheckable(true);
    shown->setChecked(on);
    shown->setAttribute(Qt::WA_TransparentForMouseEvents);
}

} // namespace

QWidget *Pages::controlsPage()
{
    CFrame *made = frame(nullptr, {0, 0, 900, FirstRow + 23 * RowHeight + 20});
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    caption(made, OffX, 20, QStringLiteral("off"), 60);
    caption(made, OnX, 20, QStringLiteral("on, down"), 60);
    caption(made, LiveX, 20, QStringLiteral("live"), 60);
    caption(made, OtherX, 20, QStringLiteral("radio buttons, spin buttons, flash"));
    int y = FirstRow;
    for (const Kind &kind : Buttons) {
        const QString name = QString::fromLatin1(kind.image);
        const QString says = QString::fromLatin1(kind.says);
        caption(made, NameX, y, name, 150);
        for (int category = 0; category < kind.categories; ++category) {
            const int width = std::min(kind.width, 70);
            const int shift = category * 30;
            for (const bool on : {false, true}) {
                COnOffButton *shown =
                    button(made, {(on ? OnX : OffX) + shift, y, width, kind.height}, name, says);
                shown->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
                shown->setImageCategories(kind.categories);
                shown->setCategory(category);
                freeze(shown, on);
            }
            COnOffButton *live =
                button(made, {LiveX + shift, y, kind.width, kind.height}, name, says);
            live->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            live->setImageCategories(kind.categories);
            live->setCategory(category);
        }
        y += RowHeight;
    }

    y = FirstRow;
    for (const char *image : {"trn_tsw_radiobtn", "trn_tsw_radiobtn_cc_rem"}) {
        const QString name = QString::fromLatin1(image);
        auto *group = new QWidget(made);
        group->setGeometry({OtherX, y, 120, 18});
        for (int i = 0; i < 3; ++i) {
            radio(group, {i * 36, 0, 19, 18}, name, QStringLiteral("Choice %1").arg(i + 1))
                ->setChecked(i == 1);
        }
        caption(made, OtherX + 120, y, name, 140);
        y += RowHeight;
    }
    for (const char *image : {"vd_nsw_inc_dec_s", "vd_nsw_inc_dec_l"}) {
        const QString name = QString::fromLatin1(image);
        for (const int value : {50, 0, 100}) {
            const int at = value == 50 ? 0 : value == 0 ? 36 : 72;
            CSpinButton *shown =
                spin(made, {OtherX + at, y, 19, 19}, name, QStringLiteral("Number"));
            shown->setRange(0, 100);
            shown->setValue(value);
        }
        caption(made, OtherX + 120, y, name, 140);
        y += RowHeight;
    }
    COnOffButton *flash = button(made, {OtherX, y + 20, 51, 15}, QStringLiteral("vd_nsw_start"),
                                 QStringLiteral("Flash"));
    CText *target =
        caption(made, OtherX + 90, y + 20, QStringLiteral("flashes for half a second"), 150);
    QObject::connect(flash, &COnOffButton::clicked, target, [target] {
        FlashFrame::start(target->parentWidget(), target->geometry().adjusted(-1, -1, 1, 1));
    });
    adjustFont(made);
    return made;
}
