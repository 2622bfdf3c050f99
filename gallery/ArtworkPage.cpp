// SPDX-License-Identifier: GPL-3.0-or-later
#include "gallery/Pages.h"
#include "gallery/Specimens.h"

#include "fonts/ApplicationFonts.h"
#include "widgets/CFrame.h"
#include "widgets/CText.h"
#include "widgets/FontHelpers.h"

#include <QtCore/QDir>
#include <QtWidgets/QLabel>

using namespace Specimens;

// In rows as they fit, each picture with its name and size below it.
QWidget *Pages::artworkPage()
{
    constexpr int Width = 960;
    constexpr int Gap = 14;
    constexpr int CaptionWidth = 150;
    constexpr int CaptionHeight = 16;

    CFrame *made = frame(nullptr, {0, 0, Width, 100});
    setWindowPalette(made);
    QFont font(FontFamilyQRL8);
    font.setPixelSize(8);
    made->setFont(font);
    QPoint at(Gap, Gap);
    int rowHeight = 0;
    const QDir folder(QStringLiteral(":/images"));
    for (const QString &file :
         folder.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name)) {
        if (file.contains(QLatin1Char('@'))) {
            continue;
        }
        const QString name = file.chopped(4);
        const QPixmap pixmap = image(name);
        const QSize size = pixmap.deviceIndependentSize().toSize();
        const int width = std::max(size.width(), CaptionWidth);
        if (at.x() + width > Width - Gap) {
            at = {Gap, at.y() + rowHeight + Gap};
            rowHeight = 0;
        }
        picture(made, {at, size}, name, name);
        caption(made, at.x(), at.y() + size.height() + 2,
                QStringLiteral("%1  %2 x %3").arg(name).arg(size.width()).arg(size.height()),
                width);
        rowHeight = std::max(rowHeight, size.height() + CaptionHeight);
        at.rx() += width + Gap;
    }
    made->resize(Width, at.y() + rowHeight + Gap);
    adjustFont(made);
    return made;
}
