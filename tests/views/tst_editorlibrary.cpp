// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/LibraryRig.h"

#include "file/EditorData.h"

#include <QtCore/QMimeData>
#include <QtGui/QClipboard>
#include <QtWidgets/QMenu>

// The library in the real window, without an instrument: selection, preview, the second file,
// the clipboard and the ways out.

namespace
{

// A template's data as the view gives it out.
QByteArray templateXml(int bank, int number)
{
    RemoteMemAPI api;
    api.setParam(ParamAddress(Bank::Stored, 0, ParamAddress::TemplateName, -1),
                 QStringLiteral("Piano"));
    api.setParam(ParamAddress(Bank::Stored, 0, ParamAddress::VSTiName, -1),
                 QStringLiteral("Synth"));
    api.setParam(ParamAddress(Bank::Stored, 0, 0, ParamAddress::DisplayName),
                 QStringLiteral("Cutoff"));
    QDomDocument document(TemplateDocType);
    QDomElement root =
        EditorData::getTemplateDomElement(&api, &document, Bank::Stored, 0, QString());
    root.setAttribute(EditorData::AttributeTemplateNumber, number);
    root.setAttribute(EditorData::AttributeBankNumber, bank);
    document.appendChild(root);
    return document.toByteArray(1);
}

QMimeData *mimeOf(const QByteArray &xml)
{
    auto *mime = new QMimeData;
    mime->setData(TemplateMimeType, xml);
    return mime;
}

// Data that must be refused, by the reason.
void damagedRows()
{
    QTest::addColumn<QByteArray>("xml");
    const QByteArray good = templateXml(Bank::Library, 7);
    const auto changed = [&good](const char *from, const char *to) {
        QByteArray text = good;
        const qsizetype at = text.indexOf(from);
        return text.replace(at, static_cast<qsizetype>(qstrlen(from)), to);
    };
    const auto without = [&good](const QByteArray &from, const QByteArray &to) {
        const qsizetype at = good.indexOf(from);
        const qsizetype end = good.indexOf(to, at) + to.size();
        return QByteArray(good).remove(at, end - at);
    };
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("knob\0template", 13);
    QTest::newRow("cut") << good.left(good.size() / 2);
    QTest::newRow("huge") << good + QByteArray(2 * 1024 * 1024, ' ');
    QTest::newRow("deep") << QByteArray("<template>").repeated(100000);
    QTest::newRow("another document type")
        << changed("TARN_TERN_RemoteEditorTemplate", "TARN_TERN_RemoteEditorKnob");
    QTest::newRow("another root") << QByteArray(good)
                                         .replace("<template ", "<controller ")
                                         .replace("</template>", "</controller>");
    QTest::newRow("no bank") << changed("banknumber=\"5\"", "");
    QTest::newRow("no number") << changed(" number=\"7\"", "");
    QTest::newRow("number -1") << changed(" number=\"7\"", " number=\"-1\"");
    QTest::newRow("number 50") << changed(" number=\"7\"", " number=\"50\"");
    QTest::newRow("number no number") << changed(" number=\"7\"", " number=\"seven\"");
    QTest::newRow("bank -1") << changed("banknumber=\"5\"", "banknumber=\"-1\"");
    QTest::newRow("bank 0") << changed("banknumber=\"5\"", "banknumber=\"0\"");
    QTest::newRow("bank 9") << changed("banknumber=\"5\"", "banknumber=\"9\"");
    QTest::newRow("no name") << without("<name", "</name>");
    QTest::newRow("no instrument") << without("<vstiname", "</vstiname>");
    QTest::newRow("no control type") << without("<controltype", "</controltype>");
    QTest::newRow("control type 2")
        << changed("<controltype>0</controltype>", "<controltype>2</controltype>");
    QTest::newRow("no knob D3") << without("<knobD3", "</knobD3>");
    QTest::newRow("a knob without number") << without("<ccnumber", "</ccnumber>");
    QTest::newRow("a CC of 128") << changed("<ccnumber>0</ccnumber>", "<ccnumber>128</ccnumber>");
    QTest::newRow("a CC of nine") << changed("<ccnumber>0</ccnumber>", "<ccnumber>nine</ccnumber>");
    QTest::newRow("a format of 2")
        << changed("<displayformat>0</displayformat>", "<displayformat>2</displayformat>");
    QTest::newRow("a long display name") << changed(">Cutoff<", ">sixteen letters.<");
    QTest::newRow("a long identifier") << changed("<remotenumber>", "<remotenumber>0");
}

} // namespace

class TestEditorLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void enteringShowsTheEditBuffer();
    void theListsFollowTheMemory();
    void thePreviewOfOtherDAWs();
    void thePreviewOfACCTemplate();
    void thePreviewOfARemoteTemplate();
    void thePreviewFollowsTheSelection();
    void theActiveListDecidesTheMenus();

    void okWithoutAChangeOnlyMovesTheCurrentTemplate_data();
    void okWithoutAChangeOnlyMovesTheCurrentTemplate();
    void okCarriesTheChangesBack();
    void cancelLosesTheChangesWithoutAQuestion();
    void keysPressTheButtons_data();
    void keysPressTheButtons();
    void keysRestWhileAPanelStands();
    void aKeyHeldDownActsNot();
    void aDoubleClickPutsTheTemplateInFront();
    void editTemplateDoesAsADoubleClick();
    void theTemplateViewIsBuiltAnewThoughTheNumberStays();
    void resets_data();
    void resets();
    void aResetInTheTemplateViewTakesItsTemplate();
    void aResetToStartUpReplacesTheStoredBankQuietly();

    void withoutAFileTheImportSideIsHidden();
    void aFileFillsTheImportSide();
    void theFileOutlivesTheVisit();
    void aLongFileNameIsCut();
    void noFileChosenChangesNothing();
    void aFailedImportLeavesTheEarlierListUntilTheViewIsEntered();
    void badFilesEndInAMessage_data();
    void badFilesEndInAMessage();
    void importTemplateCopiesOverTheSelectedOne();

    void copyAndPaste();
    void aPasteTakesWhatLiesThereNow();
    void damagedDataPastesNothing_data() { damagedRows(); }
    void damagedDataPastesNothing();
    void theRulesOfPaste();
    void setTemplateMimeDataWritesTheContent();
    void damagedDataIsNotSet_data() { damagedRows(); }
    void damagedDataIsNotSet();
    void initializeRaisesTheFlag();
    void namesOfAllKindsCanBeCopied_data();
    void namesOfAllKindsCanBeCopied();

    void theContextMenu();
    void theContextMenuByKey();
    void theContextMenuBesideAllItems();

    void screenshots();
};

void TestEditorLibrary::initTestCase()
{
    LibraryRig::prepareApplication();
}

// --- Display -------------------------------------------------------------------------------------

void TestEditorLibrary::enteringShowsTheEditBuffer()
{
    LibraryRig rig;
    rig.api.setParam(ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1),
                     30);
    QVERIFY(rig.enter());

    QCOMPARE(rig.list()->value(), 30);
    QVERIFY(rig.list()->getItemRect(30).isValid());
    QCOMPARE(rig.list()->count(), 50);
    QCOMPARE(rig.list()->text(0, 0), QStringLiteral("01  A01"));
    QCOMPARE(rig.list()->text(49, 0), QStringLiteral("50  A50"));
    QVERIFY(rig.list()->isListSelected());
    QVERIFY(!rig.importList()->isListSelected());
    QCOMPARE(rig.namesOf(Bank::Library), rig.namesOf(Bank::EditBuffer));
    QCOMPARE(rig.libraryEditFlag(), 0);
    QCOMPARE(rig.fileEditFlag(), 0);
    QCOMPARE(rig.view->getBankNumber(), int(Bank::Library));
    QVERIFY(!rig.view->canDeleteBank());
    QVERIFY(rig.view->canImport());
    QVERIFY(rig.view->canNewBank());
    while (rig.api.getQuantityOfBank() < 128) {
        rig.api.createBank();
    }
    QVERIFY(!rig.view->canImport());
    QVERIFY(!rig.view->canNewBank());
}

void TestEditorLibrary::theListsFollowTheMemory()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.api.setParam(ParamAddress(Bank::Library, 4, ParamAddress::TemplateName, -1),
                     QStringLiteral("Strings"));
    QCOMPARE(rig.list()->text(4, 0), QStringLiteral("05  Strings"));
    rig.nameTemplates(Bank::Stored, 'S');
    rig.api.copyBank(Bank::Stored, Bank::Library);
    QCOMPARE(rig.list()->text(4, 0), QStringLiteral("05  S05"));
}

void TestEditorLibrary::thePreviewOfOtherDAWs()
{
    LibraryRig rig;
    rig.window.setDAWName(OtherDAW);
    QVERIFY(rig.enter());
    rig.api.setParam(ParamAddress(Bank::Library, 0, 6, ParamAddress::CCNumber), 7);
    rig.api.setParam(ParamAddress(Bank::Library, 0, 6, ParamAddress::DisplayName),
                     QStringLiteral("WWWWWWWWWWWWWWW"));
    rig.api.setParam(ParamAddress(Bank::Library, 0, ParamAddress::ControlType, -1), 0);
    // Knob 6 is the third of the second row; the name is not cut.
    QCOMPARE(rig.text("txtKnobC2")->text(), QStringLiteral("CC007\nWWWWWWWWWWWWWWW"));
    QCOMPARE(rig.text("txtKnobC2")->toolTip(), QString());
    QVERIFY(rig.text("txtVSTi")->isHidden());
    QVERIFY(rig.widget<CFrame>("lblRemote")->isHidden());
}

void TestEditorLibrary::thePreviewOfACCTemplate()
{
    LibraryRig rig;
    QVERIFY(rig.useDAW());
    QVERIFY(rig.enter());
    rig.api.setParam(ParamAddress(Bank::Library, 0, ParamAddress::ControlType, -1), 1);
    rig.api.setParam(ParamAddress(Bank::Library, 0, ParamAddress::VSTiName, -1), AudioTrackName);
    rig.api.setParam(ParamAddress(Bank::Library, 0, 0, ParamAddress::CCNumber), 74);
    rig.api.setParam(ParamAddress(Bank::Library, 0, 0, ParamAddress::DisplayName),
                     QStringLiteral("Bright"));
    rig.api.setParam(ParamAddress(Bank::Library, 0, 11, ParamAddress::DisplayName),
                     QStringLiteral("WWWWWWWWWWWWWWW"));
    QVERIFY(rig.text("txtVSTi")->isVisible());
    QCOMPARE(rig.text("txtVSTi")->text(), AudioTrackName);
    QVERIFY(rig.widget<CFrame>("lblRemote")->isHidden());
    QCOMPARE(rig.text("txtKnobA1")->text(), QStringLiteral("CC074\nBright"));
    QCOMPARE(rig.text("txtKnobA1")->toolTip(), QString());
    const QString cut = rig.text("txtKnobD3")->text();
    QVERIFY(cut.startsWith(QStringLiteral("CC000\nWWW")) || cut.contains(QStringLiteral("\nWWW")));
    QVERIFY(cut.endsWith(QChar(u'\uFB02')));
    QCOMPARE(rig.text("txtKnobD3")->toolTip(), QStringLiteral("WWWWWWWWWWWWWWW"));
}

