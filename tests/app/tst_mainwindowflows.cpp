// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CApplication.h"
#include "app/MainWindowRig.h"
#include "app/XWatch.h"
#include "cli/LoopbackInstrument.h"
#include "file/EditorFile.h"
#include "protocol/AutoSync.h"
#include "protocol/RunRig.h"
#include "views/About.h"
#include "views/CloseConfirm.h"
#include "views/ExitAnywayConfirm.h"
#include "views/PortNotFound.h"
#include "views/PortOpenError.h"
#include "vsti/DawMachine.h"

#include <QtGui/QDesktopServices>
#include <QtGui/QFileOpenEvent>

#include <algorithm>

// What passes between the window and its panels: closing, files that come from outside, panels that
// wait for one another, the choice of a port, and the manual.

namespace
{

const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
const QString OtherDeviceName = QStringLiteral("Corvan TARN/TERN X");
constexpr int WaitMs = 30000;
constexpr QSize LargeSize(470, 465);
constexpr QSize SmallSize(470, 324);

} // namespace

class TestMainWindowFlows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init();
    void cleanup();

    // --- Closing
    void closingByStateOfTheEdits_data();
    void closingByStateOfTheEdits();
    void everyOtherPanelGoesWithTheWindow_data();
    void everyOtherPanelGoesWithTheWindow();
    void aPanelMakesWayForTheQuestion();
    void anExistingQuestionKeepsItsFirstAction();
    void aMinimisedWindowComesUpToAsk();
    void aReadySynchronisationClosesWithTheWindow();
    void afterTheCloseALatePortOpensNothing();

    // --- Files
    void aFileWaitsForAsLongAsAPanelStands();
    void filesThatWaitKeepTheirOrder();
    void aFileDuringASynchronisationIsLoadedBehindIt();
    void aFileBehindACancelledSynchronisationLeavesNoWish();
    void aFileOverEditsAsksFirst_data();
    void aFileOverEditsAsksFirst();
    void aCancelledFileFromOutsideIsTheNextThatIsOpened();
    void yesSavesBeforeTheFileFromOutsideIsLoaded();
    void aFileThatIsNotThereChangesNothing();
    void aDamagedFileIsNamedAndChangesNothing();
    void aFileInTheLibraryIsDropped();
    void openingOfflineStaysOffline();
    void newOfflineEmptiesTheDocument();
    void newOverEditsAsksFirst();

    // --- The desktop's requests
    void aRequestBeforeTheWindowIsLost();
    void aRequestBringsAMinimisedWindowBack();

    // --- Panels that wait
    void everyOrderOfWaitingPanels_data();
    void everyOrderOfWaitingPanels();
    void aSecondRequestReplacesTheArguments_data();
    void aSecondRequestReplacesTheArguments();
    void aPortThatWakesUnderAPanelStartsTheNextByItself();
    void aSignThatComesBehindTheSynchronisationIsLate();
    void withoutARouteNoSynchronisationIsAskedFor();
    void anExistingSynchronisationKeepsItsArguments();
    void locksCount();

    // --- Ports
    void choosingNoPort();
    void choosingAPort();
    void choosingTheSamePortAgain_data();
    void choosingTheSamePortAgain();
    void choosingAnotherPort();
    void choosingBeyondTheList();

    // --- Manual
    void theManual_data();
    void theManual();
    void aManualThatNothingOpens();

public Q_SLOTS:
    void openManual(const QUrl &url) { m_opened.append(url); }

private:
    bool open(const QString &port = PortNotAssigned) { return m_rig->openWindow(port); }
    void edit(int flag = ParamAddress::FileEditFlag) { m_rig->setFlag(flag, 1); }
    // A bank file, whose first template has that name.
    QString bankFile(const QString &name) const
    {
        RemoteMemAPI other;
        for (const int bank : {Bank::EditBuffer, Bank::Stored}) {
            other.setParam(ParamAddress(bank, 0, ParamAddress::TemplateName, -1), name);
        }
        const QString path = m_folder.filePath(name + QStringLiteral(".Q7V"));
        QFile file(path);
        return EditorFile::save(&other, Bank::Stored, &file, nullptr) ? path : QString();
    }
    QString firstName() const
    {
        return m_rig->api
            ->getParamQString(ParamAddress(Bank::EditBuffer, 0, ParamAddress::TemplateName, -1))
            .trimmed();
    }
    // A folder of resources of the test's own, with the preset bank by which it is known.
    static bool useResources(const QTemporaryDir &folder)
    {
        MachineFolders folders;
        folders.executable = folder.filePath(QStringLiteral("bin"));
        folders.shareFolder = folder.path();
        setMachineFolders(folders);
        return QFile::copy(QStringLiteral(TRN_BIN_DIR "/resources/BankPreset1.Q7V"),
                           folder.filePath(QStringLiteral("BankPreset1.Q7V")));
    }
    // What was queued until now has been done.
    static void drain()
    {
        for (int round = 0; round < 5; ++round) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    int fileEditFlag() const { return m_rig->flag(ParamAddress::FileEditFlag); }

    QTemporaryDir m_folder;
    QList<QUrl> m_opened;
    std::unique_ptr<LoopbackInstrument> m_loopback;
    std::unique_ptr<MainWindowRig> m_rig;
};

