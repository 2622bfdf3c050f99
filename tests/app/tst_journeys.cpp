// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/InstrumentRig.h"
#include "app/Shortcuts.h"
#include "file/EditorFile.h"
#include "memory/MemoryHarness.h"
#include "views/Answers.h"
#include "views/CloseConfirm.h"
#include "widgets/CLineEdit.h"
#include "widgets/CListView.h"
#include "widgets/COnOffButton.h"

#include <QtCore/QRandomGenerator>

// Whole ways through the program, from the user's command down to what the instrument holds: the
// document's life with what each command leaves in the flags, opening over edits step by step, and
// the resets.

namespace
{

const QString Edited = QStringLiteral("Edited");
// Double quotes mean several files to the dialog.
const QString FileName = QStringLiteral("A 'name' of \u00e9\u00fc.Q7V");

enum class Reset { Stored, StartUp, Factory };

struct ResetCommand
{
    QString entry;
    int sourceBank;
};

ResetCommand commandOf(Reset reset)
{
    switch (reset) {
    case Reset::Stored:
        return {MenuEditResetStored, Bank::Stored};
    case Reset::StartUp:
        return {MenuEditRestoreHW, Bank::HardwareEditBuffer};
    default:
        return {MenuEditResetFactory, Bank::Preset};
    }
}

} // namespace

class TestJourneys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init()
    {
        InstrumentRig::setTimings();
        setMachineFolders({});
        QRandomGenerator random(20);
        m_memory = randomInstrument(&random);
        m_memory.editFlag = false;
        m_rig = std::make_unique<InstrumentRig>(m_memory);
    }
    void cleanup()
    {
        m_rig.reset();
        setMachineFolders({});
    }

    // --- What each command leaves behind
    void newLeavesNoNameAndNoEdits_data() { onlineRows(); }
    void newLeavesNoNameAndNoEdits();
    void openLeavesTheNameAndNoEdits_data() { onlineRows(); }
    void openLeavesTheNameAndNoEdits();
    void aFailedOpenLeavesEverything_data();
    void aFailedOpenLeavesEverything();
    void saveLeavesTheNameAndNoEdits_data();
    void saveLeavesTheNameAndNoEdits();
    void aFailedSaveLeavesTheEdits_data();
    void aFailedSaveLeavesTheEdits();

    // --- Opening over edits
    void openingOverEditsGoesInItsOrder_data();
    void openingOverEditsGoesInItsOrder();
    void cancelAtTheQuestionOpensNothing();
    void aCancelledDialogKeepsTheEdits();
    void whatCannotBeSavedIsNotLeft();
    void aFileOpenedTwiceInARowGoesToTheInstrumentTwice();

    // --- What is being typed
    void whatIsBeingTypedIsSaved();
    void whatIsBeingTypedIsAnEdit_data();
    void whatIsBeingTypedIsAnEdit();
    void aNameDecidesAboutTheInstrumentsDataOnceItIsTyped_data();
    void aNameDecidesAboutTheInstrumentsDataOnceItIsTyped();

    // --- Storing
    void anEditIsStoredToTheInstrument();

    // --- The library's way out
    void outOfTheLibraryOnline_data();
    void outOfTheLibraryOnline();

    // --- Resets
    void resets_data();
    void resets();
    void aResetThatIsCancelledChangesNothing();

