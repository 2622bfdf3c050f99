// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/PictureCompare.h"

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

// What the window, its panels, menus and popups look like, beside the pictures in reference/.
// scripts/renew-screenshots writes those anew; a change of looks is then seen in the commit.
class TestWindowScreenshots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyViewPanelMenuAndPopupLooksAsItsReference_data()
    {
        QTest::addColumn<QString>("scale");
        QTest::newRow("one pixel per pixel") << QStringLiteral("1");
        QTest::newRow("two pixels per pixel") << QStringLiteral("2");
    }

    void everyViewPanelMenuAndPopupLooksAsItsReference()
    {
        QFETCH(const QString, scale);
        const QTemporaryDir seen;
        QVERIFY(seen.isValid());
        QProcess pictures;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
        pictures.setProcessEnvironment(environment);
        pictures.setProcessChannelMode(QProcess::ForwardedChannels);
        pictures.start(QStringLiteral(TRN_BIN_DIR "/tests/window-pictures"), {seen.path()});
        QVERIFY(pictures.waitForFinished(200000));
        QCOMPARE(pictures.exitStatus(), QProcess::NormalExit);
        QCOMPARE(pictures.exitCode(), 0);
        PictureCompare::compareFolders(QDir(seen.path()),
                                       QDir(QStringLiteral(TRN_SOURCE_DIR "/tests/app/reference")),
                                       scale == QLatin1String("2"));
    }
};

QTEST_MAIN(TestWindowScreenshots)
#include "tst_windowscreenshots.moc"
