// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QDir>
#include <QtGui/QImage>
#include <QtTest/QtTest>

#include <algorithm>
#include <cstdlib>

// Compares what was seen with a committed picture, so that a change of looks is noticed and a
// change of rounding is not. scripts/renew-screenshots writes the committed ones.
namespace PictureCompare
{

// Levels of 255 by which a channel may differ and still count as the same: rounding of blended
// edges, not a shape that has moved.
inline constexpr int SameLevel = 24;
// A picture is compared tile by tile, since a lost lamp is little of a whole page.
inline constexpr int TileSize = 16;
inline constexpr int MostDifferingOfATile = 12;

inline bool isSame(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))}) <= SameLevel;
}

inline int differingPixels(const QImage &seen, const QImage &reference, const QRect &tile)
{
    int differing = 0;
    for (int y = tile.top(); y <= tile.bottom(); ++y) {
        for (int x = tile.left(); x <= tile.right(); ++x) {
            differing += isSame(seen.pixel(x, y), reference.pixel(x, y)) ? 0 : 1;
        }
    }
    return differing;
}

// The first tile that looks otherwise; null if the pictures, which are of one size, are the same.
inline QRect differingTile(const QImage &seen, const QImage &reference)
{
    for (int y = 0; y < seen.height(); y += TileSize) {
        for (int x = 0; x < seen.width(); x += TileSize) {
            const QRect tile = QRect(x, y, TileSize, TileSize).intersected(seen.rect());
            if (differingPixels(seen, reference, tile) > MostDifferingOfATile) {
                return tile;
            }
        }
    }
    return {};
}

// The names of a folder's pictures at one, or at two pixels per pixel ("NAME@2x.png").
inline QStringList pictures(const QDir &folder, bool doubled)
{
    QStringList names = folder.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
    names.removeIf([doubled](const QString &name) {
        return name.endsWith(QLatin1String("@2x.png")) != doubled;
    });
    return names;
}

// Both folders hold the same pictures at that scale. What differs is kept in the current folder.
inline void compareFolders(const QDir &shown, const QDir &reference, bool doubled)
{
    QCOMPARE(pictures(shown, doubled), pictures(reference, doubled));
    QVERIFY(!pictures(shown, doubled).isEmpty());
    const QStringList names = pictures(shown, doubled);
    for (const QString &name : names) {
        const QImage is(shown.filePath(name));
        const QImage should(reference.filePath(name));
        QVERIFY2(!is.isNull() && !should.isNull(), qPrintable(name));
        QVERIFY2(is.size() == should.size(), qPrintable(name));
        const QRect tile = differingTile(is, should);
        if (!tile.isNull()) {
            const QString kept = QDir::current().filePath(QStringLiteral("seen-") + name);
            is.save(kept);
            QFAIL(qPrintable(QStringLiteral("%1 differs at %2, %3; what was seen is %4")
                                 .arg(name)
                                 .arg(tile.x())
                                 .arg(tile.y())
                                 .arg(kept)));
        }
    }
}

} // namespace PictureCompare