private:
    static void onlineRows()
    {
        QTest::addColumn<bool>("online");
        QTest::newRow("offline") << false;
        QTest::newRow("online") << true;
    }
    // With the instrument's memory in the banks, and no edits.
    bool start(bool online)
    {
        if (!m_rig->openWindow() || !m_rig->wakePort()) {
            return false;
        }
        if (!online) {
            m_rig->loseInstrument();
        }
        m_rig->setFlag(ParamAddress::FileEditFlag, 0);
        return true;
    }
    RemoteMemAPI &api() { return *m_rig->api; }
    void edit()
    {
        api().setParam(ParamAddress(Bank::EditBuffer, m_rig->currentTemplate(), 13, -1), Edited);
    }
    QString currentName()
    {
        return api().getParamQString(
            ParamAddress(Bank::EditBuffer, m_rig->currentTemplate(), 13, -1));
    }
    QString path(const QString &name = FileName) const { return m_folder.filePath(name); }
    // A document unlike all others.
    QString makeFile(quint32 seed = 7)
    {
        RemoteMemAPI other;
        makeNineBanks(&other);
        QRandomGenerator random(seed);
        fillDocument(&other, &random);
        QFile file(path(QStringLiteral("Other %1.Q7V").arg(seed)));
        return EditorFile::save(&other, Bank::Stored, &file, nullptr) ? file.fileName() : QString();
    }
    // The document in a file.
    static QStringList contentOfFile(const QString &name)
    {
        RemoteMemAPI other;
        makeNineBanks(&other);
        QFile file(name);
        QString error;
        if (!EditorFile::load(&other, Bank::Stored, &file, true, &error)) {
            return {error};
        }
        return document(other);
    }
    static QStringList document(const RemoteMemAPI &memory)
    {
        QStringList lines = contentOf(memory, Bank::EditBuffer, false);
        const QStringList stored = contentOf(memory, Bank::Stored, false);
        // The stored bank has no current template of its own.
        return lines + stored.first(stored.size() - 1);
    }
    bool isBlank(int bank)
    {
        const ControlTemplateData last = api().getTemplateData(Bank::Preset, 49);
        for (int number = 0; number < 50; ++number) {
            const ControlTemplateData here = api().getTemplateData(bank, number);
            if (!here.getTemplateName().isEmpty() || !here.getVSTiName().isEmpty() ||
                here.getController(5).getCCNum().getCurrentValue() !=
                    last.getController(5).getCCNum().getCurrentValue()) {
                return false;
            }
        }
        return true;
    }
    // The instrument's two banks, in words that a failing test can show.
    QString instrumentDiffers(int editBufferBank, int storedBank)
    {
        const InstrumentMemory memory = m_rig->instrument().contents();
        return QStringLiteral("edit buffer %1, stored %2")
            .arg(differences(api(), editBufferBank, memory.editBuffer).size())
            .arg(differences(api(), storedBank, memory.stored).size());
    }
    static QString noDifference() { return QStringLiteral("edit buffer 0, stored 0"); }

    QTemporaryDir m_folder;
    InstrumentMemory m_memory;
    std::unique_ptr<InstrumentRig> m_rig;
};

// --- What each command leaves behind -------------------------------------------------------------

void TestJourneys::newLeavesNoNameAndNoEdits()
{
    QFETCH(bool, online);
    QVERIFY(start(online));
    QVERIFY(m_rig->window->fileOpen(makeFile()));
    if (online) {
        QVERIFY(m_rig->synchronise());
    }
    m_rig->setFlag(ParamAddress::FileEditFlag, 0);
    const auto before = m_rig->instrument().counters();
    QVERIFY(m_rig->trigger(MenuFileNew));
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QCOMPARE(m_rig->fileName(), QString());
    QCOMPARE(m_rig->currentTemplate(), 0);
    QVERIFY(isBlank(Bank::EditBuffer));
    QVERIFY(!api().isONLINE());
    if (!online) {
        QVERIFY(m_rig->anyPanel() == nullptr);
        QCOMPARE(m_rig->instrument().counters(), before);
        return;
    }
    // The edit buffer alone goes, and is then stored.
    QVERIFY(m_rig->synchronise());
    QTRY_COMPARE(m_rig->instrument().counters().stores, before.stores + 1);
    QCOMPARE(m_rig->instrument().counters().footers, before.footers + 50);
    QCOMPARE(m_rig->instrument().counters().storesToFlash, before.storesToFlash);
    QVERIFY(isBlank(Bank::Stored));
    QTRY_COMPARE(instrumentDiffers(Bank::EditBuffer, Bank::EditBuffer), noDifference());
    QTRY_COMPARE(m_rig->instrument().contents().currentTemplate, 0);
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QCOMPARE(m_rig->fileName(), QString());
}

