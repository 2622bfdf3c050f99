// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/CLineEdit.h"

#include "widgets/BoundHarness.h"

#include <QtGui/QAccessible>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QRegularExpressionValidator>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenu>

// The line that is edited as a whole: how an edit begins and ends, and what the memory sees of it.

namespace
{

constexpr QRect Place(40, 40, 135, 14);
const QString Before = QStringLiteral("Strings");

CLineEdit *addLine(ControlWindow *window)
{
    window->api.setParam(TemplateName1, Before);
    auto *line = window->add<CLineEdit>(Place);
    line->setMaxLength(13);
    line->setNamedAddress(TemplateNameName);
    window->bind();
    return line;
}

QString nameIn(const ControlWindow &window)
{
    return window.api.getParamQString(TemplateName1);
}

// A click into the line, as a user begins an edit.
void clickInto(CLineEdit *line)
{
    RealInput input;
    input.moveTo(line->mapToGlobal(QPoint(5, 5)));
    input.pressLeft();
    input.releaseLeft();
    QTRY_VERIFY(line->hasFocus());
    QTRY_COMPARE(QGuiApplication::mouseButtons(), Qt::NoButton);
}

struct Signals
{
    explicit Signals(CLineEdit *line)
        : started(line, &CLineEdit::started)
        , accepted(line, &CLineEdit::accepted)
        , aborted(line, &CLineEdit::aborted)
    {
    }
    QList<qsizetype> counts() const { return {started.count(), accepted.count(), aborted.count()}; }
    QSignalSpy started;
    QSignalSpy accepted;
    QSignalSpy aborted;
};
using Counts = QList<qsizetype>;

} // namespace

class TestLineEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDefaultsAreThoseOfTheTable();
    void everyPropertyIsReachedByItsName();

    void theFocusStartsAnEditOnce();
    void halfTypedTextIsNotWritten();
    void returnAccepts_data();
    void returnAccepts();
    void escapeRestoresTheTextAndTheMemoryNeverSawTheTypedOne();
    void leavingWithAcceptableTextAcceptsIt_data();
    void leavingWithAcceptableTextAcceptsIt();
    void leavingWithoutATypedLetterEndsTheEditToo();
    void leavingTheWindowAcceptsIt();
    void leavingWithARefusedTextAbortsIt();
    void acceptAndAbortDoNothingOutsideOfAnEdit();
    void theLineHasNoFocusAfterwards();

    void blanksAtTheEndGoWithEndTrim_data();
    void blanksAtTheEndGoWithEndTrim();

    void theValidatorRefusesWhatDoesNotMatch();
    void anEmptyExpressionTakesTheValidatorAway();
    void aNewExpressionReplacesTheOldOne();
    void anExpressionThatIsNoneIsHarmless();

    void noKeyGoesOnToAParent_data();
    void noKeyGoesOnToAParent();

    void theTextComesFromTheMemory();
    void aChangeOfTheMemoryShows();
    void aChangeOfTheMemoryInTheMiddleOfAnEditShowsAndIsNotWritten();
    void aTextSetByProgramIsWritten();
    void theSameTextAgainLeavesTheCursor();
    void anUnboundLineWorks();

    void theMenuHasTheFontOfTheWindow();
    void theMenuLeavesTheEditAsItIs();
    void aTopLevelLineHasTheMenuOfTheBaseClass();
    void aLineMayGoWhileItsMenuStands();

    void theAccessibleNameStays();
    void textsOfTenThousandCharactersAreHarmless();
};

void TestLineEdit::theDefaultsAreThoseOfTheTable()
{
    CLineEdit line;
    QVERIFY(line.property("validatorRegExp").toString().isEmpty());
    QCOMPARE(line.property("endTrim").toBool(), false);
    QVERIFY(line.property("namedAddress").toString().isEmpty());
    QVERIFY(line.validator() == nullptr);
    QVERIFY(!line.hasFrame());
    QCOMPARE(line.focusPolicy(), Qt::ClickFocus);
    QVERIFY(qobject_cast<QLineEdit *>(&line) != nullptr);
}

void TestLineEdit::everyPropertyIsReachedByItsName()
{
    CLineEdit line;
    QVERIFY(line.setProperty("validatorRegExp", QStringLiteral("[a-z]*")));
    QVERIFY(line.setProperty("endTrim", true));
    QVERIFY(line.setProperty("namedAddress", TemplateNameName));
    QCOMPARE(line.validatorRegExp(), QStringLiteral("[a-z]*"));
    QCOMPARE(line.endTrim(), true);
    QCOMPARE(line.getNamedAddress(), TemplateNameName);
}