void TestEditorLibrary::thePreviewOfARemoteTemplate()
{
    LibraryRig rig;
    QVERIFY(rig.useDAW());
    QVERIFY(rig.enter());
    const auto assign = [&rig](int knob, const QString &id) {
        rig.api.setParam(ParamAddress(Bank::Library, 0, knob, ParamAddress::RemoteNumber), id);
    };
    rig.api.setParam(ParamAddress(Bank::Library, 0, ParamAddress::ControlType, -1), 0);
    assign(0, TrackControlVolumeID);
    assign(1, TrackControlQuickControlID);
    assign(2, QStringLiteral("0deadbeef"));
    QVERIFY(rig.widget<CFrame>("lblRemote")->isVisible());
    QCOMPARE(rig.text("txtKnobA1")->text(), QStringLiteral("Volume"));
    QCOMPARE(rig.text("txtKnobA1")->toolTip(), QString());
    QCOMPARE(rig.text("txtKnobB1")->text(), QStringLiteral("QuickCtrl1"));
    QCOMPARE(rig.text("txtKnobB1")->toolTip(), QStringLiteral("QuickCtrl - QuickCtrl1"));
    QCOMPARE(rig.text("txtKnobC1")->text(), QString());
    QCOMPARE(rig.text("txtKnobC1")->toolTip(), QString());

    rig.window.setDAWName(OtherDAW);
    rig.view->updateDAW();
    QVERIFY(rig.text("txtKnobA1")->text().startsWith(QStringLiteral("CC")));
    QVERIFY(rig.widget<CFrame>("lblRemote")->isHidden());
    QCOMPARE(rig.text("txtKnobB1")->toolTip(), QString());
}

void TestEditorLibrary::thePreviewFollowsTheSelection()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.window.setDAWName(OtherDAW);
    for (int bank : {Bank::Import, Bank::Library}) {
        for (int number = 0; number < 12; ++number) {
            rig.api.setParam(ParamAddress(bank, number, 0, ParamAddress::DisplayName),
                             rig.name(bank == Bank::Import ? 'F' : 'A', number));
        }
    }
    const QString file = rig.makeFile(QStringLiteral("second.Q7V"));
    rig.importFile(file);
    for (int number = 0; number < 12; ++number) {
        rig.api.setParam(ParamAddress(Bank::Import, number, 0, ParamAddress::DisplayName),
                         rig.name('F', number));
    }
    const auto shown = [&rig] { return rig.text("txtKnobA1")->text().section(u'\n', 1); };
    rig.choose(rig.list(), 3);
    QCOMPARE(shown(), rig.name('A', 3));
    QTest::keyClick(rig.list(), Qt::Key_Down);
    QCOMPARE(shown(), rig.name('A', 4));
    rig.choose(rig.importList(), 6);
    QCOMPARE(shown(), rig.name('F', 6));
    QTest::keyClick(rig.importList(), Qt::Key_Up);
    QCOMPARE(shown(), rig.name('F', 5));
    rig.choose(rig.list(), 4);
    QCOMPARE(shown(), rig.name('A', 4));

    // Leaving sets the import's list back, which the next visit must not show.
    rig.click("btnCancel");
    rig.window.viewLibrary();
    rig.api.setParam(ParamAddress(Bank::Library, 0, 0, ParamAddress::DisplayName),
                     QStringLiteral("front"));
    QCOMPARE(rig.list()->value(), 0);
    QCOMPARE(shown(), QStringLiteral("front"));
}

void TestEditorLibrary::theActiveListDecidesTheMenus()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    QVERIFY(rig.window.canCopy());
    QVERIFY(rig.view->canEditTemplate());
    rig.choose(rig.importList(), 2);
    QVERIFY(rig.importList()->isListSelected());
    QVERIFY(!rig.list()->isListSelected());
    QVERIFY(!rig.window.canCopy());
    QVERIFY(!rig.window.canInitialize());
    QVERIFY(!rig.window.canPaste());
    QVERIFY(!rig.view->canEditTemplate());
    QCOMPARE(rig.view->getBankNumber(), int(Bank::Import));
    rig.choose(rig.list(), 2);
    QVERIFY(rig.list()->isListSelected());
    QVERIFY(!rig.importList()->isListSelected());
    QVERIFY(rig.window.canCopy());
}

// --- The ways out --------------------------------------------------------------------------------

void TestEditorLibrary::okWithoutAChangeOnlyMovesTheCurrentTemplate_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("another template") << 5;
    QTest::newRow("the same template") << 0;
}

