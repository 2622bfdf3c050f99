// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CSpinButton.h"

#include "widgets/COnOffButton.h"

#include "widgets/BoundHarness.h"

#include <QtGui/QAccessible>

#include <algorithm>
#include <climits>
#include <limits>

// The pair of unseen buttons over a picture: what it shows and for how long, what steps it, and how
// it meets the memory.

namespace
{

constexpr QRect Place(40, 40, 19, 19);
enum Shown { NormalRow, UpRow, DownRow };

CSpinButton *addSpin(ControlWindow *window)
{
    auto *spin = window->add<CSpinButton>(Place);
    spin->setCombinedImage(slices(3, 1, Place.size()));
    spin->setRange(0, 10);
    spin->setValue(5);
    return spin;
}

COnOffButton *halfAt(const CSpinButton *spin, int y)
{
    return qobject_cast<COnOffButton *>(spin->childAt(spin->width() / 2, y));
}

QRgb rowColour(int row)
{
    return sliceColour(row, 0).rgb();
}

} // namespace

class TestSpinButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDefaultsAreThoseOfTheTable();
    void everyPropertyIsReachedByItsName();
    void theHalvesCoverTheWidgetAtEverySize();
    void theHalvesRepeatAndTakeNoFocus();

    void aPressOnAHalfShowsItAndAClickSteps_data();
    void aPressOnAHalfShowsItAndAClickSteps();
    void aHeldHalfRepeatsAndEndsAtTheLimit();
    void theHalvesAreEnabledByRangeAndValue();
    void invertedControlsTurnTheSteps();

    void aWheelStepShowsAPressedHalfForATenthOfASecond();
    void aWheelStepAtTheMaximumNeitherShowsAPressedHalfNorChangesTheValue_data();
    void aWheelStepAtTheMaximumNeitherShowsAPressedHalfNorChangesTheValue();
    void wheelAnglesAreCarriedOver();
    void aWheelBesideTheWidgetDoesNothing();
    void sidewaysTurningDoesNothing();
    void aRealWheelSteps();

    void keysStepAndShowAHalf_data();
    void keysStepAndShowAHalf();
    void aKeyAtItsLimitShowsNothing_data();
    void aKeyAtItsLimitShowsNothing();

    void rangeAndValueComeFromTheMemory();
    void takingTheRangeWritesNothing();
    void aChangeOfTheMemoryShows();
    void aStepIsWritten();
    void aWalkMovesItToAnotherTemplate();
    void anUnboundSpinButtonWorks();

    void aSpinButtonMayGoInItsOwnStep();

    void theAccessibleNameStays();
    void propertiesThatMakeNoSenseAreHarmless();
};

void TestSpinButton::theDefaultsAreThoseOfTheTable()
{
    CSpinButton spin;
    QCOMPARE(spin.property("alignment").value<Qt::Alignment>(), Qt::Alignment(Qt::AlignCenter));
    QVERIFY(spin.property("combinedImage").value<QPixmap>().isNull());
    QCOMPARE(spin.property("imageCategories").toInt(), 1);
    QVERIFY(spin.property("namedAddress").toString().isEmpty());
    QCOMPARE(spin.category(), 0);
    QCOMPARE(spin.focusPolicy(), Qt::ClickFocus);
    QCOMPARE(spin.findChildren<COnOffButton *>().size(), 2);
    QVERIFY(qobject_cast<QAbstractSlider *>(&spin) != nullptr);
}

void TestSpinButton::everyPropertyIsReachedByItsName()
{
    CSpinButton spin;
    QVERIFY(spin.setProperty("alignment", QVariant::fromValue(Qt::Alignment(Qt::AlignRight))));
    QVERIFY(spin.setProperty("combinedImage", slices(3, 2, QSize(4, 4))));
    QVERIFY(spin.setProperty("imageCategories", 2));
    QVERIFY(spin.setProperty("namedAddress", CCName));
    QCOMPARE(spin.alignment(), Qt::Alignment(Qt::AlignRight));
    QCOMPARE(spin.combinedImage().size(), QSize(8, 12));
    QCOMPARE(spin.imageCategories(), 2);
    QCOMPARE(spin.getNamedAddress(), CCName);
    spin.setCategory(9);
    QCOMPARE(spin.category(), 1);
}

