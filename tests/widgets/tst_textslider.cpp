// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CTextSlider.h"

#include "widgets/CLineEdit.h"

#include "widgets/BoundHarness.h"

#include <QtGui/QAccessible>
#include <QtGui/QDoubleValidator>
#include <QtGui/QIntValidator>
#include <QtWidgets/QApplication>

#include <climits>
#include <limits>

// The number that is shown as text and dragged: its words, the pointer while it is dragged, its
// editor, and how it meets the memory.

namespace
{

constexpr QRect Place(60, 60, 44, 15);

CTextSlider *addSlider(ControlWindow *window)
{
    auto *slider = window->add<CTextSlider>(Place);
    QFont font;
    font.setPixelSize(10);
    font.setStyleStrategy(QFont::NoAntialias);
    slider->setFont(font);
    QPalette colours = slider->palette();
    colours.setColor(QPalette::Text, Qt::white);
    slider->setPalette(colours);
    slider->setRange(0, 127);
    slider->setValue(64);
    return slider;
}

CLineEdit *editorOf(const CTextSlider *slider)
{
    return slider->findChild<CLineEdit *>();
}

// A real drag: the button goes down in the slider, and the pointer moves by one pixel at a time,
// each of which the slider has seen before the next. The button goes up again at the end.
class Drag : public QObject
{
public:
    Drag(CTextSlider *slider, const QPoint &from)
        : start(slider->mapToGlobal(from))
        , centre(slider->mapToGlobal(slider->rect().center()))
        , m_slider(slider)
    {
        slider->installEventFilter(this);
        input.moveTo(start);
        input.pressLeft();
        begin();
    }
    ~Drag() override
    {
        if (!m_ended) {
            end();
        }
    }
    // pixels: above 0 down. The pointer is back in the middle after each.
    bool by(int pixels)
    {
        for (int i = 0; i < qAbs(pixels); ++i) {
            if (!jump(pixels > 0 ? 1 : -1)) {
                return false;
            }
        }
        return true;
    }
    // All at once.
    bool jump(int pixels, int sideways = 0)
    {
        m_seen = QPoint();
        input.moveBy(sideways, pixels);
        return waitForPointer();
    }
    void end()
    {
        m_ended = true;
        input.releaseLeft();
        QTRY_VERIFY(!m_slider->testAttribute(Qt::WA_SetCursor));
        QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    }

    RealInput input;
    QPoint start;
    QPoint centre;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonPress) {
            m_seen = static_cast<QMouseEvent *>(event)->globalPosition().toPoint();
        }
        return false;
    }

private:
    void begin()
    {
        QTRY_COMPARE(m_slider->cursor().shape(), Qt::BlankCursor);
        QVERIFY(waitForPointer());
    }
    // Qt leaves out a movement to where it has last seen the pointer, so that it must have seen it
    // in the middle before the next one.
    bool waitForPointer()
    {
        return QTest::qWaitFor([&] { return m_seen == centre && input.position() == centre; });
    }

    CTextSlider *m_slider;
    QPoint m_seen;
    bool m_ended = false;
};

void doubleClick(CTextSlider *slider)
{
    RealInput input;
    input.moveTo(slider->mapToGlobal(QPoint(5, 5)));
    for (int i = 0; i < 2; ++i) {
        input.pressLeft();
        input.releaseLeft();
    }
}

} // namespace