void TestLineEdit::theFocusStartsAnEditOnce()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    const Signals of(line);
    clickInto(line);
    QCOMPARE(of.counts(), Counts({1, 0, 0}));
    clickInto(line);
    QCOMPARE(of.counts(), Counts({1, 0, 0}));
}

void TestLineEdit::halfTypedTextIsNotWritten()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    LoggingObserver observer(&window.api, TemplateName1);
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Bras"));
    QCOMPARE(line->text(), QStringLiteral("Bras"));
    QCOMPARE(nameIn(window), Before);
    QCOMPARE(observer.count, 0);
}

void TestLineEdit::returnAccepts_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void TestLineEdit::returnAccepts()
{
    QFETCH(Qt::Key, key);
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    const Signals of(line);
    LoggingObserver observer(&window.api, TemplateName1);
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Brass"));
    QTest::keyClick(window.windowHandle(), key);
    QCOMPARE(nameIn(window), QStringLiteral("Brass"));
    QCOMPARE(observer.count, 1);
    QCOMPARE(of.counts(), Counts({1, 1, 0}));
    QVERIFY(!line->hasFocus());
}

void TestLineEdit::escapeRestoresTheTextAndTheMemoryNeverSawTheTypedOne()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    const Signals of(line);
    LoggingObserver observer(&window.api, TemplateName1);
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Brass"));
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    QCOMPARE(line->text(), Before);
    QCOMPARE(nameIn(window), Before);
    QCOMPARE(observer.count, 0);
    QCOMPARE(of.counts(), Counts({1, 0, 1}));
    QVERIFY(!line->hasFocus());
}

void TestLineEdit::leavingWithAcceptableTextAcceptsIt_data()
{
    QTest::addColumn<QString>("expression");
    QTest::newRow("any text") << QString();
    QTest::newRow("a text that matches") << QStringLiteral("[ -}]*");
}

void TestLineEdit::leavingWithAcceptableTextAcceptsIt()
{
    QFETCH(QString, expression);
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    line->setValidatorRegExp(expression);
    window.open();
    const Signals of(line);
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Brass"));
    RealInput input;
    input.moveTo(window.mapToGlobal(QPoint(5, 170)));
    input.pressLeft();
    input.releaseLeft();
    QTRY_VERIFY(!line->hasFocus());
    QCOMPARE(nameIn(window), QStringLiteral("Brass"));
    QCOMPARE(of.counts(), Counts({1, 1, 0}));
}

void TestLineEdit::leavingWithoutATypedLetterEndsTheEditToo()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    const Signals of(line);
    clickInto(line);
    window.setFocus();
    QVERIFY(!line->hasFocus());
    QCOMPARE(of.counts(), Counts({1, 1, 0}));
    QCOMPARE(nameIn(window), Before);
    // So that a later change is written, and the next edit is one of its own.
    line->setText(QStringLiteral("Brass"));
    QCOMPARE(nameIn(window), QStringLiteral("Brass"));
    clickInto(line);
    QCOMPARE(of.counts(), Counts({2, 1, 0}));
}

void TestLineEdit::leavingTheWindowAcceptsIt()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Brass"));
    QWidget other;
    other.setGeometry(700, 200, 50, 50);
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QTRY_COMPARE(nameIn(window), QStringLiteral("Brass"));
}

void TestLineEdit::leavingWithARefusedTextAbortsIt()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    line->setValidatorRegExp(QStringLiteral("[A-Za-z]{5,}"));
    window.open();
    const Signals of(line);
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Bra"));
    // Return doesn't end an edit whose text is refused.
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(of.counts(), Counts({1, 0, 0}));
    window.setFocus();
    QCOMPARE(line->text(), Before);
    QCOMPARE(nameIn(window), Before);
    QCOMPARE(of.counts(), Counts({1, 0, 1}));
}

void TestLineEdit::acceptAndAbortDoNothingOutsideOfAnEdit()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    const Signals of(line);
    line->accept();
    line->abort();
    QTest::keyClick(line, Qt::Key_Escape);
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(of.counts(), Counts({0, 0, 0}));
    QCOMPARE(line->text(), Before);
}

void TestLineEdit::theLineHasNoFocusAfterwards()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    clickInto(line);
    line->accept();
    QVERIFY(!line->hasFocus());
    clickInto(line);
    line->abort();
    QVERIFY(!line->hasFocus());
}

