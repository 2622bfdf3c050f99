// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/TemplateHarness.h"

#include <QtWidgets/QStackedWidget>

#include <functional>

// What the template view shows of the memory, and its commands.
// Calls back before the watched object hears of each of its timers.
class BeforeTimers : public QObject
{
public:
    explicit BeforeTimers(std::function<void()> call)
        : m_call(std::move(call))
    {
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Timer) {
            m_call();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> m_call;
};

class TestEditorTemplate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { prepareApplication(); }

    // --- LCD
    void withTheDAWOtherTheLCDShowsTheCCFormWhateverTheControlType_data();
    void withTheDAWOtherTheLCDShowsTheCCFormWhateverTheControlType();
    void aNameTooWideForItsCellIsCutAndStandsWholeInTheToolTip();
    void aRemoteParameterShowsItsOwnNameAndItsPathInTheToolTip();
    void anUnknownRemoteParameterLeavesItsCellEmpty();
    void anExchangeInTheMemoryRedrawsBothCells();
    void theLCDFollowsTheInstrumentsNameWhileItIsTyped();
    void anotherTemplateShowsItsOwnKnobs();

    // --- Settings of one knob
    void oneKnobIsLitAndItsSettingsAreShown();
    void arrowKeysChooseAnotherKnob();
    void touchingACCControlMakesTheTemplateCC_data();
    void touchingACCControlMakesTheTemplateCC();
    void thePanelsBesideTheSettingsChooseRemoteAndCC();
    void withTheDAWOtherThereIsNothingRemote();
    void withADAWTheRemoteControlsShow();
    void aNameBeingTypedStaysWithItsTemplate();

    // --- Lamps
    void theStoreButtonFollowsTheOnlineState_data();
    void theStoreButtonFollowsTheOnlineState();
    void theFileLampFollowsItsFlag();
    void theFileNameStandsWithoutItsFolder();
    void theStoreFlashFadesOutAndIn();

    // --- Commands
    void initializeTemplateBlanksTheCurrentOneAndRaisesTheFlag();
    void initializeEditBufferBlanksAllAndRaisesNoFlag();
    void focusGoesToTheCurrentKnob();
    void saveAsEndsAt128Banks();
};

void TestEditorTemplate::withTheDAWOtherTheLCDShowsTheCCFormWhateverTheControlType_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("Remote") << 0;
    QTest::newRow("CC") << 1;
}

void TestEditorTemplate::withTheDAWOtherTheLCDShowsTheCCFormWhateverTheControlType()
{
    QFETCH(int, type);
    TemplateRun run;
    run.setControlType(type);
    run.setKnob(0, "Cut", 7, 0, "100000401");
    run.setKnob(11, "WWWWWWWWWWWWWWW", 127, 0, "200000002");
    QCOMPARE(run.cell(0)->text(), QStringLiteral("CC007\nCut"));
    // In full, however wide.
    QCOMPARE(run.cell(11)->text(), QStringLiteral("CC127\nWWWWWWWWWWWWWWW"));
    QCOMPARE(run.button(11)->toolTip(), QString());
}

void TestEditorTemplate::aNameTooWideForItsCellIsCutAndStandsWholeInTheToolTip()
{
    TemplateRun run;
    run.useRack();
    run.setControlType(1);
    run.setKnob(0, "Cut", 7, 0, "100000401");
    run.setKnob(5, "WWWWWWWWWWWWWWW", 10, 0, "100000401");
    QCOMPARE(run.cell(0)->text(), QStringLiteral("CC007\nCut"));
    QCOMPARE(run.button(0)->toolTip(), QString());
    const QString cut = run.cell(5)->text();
    QVERIFY(cut.startsWith(QStringLiteral("CC010\nW")));
    QVERIFY(cut.endsWith(TrimLabel));
    QVERIFY(QFontMetrics(run.cell(5)->font()).horizontalAdvance(cut.mid(6)) <= 71);
    QCOMPARE(run.button(5)->toolTip(), QStringLiteral("WWWWWWWWWWWWWWW"));
}

