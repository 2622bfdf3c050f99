// SPDX-License-Identifier: GPL-3.0-or-later
// What the gallery shows, beside the pictures in reference/. scripts/renew-screenshots writes those
// anew; a change of looks is then seen in the commit.
#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtTest/QtTest>

namespace
{

// Levels of 255 by which a channel may differ and still count as the same: rounding of blended
// edges, not a shape that has moved.
constexpr int SameLevel = 24;
// A picture is compared tile by tile, since a lost lamp is little of a whole page.
constexpr int TileSize = 16;
constexpr int MostDifferingOfATile = 12;

bool isSame(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b)), std::abs(qAlpha(a) - qAlpha(b))}) <= SameLevel;
}

int differingPixels(const QImage &seen, const QImage &reference, const QRect &tile)
{
    int differing = 0;
    for (int y = tile.top(); y <= tile.bottom(); ++y) {
        for (int x = tile.left(); x <= tile.right(); ++x) {
            differing += isSame(seen.pixel(x, y), reference.pixel(x, y)) ? 0 : 1;
        }
    }
    return differing;
}

// The first tile that looks otherwise; null if the pictures are the same.
QRect differingTile(const QImage &seen, const QImage &reference)
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

QStringList pictures(const QDir &folder, bool doubled)
{
    QStringList names = folder.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
    names.removeIf([doubled](const QString &name) {
        return name.endsWith(QLatin1String("@2x.png")) != doubled;
    });
    return names;
}

} // namespace

class TestScreenshots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLostLampIsSeen()
    {
        QImage page(400, 300, QImage::Format_RGB32);
        page.fill(QColor(204, 204, 204));
        QImage lit = page;
        QPainter painter(&lit);
        painter.fillRect(201, 77, 5, 5, QColor(0, 204, 0));
        painter.end();
        QVERIFY(differingTile(page, page).isNull());
        QCOMPARE(differingTile(lit, page), QRect(192, 64, TileSize, TileSize));
    }

    void everyPageMenuAndPopupLooksAsItsReference_data()
    {
        QTest::addColumn<QString>("scale");
        QTest::newRow("one pixel per pixel") << QStringLiteral("1");
        QTest::newRow("two pixels per pixel") << QStringLiteral("2");
    }

    void everyPageMenuAndPopupLooksAsItsReference()
    {
        QFETCH(const QString, scale);
        const bool doubled = scale == QLatin1String("2");
        const QTemporaryDir seen;
        QVERIFY(seen.isValid());
        QProcess gallery;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
        gallery.setProcessEnvironment(environment);
        gallery.setProcessChannelMode(QProcess::ForwardedChannels);
        gallery.start(QStringLiteral(TRN_BIN_DIR "/gallery"),
                      {QStringLiteral("--screenshots"), seen.path()});
        QVERIFY(gallery.waitForFinished(200000));
        QCOMPARE(gallery.exitStatus(), QProcess::NormalExit);
        QCOMPARE(gallery.exitCode(), 0);

        const QDir reference(QStringLiteral(TRN_SOURCE_DIR "/tests/gallery/reference"));
        const QDir shown(seen.path());
        QCOMPARE(pictures(shown, doubled), pictures(reference, doubled));
        QVERIFY(!pictures(shown, doubled).isEmpty());
        for (const QString &name : pictures(shown, doubled)) {
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
};

QTEST_MAIN(TestScreenshots)
#include "tst_screenshots.moc"