void TestJourneys::openLeavesTheNameAndNoEdits()
{
    QFETCH(bool, online);
    QVERIFY(start(online));
    const QString file = makeFile();
    const auto before = m_rig->instrument().counters();
    Answers answers;
    answers.expectFileDialog(file);
    QVERIFY(m_rig->trigger(MenuFileOpen));
    QVERIFY(answers.allGiven());
    QCOMPARE(m_rig->fileName(), file);
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QCOMPARE(document(api()), contentOfFile(file));
    QVERIFY(!api().isONLINE());
    if (!online) {
        QVERIFY(m_rig->anyPanel() == nullptr);
        QCOMPARE(m_rig->instrument().counters(), before);
        return;
    }
    // Both banks go, and stay there beyond the instrument's end.
    QVERIFY(m_rig->synchronise());
    QTRY_COMPARE(m_rig->instrument().counters().storesToFlash, before.storesToFlash + 1);
    QCOMPARE(m_rig->instrument().counters().footers, before.footers + 100);
    QCOMPARE(m_rig->instrument().counters().stores, before.stores);
    QTRY_COMPARE(instrumentDiffers(Bank::EditBuffer, Bank::Stored), noDifference());
    QTRY_COMPARE(m_rig->instrument().contents().currentTemplate, m_rig->currentTemplate());
    QCOMPARE(document(api()), contentOfFile(file));
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QCOMPARE(m_rig->fileName(), file);
}

void TestJourneys::aFailedOpenLeavesEverything_data()
{
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("folder");
    for (const bool online : {false, true}) {
        QTest::addRow("damaged, %s", online ? "online" : "offline") << online << false;
        QTest::addRow("a folder, %s", online ? "online" : "offline") << online << true;
    }
}

void TestJourneys::aFailedOpenLeavesEverything()
{
    QFETCH(bool, online);
    QFETCH(bool, folder);
    QVERIFY(start(online));
    const QString mine = makeFile();
    QVERIFY(m_rig->window->fileOpen(mine));
    if (online) {
        QVERIFY(m_rig->synchronise());
    }
    const QString bad = path(folder ? QStringLiteral("folder.Q7V") : QStringLiteral("bad.Q7V"));
    if (folder) {
        QVERIFY(QDir().mkpath(bad));
    } else {
        // Of a document that ends too early much has been written by the time that it is refused.
        QFile whole(makeFile(8));
        QVERIFY(whole.open(QIODevice::ReadOnly));
        QByteArray text = whole.readAll();
        text.replace("<editBuffTemplate50>", "<other>");
        text.replace("</editBuffTemplate50>", "</other>");
        QFile damaged(bad);
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        QCOMPARE(damaged.write(text), qint64(text.size()));
    }
    const QStringList content = document(api());
    const auto counters = m_rig->instrument().counters();
    MessageBoxAnswer boxes;
    QVERIFY(!m_rig->window->fileOpen(bad));
    QCOMPARE(boxes.asked(),
             QStringList{EditorName + (folder ? QStringLiteral("|File could not be opened.")
                                              : QStringLiteral("|Parameter is not found."))});
    QCOMPARE(document(api()), content);
    QCOMPARE(m_rig->fileName(), mine);
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QCOMPARE(api().isONLINE(), online);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(api().isAllowToRaiseFileEditFlag());
    QVERIFY(api().isAllowToSendSysEx());
    QCOMPARE(m_rig->instrument().counters(), counters);
    if (folder) {
        QVERIFY(QDir().rmdir(bad));
    }
}

void TestJourneys::saveLeavesTheNameAndNoEdits_data()
{
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("named");
    QTest::addColumn<bool>("as");
    for (const bool online : {false, true}) {
        const char *state = online ? "online" : "offline";
        QTest::addRow("save a named document, %s", state) << online << true << false;
        QTest::addRow("save a new document, %s", state) << online << false << false;
        QTest::addRow("save a named document as, %s", state) << online << true << true;
        QTest::addRow("save a new document as, %s", state) << online << false << true;
    }
}

void TestJourneys::saveLeavesTheNameAndNoEdits()
{
    QFETCH(bool, online);
    QFETCH(bool, named);
    QFETCH(bool, as);
    QVERIFY(start(online));
    const QString mine = makeFile();
    if (named) {
        QVERIFY(m_rig->window->fileOpen(mine));
        if (online) {
            QVERIFY(m_rig->synchronise());
        }
    }
    edit();
    QCOMPARE(m_rig->fileEditFlag(), 1);
    const auto counters = m_rig->instrument().counters();
    const QString target = named && !as ? mine : path();
    QFile::remove(path());
    Answers answers;
    if (as || !named) {
        answers.expectFileDialog(target);
    }
    QVERIFY(m_rig->trigger(as ? MenuFileSaveAs : MenuFileSave));
    QVERIFY(answers.allGiven());
    QCOMPARE(m_rig->fileName(), target);
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QCOMPARE(contentOfFile(target), document(api()));
    QCOMPARE(currentName(), Edited);
    QCOMPARE(api().isONLINE(), online);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QCOMPARE(m_rig->instrument().counters().footers, counters.footers);
}

