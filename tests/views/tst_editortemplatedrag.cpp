// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/TemplateHarness.h"

#include "widgets/RealInput.h"

#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtGui/QDrag>
#include <QtWidgets/QMenu>
#include <QtXml/QDomDocument>

// Knobs of the template view that are dragged, copied and pasted.

namespace
{

constexpr const char *KnobXml =
    "<!DOCTYPE TARN_TERN_RemoteEditorKnob>\n<controller number=\"3\">"
    "<displayname>Pasted</displayname><ccnumber>99</ccnumber>"
    "<displayformat>1</displayformat><remotenumber>200000002</remotenumber></controller>";

std::unique_ptr<QMimeData> knobMime(const QByteArray &xml)
{
    auto mime = std::make_unique<QMimeData>();
    mime->setData(KnobMimeType, xml);
    return mime;
}

// A drag with the pointer of the X server: each step is taken when the one before it has arrived.
class RealDrag : public QObject
{
public:
    RealDrag(RealInput *input, QWidget *from, QWidget *to)
        : m_input(input)
        , m_from(from)
        , m_to(to)
    {
        qApp->installEventFilter(this);
    }
    ~RealDrag() override { qApp->removeEventFilter(this); }

    // overTarget: what happens there before the button comes up.
    void run(std::function<void()> overTarget = {})
    {
        m_overTarget = std::move(overTarget);
        const QPoint start = m_from->mapToGlobal(QPoint(8, 12));
        m_input->moveTo(start);
        m_input->pressLeft();
        QTRY_VERIFY(m_pressed);
        // Farther than a drag's first way, and still over the knob.
        m_input->moveTo(start + QPoint(30, 0));
        QTRY_VERIFY(m_released);
    }

    bool began() const { return m_began; }
    bool dropped() const { return m_dropped; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            m_pressed = m_pressed || watched == m_from;
            break;
        case QEvent::MouseButtonRelease:
            m_released = m_began;
            break;
        case QEvent::DragEnter:
        case QEvent::DragMove:
            if (watched == m_from && !m_began) {
                m_began = true;
                QMetaObject::invokeMethod(this, &RealDrag::goOn, Qt::QueuedConnection);
            } else if (watched == m_to && m_arrived && !m_letGo) {
                m_letGo = true;
                QMetaObject::invokeMethod(this, &RealDrag::letGo, Qt::QueuedConnection);
            }
            break;
        case QEvent::Drop:
            m_dropped = m_dropped || watched == m_to;
            break;
        default:
            break;
        }
        return false;
    }

private:
    void goOn()
    {
        m_arrived = true;
        m_input->moveTo(m_to->mapToGlobal(QPoint(60, 10)));
        if (m_to == m_from) {
            // Its answer held for all of it, so it isn't asked again.
            letGo();
        }
    }
    void letGo()
    {
        if (m_overTarget) {
            m_overTarget();
        }
        m_input->releaseLeft();
    }

    RealInput *m_input;
    QWidget *m_from;
    QWidget *m_to;
    std::function<void()> m_overTarget;
    bool m_pressed = false;
    bool m_began = false;
    bool m_arrived = false;
    bool m_letGo = false;
    bool m_dropped = false;
    bool m_released = false;
};

} // namespace

class TestEditorTemplateDrag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { prepareApplication(); }

    void aMoveSwapsTwoKnobsAndBothFlash();
    void aCopyLeavesItsSourceAndTheTargetFlashes();
    void controlPressedOnTheWayCopies();
    void aKnobOnItselfIsRefused_data();
    void aKnobOnItselfIsRefused();
    void aDropIsAnsweredForTheWholeKnob_data();
    void aDropIsAnsweredForTheWholeKnob();
    void aDropOfDamagedDataWritesNothing_data();
    void aDropOfDamagedDataWritesNothing();
    void aDragEndsWhenTheTemplateChanges();
    void besideTheKnobsNothingCanBeDropped();
    void aShortMoveIsNoDrag();

    void copyAndPasteOfAKnob();
    void aPasteOfForeignDataWritesNothing_data();
    void aPasteOfForeignDataWritesNothing();
    void pasteNeedsAKnobOnTheClipboard();
    void theContextMenuSelectsCopiesAndPastes();
};