void TestEditorLibrary::okWithoutAChangeOnlyMovesTheCurrentTemplate()
{
    QFETCH(int, number);
    LibraryRig rig;
    QVERIFY(rig.enter());
    const QStringList before = rig.namesOf(Bank::EditBuffer);
    rig.choose(rig.list(), number);
    rig.click("btnOK");
    QVERIFY(!rig.view->isVisible());
    QCOMPARE(rig.currentTemplate(), number);
    QCOMPARE(rig.fileEditFlag(), 0);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QCOMPARE(rig.namesOf(Bank::EditBuffer), before);
    // The flag may rise again afterwards.
    QVERIFY(rig.api.isAllowToRaiseFileEditFlag());
}

void TestEditorLibrary::okCarriesTheChangesBack()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 2);
    rig.api.exchangeTemplate(Bank::Library, 1, Bank::Library, 2);
    QCOMPARE(rig.libraryEditFlag(), 1);
    QCOMPARE(rig.fileEditFlag(), 0);
    rig.click("btnOK");
    QVERIFY(!rig.view->isVisible());
    QCOMPARE(rig.nameOf(Bank::EditBuffer, 1), QStringLiteral("A03"));
    QCOMPARE(rig.nameOf(Bank::EditBuffer, 2), QStringLiteral("A02"));
    QCOMPARE(rig.currentTemplate(), 2);
    QCOMPARE(rig.fileEditFlag(), 1);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QVERIFY(rig.api.isAllowToRaiseFileEditFlag());
}

void TestEditorLibrary::cancelLosesTheChangesWithoutAQuestion()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    const QStringList before = rig.namesOf(Bank::EditBuffer);
    rig.choose(rig.list(), 8);
    rig.view->initializeTemplate();
    QCOMPARE(rig.libraryEditFlag(), 1);
    rig.click("btnCancel");
    QVERIFY(!rig.view->isVisible());
    QVERIFY(!rig.window.isWindowLocked());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(rig.namesOf(Bank::EditBuffer), before);
    QCOMPARE(rig.currentTemplate(), 0);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QCOMPARE(rig.fileEditFlag(), 0);
    rig.window.viewLibrary();
    QCOMPARE(rig.namesOf(Bank::Library), before);
}

void TestEditorLibrary::keysPressTheButtons_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<int>("current");
    QTest::newRow("Return") << Qt::Key_Return << 3;
    QTest::newRow("Enter") << Qt::Key_Enter << 3;
    QTest::newRow("Escape") << Qt::Key_Escape << 0;
}

void TestEditorLibrary::keysPressTheButtons()
{
    QFETCH(Qt::Key, key);
    QFETCH(int, current);
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 3);
    auto *pressed = rig.widget<COnOffButton>(current == 0 ? "btnCancel" : "btnOK");
    QSignalSpy clicks(pressed, &QAbstractButton::clicked);
    QTest::keyClick(rig.window.windowHandle(), key);
    QVERIFY(pressed->isDown());
    QTRY_COMPARE(clicks.size(), 1);
    QTRY_VERIFY(!rig.view->isVisible());
    QCOMPARE(rig.currentTemplate(), current);
}

void TestEditorLibrary::keysRestWhileAPanelStands()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    QSignalSpy ok(rig.widget<COnOffButton>("btnOK"), &QAbstractButton::pressed);
    QSignalSpy cancel(rig.widget<COnOffButton>("btnCancel"), &QAbstractButton::pressed);
    rig.view->enableKeyboardShortcuts(false);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
        QTest::keyClick(rig.window.windowHandle(), key);
    }
    QCOMPARE(ok.size(), 0);
    QCOMPARE(cancel.size(), 0);
    rig.view->enableKeyboardShortcuts(true);
    QTest::keyClick(rig.window.windowHandle(), Qt::Key_Escape);
    QCOMPARE(cancel.size(), 1);
}

void TestEditorLibrary::aKeyHeldDownActsNot()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    QSignalSpy cancel(rig.widget<COnOffButton>("btnCancel"), &QAbstractButton::pressed);
    // As the window system repeats a key that went down while a panel had it.
    QKeyEvent override(QEvent::ShortcutOverride, Qt::Key_Escape, Qt::NoModifier, QString(), true);
    QTest::keyPress(rig.window.windowHandle(), Qt::Key_A);
    for (QAction *action : rig.view->actions()) {
        QVERIFY(!action->autoRepeat());
    }
    QTest::keyRelease(rig.window.windowHandle(), Qt::Key_A);
    QCOMPARE(cancel.size(), 0);
}

void TestEditorLibrary::aDoubleClickPutsTheTemplateInFront()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.api.copyTemplate(Bank::Library, 0, Bank::Library, 9);
    const QPoint row = rig.list()->getItemRect(7).center();
    QTest::mouseClick(rig.list(), Qt::LeftButton, {}, row);
    QVERIFY(rig.view->isVisible());
    QTest::mouseDClick(rig.list(), Qt::LeftButton, {}, row);
    QVERIFY(!rig.view->isVisible());
    QCOMPARE(rig.currentTemplate(), 7);
    QCOMPARE(rig.nameOf(Bank::EditBuffer, 9), QStringLiteral("A01"));
    QCOMPARE(rig.fileEditFlag(), 1);
}

