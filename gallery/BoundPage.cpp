// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/CLineEdit.h"
#include "widgets/COnOffButton.h"
#include "widgets/CRadioButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"
#include "widgets/CTextSlider.h"
#include "widgets/FontHelpers.h"

using namespace Specimens;

namespace
{

constexpr int ColumnWidth = 300;

// One set of controls; a second set on the same parameters stands beside it.
void column(QWidget *page, int x)
{
    const QString cc = QStringLiteral("knobA1/ccNumber");
    const QString ccNumber = QStringLiteral("CC number");
    const QString format = QStringLiteral("knobA1/displayFormat");

    caption(page, x, 60, QStringLiteral("Name of template 1: 13 characters"));
    const QRect namePlace(x + 3, 78, 135, 14);
    field(page, namePlace);
    auto *name = new CLineEdit(page);
    name->setGeometry(namePlace);
    name->setMaxLength(13);
    name->setValidatorRegExp(QStringLiteral("[ -}]*"));
    name->setEndTrim(true);
    name->setNamedAddress(QStringLiteral("templateName"));
    name->setAccessibleName(QStringLiteral("Template name"));

    caption(page, x, 120,
            QStringLiteral("CC number of knob A1: drag, turn the wheel, double-click"));
    const QRect sliderPlace(x + 3, 138, 44, 15);
    field(page, sliderPlace);
    auto *slider = new CTextSlider(page);
    slider->setGeometry(sliderPlace);
    slider->setAlignment(Qt::AlignCenter);
    slider->setDirectEdit(true);
    slider->setNamedAddress(cc);
    slider->setAccessibleName(ccNumber);
    spin(page, {x + 52, 136, 19, 18}, QStringLiteral("vd_nsw_inc_dec_s"), ccNumber)
        ->setNamedAddress(cc);

    caption(page, x, 180, QStringLiteral("The same number as a percentage"));
    const QRect percentPlace(x + 3, 198, 60, 15);
    field(page, percentPlace);
    auto *percent = new CTextSlider(page);
    percent->setGeometry(percentPlace);
    percent->setAlignment(Qt::AlignCenter);
    percent->setFormat(QStringLiteral("%.1f %%"));
    percent->setMultiplier(100.0 / 127.0);
    percent->setDirectEdit(true);
    percent->setNamedAddress(cc);
    percent->setAccessibleName(QStringLiteral("CC number as a percentage"));

    caption(page, x, 240, QStringLiteral("Display format of knob A1"));
    auto *group = new QWidget(page);
    group->setGeometry({x, 258, 120, 18});
    for (int value = 0; value < 2; ++value) {
        CRadioButton *choice =
            radio(group, {value * 36, 0, 19, 18}, QStringLiteral("trn_tsw_radiobtn"),
                  value == 0 ? QStringLiteral("0 to 127") : QStringLiteral("-64 to +63"));
        choice->setOnValue(value);
        choice->setNamedAddress(format);
    }

    caption(page, x, 300, QStringLiteral("The same, as one switch"));
    COnOffButton *flag = button(page, {x, 318, 15, 15}, QStringLiteral("vd_nsw_window_front"),
                                QStringLiteral("-64 to +63"));
    flag->setCheckable(true);
    flag->setNamedAddress(format);

    caption(page, x, 360, QStringLiteral("Template number"));
    spin(page, {x, 378, 19, 19}, QStringLiteral("vd_nsw_inc_dec_l"),
         QStringLiteral("Template number"))
        ->setNamedAddress(QStringLiteral("currentTemplateNumber"));
    const QRect numberPlace(x + 27, 380, 44, 15);
    field(page, numberPlace);
    auto *number = new CTextSlider(page);
    number->setGeometry(numberPlace);
    number->setAlignment(Qt::AlignCenter);
    number->setOffset(1);
    number->setAccessibleName(QStringLiteral("Template number"));
    number->setNamedAddress(QStringLiteral("currentTemplateNumber"));
}

} // namespace

QWidget *Pages::boundPage()
{
    CFrame *made = frame(nullptr, {0, 0, 2 * ColumnWidth + 60, 430});
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    caption(made, 30, 24,
            QStringLiteral("Both columns stand on the same parameters, "
                           "and each control follows the other."),
            560);
    column(made, 30);
    column(made, 30 + ColumnWidth);
    adjustFont(made);
    return made;
}