void TestLineEdit::blanksAtTheEndGoWithEndTrim_data()
{
    QTest::addColumn<bool>("endTrim");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::newRow("blanks") << true << " Brass  "
                            << " Brass";
    QTest::newRow("blanks and tabs") << true << "Brass \t \t"
                                     << "Brass";
    QTest::newRow("in the middle") << true << "Br  ass"
                                   << "Br  ass";
    QTest::newRow("nothing else") << true << "   "
                                  << "";
    QTest::newRow("without it") << false << "Brass  "
                                << "Brass  ";
}

void TestLineEdit::blanksAtTheEndGoWithEndTrim()
{
    QFETCH(bool, endTrim);
    QFETCH(QString, typed);
    QFETCH(QString, kept);
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    line->setEndTrim(endTrim);
    window.open();
    LoggingObserver observer(&window.api, TemplateName1);
    clickInto(line);
    line->setText(typed);
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(line->text(), kept);
    QCOMPARE(nameIn(window), kept);
    QCOMPARE(observer.count, 1);
}

void TestLineEdit::theValidatorRefusesWhatDoesNotMatch()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    line->setValidatorRegExp(QStringLiteral("[!-}]*"));
    window.open();
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("A b~c"));
    QCOMPARE(line->text(), QStringLiteral("Abc"));
}

void TestLineEdit::anEmptyExpressionTakesTheValidatorAway()
{
    CLineEdit line;
    line.setValidatorRegExp(QStringLiteral("[a-z]*"));
    QVERIFY(line.validator() != nullptr);
    line.setValidatorRegExp(QString());
    QVERIFY(line.validator() == nullptr);
    QVERIFY(line.findChildren<QValidator *>().isEmpty());
}

void TestLineEdit::aNewExpressionReplacesTheOldOne()
{
    CLineEdit line;
    line.setValidatorRegExp(QStringLiteral("[a-z]*"));
    line.setValidatorRegExp(QStringLiteral("[0-9]*"));
    QCOMPARE(line.findChildren<QValidator *>().size(), 1);
    QTest::keyClicks(&line, QStringLiteral("a1b2"));
    QCOMPARE(line.text(), QStringLiteral("12"));
}

void TestLineEdit::anExpressionThatIsNoneIsHarmless()
{
    CLineEdit line;
    for (const char *expression : {"[", "(", "*", "a{2,1}", "\\", "(?<"}) {
        // At the text and at the key.
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(".*invalid.*")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(".*invalid.*")));
        line.setValidatorRegExp(QString::fromLatin1(expression));
        line.setText(QStringLiteral("text"));
        QTest::keyClicks(&line, QStringLiteral("b"));
    }
    line.setValidatorRegExp(QString(10000, u'a'));
    line.setText(QString(10000, u'b'));
}

void TestLineEdit::noKeyGoesOnToAParent_data()
{
    QTest::addColumn<Qt::Key>("key");
    for (const auto key : {Qt::Key_Escape, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Up, Qt::Key_Down,
                           Qt::Key_PageUp, Qt::Key_F1, Qt::Key_A, Qt::Key_Delete}) {
        QTest::newRow(qPrintable(QKeySequence(key).toString())) << key;
    }
}

void TestLineEdit::noKeyGoesOnToAParent()
{
    QFETCH(Qt::Key, key);
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    clickInto(line);
    EventLog parent(&window);
    QTest::keyPress(window.windowHandle(), key);
    QCOMPARE(parent.count(QEvent::KeyPress), 0);
    // Nor outside of an edit.
    line->abort();
    parent.clear();
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    event.ignore();
    QCoreApplication::sendEvent(line, &event);
    QVERIFY(event.isAccepted());
    QCOMPARE(parent.count(QEvent::KeyPress), 0);
    QTest::keyRelease(window.windowHandle(), key);
}

void TestLineEdit::theTextComesFromTheMemory()
{
    ControlWindow window;
    const CLineEdit *line = addLine(&window);
    QCOMPARE(line->text(), Before);
    QCOMPARE(nameIn(window), Before);
}

void TestLineEdit::aChangeOfTheMemoryShows()
{
    ControlWindow window;
    const CLineEdit *line = addLine(&window);
    window.open();
    LoggingObserver observer(&window.api, TemplateName1);
    window.api.setParam(TemplateName1, QStringLiteral("Brass"));
    QCOMPARE(line->text(), QStringLiteral("Brass"));
    QCOMPARE(observer.count, 1);
}

void TestLineEdit::aChangeOfTheMemoryInTheMiddleOfAnEditShowsAndIsNotWritten()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    clickInto(line);
    QTest::keyClicks(line, QStringLiteral("xy"));
    LoggingObserver observer(&window.api, TemplateName1);
    window.api.setParam(TemplateName1, QStringLiteral("Brass"));
    QCOMPARE(line->text(), QStringLiteral("Brass"));
    QCOMPARE(observer.count, 1);
    QTest::keyClicks(line, QStringLiteral("!"));
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(nameIn(window), QStringLiteral("Brass!"));
}

