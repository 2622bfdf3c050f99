// SPDX-License-Identifier: GPL-3.0-or-later
// generate-artwork [--check] FOLDER
// generate-artwork --sheet FOLDER
// Draws every picture of the catalogue into the folder, at one and at two device pixels per pixel.
// --check draws them anew and compares them with what lies there. --sheet writes mock-ups of the
// window and of all panels, to look at.
#include "fonts/ApplicationFonts.h"
#include "images/generator/Catalogue.h"
#include "images/generator/Sheets.h"

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QSaveFile>
#include <QtCore/QTextStream>
#include <QtGui/QGuiApplication>
#include <QtGui/QImageWriter>

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr std::array ratios{1, 2};

QString fileName(const Artwork &artwork, int ratio)
{
    return QString::fromLatin1(artwork.name) +
           (ratio == 1 ? QStringLiteral(".png") : QStringLiteral("@2x.png"));
}

// The same pixels out of a palette; null if they have too many colours for one.
QImage withPalette(const QImage &image)
{
    constexpr qsizetype mostColors = 256;
    QImage result(image.size(), QImage::Format_Indexed8);
    QList<QRgb> colors;
    QHash<QRgb, uchar> indices;
    for (int y = 0; y < image.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        std::transform(line, line + image.width(), result.scanLine(y), [&](QRgb color) {
            const auto known = indices.constFind(color);
            if (known != indices.constEnd()) {
                return *known;
            }
            colors.append(color);
            return *indices.insert(color, static_cast<uchar>(colors.size() - 1));
        });
        if (colors.size() > mostColors) {
            return QImage();
        }
    }
    result.setColorTable(colors);
    return result;
}

// What the file shall hold: pictures without transparency take less room without an alpha channel.
// With a palette, and nearly all have few enough colours, a picture is read in a third of the time,
// which every start of the program waits for.
QImage stored(const QImage &image)
{
    QImage plain = image.convertToFormat(QImage::Format_ARGB32);
    plain.setDevicePixelRatio(1);
    QImage small = withPalette(plain);
    if (!small.isNull()) {
        return small;
    }
    bool opaque = true;
    for (int y = 0; opaque && y < plain.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(plain.constScanLine(y));
        opaque = std::all_of(line, line + plain.width(),
                             [](QRgb pixel) { return qAlpha(pixel) == 255; });
    }
    return opaque ? plain.convertToFormat(QImage::Format_RGB32) : plain;
}

bool write(const QImage &image, const QString &path)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    writer.setCompression(100);
    QSaveFile file(path);
    return writer.write(image) && file.open(QIODevice::WriteOnly) &&
           file.write(bytes) == bytes.size() && file.commit();
}

// Another version of the graphics libraries may round otherwise, by a few levels at the edges.
bool alike(const QImage &drawn, const QImage &found)
{
    constexpr int tolerance = 6;
    if (drawn.size() != found.size()) {
        return false;
    }
    const QImage left = drawn.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage right = found.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < left.height(); ++y) {
        const uchar *one = left.constScanLine(y);
        const uchar *other = right.constScanLine(y);
        for (int index = 0; index < left.width() * 4; ++index) {
            if (std::abs(one[index] - other[index]) > tolerance) {
                return false;
            }
        }
    }
    return true;
}

bool forAll(const QDir &folder, bool (*handle)(const QImage &, const QString &))
{
    QTextStream errors(stderr);
    bool good = true;
    for (const Artwork &artwork : catalogue()) {
        for (const int ratio : ratios) {
            const QString path = folder.filePath(fileName(artwork, ratio));
            if (!handle(stored(render(artwork, ratio)), path)) {
                errors << "generate-artwork: " << path << '\n';
                good = false;
            }
        }
    }
    return good;
}

} // namespace

int main(int argc, char *argv[])
{
    // No screen is needed, and none may lend its scale to the pictures.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", "1");
    QGuiApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    const bool check = arguments.removeAll(QStringLiteral("--check")) > 0;
    const bool sheet = arguments.removeAll(QStringLiteral("--sheet")) > 0;
    QTextStream errors(stderr);
    if (arguments.size() != 1 || (check && sheet)) {
        errors << "usage: generate-artwork [--check | --sheet] FOLDER\n";
        return 2;
    }
    if (!loadApplicationFonts()) {
        errors << "generate-artwork: the program's fonts can't be loaded\n";
        return 1;
    }
    const QDir folder(arguments.first());
    if (!check && !folder.mkpath(QStringLiteral("."))) {
        errors << "generate-artwork: " << folder.path() << " can't be made\n";
        return 1;
    }
    if (sheet) {
        return writeSheets(folder) ? 0 : 1;
    }
    const bool good =
        check ? forAll(folder, [](const QImage &image,
                                  const QString &path) { return alike(image, QImage(path)); })
              : forAll(folder, write);
    return good ? 0 : 1;
}
