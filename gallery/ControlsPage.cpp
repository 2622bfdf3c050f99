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

#include <QtWidgets/QLabel>

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
    {"vd_nsw_pulldown", "Choose from a list", 19, 18, 1},
    {"vd_nsw_close", "Close", 15, 15, 1},
    {"vd_nsw_yes", "Yes", 51, 15, 1},
    {"vd_nsw_no", "No", 51, 15, 1},
    {"vd_nsw_ok", "OK", 51, 15, 1},
    {"vd_nsw_cancel", "Cancel", 51, 15, 1},
    {"vd_nsw_start", "Start", 51, 15, 1},
    {"vd_nsw_retry", "Retry", 51, 15, 1},
};

constexpr int RowHeight = 26;
constexpr int RowPicture = 19; // the highest of them
constexpr int CaptionHeight = 13;
constexpr int FirstRow = 44;
constexpr int NameX = 20;
constexpr int OffX = 180;
constexpr int OnX = 260;
constexpr int LiveX = 340;
constexpr int OtherX = 460;

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
    CFrame *made = frame(nullptr, {0, 0, 780, FirstRow + 20 * RowHeight + 20});
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    caption(made, OffX, 20, QStringLiteral("off"), 60);
    caption(made, OnX, 20, QStringLiteral("on, down"), 60);
    caption(made, LiveX, 20, QStringLiteral("live"), 60);
    caption(made, OtherX, 20, QStringLiteral("live; spin buttons at rest, up, down, live"));
    int y = FirstRow;
    for (const Kind &kind : Buttons) {
        const QString name = QString::fromLatin1(kind.image);
        const QString says = QString::fromLatin1(kind.says);
        // The names and the pictures of a row share their middle.
        caption(made, NameX, y + (RowPicture - CaptionHeight) / 2, name, 150);
        const int top = y + (RowPicture - kind.height) / 2;
        if (name == QLatin1String("t27r_nsw_store")) {
            // This one lies in a light of its own.
            for (const int x : {OffX, OnX, LiveX}) {
                picture(made, {x - 1, top - 1, 48, 16}, QStringLiteral("t27r_btn_back_store"),
                        QStringLiteral("There is something to store"));
            }
        }
        for (int category = 0; category < kind.categories; ++category) {
            const int shift = category * 30;
            for (const bool on : {false, true}) {
                COnOffButton *shown = button(
                    made, {(on ? OnX : OffX) + shift, top, kind.width, kind.height}, name, says);
                shown->setImageCategories(kind.categories);
                shown->setCategory(category);
                freeze(shown, on);
            }
            COnOffButton *live =
                button(made, {LiveX + shift, top, kind.width, kind.height}, name, says);
            live->setImageCategories(kind.categories);
            live->setCategory(category);
        }
        y += RowHeight;
    }

    y = FirstRow;
    for (const char *image : {"trn_tsw_radiobtn", "trn_tsw_radiobtn_cc_rem"}) {
        const QString name = QString::fromLatin1(image);
        auto *group = new QWidget(made);
        group->setGeometry({OtherX, y, 127, 18});
        for (int i = 0; i < 3; ++i) {
            radio(group, {i * 36, 0, 19, 18}, name, QStringLiteral("Choice %1").arg(i + 1))
                ->setChecked(i == 1);
        }
        caption(made, OtherX + 150, y + (RowPicture - CaptionHeight) / 2, name, 140);
        y += RowHeight;
    }
    for (const char *image : {"vd_nsw_inc_dec_s", "vd_nsw_inc_dec_l"}) {
        const QString name = QString::fromLatin1(image);
        // At rest, up and down: the rows of a picture that is off, on or held.
        for (int state = 0; state < 3; ++state) {
            COnOffButton *shown =
                button(made, {OtherX + state * 36, y, 19, 19}, name, QStringLiteral("Number"));
            shown->setHasDownImage(true);
            freeze(shown, state == 1);
            shown->setDown(state == 2);
        }
        spin(made, {OtherX + 108, y, 19, 19}, name, QStringLiteral("Number"))->setRange(0, 100);
        caption(made, OtherX + 150, y + (RowPicture - CaptionHeight) / 2, name, 140);
        y += RowHeight;
    }
    COnOffButton *flash = button(made, {OtherX, y + 20, 51, 15}, QStringLiteral("vd_nsw_start"),
                                 QStringLiteral("Flash"));
    CText *target =
        caption(made, OtherX + 90, y + 21, QStringLiteral("flashes for half a second"), 150);
    QObject::connect(flash, &COnOffButton::clicked, target, [target] {
        FlashFrame::start(target->parentWidget(), target->geometry().adjusted(-1, -1, 1, 1));
    });
    adjustFont(made);
    return made;
}