void TestJourneys::aFailedSaveLeavesTheEdits_data()
{
    QTest::addColumn<bool>("as");
    QTest::newRow("save") << false;
    QTest::newRow("save as") << true;
}

void TestJourneys::aFailedSaveLeavesTheEdits()
{
    QFETCH(bool, as);
    QVERIFY(start(false));
    const QString folder = path(QStringLiteral("gone"));
    QVERIFY(QDir().mkpath(folder));
    const QString mine = folder + QStringLiteral("/mine.Q7V");
    QVERIFY(QFile::copy(makeFile(), mine));
    QVERIFY(m_rig->window->fileOpen(mine));
    edit();
    QVERIFY(QDir(folder).removeRecursively());
    Answers answers;
    if (as) {
        answers.expectFileDialog(folder + QStringLiteral("/new.Q7V"));
    }
    QString told;
    answers.expect<QMessageBox>([&told](QMessageBox *box) {
        told = box->text();
        box->accept();
    });
    QCOMPARE(as ? m_rig->window->fileSaveBankAs() : m_rig->window->fileSaveBank(), false);
    QVERIFY(answers.allGiven());
    QCOMPARE(told, QStringLiteral("Failed in the file writing."));
    QCOMPARE(m_rig->fileName(), mine);
    QCOMPARE(m_rig->fileEditFlag(), 1);
    QCOMPARE(currentName(), Edited);
}

// --- Opening over edits --------------------------------------------------------------------------

void TestJourneys::openingOverEditsGoesInItsOrder_data()
{
    QTest::addColumn<bool>("saves");
    QTest::addColumn<bool>("outside");
    QTest::addColumn<QStringList>("expected");
    const QString saved = QStringLiteral("edits count as none");
    const QString dialog = QStringLiteral("dialog while locked");
    const QString gone = QStringLiteral("panel gone");
    const QString loaded = QStringLiteral("loaded while free");
    QTest::newRow("no, by the menu") << false << false << QStringList{dialog, saved, gone, loaded};
    QTest::newRow("yes, by the menu") << true << false << QStringList{saved, dialog, gone, loaded};
    QTest::newRow("no, from outside") << false << true << QStringList{saved, gone, loaded};
    QTest::newRow("yes, from outside") << true << true << QStringList{saved, gone, loaded};
}

void TestJourneys::openingOverEditsGoesInItsOrder()
{
    QFETCH(bool, saves);
    QFETCH(bool, outside);
    QFETCH(QStringList, expected);
    QVERIFY(start(false));
    const QString mine = makeFile();
    const QString other = makeFile(8);
    const QStringList before = contentOfFile(mine);
    QVERIFY(m_rig->window->fileOpen(mine));
    edit();
    const QStringList withEdit = document(api());

    QStringList steps;
    const auto note = [&steps](const QString &step) { steps.append(step); };
    LoggingObserver flags(&api(), FileEdit);
    flags.then = [&] {
        if (m_rig->fileEditFlag() == 0) {
            note(QStringLiteral("edits count as none"));
        }
    };
    LoggingObserver names(&api(), FilePath);
    names.then = [&] {
        note(m_rig->window->isWindowLocked() ? QStringLiteral("loaded while locked")
                                             : QStringLiteral("loaded while free"));
    };
    if (outside) {
        m_rig->window->applicationFileOpen(other);
        QTRY_VERIFY(m_rig->panel<CloseConfirm>() != nullptr);
    } else {
        QVERIFY(m_rig->trigger(MenuFileOpen));
    }
    auto *question = m_rig->panel<CloseConfirm>();
    QVERIFY(question != nullptr);
    QVERIFY(m_rig->window->isWindowLocked());
    QVERIFY(!m_rig->inWindow<QWidget>("btnWindowClose")->isVisible());
    connect(question, &QObject::destroyed, this, [&note] { note(QStringLiteral("panel gone")); });
    Answers answers;
    if (!outside) {
        answers.expectFileDialog(other, [&](const QFileDialog *) {
            QVERIFY(!question->isVisible());
            QVERIFY(m_rig->inWindow<QWidget>("btnWindowClose")->isVisible());
            QCOMPARE(contentOfFile(mine), saves ? withEdit : before);
            note(m_rig->window->isWindowLocked() ? QStringLiteral("dialog while locked")
                                                 : QStringLiteral("dialog while free"));
        });
    }
    m_rig->click(m_rig->inPanel(saves ? "btnYes" : "btnNo"));
    QTRY_COMPARE(m_rig->fileName(), other);
    QVERIFY(answers.allGiven());
    QCOMPARE(steps, expected);
    QCOMPARE(document(api()), contentOfFile(other));
    QCOMPARE(contentOfFile(mine), saves ? withEdit : before);
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QVERIFY(m_rig->isFree());
}

