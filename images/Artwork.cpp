// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/Artwork.h"

#include <QtCore/QFile>
#include <QtGui/QGuiApplication>

QString artworkFile(const QString &path, qreal devicePixelRatio)
{
    const QLatin1String extension(".png");
    if (devicePixelRatio <= 1 || !path.endsWith(extension)) {
        return path;
    }
    const QString fine = path.chopped(extension.size()) + QLatin1String("@2x") + extension;
    return QFile::exists(fine) ? fine : path;
}

QString artworkFile(const QString &path)
{
    return artworkFile(path, qGuiApp->devicePixelRatio());
}

QString artworkFile(const char *path)
{
    return artworkFile(QString::fromLatin1(path));
}

QPixmap artwork(const QString &path, qreal devicePixelRatio)
{
    return QPixmap(artworkFile(path, devicePixelRatio));
}
