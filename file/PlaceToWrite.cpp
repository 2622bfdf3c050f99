// SPDX-License-Identifier: GPL-3.0-or-later
#include "file/PlaceToWrite.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

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

void keepOwnerAndMode(const QString &place, QFileDevice *replacement)
{
    struct stat status = {};
    if (stat(QFile::encodeName(place).constData(), &status) != 0) {
        return;
    }
    const int file = replacement->handle();
    // The owner first, which may take bits away from the mode. An ordinary user may give the file
    // to a group of his at most.
    if (fchown(file, status.st_uid, status.st_gid) != 0) {
        [[maybe_unused]] const int ofGroup = fchown(file, static_cast<uid_t>(-1), status.st_gid);
    }
    fchmod(file, status.st_mode & 07777);
}