void TestEditorTemplate::aRemoteParameterShowsItsOwnNameAndItsPathInTheToolTip()
{
    TemplateRun run;
    run.useRack();
    run.setControlType(0);
    run.get<CLineEdit>("editVSTiName")->setText(ShortSynth);
    run.setKnob(0, "", 0, 0, "200000001");
    run.setKnob(1, "", 0, 0, "200000002");
    run.setKnob(2, "", 0, 0, "200000003");
    run.setKnob(3, "", 0, 0, "100000003");
    QCOMPARE(run.cell(0)->text(), QStringLiteral("Output Level"));
    QCOMPARE(run.button(0)->toolTip(), QString());
    QCOMPARE(run.cell(1)->text(), QStringLiteral("Cutoff"));
    QCOMPARE(run.button(1)->toolTip(), QStringLiteral("Filter - Cutoff"));
    QVERIFY(run.cell(2)->text().startsWith(QStringLiteral("Attack")));
    QVERIFY(run.cell(2)->text().endsWith(TrimLabel));
    QCOMPARE(run.button(2)->toolTip(),
             QStringLiteral("Filter - Envelope - Attack Time Of The Very Slow Kind"));
    QCOMPARE(run.cell(3)->text(), QStringLiteral("QuickCtrl3"));
    QCOMPARE(run.button(3)->toolTip(), QStringLiteral("QuickCtrl - QuickCtrl3"));

    QTest::mouseClick(run.button(2), Qt::LeftButton);
    QCOMPARE(run.get<CLineEdit>("txtRemoteControlParameter")->text(),
             QStringLiteral("Filter - Envelope - Attack Time Of The Very Slow Kind"));
}

void TestEditorTemplate::anUnknownRemoteParameterLeavesItsCellEmpty()
{
    TemplateRun run;
    run.useRack();
    run.setControlType(0);
    run.get<CLineEdit>("editVSTiName")->setText(ShortSynth);
    run.setKnob(0, "Name", 7, 0, "2000000ff");
    QCOMPARE(run.cell(0)->text(), QString());
    QCOMPARE(run.button(0)->toolTip(), QString());
    QCOMPARE(run.get<CLineEdit>("txtRemoteControlParameter")->text(), QString());
    // An instrument that nobody knows has none at all.
    run.setKnob(0, "Name", 7, 0, "200000001");
    QCOMPARE(run.cell(0)->text(), QStringLiteral("Output Level"));
    run.get<CLineEdit>("editVSTiName")->setText(QStringLiteral("Nobody"));
    QCOMPARE(run.cell(0)->text(), QString());
}

void TestEditorTemplate::anExchangeInTheMemoryRedrawsBothCells()
{
    TemplateRun run;
    run.setKnob(0, "One", 1, 0, "100000401");
    run.setKnob(7, "Seven", 7, 1, "100000402");
    run.api.exchangeController(0, 0, 0, 0, 0, 7);
    QCOMPARE(run.cell(0)->text(), QStringLiteral("CC007\nSeven"));
    QCOMPARE(run.cell(7)->text(), QStringLiteral("CC001\nOne"));
}

void TestEditorTemplate::theLCDFollowsTheInstrumentsNameWhileItIsTyped()
{
    TemplateRun run;
    run.useRack();
    run.setControlType(0);
    run.setKnob(0, "", 0, 0, "200000001");
    auto *edit = run.get<CLineEdit>("editVSTiName");
    QCOMPARE(run.cell(0)->text(), QString());
    QTest::mouseClick(edit, Qt::LeftButton);
    edit->selectAll();
    QTest::keyClicks(edit, ShortSynth);
    QCOMPARE(run.cell(0)->text(), QStringLiteral("Output Level"));
    // The memory hears of it when it is accepted.
    QCOMPARE(run.vstiName(), QString());
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(run.vstiName(), ShortSynth);
}