class TestTextSlider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theDefaultsAreThoseOfTheTable();
    void everyPropertyIsReachedByItsName();
    void theTextIsOffsetAndMultipleOfTheValue_data();
    void theTextIsOffsetAndMultipleOfTheValue();
    void theTextIsDrawnAgainAtEveryChange();

    void aPressHidesThePointerAndHoldsItInTheMiddle();
    void draggingNeverMovesTheVisiblePointer();
    void theRangeGivesTheSpeed_data();
    void theRangeGivesTheSpeed();
    void aFlagNeedsEightPixelsForOneStep();
    void aDragFromZeroTo127MovesOneStepPerPixel();
    void withShiftFourPixelsMakeAStepAndTheRemainderIsCarriedOver();
    void theRemainderIsForgottenAtTheNextPress();
    void aDragEndsAtTheLimitsAndTurnsThere();
    void everyStepOfADragIsTold();
    void aMoveSidewaysDoesNothing();
    void otherButtonsDragNothing();
    void aDragEndsWhenTheSliderGoes_data();
    void aDragEndsWhenTheSliderGoes();
    void whereThePointerIsNotHeldMovementIsRelativeAllTheSame();
    void aPressBesideTheScreensIsNotHeld();

    void aWheelStepsOncePerNotch();
    void aWheelAtTheLimitStillTellsItsAction();
    void aRealWheelSteps();
    void keysStep();

    void aDoubleClickOpensTheEditor();
    void withoutDirectEditADoubleClickDragsAgain();
    void theEditorTakesWholeNumbersOrDecimals_data();
    void theEditorTakesWholeNumbersOrDecimals();
    void anAcceptedNumberBecomesTheValue_data();
    void anAcceptedNumberBecomesTheValue();
    void escapeLeavesTheValue();
    void leavingTheEditorAcceptsIt();
    void theEditorCanBeOpenedAgain();
    void theNumberIsNotDrawnBelowTheEditor();
    void theEditorHasItsLengthAndAlignment();

    void rangeAndValueComeFromTheMemory();
    void aDragIsWrittenStepByStep();
    void aChangeOfTheMemoryShows();
    void anEditedNumberIsWritten();

    void theAccessibleNameStays();
    void propertiesThatMakeNoSenseAreHarmless();
    void aSliderMayGoWhileItsEditorIsOpen();
    void aSliderMayGoInItsOwnStep();
};

void TestTextSlider::init()
{
    // Where it lies over nothing.
    QCursor::setPos(5, 5);
}

void TestTextSlider::theDefaultsAreThoseOfTheTable()
{
    CTextSlider slider;
    QCOMPARE(slider.property("alignment").value<Qt::Alignment>(), Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(slider.property("format").toString(), QStringLiteral("%.0f"));
    QCOMPARE(slider.property("offset").toDouble(), 0.0);
    QCOMPARE(slider.property("multiplier").toDouble(), 1.0);
    QCOMPARE(slider.property("directEdit").toBool(), false);
    QCOMPARE(slider.property("editMaxLength").toInt(), QLineEdit().maxLength());
    QCOMPARE(slider.property("editInputMask").toString(), QLineEdit().inputMask());
    QVERIFY(slider.property("editValidatorRegExp").toString().isNull());
    QVERIFY(slider.property("namedAddress").toString().isEmpty());
    QCOMPARE(slider.focusPolicy(), Qt::ClickFocus);
    QVERIFY(editorOf(&slider) != nullptr);
    QVERIFY(editorOf(&slider)->isHidden());
    QCOMPARE(slider.shownText(), QStringLiteral("0"));
}

void TestTextSlider::everyPropertyIsReachedByItsName()
{
    CTextSlider slider;
    QVERIFY(slider.setProperty("alignment", QVariant::fromValue(Qt::Alignment(Qt::AlignRight))));
    QVERIFY(slider.setProperty("format", QStringLiteral("%.2f")));
    QVERIFY(slider.setProperty("offset", 1.5));
    QVERIFY(slider.setProperty("multiplier", 0.5));
    QVERIFY(slider.setProperty("directEdit", true));
    QVERIFY(slider.setProperty("editMaxLength", 4));
    QVERIFY(slider.setProperty("editInputMask", QStringLiteral("999")));
    QVERIFY(slider.setProperty("editValidatorRegExp", QStringLiteral("[0-9]*")));
    QVERIFY(slider.setProperty("namedAddress", CCName));
    QCOMPARE(slider.alignment(), Qt::Alignment(Qt::AlignRight));
    QCOMPARE(slider.format(), QStringLiteral("%.2f"));
    QCOMPARE(slider.offset(), 1.5);
    QCOMPARE(slider.multiplier(), 0.5);
    QCOMPARE(slider.directEdit(), true);
    QCOMPARE(slider.editMaxLength(), 4);
    QCOMPARE(slider.editInputMask(), QStringLiteral("999"));
    QCOMPARE(slider.editValidatorRegExp(), QStringLiteral("[0-9]*"));
    QCOMPARE(slider.getNamedAddress(), CCName);
    // These two are held only.
    QVERIFY(editorOf(&slider)->inputMask().isEmpty());
    QVERIFY(editorOf(&slider)->validator() == nullptr);
}

void TestTextSlider::theTextIsOffsetAndMultipleOfTheValue_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("multiplier");
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("as it is") << "%.0f" << 0.0 << 1.0 << 64 << "64";
    QTest::newRow("counted from one") << "%.0f" << 1.0 << 1.0 << 49 << "50";
    QTest::newRow("half") << "%.1f" << 0.0 << 0.5 << 5 << "2.5";
    QTest::newRow("both") << "%.1f dB" << -10.0 << 0.5 << 7 << "-6.5 dB";
    QTest::newRow("around the middle") << "%+.0f" << -64.0 << 1.0 << 127 << "+63";
}