void TestMainWindowFlows::init()
{
    timings() = Timings();
    timings().connectionWatcherPeriodMs = 600000; // nobody is sensed here unless a test says so
    timings().lastDumpsTimeoutMs = 50;
    setMachineFolders({});
    m_rig = std::make_unique<MainWindowRig>();
}

void TestMainWindowFlows::cleanup()
{
    g_pEditorMainWindow = nullptr;
    LoopbackHub::instance().setRefusing(false);
    m_rig.reset();
    m_loopback.reset();
    setMachineFolders({});
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

// --- Closing -------------------------------------------------------------------------------------

void TestMainWindowFlows::closingByStateOfTheEdits_data()
{
    QTest::addColumn<bool>("library");
    QTest::addColumn<bool>("fileEdit");
    QTest::addColumn<bool>("libraryEdit");
    for (const bool library : {false, true}) {
        for (const bool fileEdit : {false, true}) {
            for (const bool libraryEdit : {false, true}) {
                QTest::addRow("%s, %s, %s", library ? "library" : "template",
                              fileEdit ? "file edited" : "file as it was",
                              libraryEdit ? "library edited" : "library as it was")
                    << library << fileEdit << libraryEdit;
            }
        }
    }
}

void TestMainWindowFlows::closingByStateOfTheEdits()
{
    QFETCH(bool, library);
    QFETCH(bool, fileEdit);
    QFETCH(bool, libraryEdit);
    QVERIFY(open());
    if (library) {
        m_rig->window->viewLibrary();
    }
    m_rig->setFlag(ParamAddress::FileEditFlag, fileEdit ? 1 : 0);
    m_rig->setFlag(ParamAddress::LibraryEditFlag, libraryEdit ? 1 : 0);
    const bool closes = !fileEdit && !libraryEdit;
    QCOMPARE(m_rig->window->close(), closes);
    QCOMPARE(m_rig->window->isVisible(), !closes);
    QCOMPARE(m_rig->panel<CloseConfirm>() != nullptr, !closes && !library);
    QCOMPARE(m_rig->panel<ExitAnywayConfirm>() != nullptr, !closes && library);
    if (closes) {
        QVERIFY(m_rig->isFree());
        return;
    }
    // While it is asked, the question stays one.
    QVERIFY(!m_rig->window->close());
    QCOMPARE(m_rig->window->findChildren<EditorOverlap *>().size(), 1);
    m_rig->click(m_rig->inPanel(library ? "btnNo" : "btnCancel"));
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->window->isVisible());
    QVERIFY(m_rig->isFree());
    QCOMPARE(fileEditFlag(), fileEdit ? 1 : 0);
    QCOMPARE(m_rig->flag(ParamAddress::LibraryEditFlag), libraryEdit ? 1 : 0);
    // And again, to the end.
    QVERIFY(!m_rig->window->close());
    if (library) {
        m_rig->click(m_rig->inPanel("btnYes"));
        QTRY_VERIFY(!m_rig->window->isVisible());
        QCOMPARE(m_rig->flag(ParamAddress::LibraryEditFlag), 0);
        QCOMPARE(fileEditFlag(), 0);
    } else if (!libraryEdit) {
        m_rig->click(m_rig->inPanel("btnNo"));
        QTRY_VERIFY(!m_rig->window->isVisible());
        QCOMPARE(fileEditFlag(), 0);
    }
}

void TestMainWindowFlows::everyOtherPanelGoesWithTheWindow_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"About", "PortOpenError", "PortNotFound", "ResetStoredConfirm",
                             "RestoreHWConfirm", "FactorysetConfirm", "StoreConfirm"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void TestMainWindowFlows::everyOtherPanelGoesWithTheWindow()
{
    QFETCH(QString, name);
    QVERIFY(open());
    EditorMainWindow *window = m_rig->window.get();
    m_rig->api->setBankAvailableFlag(1, Bank::HardwareStored);
    m_rig->api->setBankAvailableFlag(1, Bank::HardwareEditBuffer);
    const QHash<QString, std::function<void()>> openers{
        {QStringLiteral("About"), [window] { window->helpAbout(); }},
        {QStringLiteral("PortOpenError"), [window] { window->portOpenError(DeviceName); }},
        {QStringLiteral("PortNotFound"), [window] { window->portNotFound(); }},
        {QStringLiteral("ResetStoredConfirm"), [window] { window->editResetStored(); }},
        {QStringLiteral("RestoreHWConfirm"), [window] { window->editRestoreHW(); }},
        {QStringLiteral("FactorysetConfirm"), [window] { window->editResetFactory(); }},
        {QStringLiteral("StoreConfirm"), [window] { window->viewStore(); }},
    };
    openers.value(name)();
    QVERIFY(m_rig->anyPanel() != nullptr);
    QCOMPARE(m_rig->anyPanel()->objectName(), name);
    m_rig->click(m_rig->inWindow<QWidget>("btnWindowClose"));
    QVERIFY(!window->isVisible());
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
}

