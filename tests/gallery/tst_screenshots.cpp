// SPDX-License-Identifier: GPL-3.0-or-later
// What the gallery shows, beside the pictures in reference/. scripts/renew-screenshots writes those
// anew; a change of looks is then seen in the commit.
#include "tools/PictureCompare.h"

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtGui/QPainter>

using namespace PictureCompare;

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
        compareFolders(shown, reference, doubled);
    }
};

QTEST_MAIN(TestScreenshots)
#include "tst_screenshots.moc"