void TestTextSlider::theTextIsOffsetAndMultipleOfTheValue()
{
    QFETCH(QString, format);
    QFETCH(double, offset);
    QFETCH(double, multiplier);
    QFETCH(int, value);
    QFETCH(QString, text);
    CTextSlider slider;
    slider.setRange(0, 127);
    slider.setFormat(format);
    slider.setOffset(offset);
    slider.setMultiplier(multiplier);
    slider.setValue(value);
    QCOMPARE(slider.shownText(), text);
}

void TestTextSlider::theTextIsDrawnAgainAtEveryChange()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    QImage before = slider->grab().toImage();
    const auto changed = [&] {
        const QImage now = slider->grab().toImage();
        const bool other = now != before;
        before = now;
        return other;
    };
    slider->setValue(71);
    QVERIFY(changed());
    slider->setFormat(QStringLiteral("%.1f"));
    QVERIFY(changed());
    slider->setOffset(5);
    QVERIFY(changed());
    slider->setMultiplier(2);
    QVERIFY(changed());
    slider->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QVERIFY(changed());
    QFont font = slider->font();
    font.setPixelSize(14);
    slider->setFont(font);
    QVERIFY(changed());
    QPalette colours = slider->palette();
    colours.setColor(QPalette::Text, Qt::red);
    slider->setPalette(colours);
    QVERIFY(changed());
    QVERIFY(!changed());
}

void TestTextSlider::aPressHidesThePointerAndHoldsItInTheMiddle()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    QCOMPARE(slider->cursor().shape(), Qt::BlankCursor);
    QCOMPARE(drag.input.position(), drag.centre);
    QCOMPARE(slider->value(), 64);
    drag.end();
    QCOMPARE(slider->cursor().shape(), Qt::ArrowCursor);
    QVERIFY(!slider->testAttribute(Qt::WA_SetCursor));
}

void TestTextSlider::draggingNeverMovesTheVisiblePointer()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    QVERIFY(drag.by(-20));
    QVERIFY(drag.jump(30));
    drag.end();
    QTRY_COMPARE(drag.input.position(), drag.start);
    QCOMPARE(slider->value(), 64 + 20 - 30);
    // A drag from the very middle, which needs no placing.
    Drag second(slider, slider->rect().center());
    QVERIFY(second.by(2));
    second.end();
    QTRY_COMPARE(second.input.position(), second.centre);
}

void TestTextSlider::theRangeGivesTheSpeed_data()
{
    QTest::addColumn<int>("range");
    QTest::addColumn<bool>("shift");
    QTest::addColumn<int>("pixels");
    QTest::addColumn<int>("steps");
    QTest::newRow("1") << 1 << false << 8 << 1;
    QTest::newRow("8") << 8 << false << 16 << 2;
    QTest::newRow("9") << 9 << false << 16 << 4;
    QTest::newRow("16") << 16 << false << 16 << 4;
    QTest::newRow("17") << 17 << false << 16 << 8;
    QTest::newRow("32") << 32 << false << 16 << 8;
    QTest::newRow("33") << 33 << false << 16 << 16;
    QTest::newRow("999") << 999 << false << 16 << 16;
    QTest::newRow("1000") << 1000 << false << 16 << 160;
    QTest::newRow("a million") << 1000000 << false << 16 << 160;
    QTest::newRow("8 with Shift") << 8 << true << 32 << 1;
    QTest::newRow("16 with Shift") << 16 << true << 32 << 2;
    QTest::newRow("32 with Shift") << 32 << true << 32 << 4;
    QTest::newRow("999 with Shift") << 999 << true << 32 << 8;
    QTest::newRow("1000 with Shift") << 1000 << true << 32 << 8;
}

void TestTextSlider::theRangeGivesTheSpeed()
{
    QFETCH(int, range);
    QFETCH(bool, shift);
    QFETCH(int, pixels);
    QFETCH(int, steps);
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setRange(-range / 2, range - range / 2);
    slider->setValue(slider->minimum());
    window.open();
    Drag drag(slider, QPoint(3, 4));
    if (shift) {
        drag.input.holdShift();
    }
    QVERIFY(drag.jump(-pixels));
    QTRY_COMPARE(slider->value() - slider->minimum(), steps);
    if (shift) {
        drag.input.releaseShift();
    }
    drag.end();
}