void TestJourneys::cancelAtTheQuestionOpensNothing()
{
    QVERIFY(start(false));
    QVERIFY(m_rig->window->fileOpen(makeFile()));
    edit();
    const QStringList content = document(api());
    QVERIFY(m_rig->trigger(MenuFileOpen));
    Answers answers;
    m_rig->click(m_rig->inPanel("btnCancel"));
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(answers.allGiven());
    QCOMPARE(document(api()), content);
    QCOMPARE(m_rig->fileEditFlag(), 1);
    QVERIFY(m_rig->isFree());
}

void TestJourneys::aCancelledDialogKeepsTheEdits()
{
    QVERIFY(start(false));
    edit();
    const QStringList content = document(api());
    QVERIFY(m_rig->trigger(MenuFileOpen));
    Answers answers;
    answers.expectFileDialog(QString());
    m_rig->click(m_rig->inPanel("btnNo"));
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(answers.allGiven());
    QCOMPARE(document(api()), content);
    QCOMPARE(m_rig->fileEditFlag(), 1);
    QVERIFY(m_rig->isFree());
}

void TestJourneys::whatCannotBeSavedIsNotLeft()
{
    QVERIFY(start(false));
    edit();
    QVERIFY(m_rig->trigger(MenuFileOpen));
    Answers answers;
    // That of Save As, and none for a file to open behind it.
    answers.expectFileDialog(QString());
    m_rig->click(m_rig->inPanel("btnYes"));
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(answers.allGiven());
    QCOMPARE(currentName(), Edited);
    QCOMPARE(m_rig->fileEditFlag(), 1);
    QVERIFY(m_rig->isFree());
}

// The second one finds the panel of the first, and waits for its end.
void TestJourneys::aFileOpenedTwiceInARowGoesToTheInstrumentTwice()
{
    QVERIFY(start(true));
    const QString file = makeFile();
    const auto before = m_rig->instrument().counters();
    m_rig->window->applicationFileOpen(file);
    m_rig->window->applicationFileOpen(file);
    QVERIFY(m_rig->synchronise());
    QTRY_VERIFY(!api().isONLINE());
    QVERIFY(m_rig->synchronise());
    QTRY_COMPARE(m_rig->instrument().counters().storesToFlash, before.storesToFlash + 2);
    QCOMPARE(m_rig->instrument().counters().footers, before.footers + 200);
    QCOMPARE(document(api()), contentOfFile(file));
    QTRY_COMPARE(instrumentDiffers(Bank::EditBuffer, Bank::Stored), noDifference());
    QCOMPARE(m_rig->fileEditFlag(), 0);
    QTRY_VERIFY(m_rig->isFree());
}

// --- What is being typed -------------------------------------------------------------------------

void TestJourneys::whatIsBeingTypedIsSaved()
{
    QVERIFY(start(false));
    const QString mine = makeFile();
    QVERIFY(m_rig->window->fileOpen(mine));
    auto *line = m_rig->inWindow<CLineEdit>("editTemplateName");
    m_rig->click(line);
    line->selectAll();
    QTest::keyClicks(line, Edited);
    QVERIFY(line->hasFocus());
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_S, Qt::ControlModifier);
    QCOMPARE(currentName(), Edited);
    QCOMPARE(contentOfFile(mine), document(api()));
    QCOMPARE(m_rig->fileEditFlag(), 0);
}

