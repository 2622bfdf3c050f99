// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"
#include "widgets/CText.h"
#include "widgets/FontHelpers.h"

using namespace Specimens;

namespace
{

constexpr int TemplateCount = 50;
const char *const Names[] = {"Mixer 1-12",   "Channel Strip", "Drawbars", "Synth OSC",
                             "Filter & Env", "LFO 1 & 2",     "Effects",  "Track Ctrl",
                             "E.Piano",      "Strings"};

void fill(CListView *list, int first)
{
    for (int i = 0; i < TemplateCount; ++i) {
        list->addItem({QStringLiteral("%1  %2")
                           .arg(i + 1, 2, 10, QLatin1Char('0'))
                           .arg(QString::fromLatin1(Names[(i + first) % std::ssize(Names)]))});
    }
}

} // namespace

QWidget *Pages::libraryPage()
{
    CFrame *made = frame(nullptr, {0, 0, 470, 465}, QStringLiteral("trn_bak_1"));
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    titleStrip(made);
    picture(made, {14, 36, 87, 7}, QStringLiteral("t27r_led_online"), QStringLiteral("Online"));
    CFrame *view = frame(made, {14, 48, 442, 402}, QStringLiteral("trn_bak_library"));
    button(view, {168, 22, 19, 19}, QStringLiteral("t27r_nsw_file"), QStringLiteral("Open a file"));
    text(view, {10, 25, 153, 13}, QStringLiteral("Live Set.Q7V"));
    button(view, {225, 25, 46, 14}, QStringLiteral("t27r_nsw_lib_import"),
           QStringLiteral("Import"));
    button(view, {339, 2, 46, 14}, QStringLiteral("t27r_nsw_ok_2"), QStringLiteral("OK"));
    button(view, {390, 2, 46, 14}, QStringLiteral("t27r_nsw_cancel_2"), QStringLiteral("Cancel"));
    CListView *templates = list(view, {225, 38, 198, 195}, {425, 40, 16, 191});
    templates->setMarginHeight(5);
    CListView *import = list(view, {7, 43, 198, 185}, {207, 40, 16, 191});
    fill(templates, 0);
    fill(import, 4);
    templates->setValue(3);
    import->setValue(1);
    QObject::connect(templates, &CListView::listSelected, import,
                     [import] { import->unselectList(); });
    QObject::connect(import, &CListView::listSelected, templates,
                     [templates] { templates->unselectList(); });
    templates->selectList();

    auto *preview = new QWidget(view);
    preview->setGeometry({0, 242, 442, 161});
    text(preview, {95, 21, 153, 13}, QStringLiteral("Polyphonic One"));
    frame(preview, {8, 20, 38, 132}, QStringLiteral("t27r_bak_lib_remote_off"));
    const char *const cells[] = {"Cutoff",   "Resonance", "Env Amount", "Key Follow",
                                 "Attack",   "Decay",     "Sustain",    "Release",
                                 "LFO Rate", "LFO Depth", "Drive",      "Volume"};
    int knob = 0;
    for (const int y : {56, 92, 127}) {
        for (const int x : {104, 188, 272, 356}) {
            text(preview, {x, y, 71, 21}, QString::fromLatin1(cells[knob++]), Qt::AlignCenter);
        }
    }
    adjustFont(made);
    return made;
}