void TestTextSlider::aFlagNeedsEightPixelsForOneStep()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setNamedAddress(FormatName);
    window.bind();
    QCOMPARE(slider->maximum(), 1);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    QVERIFY(drag.by(-7));
    QCOMPARE(slider->value(), 0);
    QVERIFY(drag.by(-1));
    QCOMPARE(slider->value(), 1);
    QVERIFY(drag.by(7));
    QCOMPARE(slider->value(), 1);
    QVERIFY(drag.by(1));
    QCOMPARE(slider->value(), 0);
    drag.end();
}

void TestTextSlider::aDragFromZeroTo127MovesOneStepPerPixel()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    for (int i = 1; i <= 10; ++i) {
        QVERIFY(drag.by(-1));
        QCOMPARE(slider->value(), 64 + i);
    }
    QVERIFY(drag.jump(25));
    QTRY_COMPARE(slider->value(), 74 - 25);
    drag.end();
}

void TestTextSlider::withShiftFourPixelsMakeAStepAndTheRemainderIsCarriedOver()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    drag.input.holdShift();
    QVERIFY(drag.by(-3));
    QCOMPARE(slider->value(), 64);
    QVERIFY(drag.by(-1));
    QCOMPARE(slider->value(), 65);
    // Six pixels are a step and two over, and two more the next.
    QVERIFY(drag.jump(-6));
    QTRY_COMPARE(slider->value(), 66);
    QVERIFY(drag.by(-1));
    QCOMPARE(slider->value(), 66);
    QVERIFY(drag.by(-1));
    QCOMPARE(slider->value(), 67);
    // Two to and three fro are one.
    QVERIFY(drag.by(-2));
    QVERIFY(drag.by(3));
    QVERIFY(drag.by(2));
    QCOMPARE(slider->value(), 67);
    QVERIFY(drag.by(1));
    QCOMPARE(slider->value(), 66);
    drag.input.releaseShift();
    drag.end();
}

void TestTextSlider::theRemainderIsForgottenAtTheNextPress()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setRange(0, 1);
    slider->setValue(0);
    window.open();
    {
        Drag drag(slider, QPoint(3, 4));
        QVERIFY(drag.by(-7));
        drag.end();
    }
    // Elsewhere, so that it is no double click.
    Drag drag(slider, QPoint(30, 10));
    QVERIFY(drag.by(-7));
    QCOMPARE(slider->value(), 0);
    drag.end();
}

void TestTextSlider::aDragEndsAtTheLimitsAndTurnsThere()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setValue(120);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    QVERIFY(drag.jump(-50));
    QTRY_COMPARE(slider->value(), 127);
    QVERIFY(drag.by(1));
    QCOMPARE(slider->value(), 126);
    QVERIFY(drag.jump(300));
    QTRY_COMPARE(slider->value(), 0);
    QVERIFY(drag.by(-1));
    QCOMPARE(slider->value(), 1);
    drag.end();
}

void TestTextSlider::everyStepOfADragIsTold()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setRange(0, 32);
    slider->setValue(0);
    window.open();
    QSignalSpy action(slider, &CTextSlider::actionTriggered);
    QSignalSpy changed(slider, &CTextSlider::valueChanged);
    Drag drag(slider, QPoint(3, 4));
    QVERIFY(drag.by(-8));
    // Half a step and a limit change nothing, and so aren't told.
    QCOMPARE(action.count(), 4);
    QCOMPARE(changed.count(), 4);
    for (const QVariantList &arguments : qAsConst(action)) {
        QCOMPARE(arguments.at(0).toInt(), int(QAbstractSlider::SliderMove));
    }
    QVERIFY(drag.jump(100));
    QTRY_COMPARE(action.count(), 5);
    QVERIFY(drag.by(10));
    QCOMPARE(action.count(), 5);
    drag.end();
}

void TestTextSlider::aMoveSidewaysDoesNothing()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    QVERIFY(drag.jump(0, 15));
    QCOMPARE(slider->value(), 64);
    drag.end();
}