void TestEditorTemplate::anotherTemplateShowsItsOwnKnobs()
{
    TemplateRun run;
    run.setKnob(0, "First", 1, 0, "100000401");
    run.api.setParam(ParamAddress(0, 49, 13, -1), QStringLiteral("The last one"));
    run.api.setParam(ParamAddress(0, 49, 0, 0), QStringLiteral("Last"));
    run.api.setParam(ParamAddress(0, 49, 0, 1), 99);
    QCOMPARE(run.get<CText>("txtTemplateNumber")->text(), QStringLiteral("Template No:01"));
    // From outside, as the library and the instrument do it.
    run.api.setParam(ParamAddress(0, 52, -1, -1), 49);
    QCOMPARE(run.current(), 49);
    QCOMPARE(run.get<CText>("txtTemplateNumber")->text(), QStringLiteral("Template No:50"));
    QCOMPARE(run.get<CLineEdit>("editTemplateName")->text(), QStringLiteral("The last one"));
    QCOMPARE(run.cell(0)->text(), QStringLiteral("CC099\nLast"));
    QCOMPARE(run.get<CTextSlider>("txtCCNumber")->value(), 99);
    QCOMPARE(run.get<CLineEdit>("editDisplayName")->text(), QStringLiteral("Last"));
    // By the button, one back.
    auto *spin = run.get<CSpinButton>("btnTemplateNumber");
    QTest::mouseClick(spin->childAt(spin->width() / 2, spin->height() - 3), Qt::LeftButton);
    QTRY_COMPARE(run.current(), 48);
    QCOMPARE(valueAt(run.api, ParamAddress(0, 52, -1, -1)), 48);
}

// --- Settings of one knob ------------------------------------------------------------------------

void TestEditorTemplate::oneKnobIsLitAndItsSettingsAreShown()
{
    TemplateRun run;
    for (int knob = 0; knob < 12; ++knob) {
        run.setKnob(knob, QByteArray::number(100 + knob).constData(), 20 + knob, knob % 2,
                    "100000401");
    }
    for (const int knob : {11, 3, 0, 6}) {
        QTest::mouseClick(run.button(knob), Qt::LeftButton);
        QCOMPARE(run.view->getCurrentKnob(), knob);
        for (int other = 0; other < 12; ++other) {
            QCOMPARE(run.label(other)->isVisible(), other == knob);
            QCOMPARE(run.cell(other)->isEnabled(), other == knob);
        }
        QCOMPARE(run.get<CTextSlider>("txtCCNumber")->value(), 20 + knob);
        QCOMPARE(run.get<CSpinButton>("spinCCNumber")->value(), 20 + knob);
        QCOMPARE(run.get<CLineEdit>("editDisplayName")->text(), QString::number(100 + knob));
        QCOMPARE(run.get<CRadioButton>("btnMinus64to63")->isChecked(), knob % 2 == 1);
    }
    QVERIFY(!run.isEdited() || run.knob(11) == QStringLiteral("111|31|1|100000401"));
    // What is set goes to that knob and to no other.
    run.get<CTextSlider>("txtCCNumber")->setValue(77);
    QCOMPARE(run.knob(6), QStringLiteral("106|77|0|100000401"));
    QCOMPARE(run.knob(0), QStringLiteral("100|20|0|100000401"));
    QCOMPARE(run.cell(6)->text(), QStringLiteral("CC077\n106"));
}

void TestEditorTemplate::arrowKeysChooseAnotherKnob()
{
    TemplateRun run;
    QTest::mouseClick(run.button(0), Qt::LeftButton);
    QTest::keyClick(run.button(0), Qt::Key_Right);
    QCOMPARE(run.view->getCurrentKnob(), 1);
    QTest::keyClick(run.button(1), Qt::Key_Down);
    QCOMPARE(run.view->getCurrentKnob(), 5);
    QTest::keyClick(run.button(5), Qt::Key_Left);
    QCOMPARE(run.view->getCurrentKnob(), 4);
    QTest::keyClick(run.button(4), Qt::Key_Up);
    QCOMPARE(run.view->getCurrentKnob(), 0);
}