void TestLineEdit::aTextSetByProgramIsWritten()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    line->setText(QStringLiteral("Brass"));
    QCOMPARE(nameIn(window), QStringLiteral("Brass"));
}

void TestLineEdit::theSameTextAgainLeavesTheCursor()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    clickInto(line);
    line->setCursorPosition(3);
    line->updateMemAPI();
    QCOMPARE(line->cursorPosition(), 3);
}

void TestLineEdit::anUnboundLineWorks()
{
    ControlWindow window;
    auto *line = window.add<CLineEdit>(Place);
    window.bind();
    window.open();
    const Signals of(line);
    clickInto(line);
    QTest::keyClicks(line, QStringLiteral("Brass"));
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(line->text(), QStringLiteral("Brass"));
    QCOMPARE(of.counts(), Counts({1, 1, 0}));
}

namespace
{

// Asks the line for its menu by key or mouse, and does something once the menu stands.
bool withMenu(CLineEdit *line, const std::function<void(QMenu *)> &then)
{
    bool came = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (menu != nullptr && !came) {
            came = true;
            poll.stop();
            then(menu);
        }
    });
    poll.start(5);
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(5, 5),
                            line->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(line, &event);
    return QTest::qWaitFor([&] { return came; });
}

} // namespace

void TestLineEdit::theMenuHasTheFontOfTheWindow()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    QFont font(QStringLiteral("Corvan QRL 8"));
    font.setPixelSize(8);
    window.setFont(font);
    QFont other;
    other.setPixelSize(21);
    line->setFont(other);
    window.open();
    QPointer<QMenu> menu;
    QVERIFY(withMenu(line, [&](QMenu *shown) {
        menu = shown;
        QCOMPARE(shown->font().pixelSize(), 8);
        QCOMPARE(shown->font().family(), font.family());
        QVERIFY(shown->actions().size() > 3);
        shown->close();
    }));
    QVERIFY(menu.isNull());
}

void TestLineEdit::theMenuLeavesTheEditAsItIs()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    window.open();
    const Signals of(line);
    clickInto(line);
    line->selectAll();
    QTest::keyClicks(line, QStringLiteral("Brass"));
    QVERIFY(withMenu(line, [](QMenu *menu) { menu->close(); }));
    QTRY_VERIFY(line->hasFocus());
    QCOMPARE(of.counts(), Counts({1, 0, 0}));
    QCOMPARE(nameIn(window), Before);
    QTest::keyClick(line, Qt::Key_Escape);
    QCOMPARE(line->text(), Before);
}

void TestLineEdit::aTopLevelLineHasTheMenuOfTheBaseClass()
{
    CLineEdit line;
    line.resize(100, 20);
    line.show();
    QVERIFY(QTest::qWaitForWindowExposed(&line));
    QVERIFY(withMenu(&line, [](QMenu *menu) { menu->close(); }));
}

void TestLineEdit::aLineMayGoWhileItsMenuStands()
{
    ControlWindow window;
    QPointer<CLineEdit> line = addLine(&window);
    window.open();
    clickInto(line);
    QVERIFY(withMenu(line, [&](QMenu *menu) {
        QPointer<QMenu> guard(menu);
        delete line;
        QVERIFY(guard.isNull());
    }));
    QVERIFY(line.isNull());
}

void TestLineEdit::theAccessibleNameStays()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    line->setAccessibleName(QStringLiteral("Template name"));
    window.open();
    QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(line);
    QVERIFY(accessible != nullptr);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Template name"));
    QCOMPARE(accessible->text(QAccessible::Value), Before);
}

void TestLineEdit::textsOfTenThousandCharactersAreHarmless()
{
    ControlWindow window;
    CLineEdit *line = addLine(&window);
    line->setMaxLength(32767);
    line->setEndTrim(true);
    window.open();
    clickInto(line);
    line->setText(QString(10000, u'W') + QString(10000, u' '));
    QVERIFY(!window.grab().isNull());
    QTest::keyClick(line, Qt::Key_Return);
    QCOMPARE(line->text().size(), 10000);
    QCOMPARE(nameIn(window), line->text());
    line->setNamedAddress(QStringLiteral("no such name"));
    line->setText(QString(10000, u'V'));
}

QTEST_MAIN(TestLineEdit)
#include "tst_lineedit.moc"