void TestSpinButton::theHalvesCoverTheWidgetAtEverySize()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    window.open();
    for (const QSize size : {QSize(19, 18), QSize(19, 19), QSize(40, 60), QSize(1, 1)}) {
        spin->resize(size);
        const auto halves = spin->findChildren<COnOffButton *>();
        QCOMPARE(halves.at(0)->geometry(), QRect(0, 0, size.width(), size.height() / 2));
        QCOMPARE(halves.at(1)->geometry(),
                 QRect(0, size.height() / 2, size.width(), size.height() - size.height() / 2));
    }
}

void TestSpinButton::theHalvesRepeatAndTakeNoFocus()
{
    CSpinButton spin;
    for (const COnOffButton *half : spin.findChildren<COnOffButton *>()) {
        QCOMPARE(half->focusPolicy(), Qt::NoFocus);
        QVERIFY(half->autoRepeat());
    }
}

void TestSpinButton::aPressOnAHalfShowsItAndAClickSteps_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("value");
    QTest::newRow("upper") << 2 << int(UpRow) << 6;
    QTest::newRow("lower") << 16 << int(DownRow) << 4;
}

void TestSpinButton::aPressOnAHalfShowsItAndAClickSteps()
{
    QFETCH(int, y);
    QFETCH(int, row);
    QFETCH(int, value);
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    halfAt(spin, y)->setAutoRepeatDelay(60000);
    window.open();
    QCOMPARE(shownInMiddle(spin), rowColour(NormalRow));
    QSignalSpy action(spin, &CSpinButton::actionTriggered);
    RealInput input;
    input.moveTo(spin->mapToGlobal(QPoint(9, y)));
    input.pressLeft();
    QTRY_COMPARE(shownInMiddle(spin), rowColour(row));
    QCOMPARE(spin->value(), 5);
    input.releaseLeft();
    QTRY_COMPARE(spin->value(), value);
    QTRY_COMPARE(shownInMiddle(spin), rowColour(NormalRow));
    QCOMPARE(action.count(), 1);
}

void TestSpinButton::aHeldHalfRepeatsAndEndsAtTheLimit()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    COnOffButton *up = halfAt(spin, 2);
    up->setAutoRepeatDelay(10);
    up->setAutoRepeatInterval(5);
    window.open();
    RealInput input;
    input.moveTo(spin->mapToGlobal(QPoint(9, 2)));
    input.pressLeft();
    QTRY_COMPARE(spin->value(), 10);
    QVERIFY(!up->isEnabled());
    QTRY_COMPARE(shownInMiddle(spin), rowColour(NormalRow));
    input.releaseLeft();
    input.turnWheel(-1);
    QTRY_COMPARE(spin->value(), 9);
}

void TestSpinButton::theHalvesAreEnabledByRangeAndValue()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    const auto halves = spin->findChildren<COnOffButton *>();
    const auto enabled = [&] {
        return QPair<bool, bool>(halves.at(0)->isEnabled(), halves.at(1)->isEnabled());
    };
    QCOMPARE(enabled(), qMakePair(true, true));
    spin->setValue(10);
    QCOMPARE(enabled(), qMakePair(false, true));
    spin->setValue(0);
    QCOMPARE(enabled(), qMakePair(true, false));
    spin->setRange(-5, 0);
    QCOMPARE(enabled(), qMakePair(false, true));
    spin->setRange(0, 0);
    QCOMPARE(enabled(), qMakePair(false, false));
    CSpinButton fresh;
    QCOMPARE(fresh.findChildren<COnOffButton *>().at(1)->isEnabled(), false);
}

