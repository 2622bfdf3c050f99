// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/COnOffButton.h"

#include "widgets/BoundHarness.h"

#include <QtGui/QAccessible>
#include <QtWidgets/QApplication>

#include <climits>

// The button of two states: what it shows, when it turns, and how it meets the memory.

namespace
{

constexpr QRect Place(40, 40, 20, 20);
enum Shown { OffRow, OnRow, DownRow };

} // namespace

Q_DECLARE_METATYPE(COnOffButton::TOnOffStateTrigger)

class TestOnOffButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDefaultsAreThoseOfTheTable();
    void everyPropertyIsReachedByItsName();
    void theTriggersCountFromZero();

    void eachStateShowsItsRow_data();
    void eachStateShowsItsRow();
    void thePictureFollowsARealPress();
    void theCategoryChoosesTheColumn();
    void theCategoryStaysWithinTheCategories();
    void theSliceStandsWhereTheAlignmentSays();

    void theTriggersSayWhenItTurns_data();
    void theTriggersSayWhenItTurns();
    void onlyTheLeftButtonTriggers();
    void aButtonThatIsNotCheckableIsNotTriggered();

    void arrowKeysGoNowhere_data();
    void arrowKeysGoNowhere();
    void otherKeysWorkAsEver();

    void aValueOfTheMemoryTurnsIt();
    void aValueThatIsNeitherLeavesItAsItWas();
    void aButtonThatIsNotCheckableLeavesTheMemoryAloneWhenItIsToldOfAChange();
    void aClickWritesTheValueOfTheState();
    void aPressWritesTheOffValueOverAThirdOne();
    void aNewValueIsWrittenAtOnceInItsState();
    void theWritesAreNoMoreThanNeeded();
    void anUnboundButtonWorks();
    void aDeletedButtonIsHeardNoMore();
    void aButtonMayGoInItsOwnClick();

    void theAccessibleNameStays();
    void propertiesThatMakeNoSenseAreHarmless();
};