void TestMainWindowFlows::aPanelMakesWayForTheQuestion()
{
    QVERIFY(open());
    edit();
    m_rig->window->helpAbout();
    QVERIFY(!m_rig->window->close());
    QTRY_VERIFY(m_rig->panel<About>() == nullptr);
    QVERIFY(m_rig->panel<CloseConfirm>() != nullptr);
    QVERIFY(m_rig->window->isWindowLocked());
    m_rig->pressKey(Qt::Key_Escape);
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
    QVERIFY(m_rig->window->isVisible());
}

void TestMainWindowFlows::anExistingQuestionKeepsItsFirstAction()
{
    QVERIFY(open());
    edit();
    m_rig->window->fileNew();
    const QPointer<CloseConfirm> question = m_rig->panel<CloseConfirm>();
    QVERIFY(question != nullptr);
    QVERIFY(!m_rig->window->close());
    QCOMPARE(m_rig->panel<CloseConfirm>(), question.data());
    m_rig->click(m_rig->inPanel("btnNo"));
    QTRY_VERIFY(question.isNull());
    // A new document, and no end.
    QVERIFY(m_rig->window->isVisible());
    QCOMPARE(fileEditFlag(), 0);
}

void TestMainWindowFlows::aMinimisedWindowComesUpToAsk()
{
    QVERIFY(open());
    edit();
    const XWatch watch(m_rig->window->winId());
    m_rig->window->showMinimized();
    QTRY_VERIFY(watch.hasState("_NET_WM_STATE_HIDDEN"));
    QTRY_VERIFY(m_rig->window->isMinimized());
    QVERIFY(!m_rig->window->close());
    QTRY_VERIFY(!watch.hasState("_NET_WM_STATE_HIDDEN") && watch.isMapped());
    QVERIFY(m_rig->panel<CloseConfirm>() != nullptr);
}

void TestMainWindowFlows::aReadySynchronisationClosesWithTheWindow()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    m_rig->window->autoSync(false, true);
    QVERIFY(m_rig->panel<AutoSync>() != nullptr);
    QVERIFY(m_rig->window->close());
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
}

void TestMainWindowFlows::afterTheCloseALatePortOpensNothing()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    QVERIFY(m_rig->window->close());
    m_rig->api->emitPortActivatedSignal();
    drain();
    QVERIFY(m_rig->anyPanel() == nullptr);
    m_rig->window->autoSync(false, true);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
}

// --- Files ---------------------------------------------------------------------------------------

void TestMainWindowFlows::aFileWaitsForAsLongAsAPanelStands()
{
    const QString path = bankFile(QStringLiteral("Waits"));
    QVERIFY(open());
    m_rig->window->helpAbout();
    QSignalSpy asked(m_rig->window.get(), &EditorMainWindow::fileOpenRequest);
    QElapsedTimer time;
    time.start();
    QVERIFY(m_rig->window->fileOpen(path));
    // It is tried again and again, but not so often that a core burns.
    QTRY_VERIFY(asked.count() >= 4);
    QVERIFY(time.elapsed() >= 4 * 40);
    QVERIFY(m_rig->fileName().isEmpty());
    QVERIFY(!m_rig->api->isFileOpenRequestExist()); // nobody synchronises
    QVERIFY(m_rig->closePanel<About>());
    QTRY_COMPARE(m_rig->fileName(), path);
    QCOMPARE(firstName(), QStringLiteral("Waits"));
    QCOMPARE(fileEditFlag(), 0);
}

void TestMainWindowFlows::filesThatWaitKeepTheirOrder()
{
    const QStringList paths{bankFile(QStringLiteral("First")), bankFile(QStringLiteral("Second")),
                            bankFile(QStringLiteral("Third"))};
    QVERIFY(open());
    m_rig->window->helpAbout();
    for (const QString &path : paths) {
        m_rig->window->applicationFileOpen(path);
    }
    QSignalSpy asked(m_rig->window.get(), &EditorMainWindow::fileOpenRequest);
    QTRY_VERIFY(asked.count() >= 6);
    QVERIFY(m_rig->closePanel<About>());
    QTRY_COMPARE(m_rig->fileName(), paths.last());
    QCOMPARE(firstName(), QStringLiteral("Third"));
    drain();
    QCOMPARE(m_rig->fileName(), paths.last());
}