void TestSpinButton::invertedControlsTurnTheSteps()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setInvertedControls(true);
    window.open();
    QTest::mouseClick(halfAt(spin, 2), Qt::LeftButton);
    QCOMPARE(spin->value(), 4);
    QTest::mouseClick(halfAt(spin, 16), Qt::LeftButton);
    QCOMPARE(spin->value(), 5);
    turnWheel(spin, 120);
    QCOMPARE(spin->value(), 4);
    turnWheel(spin, -120);
    QCOMPARE(spin->value(), 5);
}

void TestSpinButton::aWheelStepShowsAPressedHalfForATenthOfASecond()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    window.open();
    // A busy machine may show it longer, but not every time.
    qint64 shortest = std::numeric_limits<qint64>::max();
    for (const bool up : {true, false, true, false}) {
        QElapsedTimer since;
        since.start();
        turnWheel(spin, up ? 120 : -120);
        QCOMPARE(spin->value(), up ? 6 : 5);
        QCOMPARE(shownInMiddle(spin), rowColour(up ? UpRow : DownRow));
        QTRY_COMPARE(shownInMiddle(spin), rowColour(NormalRow));
        QVERIFY(since.elapsed() >= 90);
        shortest = std::min(shortest, since.elapsed());
    }
    QVERIFY(shortest < 500);
    // The other direction takes the first one's place at once.
    turnWheel(spin, 120);
    turnWheel(spin, -120);
    QCOMPARE(shownInMiddle(spin), rowColour(DownRow));
}

void TestSpinButton::aWheelStepAtTheMaximumNeitherShowsAPressedHalfNorChangesTheValue_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("angle");
    QTest::newRow("maximum") << 10 << 120;
    QTest::newRow("minimum") << 0 << -120;
    QTest::newRow("maximum, several notches") << 10 << 1200;
}

void TestSpinButton::aWheelStepAtTheMaximumNeitherShowsAPressedHalfNorChangesTheValue()
{
    QFETCH(int, value);
    QFETCH(int, angle);
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setValue(value);
    window.open();
    QSignalSpy changed(spin, &CSpinButton::valueChanged);
    QSignalSpy action(spin, &CSpinButton::actionTriggered);
    turnWheel(spin, angle);
    QCOMPARE(shownInMiddle(spin), rowColour(NormalRow));
    QCOMPARE(spin->value(), value);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(action.count(), 0);
}

void TestSpinButton::wheelAnglesAreCarriedOver()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    window.open();
    for (int i = 0; i < 7; ++i) {
        turnWheel(spin, 15);
    }
    QCOMPARE(spin->value(), 5);
    QCOMPARE(shownInMiddle(spin), rowColour(NormalRow));
    turnWheel(spin, 15);
    QCOMPARE(spin->value(), 6);
    turnWheel(spin, 300);
    QCOMPARE(spin->value(), 8);
    turnWheel(spin, 60);
    QCOMPARE(spin->value(), 9);
    turnWheel(spin, 1200);
    QCOMPARE(spin->value(), 10);
    turnWheel(spin, 0);
    QCOMPARE(spin->value(), 10);
}

void TestSpinButton::aWheelBesideTheWidgetDoesNothing()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    window.open();
    for (const QPoint at : {QPoint(-1, 5), QPoint(5, -1), QPoint(19, 5), QPoint(5, 19)}) {
        turnWheel(spin, 120, at);
    }
    QCOMPARE(spin->value(), 5);
    turnWheel(spin, 120, QPoint(18, 18));
    QCOMPARE(spin->value(), 6);
}

void TestSpinButton::sidewaysTurningDoesNothing()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    window.open();
    turnWheel(spin, 0, QPoint(5, 5), 240);
    QCOMPARE(spin->value(), 5);
}