void TestEditorLibrary::editTemplateDoesAsADoubleClick()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 4);
    rig.view->editTemplate();
    QVERIFY(!rig.view->isVisible());
    QCOMPARE(rig.currentTemplate(), 4);
    rig.window.viewLibrary();
    rig.view->editTemplate(12);
    QCOMPARE(rig.currentTemplate(), 12);
}

void TestEditorLibrary::theTemplateViewIsBuiltAnewThoughTheNumberStays()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    auto *heard = new CSimpleNotifier(QStringLiteral("currentTemplateNumber"), &rig.window);
    createMemProxyController(rig.window.getMemControllerFactory(), heard);
    QSignalSpy updates(heard, &CSimpleNotifier::update);
    rig.api.copyTemplate(Bank::Library, 9, Bank::Library, 0);
    rig.click("btnOK");
    QCOMPARE(rig.currentTemplate(), 0);
    // Once by the copy of the bank, once by the forced write.
    QCOMPARE(updates.size(), 2);
    auto *name = rig.window.findChild<QLineEdit *>(QStringLiteral("editTemplateName"));
    QVERIFY(name != nullptr);
    QCOMPARE(name->text(), QStringLiteral("A10"));
    delete heard;
}

void TestEditorLibrary::resets_data()
{
    QTest::addColumn<int>("reset");
    QTest::addColumn<char>("letter");
    QTest::newRow("to the stored data") << 1 << 'S';
    QTest::newRow("to the data at start-up") << 2 << 'E';
    QTest::newRow("to the factory settings") << 3 << 'P';
}

void TestEditorLibrary::resets()
{
    QFETCH(int, reset);
    QFETCH(char, letter);
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.nameTemplates(Bank::Stored, 'S');
    rig.nameTemplates(Bank::HardwareStored, 'H');
    rig.nameTemplates(Bank::HardwareEditBuffer, 'E');
    rig.nameTemplates(Bank::Preset, 'P');
    rig.api.setBankAvailableFlag(1, Bank::HardwareStored);
    rig.api.setBankAvailableFlag(1, Bank::HardwareEditBuffer);
    rig.choose(rig.list(), 6);
    switch (reset) {
    case 1:
        rig.window.resetStoredData();
        break;
    case 2:
        rig.window.restoreHWBackup();
        break;
    default:
        rig.window.resetFactorySet();
        break;
    }
    QVERIFY(!rig.view->isVisible());
    QCOMPARE(rig.currentTemplate(), 6);
    for (int number = 0; number < 50; ++number) {
        QCOMPARE(rig.nameOf(Bank::EditBuffer, number), rig.name(letter, number));
        QCOMPARE(rig.nameOf(Bank::Stored, number), rig.name(reset == 2 ? 'H' : 'S', number));
    }
    QCOMPARE(rig.fileEditFlag(), 1);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QVERIFY(rig.api.isAllowToRaiseFileEditFlag());
}

void TestEditorLibrary::aResetInTheTemplateViewTakesItsTemplate()
{
    LibraryRig rig;
    rig.nameTemplates(Bank::Preset, 'P');
    rig.api.setParam(ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1),
                     21);
    rig.window.resetFactorySet();
    QVERIFY(!rig.view->isVisible());
    QCOMPARE(rig.currentTemplate(), 21);
    QCOMPARE(rig.nameOf(Bank::EditBuffer, 21), QStringLiteral("P22"));
}

void TestEditorLibrary::aResetToStartUpReplacesTheStoredBankQuietly()
{
    LibraryRig rig;
    rig.nameTemplates(Bank::HardwareStored, 'H');
    rig.nameTemplates(Bank::HardwareEditBuffer, 'E');
    rig.view->restoreHWBackup(3);
    QCOMPARE(rig.nameOf(Bank::Stored, 3), QStringLiteral("H04"));
    QCOMPARE(rig.nameOf(Bank::EditBuffer, 3), QStringLiteral("E04"));
    QCOMPARE(rig.currentTemplate(), 3);
}

// --- The second file -----------------------------------------------------------------------------

void TestEditorLibrary::withoutAFileTheImportSideIsHidden()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    QVERIFY(rig.importList()->isHidden());
    QVERIFY(rig.widget<QScrollBar>("scrollImport")->isHidden());
    QVERIFY(rig.button("btnImport")->isHidden());
    QVERIFY(rig.text("txtFileName")->isHidden());
    QVERIFY(rig.button("btnFileOpen")->isVisible());
}

void TestEditorLibrary::aFileFillsTheImportSide()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("my 'own' b\u00E4nk & more.Q7V")));
    QVERIFY(rig.importList()->isVisible());
    QVERIFY(rig.widget<QScrollBar>("scrollImport")->isVisible());
    QVERIFY(rig.button("btnImport")->isVisible());
    QVERIFY(rig.text("txtFileName")->isVisible());
    QCOMPARE(rig.text("txtFileName")->text(), QStringLiteral("my 'own' b\u00E4nk & more.Q7V"));
    QCOMPARE(rig.importList()->text(0, 0), QStringLiteral("01  F01"));
    QCOMPARE(rig.importList()->text(49, 0), QStringLiteral("50  F50"));
    QCOMPARE(rig.window.getWorkingFolder(), QDir(rig.folder.path()).absolutePath());
    QCOMPARE(rig.api.getBankAvailableFlag(Bank::Import).getCurrentValue(), 1);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QCOMPARE(rig.fileEditFlag(), 0);
    QCOMPARE(rig.namesOf(Bank::EditBuffer), rig.namesOf(Bank::Library));
}

