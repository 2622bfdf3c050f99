// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CRadioButton.h"

#include "widgets/BoundHarness.h"

#include <QtGui/QAccessible>

#include <climits>

// One choice of several: what it shows, where it is hit, and how it meets the memory.

namespace
{

constexpr QRect Place(40, 40, 60, 20);
enum Shown { OffRow, OnRow, DownRow };

} // namespace

class TestRadioButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDefaultsAreThoseOfTheTable();
    void everyPropertyIsReachedByItsName();
    void eachStateShowsItsRow();
    void withoutADownImageItShowsTheOnRowWhileItIsHeld();
    void theWholeRectangleIsHit_data();
    void theWholeRectangleIsHit();
    void theTriggerSaysWhenItTurns();
    void aPushOnTheChosenOneLeavesItChosen();

    void aValueOfTheMemoryChoosesOneOfAGroup();
    void aValueOfNoneLeavesTheChoice();
    void aClickWritesTheValueOfTheChoice();
    void turningOffWritesNothing();
    void aNewValueIsWrittenAtOnceWhenItIsOn();

    void aButtonMayGoInItsOwnClick();

    void theAccessibleNameStays();
    void propertiesThatMakeNoSenseAreHarmless();
};

void TestRadioButton::theDefaultsAreThoseOfTheTable()
{
    CRadioButton button;
    QCOMPARE(button.property("alignment").value<Qt::Alignment>(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(button.property("radioStateTrigger").toInt(), int(CRadioButton::buttonRelease));
    QCOMPARE(button.property("onValue").toInt(), 1);
    QVERIFY(button.property("combinedImage").value<QPixmap>().isNull());
    QCOMPARE(button.property("hasDownImage").toBool(), true);
    QCOMPARE(button.property("imageCategories").toInt(), 1);
    QVERIFY(button.property("namedAddress").toString().isEmpty());
    QVERIFY(!button.property("offValue").isValid());
    QCOMPARE(button.category(), 0);
    QCOMPARE(button.focusPolicy(), Qt::ClickFocus);
    QVERIFY(qobject_cast<QRadioButton *>(&button) != nullptr);
    QCOMPARE(int(CRadioButton::buttonRelease), 0);
    QCOMPARE(int(CRadioButton::buttonPush), 1);
}

void TestRadioButton::everyPropertyIsReachedByItsName()
{
    CRadioButton button;
    QVERIFY(button.setProperty("alignment", QVariant::fromValue(Qt::Alignment(Qt::AlignRight))));
    QVERIFY(button.setProperty("radioStateTrigger", QStringLiteral("buttonPush")));
    QVERIFY(button.setProperty("onValue", 5));
    QVERIFY(button.setProperty("combinedImage", slices(2, 1, QSize(4, 4))));
    QVERIFY(button.setProperty("hasDownImage", false));
    QVERIFY(button.setProperty("imageCategories", 3));
    QVERIFY(button.setProperty("namedAddress", CCName));
    QCOMPARE(button.alignment(), Qt::Alignment(Qt::AlignRight));
    QCOMPARE(button.radioStateTrigger(), CRadioButton::buttonPush);
    QCOMPARE(button.onValue(), 5);
    QCOMPARE(button.combinedImage().size(), QSize(4, 8));
    QCOMPARE(button.hasDownImage(), false);
    QCOMPARE(button.imageCategories(), 3);
    QCOMPARE(button.getNamedAddress(), CCName);
}

void TestRadioButton::eachStateShowsItsRow()
{
    ControlWindow window;
    auto *button = window.add<CRadioButton>(Place);
    button->setCombinedImage(slices(3, 2, Place.size()));
    button->setImageCategories(2);
    button->setCategory(1);
    window.open();
    QCOMPARE(shownInMiddle(button), sliceColour(OffRow, 1).rgb());
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(shownInMiddle(button), sliceColour(DownRow, 1).rgb());
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(shownInMiddle(button), sliceColour(OnRow, 1).rgb());
}

void TestRadioButton::withoutADownImageItShowsTheOnRowWhileItIsHeld()
{
    ControlWindow window;
    auto *button = window.add<CRadioButton>(Place);
    button->setCombinedImage(slices(2, 1, Place.size()));
    button->setHasDownImage(false);
    window.open();
    QCOMPARE(shownInMiddle(button), sliceColour(OffRow, 0).rgb());
    QTest::mousePress(button, Qt::LeftButton);
    QVERIFY(!button->isChecked());
    QCOMPARE(shownInMiddle(button), sliceColour(OnRow, 0).rgb());
    QTest::mouseRelease(button, Qt::LeftButton);
}

void TestRadioButton::theWholeRectangleIsHit_data()
{
    QTest::addColumn<QPoint>("at");
    QTest::newRow("first pixel") << QPoint(0, 0);
    QTest::newRow("last pixel") << QPoint(59, 19);
    QTest::newRow("right of an indicator") << QPoint(50, 3);
}

void TestRadioButton::theWholeRectangleIsHit()
{
    QFETCH(QPoint, at);
    ControlWindow window;
    auto *button = window.add<CRadioButton>(Place);
    window.open();
    RealInput input;
    input.moveTo(button->mapToGlobal(at));
    input.pressLeft();
    input.releaseLeft();
    QTRY_VERIFY(button->isChecked());
}

void TestRadioButton::theTriggerSaysWhenItTurns()
{
    ControlWindow window;
    auto *first = window.add<CRadioButton>(Place);
    auto *second = window.add<CRadioButton>(Place.translated(0, 30));
    first->setChecked(true);
    second->setRadioStateTrigger(CRadioButton::buttonPush);
    window.open();
    QTest::mousePress(second, Qt::LeftButton);
    QVERIFY(second->isChecked());
    QVERIFY(!first->isChecked());
    QTest::mouseRelease(second, Qt::LeftButton);
    QVERIFY(second->isChecked());
    QTest::mousePress(first, Qt::LeftButton);
    QVERIFY(!first->isChecked());
    QTest::mouseRelease(first, Qt::LeftButton);
    QVERIFY(first->isChecked());
    QVERIFY(!second->isChecked());
}

void TestRadioButton::aPushOnTheChosenOneLeavesItChosen()
{
    ControlWindow window;
    auto *first = window.add<CRadioButton>(Place);
    window.add<CRadioButton>(Place.translated(0, 30));
    first->setRadioStateTrigger(CRadioButton::buttonPush);
    first->setChecked(true);
    window.open();
    QSignalSpy toggled(first, &CRadioButton::toggled);
    QTest::mouseClick(first, Qt::LeftButton);
    QVERIFY(first->isChecked());
    QCOMPARE(toggled.count(), 0);
}

void TestRadioButton::aValueOfTheMemoryChoosesOneOfAGroup()
{
    ControlWindow window;
    QList<CRadioButton *> group;
    for (int value = 0; value < 2; ++value) {
        group.append(window.add<CRadioButton>(Place.translated(0, 30 * value)));
        group.last()->setCombinedImage(slices(2, 1, Place.size()));
        group.last()->setHasDownImage(false);
        group.last()->setOnValue(value);
        group.last()->setNamedAddress(FormatName);
    }
    window.api.setParam(DisplayFormatA1, 1);
    window.bind();
    window.open();
    for (const int value : {1, 0, 1}) {
        window.api.setParam(DisplayFormatA1, value);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(group.at(i)->isChecked(), i == value);
            QCOMPARE(shownInMiddle(group.at(i)), sliceColour(i == value ? OnRow : OffRow, 0).rgb());
        }
        QCOMPARE(window.at(DisplayFormatA1), value);
    }
}

void TestRadioButton::aValueOfNoneLeavesTheChoice()
{
    ControlWindow window;
    auto *first = window.add<CRadioButton>(Place);
    auto *second = window.add<CRadioButton>(Place.translated(0, 30));
    first->setOnValue(10);
    second->setOnValue(20);
    first->setNamedAddress(CCName);
    second->setNamedAddress(CCName);
    window.api.setParam(CCNumberA1, 20);
    window.bind();
    QVERIFY(second->isChecked());
    window.api.setParam(CCNumberA1, 30);
    QVERIFY(second->isChecked());
    QVERIFY(!first->isChecked());
    QCOMPARE(window.at(CCNumberA1), 30);
}

void TestRadioButton::aClickWritesTheValueOfTheChoice()
{
    ControlWindow window;
    auto *first = window.add<CRadioButton>(Place);
    auto *second = window.add<CRadioButton>(Place.translated(0, 30));
    first->setOnValue(10);
    second->setOnValue(20);
    first->setNamedAddress(CCName);
    second->setNamedAddress(CCName);
    window.bind();
    window.open();
    LoggingObserver observer(&window.api, CCNumberA1);
    QTest::mousePress(first, Qt::LeftButton);
    QCOMPARE(window.at(CCNumberA1), 64);
    QTest::mouseRelease(first, Qt::LeftButton);
    QCOMPARE(window.at(CCNumberA1), 10);
    QTest::mouseClick(second, Qt::LeftButton);
    QCOMPARE(window.at(CCNumberA1), 20);
    QVERIFY(!first->isChecked());
    QCOMPARE(observer.count, 2);
}

void TestRadioButton::turningOffWritesNothing()
{
    ControlWindow window;
    auto *button = window.add<CRadioButton>(Place);
    button->setOnValue(10);
    button->setNamedAddress(CCName);
    window.api.setParam(CCNumberA1, 10);
    window.bind();
    QVERIFY(button->isChecked());
    button->setAutoExclusive(false);
    LoggingObserver observer(&window.api, CCNumberA1);
    button->setChecked(false);
    QCOMPARE(observer.count, 0);
    QCOMPARE(window.at(CCNumberA1), 10);
}

void TestRadioButton::aNewValueIsWrittenAtOnceWhenItIsOn()
{
    ControlWindow window;
    auto *button = window.add<CRadioButton>(Place);
    button->setNamedAddress(CCName);
    window.bind();
    button->setOnValue(10);
    QCOMPARE(window.at(CCNumberA1), 64);
    button->setChecked(true);
    QCOMPARE(window.at(CCNumberA1), 10);
    button->setOnValue(11);
    QCOMPARE(window.at(CCNumberA1), 11);
}

void TestRadioButton::aButtonMayGoInItsOwnClick()
{
    ControlWindow window;
    auto *button = window.add<CRadioButton>(QRect(40, 40, 20, 20));
    button->setRadioStateTrigger(CRadioButton::buttonPush);
    window.open();
    const QPointer<CRadioButton> watched(button);
    connect(button, &CRadioButton::clicked, button, [button] { delete button; });
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    QVERIFY(watched.isNull());
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    QVERIFY(!window.grab().isNull());
}

void TestRadioButton::theAccessibleNameStays()
{
    ControlWindow window;
    auto *button = window.add<CRadioButton>(Place);
    button->setAccessibleName(QStringLiteral("Knob A1"));
    window.open();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(button);
    QVERIFY(accessible != nullptr);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Knob A1"));
    QCOMPARE(accessible->role(), QAccessible::RadioButton);
}

void TestRadioButton::propertiesThatMakeNoSenseAreHarmless()
{
    ControlWindow window;
    auto *button = window.add<CRadioButton>(Place);
    button->setNamedAddress(QStringLiteral("///"));
    window.bind();
    window.open();
    for (const int number : {0, -1, INT_MIN, INT_MAX}) {
        button->setImageCategories(number);
        button->setCategory(number);
        button->setOnValue(number);
        button->setCombinedImage(slices(1, 1, QSize(1, 1)));
        QVERIFY(!window.grab().isNull());
        button->setCombinedImage(QPixmap());
        QVERIFY(!window.grab().isNull());
        QTest::mouseClick(button, Qt::LeftButton);
    }
    button->resize(0, 0);
    QVERIFY(!window.grab().isNull());
}

QTEST_MAIN(TestRadioButton)
#include "tst_radiobutton.moc"
