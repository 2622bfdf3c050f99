// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "fonts/ApplicationFonts.h"

#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <QtCore/QTextStream>
#include <QtGui/QFont>

#include <optional>

// One glyph as it is drawn in the sheet: rows of '#' and '.', from the top down. The width of the
// rows is the advance.
using SheetGlyph = QStringList;

// A glyph sheet, read without any help of the script that builds the fonts.
struct Sheet
{
    QMap<char32_t, SheetGlyph> glyphs;
    int pixelsPerEm = 0;
    int ascent = 0;
    int descent = 0;
    // Rows above the baseline.
    int top = 0;
};

inline std::optional<Sheet> readSheet(const QString &name)
{
    QFile file(QStringLiteral(TRN_SOURCE_DIR "/fonts/sheets/%1.txt").arg(name));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return {};
    }
    Sheet sheet;
    SheetGlyph *glyph = nullptr;
    SheetGlyph notdef;
    const QMap<QString, int *> numbers{{QStringLiteral("pixels-per-em:"), &sheet.pixelsPerEm},
                                       {QStringLiteral("ascent:"), &sheet.ascent},
                                       {QStringLiteral("descent:"), &sheet.descent},
                                       {QStringLiteral("top:"), &sheet.top}};
    QTextStream stream(&file);
    QString line;
    while (stream.readLineInto(&line)) {
        const QStringList words = line.split(QLatin1Char(' '));
        if (line.startsWith(QLatin1String("U+"))) {
            glyph = &sheet.glyphs[words.first().mid(2).toUInt(nullptr, 16)];
        } else if (line == QLatin1String(".notdef")) {
            glyph = &notdef;
        } else if (line.isEmpty()) {
            glyph = nullptr;
        } else if (glyph) {
            glyph->append(line);
        } else if (int *number = numbers.value(words.first())) {
            *number = words.last().toInt();
        }
    }
    return sheet;
}

// The font as the program's widgets have it: Corvan QRL 8 with its letter spacing.
inline QFont widgetFont(QLatin1String family)
{
    QFont font{QString(family)};
    font.setStyleHint(QFont::AnyStyle, QFont::NoAntialias);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setPixelSize(family == FontFamilyQRL10 ? 10 : 8);
    if (family == FontFamilyQRL8) {
        font.setLetterSpacing(QFont::AbsoluteSpacing, 0.1);
    }
    return font;
}