void TestEditorLibrary::theFileOutlivesTheVisit()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    rig.importList()->setValue(30);
    rig.importList()->adjustScroll();
    rig.click("btnOK");
    QVERIFY(!rig.view->isVisible());
    rig.window.viewLibrary();
    QVERIFY(rig.importList()->isVisible());
    QVERIFY(rig.button("btnImport")->isVisible());
    QCOMPARE(rig.importList()->text(7, 0), QStringLiteral("08  F08"));
    QCOMPARE(rig.importList()->value(), 0);
    QCOMPARE(rig.widget<QScrollBar>("scrollImport")->value(), 0);
}

void TestEditorLibrary::aLongFileNameIsCut()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QString(60, u'W') + EditorFileExtension));
    const QString shown = rig.text("txtFileName")->text();
    QVERIFY(shown.startsWith(QStringLiteral("WWWW")));
    QVERIFY(shown.endsWith(QChar(u'\uFB02')));
    QVERIFY(rig.text("txtFileName")->fontMetrics().horizontalAdvance(shown) <=
            rig.text("txtFileName")->width());
}

void TestEditorLibrary::noFileChosenChangesNothing()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    const QString folder = rig.window.getWorkingFolder();
    rig.importFile(QString());
    QVERIFY(rig.importList()->isHidden());
    QCOMPARE(rig.window.getWorkingFolder(), folder);
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    rig.importFile(QString());
    QVERIFY(rig.importList()->isVisible());
    QCOMPARE(rig.api.getBankAvailableFlag(Bank::Import).getCurrentValue(), 1);
}

void TestEditorLibrary::aFailedImportLeavesTheEarlierListUntilTheViewIsEntered()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    const QString bad = rig.folder.filePath(QStringLiteral("bad.Q7V"));
    QVERIFY(QFile::copy(
        QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/missing-element/one-template.Q7V"), bad));
    QString message;
    rig.answerMessageBox(&message);
    rig.answerFileDialog(bad);
    // The poll for the box finds the file dialog first and passes it by.
    rig.click("btnFileOpen");
    QCOMPARE(message, EditorName + QStringLiteral("|Parameter is not found."));
    QVERIFY(rig.importList()->isVisible());
    QVERIFY(rig.button("btnImport")->isVisible());
    QCOMPARE(rig.importList()->text(0, 0), QStringLiteral("01  F01"));
    QCOMPARE(rig.nameOf(Bank::Import, 0), QStringLiteral("F01"));
    QCOMPARE(rig.api.getBankAvailableFlag(Bank::Import).getCurrentValue(), 0);
    QCOMPARE(rig.fileEditFlag(), 0);

    rig.view->updateLibrary();
    QVERIFY(rig.importList()->isHidden());
    QVERIFY(rig.widget<QScrollBar>("scrollImport")->isHidden());
    QVERIFY(rig.button("btnImport")->isHidden());
    QVERIFY(rig.text("txtFileName")->isHidden());
}

void TestEditorLibrary::badFilesEndInAMessage_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("text");
    const QString corpus = QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/");
    QTest::newRow("no editor file") << corpus + QStringLiteral("other-doctype/database.Q7V")
                                    << QStringLiteral("File is not an editor file.");
    QTest::newRow("another root") << corpus + QStringLiteral("other-root/template.Q7V")
                                  << QStringLiteral("Root tag ID name is different.");
    QTest::newRow("newer") << corpus + QStringLiteral("version/newer.Q7V")
                           << QStringLiteral("It doesn't correspond to this version.");
    QTest::newRow("empty") << corpus + QStringLiteral("malformed/empty.Q7V")
                           << QStringLiteral("Parse error at line ");
}

void TestEditorLibrary::badFilesEndInAMessage()
{
    QFETCH(QString, source);
    QFETCH(QString, text);
    LibraryRig rig;
    QVERIFY(rig.enter());
    const QStringList library = rig.namesOf(Bank::Library);
    QString message;
    rig.answerMessageBox(&message);
    rig.importFile(source);
    QVERIFY2(message.startsWith(EditorName + QLatin1Char('|') + text), qPrintable(message));
    QVERIFY(rig.importList()->isHidden());
    QVERIFY(rig.button("btnImport")->isHidden());
    QCOMPARE(rig.api.getBankAvailableFlag(Bank::Import).getCurrentValue(), 0);
    QCOMPARE(rig.namesOf(Bank::Library), library);
    QCOMPARE(rig.namesOf(Bank::EditBuffer), library);
    QCOMPARE(rig.fileEditFlag(), 0);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QVERIFY(rig.api.isAllowToSendSysEx());
}

void TestEditorLibrary::importTemplateCopiesOverTheSelectedOne()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    rig.choose(rig.list(), 2);
    rig.choose(rig.importList(), 5);
    rig.click("btnImport");
    QCOMPARE(rig.nameOf(Bank::Library, 2), QStringLiteral("F06"));
    QCOMPARE(rig.list()->text(2, 0), QStringLiteral("03  F06"));
    QCOMPARE(rig.libraryEditFlag(), 1);
    QCOMPARE(rig.flashes(), 1);
    const QRect flash = rig.view->findChild<FlashFrame *>()->geometry();
    QCOMPARE(flash,
             rig.list()->getItemRect(2).translated(rig.list()->pos()).adjusted(-1, -1, 1, 1));
    QTRY_COMPARE(rig.flashes(), 0);
}