void TestJourneys::whatIsBeingTypedIsAnEdit_data()
{
    QTest::addColumn<QString>("command");
    for (const char *command : {"close", "new", "open", "from outside"}) {
        QTest::newRow(command) << QString::fromLatin1(command);
    }
}

void TestJourneys::whatIsBeingTypedIsAnEdit()
{
    QFETCH(QString, command);
    QVERIFY(start(false));
    const QString other = makeFile();
    auto *line = m_rig->inWindow<CLineEdit>("editTemplateName");
    m_rig->click(line);
    line->selectAll();
    QTest::keyClicks(line, Edited);
    QCOMPARE(m_rig->fileEditFlag(), 0);
    Answers answers;
    if (command == QLatin1String("close")) {
        QVERIFY(!m_rig->window->close());
    } else if (command == QLatin1String("new")) {
        QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_N, Qt::ControlModifier);
    } else if (command == QLatin1String("open")) {
        QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_O, Qt::ControlModifier);
    } else {
        QVERIFY(!m_rig->window->fileOpen(other));
    }
    QVERIFY(m_rig->panel<CloseConfirm>() != nullptr);
    QVERIFY(answers.allGiven());
    QCOMPARE(m_rig->fileEditFlag(), 1);
    QCOMPARE(currentName(), Edited);
}

void TestJourneys::aNameDecidesAboutTheInstrumentsDataOnceItIsTyped_data()
{
    QTest::addColumn<bool>("types");
    QTest::newRow("entered and left alone") << false;
    QTest::newRow("typed") << true;
}

void TestJourneys::aNameDecidesAboutTheInstrumentsDataOnceItIsTyped()
{
    QFETCH(bool, types);
    QVERIFY(m_rig->openWindow());
    QCOMPARE(m_rig->fileEditFlag(), 0);
    const InstrumentMemory before = m_rig->instrument().contents();
    auto *line = m_rig->inWindow<CLineEdit>("editDisplayName");
    m_rig->click(line);
    QVERIFY(line->hasFocus());
    if (types) {
        line->selectAll();
        QTest::keyClicks(line, Edited);
    }
    const int current = m_rig->currentTemplate();
    QVERIFY(m_rig->wakePort());
    // At their first meeting the instrument tells what there is, unless the editor has edits.
    QCOMPARE(m_rig->instrument().counters().footers > 0, types);
    QTRY_COMPARE(instrumentDiffers(Bank::EditBuffer, Bank::Stored), noDifference());
    const InstrumentMemory after = m_rig->instrument().contents();
    QCOMPARE(after.editBuffer == before.editBuffer, !types);
    const auto &knob = after.editBuffer[static_cast<std::size_t>(current)].knobs[0];
    QCOMPARE(knob.displayName.trimmed() == Edited.toLatin1(), types);
}

// --- Storing -------------------------------------------------------------------------------------

void TestJourneys::anEditIsStoredToTheInstrument()
{
    m_memory.editBuffer = m_memory.stored;
    m_rig = std::make_unique<InstrumentRig>(m_memory);
    QVERIFY(start(true));
    auto *store = m_rig->inWindow<COnOffButton>("btnStore");
    QCOMPARE(m_rig->flag(ParamAddress::BankEditFlag), 0);
    QVERIFY(!store->isVisible());

    edit();
    QTRY_VERIFY(store->isVisible());
    m_rig->click(store);
    m_rig->click(m_rig->inPanel("btnYes"));
    QTRY_VERIFY(!store->isVisible());
    const InstrumentMemory after = m_rig->instrument().contents();
    const InstrumentTemplate &stored =
        after.stored[static_cast<std::size_t>(after.currentTemplate)];
    QCOMPARE(QString::fromLatin1(stored.templateName.trimmed()), Edited);
    QVERIFY(after.stored == after.editBuffer);
    QCOMPARE(instrumentDiffers(Bank::EditBuffer, Bank::Stored), noDifference());
    QCOMPARE(m_rig->instrument().counters().stores, 1);
    QVERIFY(m_rig->isFree());
}