void TestEditorTemplateDrag::aMoveSwapsTwoKnobsAndBothFlash()
{
    TemplateRun run;
    run.setKnob(0, "One", 1, 0, "100000401");
    run.setKnob(6, "Seven", 7, 1, "200000002");
    const QString first = run.knob(0);
    const QString seventh = run.knob(6);
    run.api.setParam(FileEdit, 0);
    RealInput input;
    RealDrag drag(&input, run.button(0), run.button(6));
    drag.run();
    QVERIFY(drag.dropped());
    QCOMPARE(run.knob(0), seventh);
    QCOMPARE(run.knob(6), first);
    const QList<QRect> flashes = run.flashes();
    QCOMPARE(flashes.size(), 2);
    QVERIFY(flashes.contains(run.flashOf(0)) && flashes.contains(run.flashOf(6)));
    // The target is the current knob now, and both cells and the settings show what is there.
    QCOMPARE(run.view->getCurrentKnob(), 6);
    QCOMPARE(run.cell(0)->text(), QStringLiteral("CC007\nSeven"));
    QCOMPARE(run.cell(6)->text(), QStringLiteral("CC001\nOne"));
    QCOMPARE(run.get<CTextSlider>("txtCCNumber")->value(), 1);
    QVERIFY(run.isEdited());
    // No button stays stuck.
    QVERIFY(!run.button(0)->isDown());
    QVERIFY(!run.button(6)->isDown());
}

void TestEditorTemplateDrag::aCopyLeavesItsSourceAndTheTargetFlashes()
{
    TemplateRun run;
    run.setKnob(3, "Four", 4, 1, "100000402");
    run.setKnob(8, "Nine", 9, 0, "200000002");
    const QString fourth = run.knob(3);
    RealInput input;
    input.holdControl();
    RealDrag drag(&input, run.button(3), run.button(8));
    drag.run();
    input.releaseControl();
    QVERIFY(drag.dropped());
    QCOMPARE(run.knob(3), fourth);
    QCOMPARE(run.knob(8), fourth);
    QCOMPARE(run.flashes(), QList<QRect>{run.flashOf(8)});
    QCOMPARE(run.view->getCurrentKnob(), 8);
    QCOMPARE(run.get<CLineEdit>("editDisplayName")->text(), QStringLiteral("Four"));
}

void TestEditorTemplateDrag::controlPressedOnTheWayCopies()
{
    TemplateRun run;
    run.setKnob(3, "Four", 4, 1, "100000402");
    run.setKnob(8, "Nine", 9, 0, "200000002");
    const QString fourth = run.knob(3);
    RealInput input;
    RealDrag drag(&input, run.button(3), run.button(8));
    drag.run([&] { input.holdControl(); });
    input.releaseControl();
    QVERIFY(drag.dropped());
    QCOMPARE(run.knob(3), fourth);
    QCOMPARE(run.knob(8), fourth);
}

void TestEditorTemplateDrag::aKnobOnItselfIsRefused_data()
{
    QTest::addColumn<bool>("control");
    QTest::newRow("move") << false;
    QTest::newRow("copy") << true;
}

void TestEditorTemplateDrag::aKnobOnItselfIsRefused()
{
    QFETCH(bool, control);
    TemplateRun run;
    run.setKnob(5, "Six", 6, 0, "100000401");
    run.api.setParam(FileEdit, 0);
    const QStringList before = contentOf(run.api, 0);
    RealInput input;
    if (control) {
        input.holdControl();
    }
    RealDrag drag(&input, run.button(5), run.button(5));
    drag.run();
    if (control) {
        input.releaseControl();
    }
    QVERIFY(drag.began());
    QVERIFY(!drag.dropped());
    QCOMPARE(contentOf(run.api, 0), before);
    QVERIFY(!run.isEdited());
    QVERIFY(run.flashes().isEmpty());
    QVERIFY(!run.button(5)->isDown());
}