void TestMainWindowFlows::aFileDuringASynchronisationIsLoadedBehindIt()
{
    const QString path = bankFile(QStringLiteral("Behind"));
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    QVERIFY(m_loopback->setFault(QStringLiteral("delay=2:every")));
    m_rig->api->emitPortActivatedSignal();
    QVERIFY(m_rig->panel<AutoSync>() != nullptr);
    QVERIFY(m_rig->api->needToWaitAutoSyncDone());
    m_rig->window->applicationFileOpen(path);
    QTRY_VERIFY(m_rig->api->isFileOpenRequestExist());
    QVERIFY(m_rig->fileName().isEmpty());
    // Nobody is asked about edits, and what was loaded goes to the instrument and is stored there.
    QTRY_COMPARE_WITH_TIMEOUT(m_rig->fileName(), path, WaitMs);
    m_loopback->setFault(QString());
    QVERIFY(m_rig->panel<CloseConfirm>() == nullptr);
    auto *panel = m_rig->panel<AutoSync>();
    QVERIFY(panel != nullptr);
    QVERIFY(!m_rig->api->isONLINE());
    m_rig->click(m_rig->inPanel("btnStart"));
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->anyPanel() == nullptr, WaitMs);
    QVERIFY(m_rig->api->isONLINE());
    QTRY_COMPARE(m_loopback->instrument.counters().storesToFlash, 1);
    QCOMPARE(
        differences(*m_rig->api, Bank::EditBuffer, m_loopback->instrument.contents().editBuffer),
        QList<int>());
    QCOMPARE(fileEditFlag(), 0);
    QVERIFY(m_rig->isFree());
}

// What the instrument later brings for another document is content, and is not lost without a word.
void TestMainWindowFlows::aFileBehindACancelledSynchronisationLeavesNoWish()
{
    const QString path = bankFile(QStringLiteral("Instead"));
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    timings().receiveRunTimeoutMs = 100;
    m_loopback->instrument.fallSilent();
    m_rig->api->emitPortActivatedSignal();
    QTRY_VERIFY(m_rig->inPanel("lblError")->isVisible());
    m_rig->window->applicationFileOpen(path);
    QTRY_VERIFY(m_rig->api->isFileOpenRequestExist());
    QVERIFY(m_rig->closePanel<AutoSync>());
    QTRY_COMPARE(m_rig->fileName(), path);
    QVERIFY(!m_rig->api->isFileOpenRequestExist());

    m_rig->window->fileNew();
    QCOMPARE(fileEditFlag(), 0);
    timings() = Timings();
    m_loopback->instrument.comeBack();
    m_rig->api->emitPortActivatedSignal();
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QCOMPARE(fileEditFlag(), 1);
}

void TestMainWindowFlows::aFileOverEditsAsksFirst_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<bool>("isLoaded");
    QTest::newRow("no") << QStringLiteral("btnNo") << true;
    QTest::newRow("cancel") << QStringLiteral("btnCancel") << false;
    QTest::newRow("close") << QStringLiteral("btnClose") << false;
}

void TestMainWindowFlows::aFileOverEditsAsksFirst()
{
    QFETCH(QString, answer);
    QFETCH(bool, isLoaded);
    const QString path = bankFile(QStringLiteral("Outside"));
    QVERIFY(open());
    edit();
    FileDialogAnswer dialogs{QString()};
    m_rig->window->applicationFileOpen(path);
    QTRY_VERIFY(m_rig->panel<CloseConfirm>() != nullptr);
    m_rig->click(m_rig->inPanel(qPrintable(answer)));
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    drain();
    QTRY_COMPARE(m_rig->fileName(), isLoaded ? path : QString());
    QCOMPARE(fileEditFlag(), isLoaded ? 0 : 1);
    QVERIFY(m_rig->api->isAllowToRaiseFileEditFlag());
    QVERIFY(m_rig->isFree());
    // The file was named already.
    QVERIFY(!dialogs.wasAsked());
}

void TestMainWindowFlows::aCancelledFileFromOutsideIsTheNextThatIsOpened()
{
    const QString path = bankFile(QStringLiteral("Kept"));
    QVERIFY(open());
    edit();
    m_rig->window->applicationFileOpen(path);
    QTRY_VERIFY(m_rig->panel<CloseConfirm>() != nullptr);
    m_rig->click(m_rig->inPanel("btnCancel"));
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    m_rig->setFlag(ParamAddress::FileEditFlag, 0);
    {
        FileDialogAnswer dialogs{QString()};
        QVERIFY(m_rig->window->fileOpen());
        QVERIFY(!dialogs.wasAsked());
    }
    QCOMPARE(m_rig->fileName(), path);
    // Once.
    FileDialogAnswer dialogs{QString()};
    QVERIFY(!m_rig->window->fileOpen());
    QVERIFY(dialogs.wasAsked());
}

void TestMainWindowFlows::yesSavesBeforeTheFileFromOutsideIsLoaded()
{
    const QString mine = bankFile(QStringLiteral("Mine"));
    const QString other = bankFile(QStringLiteral("Other"));
    QVERIFY(open());
    QVERIFY(m_rig->window->fileOpen(mine));
    m_rig->api->setParam(ParamAddress(Bank::EditBuffer, 0, ParamAddress::TemplateName, -1),
                         QStringLiteral("Edited"));
    QCOMPARE(fileEditFlag(), 1);
    m_rig->window->applicationFileOpen(other);
    QTRY_VERIFY(m_rig->panel<CloseConfirm>() != nullptr);
    m_rig->click(m_rig->inPanel("btnYes"));
    QTRY_COMPARE(m_rig->fileName(), other);
    QCOMPARE(fileEditFlag(), 0);
    RemoteMemAPI saved;
    QFile file(mine);
    QString error;
    QVERIFY2(EditorFile::load(&saved, Bank::Stored, &file, true, &error), qPrintable(error));
    QCOMPARE(
        saved.getParamQString(ParamAddress(Bank::EditBuffer, 0, ParamAddress::TemplateName, -1))
            .trimmed(),
        QStringLiteral("Edited"));
}