// --- Clipboard -----------------------------------------------------------------------------------

void TestEditorLibrary::copyAndPaste()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 1);
    QTest::keyClick(rig.window.windowHandle(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(rig.flashes(), 1);
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    QVERIFY(mime->hasFormat(TemplateMimeType));
    QDomDocument document;
    QVERIFY(document.setContent(mime->data(TemplateMimeType)));
    QCOMPARE(document.doctype().name(), TemplateDocType);
    const QDomElement root = document.documentElement();
    QCOMPARE(root.tagName(), QStringLiteral("template"));
    QCOMPARE(root.attribute(QStringLiteral("number")), QStringLiteral("1"));
    QCOMPARE(root.attribute(QStringLiteral("banknumber")), QStringLiteral("5"));
    QCOMPARE(root.firstChildElement(QStringLiteral("name")).text(), QStringLiteral("A02"));
    QVERIFY(EditorData::isWholeTemplateElement(root, QStringLiteral("template")));

    rig.choose(rig.list(), 8);
    QTest::keyClick(rig.window.windowHandle(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(rig.nameOf(Bank::Library, 8), QStringLiteral("A02"));
    QCOMPARE(rig.nameOf(Bank::Library, 1), QStringLiteral("A02"));
    QCOMPARE(rig.libraryEditFlag(), 1);
    QCOMPARE(rig.fileEditFlag(), 0);
}

void TestEditorLibrary::aPasteTakesWhatLiesThereNow()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 1);
    rig.view->copyTemplate();
    rig.api.setParam(ParamAddress(Bank::Library, 1, ParamAddress::TemplateName, -1),
                     QStringLiteral("later"));
    rig.choose(rig.list(), 8);
    rig.view->pasteTemplate();
    QCOMPARE(rig.nameOf(Bank::Library, 8), QStringLiteral("later"));
}

void TestEditorLibrary::damagedDataPastesNothing()
{
    QFETCH(QByteArray, xml);
    LibraryRig rig;
    QVERIFY(rig.enter());
    const QStringList before = rig.namesOf(Bank::Library);
    QGuiApplication::clipboard()->setMimeData(mimeOf(xml));
    rig.choose(rig.list(), 2);
    rig.window.editPaste();
    QCOMPARE(rig.namesOf(Bank::Library), before);
    QCOMPARE(rig.libraryEditFlag(), 0);
    QCOMPARE(rig.fileEditFlag(), 0);
    QCOMPARE(rig.flashes(), 0);
}

void TestEditorLibrary::theRulesOfPaste()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    QGuiApplication::clipboard()->clear();
    QVERIFY(!rig.view->canPaste());
    rig.view->pasteTemplate();
    QGuiApplication::clipboard()->setText(QStringLiteral("<template/>"));
    QVERIFY(!rig.view->canPaste());
    rig.view->pasteTemplate();
    QCOMPARE(rig.libraryEditFlag(), 0);
    QGuiApplication::clipboard()->setMimeData(mimeOf(templateXml(Bank::Library, 7)));
    QVERIFY(rig.view->canPaste());
    rig.choose(rig.list(), 2);
    rig.view->pasteTemplate();
    QCOMPARE(rig.nameOf(Bank::Library, 2), QStringLiteral("A08"));
    rig.importFile(rig.makeFile(QStringLiteral("second.Q7V")));
    rig.choose(rig.importList(), 2);
    QVERIFY(!rig.view->canPaste());
}

void TestEditorLibrary::setTemplateMimeDataWritesTheContent()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    QByteArray xml = templateXml(Bank::Library, 7);
    xml.replace("Piano", "Written");
    const std::unique_ptr<QMimeData> mime(mimeOf(xml));
    QVERIFY(rig.view->setTemplateMimeData(mime.get(), 3));
    QCOMPARE(rig.nameOf(Bank::Library, 3), QStringLiteral("Written"));
    QCOMPARE(rig.nameOf(Bank::Library, 7), QStringLiteral("A08"));
}

void TestEditorLibrary::damagedDataIsNotSet()
{
    QFETCH(QByteArray, xml);
    if (QByteArrayList{"no bank", "no number", "number -1", "number 50", "number no number",
                       "bank -1", "bank 0", "bank 9"}
            .contains(QByteArray(QTest::currentDataTag()))) {
        // Where it came from doesn't matter when its content is written.
        xml = QByteArray("<template>");
    }
    LibraryRig rig;
    QVERIFY(rig.enter());
    const QStringList before = rig.namesOf(Bank::Library);
    const std::unique_ptr<QMimeData> mime(mimeOf(xml));
    QVERIFY(!rig.view->setTemplateMimeData(mime.get(), 3));
    QVERIFY(!rig.view->setTemplateMimeData(nullptr, 3));
    QCOMPARE(rig.namesOf(Bank::Library), before);
    QCOMPARE(rig.libraryEditFlag(), 0);
}