void TestEditorTemplate::touchingACCControlMakesTheTemplateCC_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"btnCCPanel", "spinCCNumber", "txtCCNumber", "editDisplayName",
                             "btn0to127", "btnMinus64to63", "btnCC"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void TestEditorTemplate::touchingACCControlMakesTheTemplateCC()
{
    QFETCH(QString, name);
    TemplateRun run;
    run.useRack();
    run.setControlType(0);
    auto *control = run.view->findChild<QWidget *>(name);
    if (auto *edit = qobject_cast<CLineEdit *>(control)) {
        QTest::mouseClick(edit, Qt::LeftButton);
        QTest::keyClicks(edit, QStringLiteral("x"));
        QCOMPARE(run.controlType(), 0);
        QTest::keyClick(edit, Qt::Key_Return);
    } else if (qobject_cast<CTextSlider *>(control) != nullptr) {
        QWheelEvent wheel(QPointF(5, 5), control->mapToGlobal(QPointF(5, 5)), {}, {0, 120},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(control, &wheel);
    } else if (qobject_cast<CSpinButton *>(control) != nullptr) {
        QTest::mouseClick(control->childAt(control->width() / 2, 3), Qt::LeftButton);
    } else {
        QTest::mouseClick(control, Qt::LeftButton);
    }
    QTRY_COMPARE(run.controlType(), 1);
    QVERIFY(run.get<CFrame>("lblCC")->isVisible());
    QVERIFY(!run.get<CFrame>("lblRemote")->isVisible());
}

void TestEditorTemplate::thePanelsBesideTheSettingsChooseRemoteAndCC()
{
    TemplateRun run;
    run.useRack();
    run.setControlType(1);
    QTest::mouseClick(run.get<COnOffButton>("btnRemotePanel"), Qt::LeftButton);
    QCOMPARE(run.controlType(), 0);
    QVERIFY(run.get<CFrame>("lblRemote")->isVisible());
    QVERIFY(!run.get<CFrame>("lblCC")->isVisible());
    QTest::mouseClick(run.get<COnOffButton>("btnCCPanel"), Qt::LeftButton);
    QCOMPARE(run.controlType(), 1);
    QVERIFY(!run.get<CFrame>("lblRemote")->isVisible());
    QVERIFY(run.get<CFrame>("lblCC")->isVisible());
}

namespace
{

constexpr std::array RemoteControls{"btnRemote",
                                    "btnCC",
                                    "btnRemotePanel",
                                    "btnCCPanel",
                                    "txtRemoteControlParameter",
                                    "btnRemoteControlParameter",
                                    "editVSTiName",
                                    "btnVSTiName"};

} // namespace

void TestEditorTemplate::withTheDAWOtherThereIsNothingRemote()
{
    TemplateRun run;
    for (const int type : {0, 1}) {
        run.setControlType(type);
        for (const char *name : RemoteControls) {
            QVERIFY2(!run.get<QWidget>(name)->isVisible(), name);
        }
        QVERIFY(!run.get<QWidget>("lblRemote")->isVisible());
        QVERIFY(run.get<QWidget>("lblCC")->isVisible());
    }
}

void TestEditorTemplate::withADAWTheRemoteControlsShow()
{
    TemplateRun run;
    run.setControlType(0);
    run.useRack();
    for (const char *name : RemoteControls) {
        QVERIFY2(run.get<QWidget>(name)->isVisible(), name);
    }
    QVERIFY(run.get<QWidget>("lblRemote")->isVisible());
    QVERIFY(!run.get<QWidget>("lblCC")->isVisible());
    run.window->setDAWName(OtherDAW);
    run.view->updateDAW();
    for (const char *name : RemoteControls) {
        QVERIFY2(!run.get<QWidget>(name)->isVisible(), name);
    }
    QVERIFY(run.get<QWidget>("lblCC")->isVisible());
}

void TestEditorTemplate::aNameBeingTypedStaysWithItsTemplate()
{
    TemplateRun run;
    auto *edit = run.get<CLineEdit>("editTemplateName");
    QTest::mouseClick(edit, Qt::LeftButton);
    QTest::keyClicks(edit, QStringLiteral("Typed"));
    // Meanwhile the instrument goes on to another template.
    run.api.setParam(ParamAddress(0, 52, -1, -1), 3);
    QCOMPARE(edit->text(), QString());
    QCOMPARE(run.api.getParamQString(ParamAddress(0, 0, 13, -1)), QStringLiteral("Typed"));
    QTest::keyClick(edit, Qt::Key_Escape);
    QCOMPARE(run.templateName(), QString());
}

// --- Lamps ---------------------------------------------------------------------------------------

void TestEditorTemplate::theStoreButtonFollowsTheOnlineState_data()
{
    QTest::addColumn<int>("online");
    QTest::addColumn<int>("edited");
    QTest::addColumn<bool>("lamp");
    QTest::addColumn<bool>("store");
    QTest::newRow("offline, not edited") << 0 << 0 << false << true;
    QTest::newRow("offline, edited") << 0 << 1 << false << true;
    QTest::newRow("online, not edited") << 1 << 0 << false << false;
    QTest::newRow("online, edited") << 1 << 1 << true << true;
}

void TestEditorTemplate::theStoreButtonFollowsTheOnlineState()
{
    QFETCH(int, online);
    QFETCH(int, edited);
    QFETCH(bool, lamp);
    QFETCH(bool, store);
    TemplateRun run;
    run.api.setParam(BankEdit, edited);
    run.api.setONLINEstate(online);
    QCOMPARE(run.get<QLabel>("lblBankEditFlag")->isVisible(), lamp);
    QCOMPARE(run.get<QLabel>("lblStoreFlash")->isVisible(), store);
    QCOMPARE(run.get<COnOffButton>("btnStore")->isVisible(), store);
}

void TestEditorTemplate::theFileLampFollowsItsFlag()
{
    TemplateRun run;
    QVERIFY(!run.get<QLabel>("lblFileEditFlag")->isVisible());
    run.setKnob(0, "Edit", 1, 0, "100000401");
    QVERIFY(run.get<QLabel>("lblFileEditFlag")->isVisible());
    run.api.setParam(FileEdit, 0);
    QVERIFY(!run.get<QLabel>("lblFileEditFlag")->isVisible());
}

void TestEditorTemplate::theFileNameStandsWithoutItsFolder()
{
    TemplateRun run;
    QCOMPARE(run.get<CText>("txtFileName")->text(), QString());
    run.api.setParam(FilePath, QStringLiteral("/some/folder/My Bank.Q7V"));
    QCOMPARE(run.get<CText>("txtFileName")->text(), QStringLiteral("My Bank.Q7V"));
    // One without end is cut.
    run.api.setParam(FilePath, QStringLiteral("/f/") + QString(200, QLatin1Char('W')));
    QVERIFY(run.get<CText>("txtFileName")->text().endsWith(TrimLabel));
    QVERIFY(run.get<CText>("txtFileName")->toolTip().endsWith(QStringLiteral("WWWW")));
}

void TestEditorTemplate::theStoreFlashFadesOutAndIn()
{
    TemplateRun run;
    const auto *flash = run.get<QLabel>("lblStoreFlash");
    const auto opacity = [flash] {
        const QImage image = flash->pixmap(Qt::ReturnByValue).toImage();
        int most = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                most = std::max(most, image.pixelColor(x, y).alpha());
            }
        }
        return most;
    };
    // Between two steps, however long the machine takes for one.
    QList<int> seen;
    BeforeTimers look([&] { seen.append(opacity()); });
    run.view->installEventFilter(&look);
    QTRY_VERIFY_WITH_TIMEOUT(seen.count(0) >= 3, 20000);
    run.view->removeEventFilter(&look);
    // From one nothing to the next: in nine steps up, the full one, and nine steps down. The first
    // nothing is that of before the first step.
    const auto last = seen.lastIndexOf(0);
    const auto first = seen.lastIndexOf(0, last - 1);
    const QList<int> round = seen.mid(first, last - first + 1);
    const int full = *std::max_element(round.cbegin(), round.cend());
    QVERIFY(full > 100);
    QList<int> expected = {0, full, 0};
    for (const int grey : {209, 186, 162, 139, 116, 93, 69, 46, 23}) {
        expected.insert(1, full * grey / 255);
        expected.insert(expected.size() - 1, full * grey / 255);
    }
    QCOMPARE(round, expected);
}