void TestOnOffButton::theDefaultsAreThoseOfTheTable()
{
    COnOffButton button;
    QCOMPARE(button.property("alignment").value<Qt::Alignment>(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(button.property("onStateTrigger").toInt(), int(COnOffButton::buttonRelease));
    QCOMPARE(button.property("offStateTrigger").toInt(), int(COnOffButton::buttonRelease));
    QCOMPARE(button.property("onValue").toInt(), 1);
    QCOMPARE(button.property("offValue").toInt(), 0);
    QVERIFY(button.property("combinedImage").value<QPixmap>().isNull());
    QCOMPARE(button.property("hasDownImage").toBool(), true);
    QCOMPARE(button.property("imageCategories").toInt(), 1);
    QVERIFY(button.property("namedAddress").toString().isEmpty());
    QCOMPARE(button.category(), 0);
    QCOMPARE(button.focusPolicy(), Qt::ClickFocus);
    QVERIFY(!button.isCheckable());
    QVERIFY(qobject_cast<QPushButton *>(&button) != nullptr);
}

void TestOnOffButton::everyPropertyIsReachedByItsName()
{
    COnOffButton button;
    QVERIFY(button.setProperty("alignment", QVariant::fromValue(Qt::Alignment(Qt::AlignRight))));
    QVERIFY(button.setProperty("onStateTrigger", COnOffButton::buttonPush));
    QVERIFY(button.setProperty("offStateTrigger", QStringLiteral("buttonPush")));
    QVERIFY(button.setProperty("onValue", 5));
    QVERIFY(button.setProperty("offValue", 6));
    QVERIFY(button.setProperty("combinedImage", slices(2, 1, QSize(4, 4))));
    QVERIFY(button.setProperty("hasDownImage", false));
    QVERIFY(button.setProperty("imageCategories", 3));
    QVERIFY(button.setProperty("namedAddress", CCName));
    QCOMPARE(button.alignment(), Qt::Alignment(Qt::AlignRight));
    QCOMPARE(button.onStateTrigger(), COnOffButton::buttonPush);
    QCOMPARE(button.offStateTrigger(), COnOffButton::buttonPush);
    QCOMPARE(button.onValue(), 5);
    QCOMPARE(button.offValue(), 6);
    QCOMPARE(button.combinedImage().size(), QSize(4, 8));
    QCOMPARE(button.hasDownImage(), false);
    QCOMPARE(button.imageCategories(), 3);
    QCOMPARE(button.getNamedAddress(), CCName);
}

void TestOnOffButton::theTriggersCountFromZero()
{
    QCOMPARE(int(COnOffButton::buttonRelease), 0);
    QCOMPARE(int(COnOffButton::buttonPush), 1);
}

void TestOnOffButton::eachStateShowsItsRow_data()
{
    QTest::addColumn<bool>("hasDownImage");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<bool>("down");
    QTest::addColumn<int>("row");
    QTest::newRow("off") << true << false << false << int(OffRow);
    QTest::newRow("on") << true << true << false << int(OnRow);
    QTest::newRow("off, down") << true << false << true << int(DownRow);
    QTest::newRow("on, down") << true << true << true << int(DownRow);
    QTest::newRow("no down image: off") << false << false << false << int(OffRow);
    QTest::newRow("no down image: on") << false << true << false << int(OnRow);
    QTest::newRow("no down image: off, down") << false << false << true << int(OnRow);
    QTest::newRow("no down image: on, down") << false << true << true << int(OnRow);
}

void TestOnOffButton::eachStateShowsItsRow()
{
    QFETCH(bool, hasDownImage);
    QFETCH(bool, checked);
    QFETCH(bool, down);
    QFETCH(int, row);
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCombinedImage(slices(hasDownImage ? 3 : 2, 1, Place.size()));
    button->setHasDownImage(hasDownImage);
    button->setCheckable(true);
    window.open();
    button->setChecked(checked);
    if (down) {
        QTest::mousePress(button, Qt::LeftButton);
    }
    QCOMPARE(button->isDown(), down);
    QCOMPARE(shownInMiddle(button), sliceColour(row, 0).rgb());
    if (down) {
        QTest::mouseRelease(button, Qt::LeftButton);
    }
}

void TestOnOffButton::thePictureFollowsARealPress()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCombinedImage(slices(3, 1, Place.size()));
    window.open();
    RealInput input;
    input.moveTo(button->mapToGlobal(QPoint(10, 10)));
    input.pressLeft();
    QTRY_COMPARE(shownInMiddle(button), sliceColour(DownRow, 0).rgb());
    // Held and moved away it lets go, and takes hold again.
    input.moveBy(60, 0);
    QTRY_COMPARE(shownInMiddle(button), sliceColour(OffRow, 0).rgb());
    input.moveBy(-60, 0);
    QTRY_COMPARE(shownInMiddle(button), sliceColour(DownRow, 0).rgb());
    QSignalSpy clicked(button, &COnOffButton::clicked);
    input.releaseLeft();
    QTRY_COMPARE(clicked.count(), 1);
    QCOMPARE(shownInMiddle(button), sliceColour(OffRow, 0).rgb());
}

void TestOnOffButton::theCategoryChoosesTheColumn()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCombinedImage(slices(2, 3, Place.size()));
    button->setHasDownImage(false);
    button->setImageCategories(3);
    window.open();
    for (int category = 0; category < 3; ++category) {
        button->setCategory(category);
        QCOMPARE(shownInMiddle(button), sliceColour(OffRow, category).rgb());
    }
}

void TestOnOffButton::theCategoryStaysWithinTheCategories()
{
    COnOffButton button;
    button.setImageCategories(3);
    button.setCategory(7);
    QCOMPARE(button.category(), 2);
    button.setCategory(-1);
    QCOMPARE(button.category(), 0);
    button.setImageCategories(0);
    QCOMPARE(button.imageCategories(), 1);
}