void TestEditorLibrary::initializeRaisesTheFlag()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 4);
    rig.window.editInitialize();
    QCOMPARE(rig.nameOf(Bank::Library, 4), QString());
    QCOMPARE(rig.list()->text(4, 0), QStringLiteral("05  "));
    QCOMPARE(rig.libraryEditFlag(), 1);
    QCOMPARE(rig.fileEditFlag(), 0);
    QCOMPARE(rig.nameOf(Bank::EditBuffer, 4), QStringLiteral("A05"));
}

void TestEditorLibrary::namesOfAllKindsCanBeCopied_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << QStringLiteral("   ");
    QTest::newRow("markup") << QStringLiteral("<a&b>]]>\"'");
    QTest::newRow("control characters") << QStringLiteral("a\u0001b\u0000c\r\nd");
    QTest::newRow("half a surrogate") << QString(QChar(0xD800));
    QTest::newRow("long") << QString(20000, u'x');
}

void TestEditorLibrary::namesOfAllKindsCanBeCopied()
{
    QFETCH(QString, name);
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.api.setParam(ParamAddress(Bank::Library, 1, ParamAddress::TemplateName, -1), name);
    rig.choose(rig.list(), 1);
    rig.view->copyTemplate();
    rig.choose(rig.list(), 8);
    rig.view->pasteTemplate();
    QCOMPARE(rig.nameOf(Bank::Library, 8), name);
}

// --- Context menu --------------------------------------------------------------------------------

void TestEditorLibrary::theContextMenu()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    QGuiApplication::clipboard()->clear();
    QStringList texts;
    QList<bool> enabled;
    QTimer::singleShot(0, &rig.window, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu != nullptr);
        for (QAction *action : menu->actions()) {
            texts.append(action->text());
            enabled.append(action->isEnabled());
        }
        QCOMPARE(menu->font(), rig.view->font());
        QTest::mouseClick(menu, Qt::LeftButton, {},
                          menu->actionGeometry(menu->actions().at(2)).center());
    });
    const QPoint point = rig.list()->getItemRect(5).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, rig.list()->mapToGlobal(point));
    QApplication::sendEvent(rig.list(), &event);
    QCOMPARE(texts, QStringList({MenuEditCopy, MenuEditPaste, MenuEditInitialize}));
    QCOMPARE(enabled, QList<bool>({true, false, true}));
    QCOMPARE(rig.list()->value(), 5);
    QCOMPARE(rig.nameOf(Bank::Library, 5), QString());
    QVERIFY(rig.view->findChild<QMenu *>() == nullptr);
}

void TestEditorLibrary::theContextMenuByKey()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 6);
    QPoint at;
    QTimer::singleShot(0, &rig.window, [&] {
        QWidget *menu = QApplication::activePopupWidget();
        QVERIFY(menu != nullptr);
        at = menu->pos();
        QTest::keyClick(menu, Qt::Key_Escape);
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1),
                            rig.list()->mapToGlobal(QPoint(1, 1)));
    QApplication::sendEvent(rig.list(), &event);
    QCOMPARE(at, rig.list()->mapToGlobal(rig.list()->getItemRect(6).center()));
    QCOMPARE(rig.list()->value(), 6);

    // Scrolled out of sight there is no place for a menu.
    rig.scrollBar()->setValue(30);
    QApplication::sendEvent(rig.list(), &event);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
}

void TestEditorLibrary::theContextMenuBesideAllItems()
{
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.choose(rig.list(), 6);
    const QPoint point(20, 1);
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, rig.list()->mapToGlobal(point));
    QApplication::sendEvent(rig.list(), &event);
    QVERIFY(QApplication::activePopupWidget() == nullptr);
    QCOMPARE(rig.list()->value(), 6);
}

// --- Pictures ------------------------------------------------------------------------------------

// For eyes, when a folder is named.
void TestEditorLibrary::screenshots()
{
    const QString folder = qEnvironmentVariable("TRN_SCREENSHOTS");
    LibraryRig rig;
    QVERIFY(rig.enter());
    rig.api.copyBank(Bank::Preset, Bank::Library);
    rig.importFile(rig.makeFile(QStringLiteral("Live set of the summer.Q7V")));
    rig.api.copyBank(Bank::Preset, Bank::Import);
    rig.choose(rig.list(), 2);
    if (folder.isEmpty()) {
        return;
    }
    const QString scale = QString::number(rig.window.devicePixelRatioF());
    const auto save = [&](const QString &name) {
        QVERIFY(rig.window.grab().save(folder + QLatin1Char('/') + name + QLatin1Char('@') + scale +
                                       QStringLiteral(".png")));
    };
    save(QStringLiteral("library"));
    QVERIFY(rig.useDAW());
    rig.choose(rig.importList(), 4);
    rig.view->importTemplate();
    save(QStringLiteral("library-import"));
    QTimer::singleShot(200, &rig.window, [&] {
        QVERIFY(
            rig.window.screen()
                ->grabWindow(0, 0, 0, 700, 600)
                .save(folder + QStringLiteral("/library-menu@") + scale + QStringLiteral(".png")));
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    });
    const QPoint point = rig.list()->getItemRect(5).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, rig.list()->mapToGlobal(point));
    QApplication::sendEvent(rig.list(), &event);
}

QTEST_MAIN(TestEditorLibrary)
#include "tst_editorlibrary.moc"