void TestMainWindowFlows::aFileThatIsNotThereChangesNothing()
{
    QVERIFY(open());
    MessageBoxAnswer boxes;
    for (const QString &path : {QStringLiteral("/there/is/no/such/file.Q7V"), QString()}) {
        QVERIFY(!m_rig->window->fileOpen(path));
    }
    QVERIFY(boxes.asked().isEmpty());
    QVERIFY(m_rig->fileName().isEmpty());
    QVERIFY(m_rig->api->isAllowToRaiseFileEditFlag());
}

void TestMainWindowFlows::aDamagedFileIsNamedAndChangesNothing()
{
    QVERIFY(open());
    QFile damaged(m_folder.filePath(QStringLiteral("damaged.Q7V")));
    QVERIFY(damaged.open(QIODevice::WriteOnly));
    damaged.write("<!DOCTYPE nothing>\n<bank");
    damaged.close();
    const QString before = firstName();
    MessageBoxAnswer boxes(QMessageBox::Ok, [](const QMessageBox *box) {
        QCOMPARE(box->icon(), QMessageBox::Critical);
        QCOMPARE(box->standardButtons(), QMessageBox::Ok);
    });
    QVERIFY(!m_rig->window->fileOpen(damaged.fileName()));
    QCOMPARE(boxes.asked().size(), 1);
    QVERIFY(boxes.asked().first().startsWith(EditorName + QLatin1Char('|')));
    QVERIFY(boxes.asked().first().size() > EditorName.size() + 1);
    QVERIFY(m_rig->fileName().isEmpty());
    QCOMPARE(fileEditFlag(), 0);
    QCOMPARE(firstName(), before);
    QVERIFY(m_rig->api->isAllowToRaiseFileEditFlag());
    QVERIFY(!MainWindowRig::stored("WorkingFolder").isValid());
}

void TestMainWindowFlows::aFileInTheLibraryIsDropped()
{
    const QString path = bankFile(QStringLiteral("Dropped"));
    QVERIFY(open());
    m_rig->window->viewLibrary();
    m_rig->window->applicationFileOpen(path);
    drain();
    m_rig->window->viewTemplate();
    drain();
    QVERIFY(m_rig->fileName().isEmpty());
}

void TestMainWindowFlows::openingOfflineStaysOffline()
{
    const QString path = bankFile(QStringLiteral("Offline"));
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    FileDialogAnswer dialog(path);
    QVERIFY(m_rig->window->fileOpen());
    QVERIFY(dialog.wasAsked());
    QCOMPARE(m_rig->fileName(), path);
    QVERIFY(m_rig->anyPanel() == nullptr);
    QCOMPARE(MainWindowRig::stored("WorkingFolder").toString(), m_folder.path());
    QCOMPARE(fileEditFlag(), 0);
}

void TestMainWindowFlows::newOfflineEmptiesTheDocument()
{
    const QString path = bankFile(QStringLiteral("Before"));
    QVERIFY(open());
    QVERIFY(m_rig->window->fileOpen(path));
    m_rig->api->setParam(
        ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1), 12);
    m_rig->setFlag(ParamAddress::FileEditFlag, 0);
    m_rig->window->fileNew();
    QVERIFY(m_rig->fileName().isEmpty());
    QVERIFY(firstName() != QStringLiteral("Before"));
    QCOMPARE(
        m_rig->api
            ->getParam(ParamAddress(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1))
            .getCurrentValue(),
        0);
    QCOMPARE(fileEditFlag(), 0);
    QVERIFY(m_rig->anyPanel() == nullptr);
}

void TestMainWindowFlows::newOverEditsAsksFirst()
{
    QVERIFY(open());
    edit();
    m_rig->window->fileNew();
    QVERIFY(m_rig->panel<CloseConfirm>() != nullptr);
    QCOMPARE(fileEditFlag(), 1);
}

// --- The desktop's requests ----------------------------------------------------------------------

void TestMainWindowFlows::aRequestBeforeTheWindowIsLost()
{
    const QString path = bankFile(QStringLiteral("Early"));
    QVERIFY(open());
    QFileOpenEvent early(path);
    QCoreApplication::sendEvent(qApp, &early);
    drain();
    QVERIFY(m_rig->fileName().isEmpty());
    g_pEditorMainWindow = m_rig->window.get();
    drain();
    QVERIFY(m_rig->fileName().isEmpty());
    QFileOpenEvent late(path);
    QVERIFY(QCoreApplication::sendEvent(qApp, &late));
    QVERIFY(m_rig->fileName().isEmpty()); // queued
    QTRY_COMPARE(m_rig->fileName(), path);
}