void TestTextSlider::otherButtonsDragNothing()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    EventLog parent(&window);
    RealInput input;
    input.moveTo(slider->mapToGlobal(QPoint(3, 4)));
    constexpr int Right = 3;
    input.press(Right);
    QTRY_COMPARE(parent.count(QEvent::MouseButtonPress), 1);
    input.moveBy(0, -5);
    QTRY_VERIFY(parent.count(QEvent::MouseMove) > 0);
    input.release(Right);
    QTRY_COMPARE(parent.count(QEvent::MouseButtonRelease), 1);
    QCOMPARE(slider->value(), 64);
    QVERIFY(!slider->testAttribute(Qt::WA_SetCursor));
    // In the middle of a drag the release of another button doesn't end it.
    Drag drag(slider, QPoint(3, 4));
    drag.input.press(Right);
    drag.input.release(Right);
    QTRY_COMPARE(parent.count(QEvent::MouseButtonRelease), 2);
    QVERIFY(drag.by(-3));
    QCOMPARE(slider->value(), 67);
    drag.end();
}

void TestTextSlider::aDragEndsWhenTheSliderGoes_data()
{
    QTest::addColumn<bool>("hide");
    QTest::newRow("hidden") << true;
    QTest::newRow("disabled") << false;
}

void TestTextSlider::aDragEndsWhenTheSliderGoes()
{
    QFETCH(bool, hide);
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    Drag drag(slider, QPoint(3, 4));
    if (hide) {
        slider->hide();
    } else {
        slider->setEnabled(false);
    }
    QTRY_COMPARE(drag.input.position(), drag.start);
    QVERIFY(!slider->testAttribute(Qt::WA_SetCursor));
    drag.input.moveBy(0, -5);
    drag.input.releaseLeft();
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    QCOMPARE(slider->value(), 64);
}

void TestTextSlider::whereThePointerIsNotHeldMovementIsRelativeAllTheSame()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    // From elsewhere than the pointer, which stays where it is.
    const QPoint pointer = QCursor::pos();
    QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(10, 5));
    QCOMPARE(slider->cursor().shape(), Qt::BlankCursor);
    QTest::mouseMove(slider, QPoint(10, 0));
    QCOMPARE(slider->value(), 69);
    QTest::mouseMove(slider, QPoint(12, 0));
    QCOMPARE(slider->value(), 69);
    QTest::mouseMove(slider, QPoint(12, -10));
    QCOMPARE(slider->value(), 79);
    QTest::mouseMove(slider, QPoint(12, 10));
    QCOMPARE(slider->value(), 59);
    QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(12, 10));
    QVERIFY(!slider->testAttribute(Qt::WA_SetCursor));
    QCOMPARE(QCursor::pos(), pointer);
}

void TestTextSlider::aPressBesideTheScreensIsNotHeld()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    // Its middle lies above the screen.
    slider->setGeometry(60, 0, 44, 100);
    window.move(300, -60);
    window.open();
    RealInput input;
    input.moveTo(slider->mapToGlobal(QPoint(10, 90)));
    input.pressLeft();
    QTRY_COMPARE(slider->cursor().shape(), Qt::BlankCursor);
    input.moveBy(0, -12);
    QTRY_COMPARE(slider->value(), 76);
    input.moveBy(0, 2);
    QTRY_COMPARE(slider->value(), 74);
    input.releaseLeft();
    QTRY_COMPARE(input.position(), slider->mapToGlobal(QPoint(10, 90)));
}

void TestTextSlider::aWheelStepsOncePerNotch()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    turnWheel(slider, 120);
    QCOMPARE(slider->value(), 65);
    turnWheel(slider, -240);
    QCOMPARE(slider->value(), 63);
    QSignalSpy action(slider, &CTextSlider::actionTriggered);
    turnWheel(slider, 0);
    turnWheel(slider, 60);
    QCOMPARE(action.count(), 0);
    turnWheel(slider, 60);
    QCOMPARE(slider->value(), 64);
    QCOMPARE(action.count(), 1);
    slider->setInvertedControls(true);
    turnWheel(slider, 120);
    QCOMPARE(slider->value(), 63);
}

void TestTextSlider::aWheelAtTheLimitStillTellsItsAction()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setValue(127);
    window.open();
    QSignalSpy action(slider, &CTextSlider::actionTriggered);
    turnWheel(slider, 120);
    QCOMPARE(slider->value(), 127);
    QCOMPARE(action.count(), 1);
}

void TestTextSlider::aRealWheelSteps()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    RealInput input;
    input.moveTo(slider->mapToGlobal(QPoint(9, 9)));
    input.turnWheel(3);
    QTRY_COMPARE(slider->value(), 67);
    input.turnWheel(-5);
    QTRY_COMPARE(slider->value(), 62);
}

void TestTextSlider::keysStep()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    slider->setFocus();
    QTest::keyClick(window.windowHandle(), Qt::Key_Up);
    QCOMPARE(slider->value(), 65);
    QCOMPARE(slider->shownText(), QStringLiteral("65"));
}

