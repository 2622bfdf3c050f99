// SPDX-License-Identifier: GPL-3.0-or-later
#include "images/Artwork.h"
#include "widgets/CFrame.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"
#include "widgets/CSpinButton.h"
#include "widgets/CText.h"

#include <QtTest/QtTest>

#include <QtGui/QPainter>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>

// A window that moves between two screens, of which the right one has two device pixels for each
// pixel. The screens are those of two-screens.json.

namespace
{

constexpr QPoint OnTheLeft(100, 100);
constexpr QPoint OnTheRight(1000, 100);

class Probe : public QWidget, public DoubleBuffer
{
public:
    explicit Probe(QWidget *parent)
        : QWidget(parent)
        , DoubleBuffer(this)
    {
    }
    void paintDoubleBuffer(QPainter *painter) override
    {
        ratios.append(painter->device()->devicePixelRatioF());
        painter->fillRect(rect(), Qt::red);
    }
    QList<qreal> ratios;

protected:
    bool event(QEvent *event) override { return eventDoubleBuffer(event) || QWidget::event(event); }
};

// A picture whose two files differ in every part of it.
QPixmap plainArtwork()
{
    return artwork(QStringLiteral(":/images/t27r_led_edit_f.png"), 1);
}

} // namespace

class TestPaintingScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWidgetPaintsAgainOnceOnAScreenOfAnotherScale();
    void artworkIsExchangedForTheScreens_data();
    void artworkIsExchangedForTheScreens();
};

void TestPaintingScreens::aWidgetPaintsAgainOnceOnAScreenOfAnotherScale()
{
    QWidget window;
    window.resize(120, 80);
    auto *probe = new Probe(&window);
    probe->setGeometry(10, 10, 31, 17);
    window.move(OnTheLeft);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.screen()->name(), QStringLiteral("left"));
    QCOMPARE(probe->ratios, QList<qreal>{1});
    window.move(OnTheRight);
    QTRY_COMPARE(window.screen()->name(), QStringLiteral("right"));
    QTRY_COMPARE(probe->ratios, (QList<qreal>{1, 2}));
    probe->repaint();
    QCOMPARE(probe->ratios, (QList<qreal>{1, 2}));
    window.move(OnTheLeft);
    QTRY_COMPARE(probe->ratios, (QList<qreal>{1, 2, 1}));
}

void TestPaintingScreens::artworkIsExchangedForTheScreens_data()
{
    using Make = std::function<QWidget *(QWidget *, const QPixmap &)>;
    QTest::addColumn<Make>("make");
    QTest::newRow("a frame's background") << Make([](QWidget *parent, const QPixmap &picture) {
        auto *frame = new CFrame(parent);
        frame->setBackgroundPixmap(picture);
        return frame;
    });
    QTest::newRow("a button's picture") << Make([](QWidget *parent, const QPixmap &picture) {
        auto *button = new COnOffButton(parent);
        button->setCombinedImage(picture);
        button->setHasDownImage(false);
        return button;
    });
    QTest::newRow("a spin button's picture") << Make([](QWidget *parent, const QPixmap &picture) {
        auto *spin = new CSpinButton(parent);
        spin->setCombinedImage(picture);
        return spin;
    });
    QTest::newRow("a row's icon") << Make([](QWidget *parent, const QPixmap &picture) {
        auto *list = new CListView(parent);
        list->addItem({QString()});
        list->setItemIcon(0, picture);
        return list;
    });
}

void TestPaintingScreens::artworkIsExchangedForTheScreens()
{
    using Make = std::function<QWidget *(QWidget *, const QPixmap &)>;
    QFETCH(const Make, make);
    const QPixmap plain = plainArtwork();
    QCOMPARE(plain.devicePixelRatio(), 1.0);
    QWidget window;
    window.resize(120, 80);
    QWidget *shown = make(&window, plain);
    shown->setGeometry(10, 10, 40, 20);
    // What the same widget looks like that was made for the fine screen from the start.
    QWidget *fine = make(&window, artworkFor(plain, 2));
    fine->setGeometry(60, 10, 40, 20);
    window.move(OnTheLeft);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto seen = [](QWidget *widget) { return widget->grab().toImage(); };
    QCOMPARE(seen(shown), seen(fine));
    window.move(OnTheRight);
    QTRY_COMPARE(shown->devicePixelRatioF(), 2.0);
    QTRY_COMPARE(seen(shown).size(), QSize(80, 40));
    QCOMPARE(seen(shown), seen(fine));
    // Not that both were drawn from the coarse one.
    CFrame right(&window);
    right.setGeometry(10, 40, 9, 9);
    right.setBackgroundPixmap(plain);
    const QImage drawn = seen(&right);
    QImage coarse(drawn.size(), drawn.format());
    coarse.setDevicePixelRatio(2);
    coarse.fill(window.palette().color(QPalette::Window));
    QPainter painter(&coarse);
    painter.drawPixmap(0, 0, plain);
    painter.end();
    QVERIFY(drawn != coarse);
}

QTEST_MAIN(TestPaintingScreens)
#include "tst_paintingscreens.moc"