void TestMainWindowFlows::aRequestBringsAMinimisedWindowBack()
{
    const QString path = bankFile(QStringLiteral("Restores"));
    QVERIFY(open());
    g_pEditorMainWindow = m_rig->window.get();
    const XWatch watch(m_rig->window->winId());
    m_rig->window->showMinimized();
    QTRY_VERIFY(watch.hasState("_NET_WM_STATE_HIDDEN"));
    QTRY_VERIFY(m_rig->window->isMinimized());
    QFileOpenEvent event(path);
    QCoreApplication::sendEvent(qApp, &event);
    QTRY_VERIFY(!watch.hasState("_NET_WM_STATE_HIDDEN") && watch.isMapped());
    QVERIFY(QTest::qWaitForWindowActive(m_rig->window.get()));
    QTRY_COMPARE(m_rig->fileName(), path);
}

// --- Panels that wait ----------------------------------------------------------------------------

namespace
{

// In the order in which they come, whatever the order of the wishes.
const QStringList PanelOrder{QStringLiteral("AnalyzeVSTi"), QStringLiteral("AutoSync"),
                             QStringLiteral("PortOpenError"), QStringLiteral("PortNotFound")};

enum class Start { Template, Small, Library, Minimised };

} // namespace

void TestMainWindowFlows::everyOrderOfWaitingPanels_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<QStringList>("wishes");
    const std::pair<Start, const char *> starts[] = {{Start::Template, "template"},
                                                     {Start::Small, "small"},
                                                     {Start::Library, "library"},
                                                     {Start::Minimised, "minimised"}};
    const QStringList all{QStringLiteral("AnalyzeVSTi"), QStringLiteral("AutoSync"),
                          QStringLiteral("PortNotFound"), QStringLiteral("PortOpenError")};
    for (const auto &[start, name] : starts) {
        for (unsigned chosen = 0; chosen < 1U << all.size(); ++chosen) {
            QStringList wishes;
            for (qsizetype i = 0; i < all.size(); ++i) {
                if (chosen & (1U << i)) {
                    wishes.append(all.at(i));
                }
            }
            do {
                QTest::addRow("%s: %s", name, qPrintable(wishes.join(QStringLiteral(", "))))
                    << static_cast<int>(start) << wishes;
            } while (std::next_permutation(wishes.begin(), wishes.end()));
        }
    }
}

void TestMainWindowFlows::everyOrderOfWaitingPanels()
{
    QFETCH(int, start);
    QFETCH(QStringList, wishes);
    const DawMachine machine;
    MainWindowRig::store("DAWName", OtherDAW);
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    EditorMainWindow *window = m_rig->window.get();
    const auto where = static_cast<Start>(start);
    if (where == Start::Small) {
        window->controlWindowSize();
    } else if (where == Start::Library) {
        window->viewLibrary();
    } else if (where == Start::Minimised) {
        window->showMinimized();
        QTRY_VERIFY(window->isMinimized());
    }
    window->helpAbout();
    QStringList expected;
    for (const QString &wish : wishes) {
        if (wish == QLatin1String("AutoSync")) {
            window->autoSync(false, true);
        } else if (wish == QLatin1String("PortOpenError")) {
            window->setPortName(DeviceName);
            window->portOpenError(DeviceName);
        } else if (wish == QLatin1String("PortNotFound")) {
            window->portNotFound();
        } else {
            window->analyzeVSTi();
        }
    }
    for (const QString &name : PanelOrder) {
        if (wishes.contains(name)) {
            expected.append(name);
        }
    }
    QStringList seen;
    QVERIFY(m_rig->closePanel<About>());
    while (EditorOverlap *panel = m_rig->anyPanel()) {
        QVERIFY(seen.size() < 5);
        QCOMPARE(window->findChildren<EditorOverlap *>().size(), 1);
        seen.append(panel->objectName());
        QVERIFY(window->isWindowLocked());
        QVERIFY(!m_rig->menuBar()->isEnabled());
        QVERIFY(!m_rig->sizeButton()->isVisible());
        QCOMPARE(window->maximumSize(), LargeSize);
        for (const QAction *key : m_rig->libraryView()->actions()) {
            QVERIFY(!key->isEnabled());
        }
        const QPointer<EditorOverlap> closed(panel);
        // A scan ends by itself, and not before.
        QCOMPARE(panel->close(), seen.last() != PanelOrder.first());
        QTRY_VERIFY_WITH_TIMEOUT(closed.isNull(), WaitMs);
    }
    QCOMPARE(seen, expected);
    QVERIFY(m_rig->isFree());
    QCOMPARE(window->maximumSize(), where == Start::Small ? SmallSize : LargeSize);
    for (const QAction *key : m_rig->libraryView()->actions()) {
        QVERIFY(key->isEnabled());
    }
    // Each wish was granted once.
    window->helpAbout();
    QVERIFY(m_rig->closePanel<About>());
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
}

void TestMainWindowFlows::aSecondRequestReplacesTheArguments_data()
{
    QTest::addColumn<bool>("editorToDevice");
    QTest::addColumn<int>("requests");
    QTest::addColumn<int>("dumps");
    QTest::newRow("from the instrument") << false << 100 << 0;
    QTest::newRow("to the instrument") << true << 50 << 50;
}