void TestTextSlider::aDoubleClickOpensTheEditor()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    window.open();
    CLineEdit *editor = editorOf(slider);
    doubleClick(slider);
    QTRY_VERIFY(editor->isVisible());
    QVERIFY(editor->hasFocus());
    QCOMPARE(editor->geometry(), slider->rect());
    QCOMPARE(editor->text(), QStringLiteral("64"));
    QCOMPARE(editor->selectedText(), QStringLiteral("64"));
    QTRY_VERIFY(!slider->testAttribute(Qt::WA_SetCursor));
    QCOMPARE(slider->value(), 64);
}

void TestTextSlider::withoutDirectEditADoubleClickDragsAgain()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    window.open();
    RealInput input;
    input.moveTo(slider->mapToGlobal(QPoint(5, 5)));
    input.pressLeft();
    input.releaseLeft();
    input.pressLeft();
    QTRY_COMPARE(slider->cursor().shape(), Qt::BlankCursor);
    const QPoint centre = slider->mapToGlobal(slider->rect().center());
    QTRY_COMPARE(input.position(), centre);
    input.moveBy(0, -4);
    QTRY_COMPARE(slider->value(), 68);
    input.releaseLeft();
    QTRY_VERIFY(!slider->testAttribute(Qt::WA_SetCursor));
    QVERIFY(!editorOf(slider)->isVisible());
}

void TestTextSlider::theEditorTakesWholeNumbersOrDecimals_data()
{
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("multiplier");
    QTest::addColumn<bool>("decimals");
    QTest::newRow("0 and 1") << 0.0 << 1.0 << false;
    QTest::newRow("multiplier 0.5") << 0.0 << 0.5 << true;
    QTest::newRow("offset 0.5") << 0.5 << 1.0 << true;
    QTest::newRow("whole ones") << -64.0 << 3.0 << false;
}

void TestTextSlider::theEditorTakesWholeNumbersOrDecimals()
{
    QFETCH(double, offset);
    QFETCH(double, multiplier);
    QFETCH(bool, decimals);
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    slider->setOffset(offset);
    slider->setMultiplier(multiplier);
    window.open();
    QTest::mouseDClick(slider, Qt::LeftButton);
    CLineEdit *editor = editorOf(slider);
    QVERIFY(editor->isVisible());
    QCOMPARE(qobject_cast<const QDoubleValidator *>(editor->validator()) != nullptr, decimals);
    QCOMPARE(qobject_cast<const QIntValidator *>(editor->validator()) != nullptr, !decimals);
    QTest::keyClicks(editor, QStringLiteral("1x2.5"));
    QCOMPARE(editor->text(), decimals ? QStringLiteral("12.5") : QStringLiteral("125"));
}

void TestTextSlider::anAcceptedNumberBecomesTheValue_data()
{
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("multiplier");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("value");
    QTest::newRow("as it is") << 0.0 << 1.0 << "100" << 100;
    QTest::newRow("counted from one") << 1.0 << 1.0 << "50" << 49;
    QTest::newRow("half") << 0.0 << 0.5 << "12.5" << 25;
    QTest::newRow("cut towards zero") << 0.0 << 0.3 << "10" << 33;
    QTest::newRow("cut towards zero from below") << 0.5 << 1.0 << "-3.2" << -3;
    QTest::newRow("not the inverse of what shows") << 10.0 << 2.0 << "50" << 15;
    QTest::newRow("above the range") << 0.0 << 1.0 << "5000" << 127;
    QTest::newRow("below the range") << 0.0 << 1.0 << "-5000" << -100;
    QTest::newRow("multiplied by nothing") << 0.0 << 0.0 << "5" << 127;
    QTest::newRow("nothing by nothing") << 0.0 << 0.0 << "0" << 64;
}

void TestTextSlider::anAcceptedNumberBecomesTheValue()
{
    QFETCH(double, offset);
    QFETCH(double, multiplier);
    QFETCH(QString, typed);
    QFETCH(int, value);
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setRange(-100, 127);
    slider->setDirectEdit(true);
    slider->setOffset(offset);
    slider->setMultiplier(multiplier);
    window.open();
    QTest::mouseDClick(slider, Qt::LeftButton);
    QSignalSpy action(slider, &CTextSlider::actionTriggered);
    CLineEdit *editor = editorOf(slider);
    QTest::keyClicks(editor, typed);
    QCOMPARE(slider->value(), 64);
    QTest::keyClick(editor, Qt::Key_Return);
    QCOMPARE(slider->value(), value);
    QCOMPARE(action.count(), 1);
    QCOMPARE(action.at(0).at(0).toInt(), 0);
    QVERIFY(!editor->isVisible());
}