// --- The library's way out -----------------------------------------------------------------------

void TestJourneys::outOfTheLibraryOnline_data()
{
    QTest::addColumn<bool>("doubleClick");
    QTest::addColumn<bool>("changes");
    QTest::newRow("OK after a change") << false << true;
    QTest::newRow("double click after a change") << true << true;
    QTest::newRow("OK") << false << false;
    QTest::newRow("double click") << true << false;
}

void TestJourneys::outOfTheLibraryOnline()
{
    QFETCH(bool, doubleClick);
    QFETCH(bool, changes);
    constexpr int Chosen = 9;
    QVERIFY(start(true));
    // In whose neighbourhood the list opens.
    api().setParam(currentTemplateAddress(), Chosen - 2);
    QTRY_COMPARE(m_rig->instrument().contents().currentTemplate, Chosen - 2);
    m_rig->setFlag(ParamAddress::FileEditFlag, 0);
    const InstrumentMemory instrumentBefore = m_rig->instrument().contents();
    const QStringList contentBefore = document(api());
    const auto before = m_rig->instrument().counters();
    m_rig->window->viewLibrary();
    auto *list = m_rig->libraryView()->findChild<CListView *>(QStringLiteral("listTemplate"));
    QVERIFY(list->getItemRect(Chosen).isValid());
    const QPoint row = list->getItemRect(Chosen).center();
    QTest::mouseClick(list, Qt::LeftButton, {}, row);
    if (changes) {
        QVERIFY(m_rig->trigger(MenuEditInitialize));
    }
    QCOMPARE(m_rig->flag(ParamAddress::LibraryEditFlag), changes ? 1 : 0);
    // Nothing of it is the instrument's matter yet.
    QVERIFY(api().isONLINE());
    QCOMPARE(document(api()), contentBefore);
    if (doubleClick) {
        QTest::mouseDClick(list, Qt::LeftButton, {}, row);
    } else {
        m_rig->click(m_rig->libraryView()->findChild<QWidget *>(QStringLiteral("btnOK")));
    }
    QVERIFY(!m_rig->showsLibrary());
    QCOMPARE(m_rig->currentTemplate(), Chosen);
    QCOMPARE(m_rig->flag(ParamAddress::LibraryEditFlag), 0);
    QCOMPARE(m_rig->fileEditFlag(), changes ? 1 : 0);
    QCOMPARE(api().isONLINE(), !changes);
    QCOMPARE(m_rig->anyPanel() != nullptr, changes);
    if (changes) {
        QVERIFY(m_rig->synchronise());
    }
    QTRY_COMPARE(m_rig->instrument().contents().currentTemplate, Chosen);
    const auto after = m_rig->instrument().counters();
    QCOMPARE(after.footers, before.footers + (changes ? 50 : 0));
    QCOMPARE(after.stores, before.stores);
    QCOMPARE(after.storesToFlash, before.storesToFlash);
    const InstrumentMemory memory = m_rig->instrument().contents();
    QCOMPARE(differences(api(), Bank::EditBuffer, memory.editBuffer), QList<int>());
    QVERIFY(memory.stored == instrumentBefore.stored);
    QCOMPARE(memory.editBuffer == instrumentBefore.editBuffer, !changes);
    QVERIFY(m_rig->isFree());
}

// --- Resets --------------------------------------------------------------------------------------

void TestJourneys::resets_data()
{
    QTest::addColumn<int>("reset");
    QTest::addColumn<bool>("online");
    QTest::addColumn<bool>("library");
    const std::pair<Reset, const char *> all[] = {{Reset::Stored, "stored data"},
                                                  {Reset::StartUp, "start-up"},
                                                  {Reset::Factory, "factory settings"}};
    for (const auto &[reset, name] : all) {
        for (const bool online : {false, true}) {
            for (const bool library : {false, true}) {
                QTest::addRow("%s, %s, %s view", name, online ? "online" : "offline",
                              library ? "library" : "template")
                    << static_cast<int>(reset) << online << library;
            }
        }
    }
}