// --- Commands ------------------------------------------------------------------------------------

void TestEditorTemplate::initializeTemplateBlanksTheCurrentOneAndRaisesTheFlag()
{
    TemplateRun run;
    run.api.setParam(ParamAddress(0, 52, -1, -1), 5);
    run.setKnob(0, "Edit", 77, 1, "100000401");
    run.api.setParam(ParamAddress(0, 6, 13, -1), QStringLiteral("Neighbour"));
    run.api.setParam(FileEdit, 0);
    run.window->editInitialize();
    QVERIFY(run.isEdited());
    QVERIFY(run.knob(0) != QStringLiteral("Edit|77|1|100000401"));
    QCOMPARE(run.cell(0)->text().left(5),
             QStringLiteral("CC%1").arg(valueAt(run.api, ParamAddress(0, 5, 0, 1)), 3, 10,
                                        QLatin1Char('0')));
    QCOMPARE(run.api.getParamQString(ParamAddress(0, 6, 13, -1)), QStringLiteral("Neighbour"));
}

void TestEditorTemplate::initializeEditBufferBlanksAllAndRaisesNoFlag()
{
    TemplateRun run;
    const QStringList blank = contentOf(run.api, 0);
    run.api.setParam(ParamAddress(0, 49, 13, -1), QStringLiteral("Last"));
    run.setKnob(3, "Edit", 77, 1, "100000401");
    run.api.setParam(FilePath, QStringLiteral("/x.Q7V"));
    run.api.setParam(FileEdit, 0);
    run.view->initializeEditBuffer();
    QVERIFY(!run.isEdited());
    QCOMPARE(contentOf(run.api, 0), blank);
    QCOMPARE(run.api.getParamQString(FilePath), QString());
    QVERIFY(run.api.isAllowToRaiseFileEditFlag());
}

void TestEditorTemplate::focusGoesToTheCurrentKnob()
{
    TemplateRun run;
    QTest::mouseClick(run.button(9), Qt::LeftButton);
    QTest::mouseClick(run.get<CLineEdit>("editTemplateName"), Qt::LeftButton);
    QVERIFY(!run.button(9)->hasFocus());
    run.view->focusKnob();
    QVERIFY(run.button(9)->hasFocus());
}

void TestEditorTemplate::saveAsEndsAt128Banks()
{
    TemplateRun run;
    QVERIFY(run.view->canSaveBankAs());
    while (run.api.getQuantityOfBank() < 127) {
        run.api.createBank();
    }
    QVERIFY(run.view->canSaveBankAs());
    run.api.createBank();
    QVERIFY(!run.view->canSaveBankAs());
    QVERIFY(run.view->canSaveBank());
    QVERIFY(!run.window->canSaveBankAs());
}

QTEST_MAIN(TestEditorTemplate)
#include "tst_editortemplate.moc"
