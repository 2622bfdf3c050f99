// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/CText.h"
#include "widgets/FontHelpers.h"

using namespace Specimens;

namespace
{

const char *const Lines[] = {
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ  abcdefghijklmnopqrstuvwxyz",
    "0123456789  !\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~",
    "ÄÖÜ äöü ß éèê ñ ç å ø æ ¿¡ £¥§°± \uFB02",
    "0O  1lI|  5S  8B  rn m  cl d  vv w  2Z  6G",
    "Template No:50   CC#=127   CC001   -64 to +63   TARN/TERN Port1",
    "Unsaved changes. Exit anyway?   Pan Left-Right   FltReso   PrtmtTm",
};

} // namespace

QWidget *Pages::textsPage()
{
    CFrame *made = frame(nullptr, {0, 0, 640, 470});
    setWindowPalette(made);
    int y = 16;
    const struct
    {
        QString family;
        int size;
    } fonts[] = {{FontFamilyQRL8, 8}, {FontFamilyQRL10, 10}, {FontFamilyQRL8Expanded, 8}};
    for (const auto &kind : fonts) {
        QFont font(kind.family);
        font.setPixelSize(kind.size);
        QFont title(FontFamilyQRL8Expanded);
        title.setPixelSize(8);
        text(made, {20, y, 600, 14}, kind.family)->setFont(title);
        y += 20;
        for (const char *line : Lines) {
            text(made, {20, y, 600, 15}, QString::fromUtf8(line))->setFont(font);
            y += 18;
        }
        y += 20;
    }
    adjustFont(made);
    return made;
}