void TestEditorTemplateDrag::aDropIsAnsweredForTheWholeKnob_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("action");
    const int none = int(Qt::NoModifier);
    const QByteArray good(KnobXml);
    const auto numbered = [&](const char *number) {
        QByteArray xml(KnobXml);
        return xml.replace("number=\"3\"", QByteArray("number=\"") + number + '"');
    };
    QTest::newRow("move") << good << none << int(Qt::MoveAction);
    QTest::newRow("copy") << good << int(Qt::ControlModifier) << int(Qt::CopyAction);
    QTest::newRow("copy with another key too")
        << good << int(Qt::ControlModifier | Qt::ShiftModifier) << int(Qt::CopyAction);
    QTest::newRow("itself") << numbered("4") << none << int(Qt::IgnoreAction);
    QTest::newRow("itself, copy") << numbered("4") << int(Qt::ControlModifier)
                                  << int(Qt::IgnoreAction);
    QTest::newRow("knob 12") << numbered("12") << none << int(Qt::IgnoreAction);
    QTest::newRow("knob -1") << numbered("-1") << none << int(Qt::IgnoreAction);
    QTest::newRow("knob of no number") << numbered("three") << none << int(Qt::IgnoreAction);
    QTest::newRow("without number") << QByteArray("<controller/>") << none << int(Qt::IgnoreAction);
    QTest::newRow("no XML") << QByteArray("knob") << none << int(Qt::IgnoreAction);
    QTest::newRow("nothing") << QByteArray() << none << int(Qt::IgnoreAction);
    QTest::newRow("huge") << good + QByteArray(1 << 20, ' ') << none << int(Qt::IgnoreAction);
}

void TestEditorTemplateDrag::aDropIsAnsweredForTheWholeKnob()
{
    QFETCH(QByteArray, xml);
    QFETCH(int, modifiers);
    QFETCH(int, action);
    TemplateRun run;
    const auto mime = knobMime(xml);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction | Qt::MoveAction, mime.get(),
                          Qt::LeftButton, Qt::KeyboardModifiers(modifiers));
    QCoreApplication::sendEvent(run.button(4), &enter);
    QDragMoveEvent move(QPoint(11, 11), Qt::CopyAction | Qt::MoveAction, mime.get(), Qt::LeftButton,
                        Qt::KeyboardModifiers(modifiers));
    QCoreApplication::sendEvent(run.button(4), &move);
    for (const QDragMoveEvent *event : {static_cast<QDragMoveEvent *>(&enter), &move}) {
        // What a knob refuses goes on to the view, which takes it for nothing.
        const bool taken = event->isAccepted() && event->dropAction() != Qt::IgnoreAction;
        QCOMPARE(taken, action != int(Qt::IgnoreAction));
        if (taken) {
            QCOMPARE(int(event->dropAction()), action);
            QCOMPARE(event->answerRect(), run.button(4)->rect());
        }
    }
}

void TestEditorTemplateDrag::aDropOfDamagedDataWritesNothing_data()
{
    aPasteOfForeignDataWritesNothing_data();
}

void TestEditorTemplateDrag::aDropOfDamagedDataWritesNothing()
{
    QFETCH(QByteArray, xml);
    TemplateRun run;
    // Unlike the others, so that an exchange would show.
    run.setKnob(3, "Source", 3, 1, "100000401");
    const QStringList before = contentOf(run.api, 0);
    run.api.setParam(FileEdit, 0);
    const auto mime = knobMime(xml);
    for (const Qt::KeyboardModifiers modifiers : {Qt::ControlModifier, Qt::NoModifier}) {
        // What has not entered isn't dropped.
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction | Qt::MoveAction, mime.get(),
                              Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(run.button(4), &enter);
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction | Qt::MoveAction, mime.get(),
                        Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(run.button(4), &drop);
        QCOMPARE(contentOf(run.api, 0), before);
        QVERIFY(!run.isEdited());
        QVERIFY(run.flashes().isEmpty());
        QCOMPARE(run.view->getCurrentKnob(), 0);
    }
    // And the good one is.
    const auto good = knobMime(KnobXml);
    QDragEnterEvent again(QPoint(10, 10), Qt::CopyAction | Qt::MoveAction, good.get(),
                          Qt::LeftButton, Qt::ControlModifier);
    QCoreApplication::sendEvent(run.button(4), &again);
    QDropEvent taken(QPointF(10, 10), Qt::CopyAction | Qt::MoveAction, good.get(), Qt::LeftButton,
                     Qt::ControlModifier);
    QCoreApplication::sendEvent(run.button(4), &taken);
    QCOMPARE(taken.dropAction(), Qt::CopyAction);
    QCOMPARE(run.knob(4), QStringLiteral("Pasted|99|1|200000002"));
}