void TestTextSlider::escapeLeavesTheValue()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    window.open();
    QTest::mouseDClick(slider, Qt::LeftButton);
    QSignalSpy action(slider, &CTextSlider::actionTriggered);
    CLineEdit *editor = editorOf(slider);
    QTest::keyClicks(editor, QStringLiteral("100"));
    QTest::keyClick(editor, Qt::Key_Escape);
    QVERIFY(!editor->isVisible());
    QCOMPARE(slider->value(), 64);
    QCOMPARE(action.count(), 0);
    QCOMPARE(slider->shownText(), QStringLiteral("64"));
}

void TestTextSlider::leavingTheEditorAcceptsIt()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    window.open();
    QTest::mouseDClick(slider, Qt::LeftButton);
    CLineEdit *editor = editorOf(slider);
    QTest::keyClicks(editor, QStringLiteral("100"));
    RealInput input;
    input.moveTo(window.mapToGlobal(QPoint(5, 170)));
    input.pressLeft();
    QTRY_VERIFY(!editor->isVisible());
    input.releaseLeft();
    QCOMPARE(slider->value(), 100);
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    // A text that is no number is given up.
    QTest::mouseDClick(slider, Qt::LeftButton);
    QVERIFY(editor->isVisible());
    QTest::keyClick(editor, Qt::Key_Delete);
    QVERIFY(editor->text().isEmpty());
    window.setFocus();
    QVERIFY(!editor->isVisible());
    QCOMPARE(slider->value(), 100);
}

void TestTextSlider::theEditorCanBeOpenedAgain()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    window.open();
    CLineEdit *editor = editorOf(slider);
    for (const int number : {10, 20, 30}) {
        QTest::mouseDClick(slider, Qt::LeftButton);
        QVERIFY(editor->isVisible());
        QTest::keyClicks(editor, QStringLiteral("5"));
        QTest::keyClick(editor, Qt::Key_Escape);
        QTest::mouseDClick(slider, Qt::LeftButton);
        QTest::keyClicks(editor, QString::number(number));
        QTest::keyClick(editor, Qt::Key_Enter);
        QCOMPARE(slider->value(), number);
        QCOMPARE(editor->findChildren<QValidator *>().size(), 1);
    }
}

void TestTextSlider::theNumberIsNotDrawnBelowTheEditor()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    window.open();
    const QImage before = slider->grab().toImage();
    QTest::mouseDClick(slider, Qt::LeftButton);
    QImage below(slider->size(), QImage::Format_ARGB32_Premultiplied);
    below.fill(Qt::transparent);
    slider->render(&below, QPoint(), QRegion(), QWidget::RenderFlags());
    QImage nothing(slider->size(), QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    QCOMPARE(below, nothing);
    QTest::keyClick(editorOf(slider), Qt::Key_Escape);
    QCOMPARE(slider->grab().toImage(), before);
}

void TestTextSlider::theEditorHasItsLengthAndAlignment()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    slider->setEditMaxLength(2);
    slider->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    window.open();
    QTest::mouseDClick(slider, Qt::LeftButton);
    CLineEdit *editor = editorOf(slider);
    QCOMPARE(editor->maxLength(), 2);
    QCOMPARE(editor->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    QTest::keyClicks(editor, QStringLiteral("123"));
    QCOMPARE(editor->text(), QStringLiteral("12"));
}

void TestTextSlider::rangeAndValueComeFromTheMemory()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setRange(0, 500);
    slider->setValue(400);
    slider->setNamedAddress(CCName);
    window.bind();
    QCOMPARE(slider->minimum(), 0);
    QCOMPARE(slider->maximum(), 127);
    QCOMPARE(slider->value(), 64);
    QCOMPARE(slider->shownText(), QStringLiteral("64"));
    QCOMPARE(window.at(CCNumberA1), 64);
}

void TestTextSlider::aDragIsWrittenStepByStep()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setNamedAddress(CCName);
    window.bind();
    window.open();
    LoggingObserver observer(&window.api, CCNumberA1);
    Drag drag(slider, QPoint(3, 4));
    for (int i = 1; i <= 5; ++i) {
        QVERIFY(drag.by(-1));
        QCOMPARE(window.at(CCNumberA1), 64 + i);
    }
    QCOMPARE(observer.count, 5);
    drag.end();
}