void TestSpinButton::aRealWheelSteps()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    window.open();
    EventLog parent(&window);
    RealInput input;
    input.moveTo(spin->mapToGlobal(QPoint(9, 9)));
    input.turnWheel(3);
    QTRY_COMPARE(spin->value(), 8);
    input.turnWheel(-4);
    QTRY_COMPARE(spin->value(), 4);
    // Over a half that is disabled as well.
    spin->setValue(0);
    input.moveTo(spin->mapToGlobal(QPoint(9, 15)));
    input.turnWheel(1);
    QTRY_COMPARE(spin->value(), 1);
    QCOMPARE(parent.count(QEvent::Wheel), 0);
}

void TestSpinButton::keysStepAndShowAHalf_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("value");
    QTest::newRow("home") << Qt::Key_Home << int(DownRow) << 0;
    QTest::newRow("left") << Qt::Key_Left << int(DownRow) << 49;
    QTest::newRow("down") << Qt::Key_Down << int(DownRow) << 49;
    QTest::newRow("page down") << Qt::Key_PageDown << int(DownRow) << 40;
    QTest::newRow("end") << Qt::Key_End << int(UpRow) << 99;
    QTest::newRow("up") << Qt::Key_Up << int(UpRow) << 51;
    QTest::newRow("right") << Qt::Key_Right << int(UpRow) << 51;
    QTest::newRow("page up") << Qt::Key_PageUp << int(UpRow) << 60;
}

void TestSpinButton::keysStepAndShowAHalf()
{
    QFETCH(Qt::Key, key);
    QFETCH(int, row);
    QFETCH(int, value);
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setRange(0, 99);
    spin->setValue(50);
    window.open();
    spin->setFocus();
    QTest::keyClick(window.windowHandle(), key);
    QCOMPARE(spin->value(), value);
    QCOMPARE(shownInMiddle(spin), rowColour(row));
    QTRY_COMPARE(shownInMiddle(spin), rowColour(NormalRow));
}

void TestSpinButton::aKeyAtItsLimitShowsNothing_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("value");
    for (const auto key : {Qt::Key_Home, Qt::Key_Left, Qt::Key_Down, Qt::Key_PageDown}) {
        QTest::newRow(qPrintable(QKeySequence(key).toString())) << key << 0;
    }
    for (const auto key : {Qt::Key_End, Qt::Key_Up, Qt::Key_Right, Qt::Key_PageUp}) {
        QTest::newRow(qPrintable(QKeySequence(key).toString())) << key << 10;
    }
}

void TestSpinButton::aKeyAtItsLimitShowsNothing()
{
    QFETCH(Qt::Key, key);
    QFETCH(int, value);
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setValue(value);
    window.open();
    spin->setFocus();
    QTest::keyClick(window.windowHandle(), key);
    QCOMPARE(spin->value(), value);
    QCOMPARE(shownInMiddle(spin), rowColour(NormalRow));
}

void TestSpinButton::rangeAndValueComeFromTheMemory()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setNamedAddress(CCName);
    window.bind();
    QCOMPARE(spin->minimum(), 0);
    QCOMPARE(spin->maximum(), 127);
    QCOMPARE(spin->value(), 64);
    auto *number = window.add<CSpinButton>(Place.translated(40, 0));
    number->setNamedAddress(QStringLiteral("currentTemplateNumber"));
    window.bind();
    QCOMPARE(number->maximum(), 49);
}

void TestSpinButton::takingTheRangeWritesNothing()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    // Neither its old value nor one that the new range leaves of it is the parameter's.
    spin->setRange(0, 500);
    spin->setValue(400);
    spin->setNamedAddress(CCName);
    LoggingObserver observer(&window.api, CCNumberA1);
    window.bind();
    QCOMPARE(observer.count, 0);
    QCOMPARE(window.at(CCNumberA1), 64);
    QCOMPARE(spin->value(), 64);
    // The same, below the range.
    spin->setRange(-500, -400);
    window.api.setParam(CCNumberA1, 64);
    window.bind();
    QCOMPARE(spin->minimum(), 0);
    QCOMPARE(spin->value(), window.at(CCNumberA1));
}