void TestEditorTemplateDrag::aDragEndsWhenTheTemplateChanges()
{
    TemplateRun run;
    run.setKnob(0, "One", 1, 0, "100000401");
    const QStringList before = contentOf(run.api, 0, false);
    RealInput input;
    RealDrag drag(&input, run.button(0), run.button(6));
    drag.run([&] { run.api.setParam(ParamAddress(0, 52, -1, -1), 9); });
    QVERIFY(drag.began());
    QVERIFY(!drag.dropped());
    run.api.setParam(ParamAddress(0, 52, -1, -1), 0);
    QCOMPARE(contentOf(run.api, 0, false), before);
    QVERIFY(!run.button(0)->isDown());
}

void TestEditorTemplateDrag::besideTheKnobsNothingCanBeDropped()
{
    TemplateRun run;
    const auto mime = knobMime(KnobXml);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction | Qt::MoveAction, mime.get(),
                          Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(run.view, &enter);
    QVERIFY(enter.isAccepted());
    QCOMPARE(enter.dropAction(), Qt::IgnoreAction);
    QDragMoveEvent move(QPoint(11, 11), Qt::CopyAction | Qt::MoveAction, mime.get(), Qt::LeftButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(run.view, &move);
    QVERIFY(!move.isAccepted());
}

void TestEditorTemplateDrag::aShortMoveIsNoDrag()
{
    TemplateRun run;
    Answers answers;
    auto *button = run.button(7);
    const QPoint start(20, 10);
    QTest::mousePress(button, Qt::LeftButton, {}, start);
    QTest::mouseMove(button, start + QPoint(QApplication::startDragDistance(), 0));
    QTest::mouseRelease(button, Qt::LeftButton, {}, start + QPoint(1, 0));
    QCOMPARE(run.view->getCurrentKnob(), 7);
}

// --- Clipboard -----------------------------------------------------------------------------------

void TestEditorTemplateDrag::copyAndPasteOfAKnob()
{
    TemplateRun run;
    run.setKnob(2, "Three <&>", 3, 1, "200000002");
    const QString third = run.knob(2);
    QTest::mouseClick(run.button(2), Qt::LeftButton);
    run.window->editCopy();
    QCOMPARE(run.flashes(), QList<QRect>{run.flashOf(2)});
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    QVERIFY(mime->hasFormat(KnobMimeType));
    QDomDocument document;
    QVERIFY(document.setContent(mime->data(KnobMimeType)));
    QCOMPARE(document.doctype().name(), KnobDocType);
    QCOMPARE(document.documentElement().tagName(), QStringLiteral("controller"));
    QCOMPARE(document.documentElement().attribute(QStringLiteral("number")), QStringLiteral("2"));

    run.api.setParam(ParamAddress(0, 52, -1, -1), 20);
    QTest::mouseClick(run.button(10), Qt::LeftButton);
    run.api.setParam(FileEdit, 0);
    QTRY_VERIFY(run.flashes().isEmpty());
    QVERIFY(run.view->canPaste());
    run.window->editPaste();
    QCOMPARE(run.knob(10), third);
    QCOMPARE(run.flashes(), QList<QRect>{run.flashOf(10)});
    QVERIFY(run.isEdited());
    // The same again, on the keys of the menu.
    QTest::mouseClick(run.button(11), Qt::LeftButton);
    QTest::keyClick(run.window.get(), Qt::Key_V, Qt::ControlModifier);
    QTRY_COMPARE(run.knob(11), third);
}

void TestEditorTemplateDrag::aPasteOfForeignDataWritesNothing_data()
{
    QTest::addColumn<QByteArray>("xml");
    const auto with = [](const char *from, const char *to) {
        return QByteArray(KnobXml).replace(from, to);
    };
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no XML") << QByteArray("\x00\xFF\x13 knob", 9);
    QTest::newRow("cut") << QByteArray(KnobXml).left(150);
    QTest::newRow("huge") << with("Pasted", QByteArray(1 << 20, 'x').constData());
    QTest::newRow("deep") << QByteArray("<controller number=\"3\">") +
                                 QByteArray("<a>").repeated(5000);
    QTest::newRow("without name") << with("displayname", "noname");
    QTest::newRow("without number") << with("ccnumber", "nonumber");
    QTest::newRow("without format") << with("displayformat", "noformat");
    QTest::newRow("without identifier") << with("remotenumber", "noidentifier");
    QTest::newRow("name too long") << with("Pasted", "Sixteen letters!");
    QTest::newRow("number too large") << with(">99<", ">128<");
    QTest::newRow("number negative") << with(">99<", ">-1<");
    QTest::newRow("number beyond all") << with(">99<", ">99999999999999999999<");
    QTest::newRow("number of letters") << with(">99<", ">ninety<");
    QTest::newRow("format too large") << with(">1<", ">2<");
    QTest::newRow("identifier too long") << with("200000002", "2000000021");
    QTest::newRow("a template") << QByteArray("<template number=\"3\"><name>T</name></template>");
}

void TestEditorTemplateDrag::aPasteOfForeignDataWritesNothing()
{
    QFETCH(QByteArray, xml);
    TemplateRun run;
    run.api.setParam(FileEdit, 0);
    const QStringList before = contentOf(run.api, 0);
    QGuiApplication::clipboard()->setMimeData(knobMime(xml).release());
    run.window->editPaste();
    QCOMPARE(contentOf(run.api, 0), before);
    QVERIFY(!run.isEdited());
    QVERIFY(run.flashes().isEmpty());
    // And the good one does.
    QGuiApplication::clipboard()->setMimeData(knobMime(KnobXml).release());
    run.window->editPaste();
    QCOMPARE(run.knob(0), QStringLiteral("Pasted|99|1|200000002"));
    QVERIFY(run.isEdited());
}

void TestEditorTemplateDrag::pasteNeedsAKnobOnTheClipboard()
{
    TemplateRun run;
    const QStringList before = contentOf(run.api, 0);
    QGuiApplication::clipboard()->clear();
    QVERIFY(!run.view->canPaste());
    run.view->pasteKnob();
    QGuiApplication::clipboard()->setText(QString::fromLatin1(KnobXml));
    QVERIFY(!run.view->canPaste());
    run.view->pasteKnob();
    QCOMPARE(contentOf(run.api, 0), before);
    QGuiApplication::clipboard()->setMimeData(knobMime(KnobXml).release());
    QVERIFY(run.view->canPaste());
    QVERIFY(run.view->canCopy());
    QVERIFY(run.view->canInitialize());
}

void TestEditorTemplateDrag::theContextMenuSelectsCopiesAndPastes()
{
    TemplateRun run;
    run.setKnob(9, "Ten", 10, 0, "100000401");
    QGuiApplication::clipboard()->clear();
    Answers answers;
    RealInput input;
    const auto rightClick = [&](int knob) {
        input.moveTo(run.button(knob)->mapToGlobal(QPoint(30, 10)));
        input.press(3);
        input.release(3);
    };
    bool done = false;
    answers.expect<QMenu>([&](QMenu *menu) {
        const QList<QAction *> actions = menu->actions();
        QCOMPARE(actions.size(), 2);
        QCOMPARE(actions.at(0)->text(), MenuEditCopy);
        QCOMPARE(actions.at(0)->shortcut(), QKeySequence(QStringLiteral("Ctrl+C")));
        QVERIFY(actions.at(0)->isEnabled());
        QCOMPARE(actions.at(1)->text(), MenuEditPaste);
        QCOMPARE(actions.at(1)->shortcut(), QKeySequence(QStringLiteral("Ctrl+V")));
        QVERIFY(!actions.at(1)->isEnabled());
        QCOMPARE(menu->font().family(), run.view->font().family());
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(actions.at(0)).center());
        done = true;
    });
    rightClick(9);
    QTRY_VERIFY(done);
    QCOMPARE(run.view->getCurrentKnob(), 9);
    QTRY_VERIFY(run.view->canPaste());

    done = false;
    answers.expect<QMenu>([&](QMenu *menu) {
        QVERIFY(menu->actions().at(1)->isEnabled());
        QTest::keyClick(menu, Qt::Key_P);
        done = true;
    });
    rightClick(1);
    QTRY_VERIFY(done);
    QTRY_COMPARE(run.knob(1), run.knob(9));
    QCOMPARE(run.view->getCurrentKnob(), 1);
    QVERIFY(answers.allGiven());
    QVERIFY(run.view->findChildren<QMenu *>().isEmpty());
}

QTEST_MAIN(TestEditorTemplateDrag)
#include "tst_editortemplatedrag.moc"