void TestTextSlider::aChangeOfTheMemoryShows()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setNamedAddress(CCName);
    window.bind();
    window.open();
    const QImage before = slider->grab().toImage();
    window.api.setParam(CCNumberA1, 111);
    QCOMPARE(slider->value(), 111);
    QCOMPARE(slider->shownText(), QStringLiteral("111"));
    QVERIFY(slider->grab().toImage() != before);
}

void TestTextSlider::anEditedNumberIsWritten()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    slider->setNamedAddress(CCName);
    window.bind();
    window.open();
    QTest::mouseDClick(slider, Qt::LeftButton);
    QTest::keyClicks(editorOf(slider), QStringLiteral("99"));
    QCOMPARE(window.at(CCNumberA1), 64);
    QTest::keyClick(editorOf(slider), Qt::Key_Return);
    QCOMPARE(window.at(CCNumberA1), 99);
}

void TestTextSlider::theAccessibleNameStays()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setAccessibleName(QStringLiteral("CC number"));
    window.open();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(slider);
    QVERIFY(accessible != nullptr);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("CC number"));
}

void TestTextSlider::propertiesThatMakeNoSenseAreHarmless()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    slider->setNamedAddress(QStringLiteral("nothing/of the sort"));
    window.bind();
    window.open();
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    for (const double number :
         {0.0, Infinity, -Infinity, std::numeric_limits<double>::quiet_NaN(), 1e308, -1e308}) {
        slider->setOffset(number);
        slider->setMultiplier(number);
        slider->setEditMaxLength(number > 0 ? 0 : -1);
        for (const QString &format :
             {QStringLiteral("%s"), QStringLiteral("%n%n"), QString(10000, u'x'),
              QString(10000, u'%'), QString(), QStringLiteral("%.9999f")}) {
            slider->setFormat(format);
            QVERIFY(!window.grab().isNull());
        }
        QTest::mouseDClick(slider, Qt::LeftButton);
        QTest::keyClicks(editorOf(slider), QStringLiteral("1e9"));
        QTest::keyClick(editorOf(slider), Qt::Key_Return);
        QTest::keyClick(editorOf(slider), Qt::Key_Escape);
    }
    slider->setRange(INT_MIN, INT_MAX);
    for (const int number : {0, -1, INT_MIN, INT_MAX}) {
        slider->setSingleStep(number);
        slider->setValue(number);
        turnWheel(slider, number);
        QTest::mousePress(slider, Qt::LeftButton, {}, QPoint(10, 5));
        QTest::mouseMove(slider, QPoint(10, -2000));
        QTest::mouseMove(slider, QPoint(10, 2000));
        QTest::mouseRelease(slider, Qt::LeftButton, {}, QPoint(10, 5));
    }
    slider->setRange(5, 1);
    slider->resize(0, 0);
    QVERIFY(!window.grab().isNull());
}

void TestTextSlider::aSliderMayGoWhileItsEditorIsOpen()
{
    ControlWindow window;
    CTextSlider *slider = addSlider(&window);
    slider->setDirectEdit(true);
    slider->setNamedAddress(CCName);
    window.bind();
    window.open();
    QTest::mouseDClick(slider, Qt::LeftButton);
    QTest::keyClicks(editorOf(slider), QStringLiteral("99"));
    delete slider;
    QCOMPARE(window.at(CCNumberA1), 64);
}

void TestTextSlider::aSliderMayGoInItsOwnStep()
{
    ControlWindow window;
    window.open();
    const auto add = [&window] {
        CTextSlider *slider = addSlider(&window);
        slider->show();
        slider->setRange(0, 127);
        slider->setValue(64);
        connect(slider, &CTextSlider::valueChanged, slider, [slider] { delete slider; });
        return QPointer<CTextSlider>(slider);
    };
    QPointer<CTextSlider> slider = add();
    turnWheel(slider, 360);
    QVERIFY(slider.isNull());
    slider = add();
    RealInput input;
    input.moveTo(slider->mapToGlobal(QPoint(5, 5)));
    input.pressLeft();
    QTRY_COMPARE(slider->cursor().shape(), Qt::BlankCursor);
    QTRY_COMPARE(QCursor::pos(), slider->mapToGlobal(slider->rect().center()));
    input.moveBy(0, 5);
    QTRY_VERIFY(slider.isNull());
    input.releaseLeft();
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
    QVERIFY(!window.grab().isNull());
}

QTEST_MAIN(TestTextSlider)
#include "tst_textslider.moc"
