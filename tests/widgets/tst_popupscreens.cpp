// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CPopupList.h"

#include <QtTest/QtTest>

#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>

// Popups on two screens side by side, of which the right one has two device pixels for each pixel.
// The screens are those of two-screens.json.

class TestPopupScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theScreensAreThere();
    void opensOnTheScreenOfThePoint_data();
    void opensOnTheScreenOfThePoint();
    void opensOnTheScreenBesideTheRectangle_data();
    void opensOnTheScreenBesideTheRectangle();

private:
    // The popup as it was while it was open.
    struct Seen
    {
        QRect geometry;
        QString screen;
        qreal ratio = 0;
    };
    template <class Place>
    static Seen open(const Place &place)
    {
        Seen seen;
        auto *popup = new CPopupList;
        popup->resize(120, 100);
        QTimer::singleShot(0, popup, [popup, &seen] {
            // This platform gives every window a frame.
            seen = {QRect(popup->windowHandle()->framePosition(), popup->size()),
                    popup->screen()->name(), popup->devicePixelRatioF()};
            popup->close();
        });
        popup->exec(place);
        return seen;
    }
};

void TestPopupScreens::theScreensAreThere()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    QCOMPARE(screens.size(), 2);
    QCOMPARE(screens.at(0)->geometry(), QRect(0, 0, 800, 600));
    QCOMPARE(screens.at(1)->geometry(), QRect(800, 0, 1000, 700));
    QCOMPARE(screens.at(0)->devicePixelRatio(), 1.0);
    QCOMPARE(screens.at(1)->devicePixelRatio(), 2.0);
}

void TestPopupScreens::opensOnTheScreenOfThePoint_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<QPoint>("corner");
    QTest::addColumn<QString>("screen");
    const QString left = QStringLiteral("left");
    const QString right = QStringLiteral("right");
    QTest::newRow("left") << QPoint(100, 100) << QPoint(100, 100) << left;
    QTest::newRow("not across the edge between them")
        << QPoint(750, 100) << QPoint(630, 100) << left;
    QTest::newRow("right") << QPoint(900, 100) << QPoint(900, 100) << right;
    QTest::newRow("right, at its start") << QPoint(800, 100) << QPoint(800, 100) << right;
    QTest::newRow("below the lower edge of the left one")
        << QPoint(900, 590) << QPoint(900, 590) << right;
    QTest::newRow("lower right corner") << QPoint(1799, 699) << QPoint(1679, 599) << right;
    QTest::newRow("below the left one") << QPoint(100, 650) << QPoint(100, 500) << left;
    QTest::newRow("far to the right") << QPoint(5000, 300) << QPoint(1680, 300) << right;
}

void TestPopupScreens::opensOnTheScreenOfThePoint()
{
    QFETCH(QPoint, point);
    QFETCH(QPoint, corner);
    QFETCH(QString, screen);
    const Seen seen = open(point);
    QCOMPARE(seen.geometry, QRect(corner, QSize(120, 100)));
    QCOMPARE(seen.screen, screen);
    QCOMPARE(seen.ratio, screen == QLatin1String("left") ? 1.0 : 2.0);
}

void TestPopupScreens::opensOnTheScreenBesideTheRectangle_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QPoint>("corner");
    QTest::addColumn<QString>("screen");
    const QString left = QStringLiteral("left");
    const QString right = QStringLiteral("right");
    QTest::newRow("pushed back onto the left one")
        << QRect(700, 100, 20, 20) << QPoint(680, 100) << left;
    QTest::newRow("at the edge between them")
        << QRect(780, 100, 20, 20) << QPoint(800, 100) << right;
    QTest::newRow("pushed up on the right one")
        << QRect(900, 690, 20, 20) << QPoint(920, 600) << right;
}

void TestPopupScreens::opensOnTheScreenBesideTheRectangle()
{
    QFETCH(QRect, rect);
    QFETCH(QPoint, corner);
    QFETCH(QString, screen);
    const Seen seen = open(rect);
    QCOMPARE(seen.geometry, QRect(corner, QSize(120, 100)));
    QCOMPARE(seen.screen, screen);
}

QTEST_MAIN(TestPopupScreens)
#include "tst_popupscreens.moc"