void TestSpinButton::aChangeOfTheMemoryShows()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setNamedAddress(CCName);
    window.bind();
    QSignalSpy changed(spin, &CSpinButton::valueChanged);
    LoggingObserver observer(&window.api, CCNumberA1);
    window.api.setParam(CCNumberA1, 100);
    QCOMPARE(spin->value(), 100);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(observer.count, 1);
}

void TestSpinButton::aStepIsWritten()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setNamedAddress(CCName);
    window.bind();
    window.open();
    QTest::mouseClick(halfAt(spin, 2), Qt::LeftButton);
    QCOMPARE(window.at(CCNumberA1), 65);
    turnWheel(spin, -240);
    QCOMPARE(window.at(CCNumberA1), 63);
    QTest::keyClick(spin, Qt::Key_Home);
    QCOMPARE(window.at(CCNumberA1), 0);
}

void TestSpinButton::aWalkMovesItToAnotherTemplate()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setNamedAddress(CCName);
    const ParamAddress other(0, 7, 0, 1);
    window.api.setParam(other, 12);
    window.bind();
    assignTemplate(&window, 7);
    QCOMPARE(spin->value(), 12);
    QCOMPARE(window.at(CCNumberA1), 64);
    spin->setValue(13);
    QCOMPARE(window.at(other), 13);
    window.api.setParam(CCNumberA1, 1);
    QCOMPARE(spin->value(), 13);
}

void TestSpinButton::anUnboundSpinButtonWorks()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    window.bind();
    QCOMPARE(spin->maximum(), 10);
    QCOMPARE(spin->value(), 5);
    turnWheel(spin, 120);
    QCOMPARE(spin->value(), 6);
}

void TestSpinButton::aSpinButtonMayGoInItsOwnStep()
{
    ControlWindow window;
    window.open();
    const auto add = [&window] {
        CSpinButton *spin = addSpin(&window);
        spin->show();
        connect(spin, &CSpinButton::valueChanged, spin, [spin] { delete spin; });
        return QPointer<CSpinButton>(spin);
    };
    QPointer<CSpinButton> spin = add();
    turnWheel(spin, 360);
    QVERIFY(spin.isNull());
    spin = add();
    QTest::keyClick(spin, Qt::Key_Up);
    QVERIFY(spin.isNull());
    spin = add();
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 43));
    QVERIFY(spin.isNull());
}

void TestSpinButton::theAccessibleNameStays()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setAccessibleName(QStringLiteral("CC number"));
    window.open();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(spin);
    QVERIFY(accessible != nullptr);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("CC number"));
    for (const COnOffButton *half : spin->findChildren<COnOffButton *>()) {
        QVERIFY(!half->accessibleName().isEmpty());
    }
}

void TestSpinButton::propertiesThatMakeNoSenseAreHarmless()
{
    ControlWindow window;
    CSpinButton *spin = addSpin(&window);
    spin->setNamedAddress(QStringLiteral("nothing"));
    window.bind();
    window.open();
    for (const int number : {0, -1, INT_MIN, INT_MAX}) {
        spin->setImageCategories(number);
        spin->setCategory(number);
        spin->setRange(INT_MIN, INT_MAX);
        spin->setSingleStep(number);
        spin->setPageStep(number);
        spin->setValue(number);
        spin->setCombinedImage(slices(1, 1, QSize(2, 2)));
        QVERIFY(!window.grab().isNull());
        spin->setCombinedImage(QPixmap());
        turnWheel(spin, 120);
        turnWheel(spin, -240);
        turnWheel(spin, number);
        QTest::keyClick(spin, Qt::Key_PageUp);
        QVERIFY(!window.grab().isNull());
        spin->setRange(5, 1);
        turnWheel(spin, number);
    }
    spin->resize(0, 0);
    QVERIFY(!window.grab().isNull());
}

QTEST_MAIN(TestSpinButton)
#include "tst_spinbutton.moc"