void TestOnOffButton::theSliceStandsWhereTheAlignmentSays()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>({40, 40, 40, 30});
    button->setCombinedImage(slices(3, 1, QSize(10, 10)));
    button->setAlignment(Qt::AlignRight | Qt::AlignBottom);
    window.open();
    QCOMPARE(shownAt(button, {30, 20}), sliceColour(OffRow, 0).rgb());
    QCOMPARE(shownAt(button, {39, 29}), sliceColour(OffRow, 0).rgb());
    QCOMPARE(shownAt(button, {29, 19}), WindowColour);
    button->resize(20, 20);
    QCOMPARE(shownAt(button, {10, 10}), sliceColour(OffRow, 0).rgb());
    QCOMPARE(shownAt(button, {9, 9}), WindowColour);
}

void TestOnOffButton::theTriggersSayWhenItTurns_data()
{
    QTest::addColumn<COnOffButton::TOnOffStateTrigger>("on");
    QTest::addColumn<COnOffButton::TOnOffStateTrigger>("off");
    QTest::addColumn<bool>("before");
    QTest::addColumn<QList<bool>>("atPress");
    QTest::addColumn<QList<bool>>("atRelease");
    constexpr auto Push = COnOffButton::buttonPush;
    constexpr auto Release = COnOffButton::buttonRelease;
    using States = QList<bool>;
    QTest::newRow("release, from off") << Release << Release << false << States{} << States{true};
    QTest::newRow("release, from on") << Release << Release << true << States{} << States{false};
    QTest::newRow("on while it is held")
        << Push << Release << false << States{true} << States{false};
    QTest::newRow("on at the push, from on")
        << Push << Release << true << States{} << States{false};
    QTest::newRow("off at the push, from on")
        << Release << Push << true << States{false} << States{true};
    QTest::newRow("off at the push, from off")
        << Release << Push << false << States{} << States{true};
    QTest::newRow("both at the push, from off: on and off again")
        << Push << Push << false << States{true, false} << States{true};
    QTest::newRow("both at the push, from on")
        << Push << Push << true << States{false} << States{true};
}

void TestOnOffButton::theTriggersSayWhenItTurns()
{
    QFETCH(COnOffButton::TOnOffStateTrigger, on);
    QFETCH(COnOffButton::TOnOffStateTrigger, off);
    QFETCH(bool, before);
    QFETCH(QList<bool>, atPress);
    QFETCH(QList<bool>, atRelease);
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setChecked(before);
    button->setOnStateTrigger(on);
    button->setOffStateTrigger(off);
    window.open();
    QList<bool> states;
    connect(button, &COnOffButton::toggled, this, [&](bool state) { states.append(state); });
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(states, atPress);
    states.clear();
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(states, atRelease);
}

void TestOnOffButton::onlyTheLeftButtonTriggers()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setOnStateTrigger(COnOffButton::buttonPush);
    window.open();
    QTest::mousePress(window.windowHandle(), Qt::RightButton, {}, Place.center());
    QVERIFY(!button->isChecked());
    QTest::mouseRelease(window.windowHandle(), Qt::RightButton, {}, Place.center());
}

void TestOnOffButton::aButtonThatIsNotCheckableIsNotTriggered()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setOnStateTrigger(COnOffButton::buttonPush);
    button->setOffStateTrigger(COnOffButton::buttonPush);
    window.open();
    QSignalSpy clicked(button, &COnOffButton::clicked);
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 0);
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
}

void TestOnOffButton::arrowKeysGoNowhere_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("left") << Qt::Key_Left;
    QTest::newRow("right") << Qt::Key_Right;
    QTest::newRow("up") << Qt::Key_Up;
    QTest::newRow("down") << Qt::Key_Down;
}

