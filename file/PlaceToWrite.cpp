// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/PlaceToWrite.h"

#include <QtCore/QFileInfo>

namespace
{

// As far as the system itself follows them.
constexpr int MaximumLinks = 40;

} // namespace

QString placeToWrite(const QString &name)
{
    QFileInfo place(name);
    for (int links = 0; place.isSymLink(); ++links) {
        if (links == MaximumLinks) {
            return QString();
        }
        place.setFile(place.symLinkTarget());
    }
    return !place.exists() || place.isFile() ? place.filePath() : QString();
}