void TestMainWindowFlows::aSecondRequestReplacesTheArguments()
{
    QFETCH(bool, editorToDevice);
    QFETCH(int, requests);
    QFETCH(int, dumps);
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    m_rig->window->helpAbout();
    m_rig->window->autoSync(!editorToDevice, false);
    m_rig->window->autoSync(editorToDevice, true);
    QVERIFY(m_rig->closePanel<About>());
    QVERIFY(m_rig->panel<AutoSync>() != nullptr);
    m_rig->click(m_rig->inPanel("btnStart"));
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->anyPanel() == nullptr, WaitMs);
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, requests);
    QCOMPARE(m_loopback->instrument.counters().footers, dumps);
}

void TestMainWindowFlows::aPortThatWakesUnderAPanelStartsTheNextByItself()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    m_rig->window->helpAbout();
    m_rig->api->emitPortActivatedSignal();
    drain();
    QVERIFY(m_rig->panel<AutoSync>() == nullptr);
    QVERIFY(m_rig->api->needToWaitAutoSyncDone());
    QVERIFY(m_rig->closePanel<About>());
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QTRY_VERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(!m_rig->api->needToWaitAutoSyncDone());
    QVERIFY(m_rig->isFree());
    // The next panel waits for its user again.
    m_rig->api->setONLINEstate(0);
    m_rig->window->autoSync(false, true);
    QVERIFY(m_rig->panel<AutoSync>() != nullptr);
    QVERIFY(m_rig->inPanel("btnStart")->isVisible());
}

void TestMainWindowFlows::aSignThatComesBehindTheSynchronisationIsLate()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    m_rig->api->setONLINEstate(1);
    m_rig->api->emitPortActivatedSignal();
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(!m_rig->api->needToWaitAutoSyncDone());
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, 0);
}

void TestMainWindowFlows::withoutARouteNoSynchronisationIsAskedFor()
{
    QVERIFY(open());
    m_rig->window->autoSync(false, true);
    QVERIFY(m_rig->anyPanel() == nullptr);
    m_rig->window->helpAbout();
    m_rig->window->autoSync(false, true);
    QVERIFY(m_rig->closePanel<About>());
    QVERIFY(m_rig->anyPanel() == nullptr);
    QVERIFY(m_rig->isFree());
}

void TestMainWindowFlows::anExistingSynchronisationKeepsItsArguments()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    m_rig->window->autoSync(true, true);
    const QPointer<AutoSync> panel = m_rig->panel<AutoSync>();
    // The port wakes, with nothing in hand: by itself that would fetch everything.
    m_rig->api->emitPortActivatedSignal();
    QCOMPARE(m_rig->panel<AutoSync>(), panel.data());
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, 50);
    QCOMPARE(m_loopback->instrument.counters().footers, 50);
}

void TestMainWindowFlows::locksCount()
{
    QVERIFY(open());
    EditorMainWindow *window = m_rig->window.get();
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    window->windowLock();
    window->windowLock();
    window->windowUnlock();
    QVERIFY(window->isWindowLocked());
    QVERIFY(!m_rig->menuBar()->isEnabled());
    QVERIFY(QGuiApplication::overrideCursor() != nullptr);
    window->windowUnlock();
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QVERIFY(m_rig->isFree());
    // One unlock too many leaves no debt.
    window->windowUnlock();
    window->windowUnlock();
    QVERIFY(m_rig->isFree());
}

// --- Ports ---------------------------------------------------------------------------------------

void TestMainWindowFlows::choosingNoPort()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    m_rig->api->setONLINEstate(1);
    QTRY_VERIFY(m_rig->onlineLamp()->isVisible());
    QVERIFY(!m_rig->api->isWatchPortActivate());
    m_rig->window->setPortIndex(0);
    QCOMPARE(m_rig->window->getPortIndex(), 0);
    QVERIFY(!m_rig->api->isONLINE());
    QCOMPARE(MainWindowRig::stored("PortName").toString(), PortNotAssigned);
    QVERIFY(m_rig->api->isWatchPortActivate());
    QTRY_VERIFY(!m_rig->onlineLamp()->isVisible());
    // None is none, however it is told.
    m_rig->window->setPortIndex(-1);
    QCOMPARE(m_rig->window->getPortIndex(), 0);
    QVERIFY(m_rig->anyPanel() == nullptr);
}

void TestMainWindowFlows::choosingAPort()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open());
    QCOMPARE(m_rig->window->getPortIndex(), 0);
    m_rig->window->setPortIndex(1);
    QCOMPARE(m_rig->window->getPortIndex(), 1);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), DeviceName);
    QVERIFY(m_rig->api->isWatchPortActivate());
    m_rig->window->autoSync(false, true);
    QVERIFY(m_rig->panel<AutoSync>() != nullptr);
}

void TestMainWindowFlows::choosingTheSamePortAgain_data()
{
    QTest::addColumn<bool>("online");
    QTest::newRow("online") << true;
    QTest::newRow("offline") << false;
}