void TestOnOffButton::arrowKeysGoNowhere()
{
    QFETCH(Qt::Key, key);
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    auto *other = window.add<COnOffButton>(Place.translated(40, 40));
    button->setCheckable(true);
    button->setAutoExclusive(true);
    other->setCheckable(true);
    other->setAutoExclusive(true);
    button->setChecked(true);
    window.open();
    button->setFocus();
    EventLog parent(&window);
    QTest::keyClick(&window, key);
    QTest::keyClick(button, key);
    QVERIFY(button->hasFocus());
    QVERIFY(button->isChecked());
    QTest::keyClick(window.windowHandle(), key);
    QVERIFY(button->hasFocus());
    QCOMPARE(parent.count(QEvent::KeyPress), 1); // the first one, sent to it by hand
    QCOMPARE(parent.count(QEvent::KeyRelease), 1);
}

void TestOnOffButton::otherKeysWorkAsEver()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCombinedImage(slices(3, 1, Place.size()));
    window.open();
    button->setFocus();
    EventLog parent(&window);
    QSignalSpy clicked(button, &COnOffButton::clicked);
    QTest::keyPress(window.windowHandle(), Qt::Key_Space);
    QCOMPARE(shownInMiddle(button), sliceColour(DownRow, 0).rgb());
    QTest::keyRelease(window.windowHandle(), Qt::Key_Space);
    QCOMPARE(clicked.count(), 1);
    QTest::keyClick(window.windowHandle(), Qt::Key_F5);
    QCOMPARE(parent.count(QEvent::KeyPress), 1);
}

void TestOnOffButton::aValueOfTheMemoryTurnsIt()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCombinedImage(slices(2, 1, Place.size()));
    button->setHasDownImage(false);
    button->setCheckable(true);
    button->setOnValue(100);
    button->setOffValue(20);
    button->setNamedAddress(CCName);
    window.api.setParam(CCNumberA1, 100);
    window.open();
    QVERIFY(!button->isChecked());
    window.bind();
    QVERIFY(button->isChecked());
    QCOMPARE(shownInMiddle(button), sliceColour(OnRow, 0).rgb());
    window.api.setParam(CCNumberA1, 20);
    QVERIFY(!button->isChecked());
    QCOMPARE(shownInMiddle(button), sliceColour(OffRow, 0).rgb());
    QCOMPARE(window.at(CCNumberA1), 20);
}

void TestOnOffButton::aValueThatIsNeitherLeavesItAsItWas()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setOnValue(100);
    button->setOffValue(20);
    button->setNamedAddress(CCName);
    window.bind();
    window.open();
    for (const bool state : {true, false}) {
        window.api.setParam(CCNumberA1, state ? 100 : 20);
        QCOMPARE(button->isChecked(), state);
        window.api.setParam(CCNumberA1, 50);
        QCOMPARE(button->isChecked(), state);
        QCOMPARE(window.at(CCNumberA1), 50);
    }
}

void TestOnOffButton::aButtonThatIsNotCheckableLeavesTheMemoryAloneWhenItIsToldOfAChange()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setNamedAddress(CCName);
    window.bind();
    window.api.setParam(CCNumberA1, 1);
    QVERIFY(!button->isChecked());
    QCOMPARE(window.at(CCNumberA1), 1);
}

void TestOnOffButton::aClickWritesTheValueOfTheState()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setOnValue(100);
    button->setOffValue(20);
    button->setNamedAddress(CCName);
    window.api.setParam(CCNumberA1, 20);
    window.bind();
    window.open();
    RealInput input;
    input.moveTo(button->mapToGlobal(QPoint(10, 10)));
    input.pressLeft();
    QTRY_VERIFY(button->isDown());
    QCOMPARE(window.at(CCNumberA1), 20);
    input.releaseLeft();
    QTRY_COMPARE(window.at(CCNumberA1), 100);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(window.at(CCNumberA1), 20);
}

