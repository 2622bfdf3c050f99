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
    "\xc3\x84\xc3\x96\xc3\x9c \xc3\xa4\xc3\xb6\xc3\xbc \xc3\x9f \xc3\xa9\xc3\xa8\xc3\xaa \xc3\xb1 "
    "\xc3\xa7 \xc3\xa5 \xc3\xb8 \xc3\xa6 \xc2\xbf\xc2\xa1 \xc2\xa3\xc2\xa5\xc2\xa7\xc2\xb0\xc2\xb1 "
    "\xef\xac\x82",
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
