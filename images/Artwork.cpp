// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/Artwork.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtGui/QGuiApplication>

namespace
{

// What has been loaded, by file, and from which picture each came: a copy of a pixmap keeps its
// cache key.
struct Loaded
{
    QHash<QString, QPixmap> byFile;
    QHash<qint64, QString> pathByKey;
};

Loaded &loaded()
{
    static Loaded the;
    return the;
}

// A pixmap must not outlive the application.
void forget()
{
    loaded() = {};
}

} // namespace

QString artworkFile(const QString &path, qreal devicePixelRatio)
{
    const QLatin1String extension(".png");
    if (devicePixelRatio <= 1 || !path.endsWith(extension)) {
        return path;
    }
    const QString fine = path.chopped(extension.size()) + QLatin1String("@2x") + extension;
    return QFile::exists(fine) ? fine : path;
}

QPixmap artwork(const QString &path, qreal devicePixelRatio)
{
    const QString file = artworkFile(path, devicePixelRatio);
    Loaded &known = loaded();
    if (const auto found = known.byFile.constFind(file); found != known.byFile.constEnd()) {
        return *found;
    }
    QPixmap picture(file);
    if (picture.isNull()) {
        return picture;
    }
    if (known.byFile.isEmpty()) {
        qAddPostRoutine(forget);
    }
    known.byFile.insert(file, picture);
    known.pathByKey.insert(picture.cacheKey(), path);
    return picture;
}

QPixmap artwork(const char *path)
{
    return artwork(QString::fromLatin1(path), qGuiApp->devicePixelRatio());
}

QPixmap artworkFor(const QPixmap &picture, qreal devicePixelRatio)
{
    const QString path = loaded().pathByKey.value(picture.cacheKey());
    return path.isEmpty() ? picture : artwork(path, devicePixelRatio);
}