void TestOnOffButton::aPressWritesTheOffValueOverAThirdOne()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setNamedAddress(CCName);
    window.bind();
    window.open();
    QCOMPARE(window.at(CCNumberA1), 64);
    QTest::mousePress(button, Qt::LeftButton);
    QCOMPARE(window.at(CCNumberA1), 0);
    QTest::mouseRelease(button, Qt::LeftButton);
    QCOMPARE(window.at(CCNumberA1), 1);
}

void TestOnOffButton::aNewValueIsWrittenAtOnceInItsState()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setOnValue(100);
    button->setOffValue(20);
    button->setNamedAddress(CCName);
    window.api.setParam(CCNumberA1, 20);
    window.bind();
    button->setOnValue(101);
    QCOMPARE(window.at(CCNumberA1), 20);
    button->setOffValue(21);
    QCOMPARE(window.at(CCNumberA1), 21);
    button->setChecked(true);
    QCOMPARE(window.at(CCNumberA1), 101);
    button->setOffValue(22);
    QCOMPARE(window.at(CCNumberA1), 101);
    button->setOnValue(102);
    QCOMPARE(window.at(CCNumberA1), 102);
}

void TestOnOffButton::theWritesAreNoMoreThanNeeded()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setNamedAddress(CCName);
    window.api.setParam(CCNumberA1, 0);
    window.bind();
    window.open();
    LoggingObserver observer(&window.api, CCNumberA1);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(observer.count, 1);
    window.api.setParam(CCNumberA1, 0);
    QCOMPARE(observer.count, 2);
}

void TestOnOffButton::anUnboundButtonWorks()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    window.bind();
    window.open();
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(button->isChecked());
    button->setOnValue(3);
    button->updateMemAPI();
    QVERIFY(button->isChecked());
}

void TestOnOffButton::aDeletedButtonIsHeardNoMore()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setNamedAddress(CCName);
    window.bind();
    delete button;
    QVERIFY(window.api.setParam(CCNumberA1, 1));
}

void TestOnOffButton::aButtonMayGoInItsOwnClick()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setOnStateTrigger(COnOffButton::buttonPush);
    button->setOffStateTrigger(COnOffButton::buttonPush);
    button->setNamedAddress(FormatName);
    window.bind();
    window.open();
    const QPointer<COnOffButton> watched(button);
    connect(button, &COnOffButton::clicked, button, [button] { delete button; });
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, Place.center());
    QVERIFY(watched.isNull());
    QCOMPARE(window.at(DisplayFormatA1), 1);
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, Place.center());
    QVERIFY(!window.grab().isNull());
}

void TestOnOffButton::theAccessibleNameStays()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setAccessibleName(QStringLiteral("Store"));
    button->setCombinedImage(slices(3, 1, Place.size()));
    window.open();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(button);
    QVERIFY(accessible != nullptr);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Store"));
    QCOMPARE(accessible->role(), QAccessible::Button);
}

void TestOnOffButton::propertiesThatMakeNoSenseAreHarmless()
{
    ControlWindow window;
    auto *button = window.add<COnOffButton>(Place);
    button->setCheckable(true);
    button->setNamedAddress(QStringLiteral("no such name/at all"));
    window.bind();
    window.open();
    for (const int number : {0, -1, INT_MIN, INT_MAX}) {
        button->setImageCategories(number);
        button->setCategory(number);
        button->setOnValue(number);
        button->setOffValue(number);
        button->setCombinedImage(slices(1, 1, QSize(1, 1)));
        button->setHasDownImage(number < 0);
        QVERIFY(!window.grab().isNull());
        button->setCombinedImage(QPixmap());
        QVERIFY(!window.grab().isNull());
        QTest::mouseClick(button, Qt::LeftButton);
    }
    button->setText(QString(10000, u'x'));
    button->resize(0, 0);
    QVERIFY(!window.grab().isNull());
}

QTEST_MAIN(TestOnOffButton)
#include "tst_onoffbutton.moc"