void TestJourneys::resets()
{
    QFETCH(int, reset);
    QFETCH(bool, online);
    QFETCH(bool, library);
    const auto kind = static_cast<Reset>(reset);
    const ResetCommand command = commandOf(kind);
    QVERIFY(start(true));
    // Made at the instrument and at the editor, so that the edit buffer is like no other bank.
    m_rig->instrument().setTemplateName(QStringLiteral("At the keys"));
    QTRY_COMPARE(m_rig->flag(ParamAddress::BankEditFlag), 1);
    api().setParam(currentTemplateAddress(), 7);
    edit();
    if (!online) {
        m_rig->loseInstrument();
    }
    int wanted = 7;
    if (library) {
        m_rig->window->viewLibrary();
        auto *list = m_rig->libraryView()->findChild<CListView *>(QStringLiteral("listTemplate"));
        wanted = 9;
        QTest::mouseClick(list, Qt::LeftButton, {}, list->getItemRect(wanted).center());
        QCOMPARE(list->value(), wanted);
    }
    m_rig->setFlag(ParamAddress::FileEditFlag, 0);
    const QStringList source = contentOf(api(), command.sourceBank, false).first(50);
    const QStringList storedBefore = contentOf(api(), Bank::Stored, false).first(50);
    const QStringList startUp = contentOf(api(), Bank::HardwareStored, false).first(50);
    QVERIFY(contentOf(api(), Bank::EditBuffer, false).first(50) != source);
    const InstrumentMemory instrumentBefore = m_rig->instrument().contents();
    const auto before = m_rig->instrument().counters();

    QVERIFY(m_rig->trigger(command.entry));
    QVERIFY(m_rig->anyPanel() != nullptr);
    m_rig->click(m_rig->inPanel("btnOK"));
    const auto inBank = [this](int bank) { return contentOf(api(), bank, false).first(50); };
    QCOMPARE(inBank(Bank::EditBuffer), source);
    QCOMPARE(inBank(Bank::Stored), kind == Reset::StartUp ? startUp : storedBefore);
    QCOMPARE(m_rig->currentTemplate(), wanted);
    QCOMPARE(m_rig->fileEditFlag(), 1);
    QCOMPARE(m_rig->flag(ParamAddress::LibraryEditFlag), 0);
    QVERIFY(!m_rig->showsLibrary());
    QVERIFY(!api().isONLINE());
    if (!online) {
        QTRY_VERIFY(m_rig->anyPanel() == nullptr);
        QCOMPARE(m_rig->instrument().counters(), before);
        QVERIFY(m_rig->instrument().contents() == instrumentBefore);
        QVERIFY(m_rig->isFree());
        return;
    }

    QVERIFY(m_rig->synchronise());
    const bool stores = kind != Reset::StartUp;
    QTRY_COMPARE(m_rig->instrument().counters().stores, before.stores + (stores ? 1 : 0));
    QTRY_COMPARE(m_rig->instrument().counters().storesToFlash,
                 before.storesToFlash + (stores ? 0 : 1));
    QCOMPARE(m_rig->instrument().counters().footers, before.footers + (stores ? 50 : 100));
    QCOMPARE(inBank(Bank::EditBuffer), source);
    QCOMPARE(inBank(Bank::Stored), stores ? source : startUp);
    QTRY_COMPARE(instrumentDiffers(Bank::EditBuffer, Bank::Stored), noDifference());
    QTRY_COMPARE(m_rig->instrument().contents().currentTemplate, wanted);
    QTRY_COMPARE(m_rig->flag(ParamAddress::BankEditFlag), stores ? 0 : 1);
    QCOMPARE(m_rig->fileEditFlag(), 1);
    QVERIFY(m_rig->isFree());
}

void TestJourneys::aResetThatIsCancelledChangesNothing()
{
    QVERIFY(start(false));
    edit();
    const QStringList content = document(api());
    for (const QString &entry : {MenuEditResetStored, MenuEditRestoreHW, MenuEditResetFactory}) {
        QVERIFY2(m_rig->trigger(entry), qPrintable(entry));
        m_rig->click(m_rig->inPanel("btnCancel"));
        QTRY_VERIFY(m_rig->anyPanel() == nullptr);
        QCOMPARE(document(api()), content);
    }
    QVERIFY(m_rig->isFree());
}

QTEST_MAIN(TestJourneys)
#include "tst_journeys.moc"
