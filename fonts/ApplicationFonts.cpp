// SPDX-License-Identifier: GPL-3.0-or-later
#include "fonts/ApplicationFonts.h"

#include <QtCore/QStringList>
#include <QtGui/QFontDatabase>

#include <algorithm>
#include <array>
#include <cstddef>

namespace
{

struct FontFile
{
    QLatin1String resource;
    QLatin1String family;
};

constexpr std::array fontFiles{
    FontFile{QLatin1String(":/fonts/CorvanQRL8.ttf"), FontFamilyQRL8},
    FontFile{QLatin1String(":/fonts/CorvanQRL8-Bold.ttf"), FontFamilyQRL8},
    FontFile{QLatin1String(":/fonts/CorvanQRL10.ttf"), FontFamilyQRL10},
    FontFile{QLatin1String(":/fonts/CorvanQRL10-Bold.ttf"), FontFamilyQRL10},
    FontFile{QLatin1String(":/fonts/CorvanQRL8Expanded.ttf"), FontFamilyQRL8Expanded},
    FontFile{QLatin1String(":/fonts/CorvanQRL8Expanded-Bold.ttf"), FontFamilyQRL8Expanded},
};

bool load(const FontFile &file)
{
    const int id = QFontDatabase::addApplicationFont(file.resource);
    return QFontDatabase::applicationFontFamilies(id).contains(file.family);
}

} // namespace

bool loadApplicationFonts()
{
    static const bool loaded = [] {
        // All of them, even after one was refused: the others still serve.
        return std::count_if(fontFiles.begin(), fontFiles.end(), load) ==
               static_cast<std::ptrdiff_t>(fontFiles.size());
    }();
    return loaded;
}