void TestMainWindowFlows::choosingTheSamePortAgain()
{
    QFETCH(bool, online);
    m_loopback = std::make_unique<LoopbackInstrument>();
    QVERIFY(open(DeviceName));
    m_rig->api->setONLINEstate(online ? 1 : 0);
    drain();
    m_rig->api->setWatchPortActivate(false);
    MainWindowRig::settings().remove(QStringLiteral("PortName"));
    m_rig->window->setPortIndex(1);
    QCOMPARE(m_rig->window->getPortIndex(), 1);
    QCOMPARE(m_rig->api->isONLINE(), online);
    QCOMPARE(m_rig->api->isWatchPortActivate(), !online);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), DeviceName);
}

void TestMainWindowFlows::choosingAnotherPort()
{
    m_loopback = std::make_unique<LoopbackInstrument>();
    LoopbackInstrument other(InstrumentMemory(), OtherDeviceName);
    QVERIFY(open(DeviceName));
    m_rig->api->setONLINEstate(1);
    drain();
    m_rig->window->setPortIndex(2);
    QCOMPARE(m_rig->window->getPortIndex(), 2);
    QVERIFY(!m_rig->api->isONLINE());
    QVERIFY(m_rig->api->isWatchPortActivate());
    QCOMPARE(MainWindowRig::stored("PortName").toString(), OtherDeviceName);
    m_rig->window->autoSync(false, true);
    m_rig->click(m_rig->inPanel("btnStart"));
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QCOMPARE(other.instrument.counters().bulkRequests, 100);
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, 0);
    m_rig->window.reset();
    m_rig->api.reset();
}

// As when the instrument was pulled out while its name stood in a list.
void TestMainWindowFlows::choosingBeyondTheList()
{
    QVERIFY(open());
    m_rig->window->setPortIndex(3);
    QTRY_VERIFY(m_rig->panel<PortOpenError>() != nullptr);
    QVERIFY(m_rig->closePanel<PortOpenError>());
    QVERIFY(m_rig->isFree());
    QVERIFY(!m_rig->api->isONLINE());
    m_rig->window->setPortIndex(0);
    QCOMPARE(MainWindowRig::stored("PortName").toString(), PortNotAssigned);
}

// --- Manual --------------------------------------------------------------------------------------

void TestMainWindowFlows::theManual_data()
{
    QTest::addColumn<QStringList>("languages");
    QTest::addColumn<QString>("opened");
    QTest::newRow("English alone")
        << QStringList{QStringLiteral("English")} << QStringLiteral("English");
    QTest::newRow("the user's own")
        << QStringList{QStringLiteral("English"), QStringLiteral("German")}
        << QStringLiteral("German");
    QTest::newRow("the user's alone")
        << QStringList{QStringLiteral("German")} << QStringLiteral("German");
    QTest::newRow("another") << QStringList{QStringLiteral("French")} << QString();
    QTest::newRow("none") << QStringList() << QString();
}

void TestMainWindowFlows::theManual()
{
    QFETCH(QStringList, languages);
    QFETCH(QString, opened);
    QTemporaryDir machine;
    for (const QString &language : languages) {
        QVERIFY(QDir(machine.path()).mkdir(language));
        QFile manual(machine.filePath(language + QLatin1Char('/') + HelpFileName));
        QVERIFY(manual.open(QIODevice::WriteOnly));
    }
    QVERIFY(useResources(machine));
    QVERIFY(QLocale::system().language() == QLocale::German);
    MessageBoxAnswer boxes(QMessageBox::Ok, [](const QMessageBox *box) {
        QCOMPARE(box->standardButtons(), QMessageBox::Ok);
    });
    QVERIFY(open());
    m_opened.clear();
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openManual");
    QTest::keyClick(m_rig->window->windowHandle(), Qt::Key_F1);
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    if (opened.isEmpty()) {
        QCOMPARE(boxes.asked().size(), 1);
        QCOMPARE(boxes.asked().last(),
                 EditorName + QStringLiteral("|Failed to load help document.\r\n"
                                             "Please try re-installing the package."));
        QVERIFY(m_opened.isEmpty());
    } else {
        QVERIFY(boxes.asked().isEmpty());
        QCOMPARE(m_opened, QList<QUrl>{QUrl::fromLocalFile(
                               machine.filePath(opened + QLatin1Char('/') + HelpFileName))});
    }
}

void TestMainWindowFlows::aManualThatNothingOpens()
{
    QTemporaryDir machine;
    QVERIFY(QDir(machine.path()).mkdir(QStringLiteral("English")));
    const QString path = machine.filePath(QStringLiteral("English/") + HelpFileName);
    QFile manual(path);
    QVERIFY(manual.open(QIODevice::WriteOnly));
    QVERIFY(useResources(machine));
    MessageBoxAnswer boxes;
    QVERIFY(open());
    // No program of the desktop is to be found.
    const QByteArray before = qgetenv("PATH");
    qputenv("PATH", machine.path().toLocal8Bit());
    m_rig->window->helpManual();
    qputenv("PATH", before);
    QCOMPARE(boxes.asked().last(),
             EditorName + QStringLiteral("|Failed to load \"%1\" help document.\r\n"
                                         "Please try re-installing the package.")
                              .arg(path));
}

int main(int argc, char **argv)
{
    CApplication application(argc, argv);
    TestMainWindowFlows test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_mainwindowflows.moc"
