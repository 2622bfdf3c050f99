// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "memory/CSimpleNotifier.h"
#include "memory/MemProxy.h"
#include "widgets/CFrame.h"
#include "widgets/CLineEdit.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"
#include "widgets/CTextSlider.h"
#include "widgets/FontHelpers.h"

#include <QtWidgets/QLabel>

#include <array>

using namespace Specimens;

namespace
{

constexpr int KnobCount = 12;
constexpr std::array<int, 4> KnobX = {1, 85, 169, 253};
constexpr std::array<int, 3> KnobY = {22, 71, 120};

CLineEdit *lineEdit(QWidget *parent, const QRect &place, const QString &address, int length,
                    const QString &says)
{
    auto *made = new CLineEdit(parent);
    made->setGeometry(place);
    made->setMaxLength(length);
    made->setNamedAddress(address);
    made->setAccessibleName(says);
    return made;
}

// The window's frame: background, the three buttons, the menu bar and the online lamp.
CFrame *window(const QSize &size, const QString &imageName, const QRect &contractPlace,
               int category)
{
    CFrame *made = frame(nullptr, QRect(QPoint(0, 0), size), imageName);
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    titleStrip(made);
    picture(made, {14, 36, 87, 7}, QStringLiteral("t27r_led_online"), QStringLiteral("Online"));
    COnOffButton *contract =
        button(made, contractPlace, QStringLiteral("t27r_tsw_size"), QStringLiteral("Window size"));
    contract->setImageCategories(2);
    contract->setCategory(category);
    return made;
}

void upperRow(CFrame *view)
{
    text(view, {63, 2, 234, 13}, QStringLiteral("Studio A.Q7V"));
    picture(view, {312, 4, 9, 9}, QStringLiteral("trn_led_edit_t"),
            QStringLiteral("Differs from the instrument's memory"));
    picture(view, {325, 4, 9, 9}, QStringLiteral("t27r_led_edit_f"),
            QStringLiteral("Differs from the file"));
    picture(view, {338, 1, 48, 16}, QStringLiteral("t27r_btn_back_store"),
            QStringLiteral("There is something to store"));
    button(view, {339, 2, 46, 14}, QStringLiteral("t27r_nsw_store"), QStringLiteral("Store"));
    button(view, {390, 2, 46, 14}, QStringLiteral("vd_tsw_lib_open"), QStringLiteral("Library"));

    CText *number = text(view, {9, 27, 106, 14}, {});
    QFont large(FontFamilyQRL10);
    large.setPixelSize(10);
    number->setFont(large);
    lineEdit(view, {118, 27, 135, 14}, QStringLiteral("templateName"), 13,
             QStringLiteral("Template name"));
    CSpinButton *turn = spin(view, {258, 24, 19, 19}, QStringLiteral("vd_nsw_inc_dec_l"),
                             QStringLiteral("Template number"));
    turn->setNamedAddress(QStringLiteral("currentTemplateNumber"));
    button(view, {278, 24, 19, 19}, QStringLiteral("vd_nsw_popup_s"),
           QStringLiteral("Choose a template"));
    lineEdit(view, {340, 27, 73, 14}, QStringLiteral("vstiName"), 12, QStringLiteral("VSTi"));
    button(view, {417, 24, 19, 19}, QStringLiteral("vd_nsw_popup_s"),
           QStringLiteral("Choose an instrument"));
    const auto show = [view, number](int template_) {
        number->setText(
            QStringLiteral("Template No:%1").arg(template_ + 1, 2, 10, QLatin1Char('0')));
        assignTemplate(view, template_);
    };
    QObject::connect(turn, &CSpinButton::valueChanged, view, show);
    show(0);
}

// Highlight, text and button of each knob. What stands on it follows the memory.
QList<CRadioButton *> lcd(QWidget *parent)
{
    QList<CRadioButton *> buttons;
    for (int knob = 0; knob < KnobCount; ++knob) {
        const QPoint at(KnobX[static_cast<std::size_t>(knob % 4)],
                        KnobY[static_cast<std::size_t>(knob / 4)]);
        CFrame *highlight = frame(parent, {at, QSize(71, 23)}, QStringLiteral("t27r_lcd_panel"));
        CText *cell = text(parent, {at + QPoint(0, 1), QSize(71, 21)}, {}, Qt::AlignCenter);
        auto *choose = new CRadioButton(parent);
        choose->setGeometry({at, QSize(71, 23)});
        const QString name = QStringLiteral("knob%1%2")
                                 .arg(QChar::fromLatin1(static_cast<char>('A' + knob % 4)))
                                 .arg(1 + knob / 4);
        say(choose, QStringLiteral("Knob %1").arg(name.mid(4)));
        auto *number = new CSimpleNotifier(name + QStringLiteral("/ccNumber"), parent);
        auto *display = new CSimpleNotifier(name + QStringLiteral("/displayName"), parent);
        const auto show = [cell, number, display] {
            cell->setText(QStringLiteral("CC%1\n").arg(number->getMemAPICurrentValue(), 3, 10,
                                                       QLatin1Char('0')) +
                          trimText(cell, display->getMemAPIString(), cell->width()));
        };
        QObject::connect(number, &CSimpleNotifier::update, cell, show);
        QObject::connect(display, &CSimpleNotifier::update, cell, show);
        highlight->hide();
        QObject::connect(choose, &CRadioButton::toggled, highlight, &QWidget::setVisible);
        buttons.append(choose);
    }
    return buttons;
}

void settingPanel(QWidget *panel)
{
    frame(panel, {230, 22, 38, 106}, QStringLiteral("t27r_bak_cc"));
    text(panel, {54, 40, 146, 15}, QStringLiteral("Filter - Cutoff"));
    button(panel, {202, 38, 19, 18}, QStringLiteral("vd_nsw_popup"),
           QStringLiteral("Choose a parameter"));
    auto *slider = new CTextSlider(panel);
    slider->setGeometry({278, 40, 44, 15});
    slider->setAlignment(Qt::AlignCenter);
    slider->setDirectEdit(true);
    slider->setAccessibleName(QStringLiteral("CC number"));
    slider->setNamedAddress(QStringLiteral("knobA1/ccNumber"));
    spin(panel, {325, 38, 19, 18}, QStringLiteral("vd_nsw_inc_dec_s"), QStringLiteral("CC number"))
        ->setNamedAddress(QStringLiteral("knobA1/ccNumber"));
    button(panel, {413, 38, 19, 18}, QStringLiteral("vd_nsw_popup"),
           QStringLiteral("Choose a control change"));
    lineEdit(panel, {277, 74, 123, 15}, QStringLiteral("knobA1/displayName"), 15,
             QStringLiteral("Display name"));
    auto *formats = new QWidget(panel);
    formats->setGeometry({325, 110, 107, 18});
    const QString image = QStringLiteral("trn_tsw_radiobtn");
    int value = 0;
    for (const int x : {0, 88}) {
        CRadioButton *format =
            radio(formats, {x, 0, 19, 18}, image,
                  value == 0 ? QStringLiteral("0 to 127") : QStringLiteral("-64 to +63"));
        format->setOnValue(value++);
        format->setNamedAddress(QStringLiteral("knobA1/displayFormat"));
    }
}

CFrame *templateView(QWidget *parent, const QSize &size)
{
    CFrame *view = frame(parent, QRect(QPoint(14, 48), size), QStringLiteral("trn_bak_main"));
    upperRow(view);
    auto *panel = new QWidget(view);
    panel->setGeometry({0, 54, 442, 207});
    auto *types = new QWidget(panel);
    types->setGeometry({13, 26, 55, 18});
    int value = 0;
    for (const int x : {0, 36}) {
        CRadioButton *type = radio(types, {x, 0, 19, 18}, QStringLiteral("trn_tsw_radiobtn_cc_rem"),
                                   value == 0 ? QStringLiteral("Remote") : QStringLiteral("CC"));
        type->setOnValue(value++);
        type->setNamedAddress(QStringLiteral("controlType"));
    }
    auto *cells = new QWidget(panel);
    cells->setGeometry({81, 40, 341, 161});
    const QList<CRadioButton *> knobs = lcd(cells);
    auto *setting = new QWidget(view);
    setting->setGeometry({0, 266, 442, 136});
    settingPanel(setting);
    for (int knob = 0; knob < KnobCount; ++knob) {
        QObject::connect(knobs.at(knob), &CRadioButton::toggled, setting, [setting, knob](bool on) {
            if (on) {
                assignController(setting, knob);
            }
        });
    }
    knobs.first()->setChecked(true);
    return view;
}

} // namespace

QWidget *Pages::templatePage()
{
    CFrame *made = window({470, 465}, QStringLiteral("trn_bak_1"), {437, 455, 19, 10}, 1);
    templateView(made, {442, 402});
    adjustFont(made);
    return made;
}

QWidget *Pages::smallWindowPage()
{
    CFrame *made = window({470, 324}, QStringLiteral("trn_bak_s"), {437, 314, 19, 10}, 0);
    templateView(made, {442, 261});
    adjustFont(made);
    return made;
}
