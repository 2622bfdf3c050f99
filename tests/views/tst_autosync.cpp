// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/AutoSync.h"

#include "cli/LoopbackInstrument.h"
#include "protocol/RunRig.h"
#include "views/CloseConfirm.h"
#include "views/FormCheck.h"
#include "views/PanelRig.h"
#include "views/PortOpenError.h"
#include "views/ProgressLine.h"
#include "views/PulldownMenu.h"

#include <QtGui/QScreen>

// The synchronisation panel in the real window, against the virtual instrument on the loopback's
// cable, with real mouse and keys.

namespace
{

const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
const QString OtherDeviceName = QStringLiteral("Corvan TARN/TERN X");

// A run that is to fail has little time; any other has plenty, however slow the machine.
constexpr int ShortRunMs = 400;
constexpr int LongRunMs = 60000;
constexpr int WaitMs = 30000;

// Who asks for a synchronisation.
enum class Caller { AtStart, PortWithDocument, Port, FileOpen, FileNew, LibraryReset, Restore };

struct CallerRow
{
    Caller caller;
    const char *name;
    bool needsOnline; // it follows an earlier synchronisation, and so only sends
    bool editorToDevice;
    bool editBufferOnly;
    int fileEditFlag; // when it is done
};

constexpr CallerRow Callers[] = {
    {Caller::AtStart, "at start", false, false, true, 1},
    {Caller::PortWithDocument, "port active with a document", false, true, false, 1},
    {Caller::Port, "port active", false, false, true, 1},
    {Caller::FileOpen, "file opened online", true, true, false, 0},
    {Caller::FileNew, "new document online", true, true, true, 0},
    {Caller::LibraryReset, "library online", true, true, true, 1},
    {Caller::Restore, "reset to start-up online", true, true, false, 1},
};

enum class End { Done, Error, Either };

struct FaultRow
{
    const char *name;
    const char *rule; // nullptr: by the hand of the test
    End receive;
    End send;
};

constexpr const char *Silent = "by hand: silent";
constexpr const char *Gone = "by hand: gone in the middle";
constexpr const char *Refusing = "by hand: the port refuses";

constexpr FaultRow Faults[] = {
    {"none", "", End::Done, End::Done},
    {"silent", Silent, End::Error, End::Error},
    {"silent in the middle", "silent:after:20", End::Error, End::Error},
    {"lost acknowledge", "drop:ack:#7", End::Done, End::Error},
    {"lost footer", "drop:footer:12", End::Error, End::Done},
    {"lost block", "drop:block3:7", End::Done, End::Done},
    {"lost request", "in:drop:bulkrequest:#5", End::Error, End::Done},
    {"damaged block", "corrupt:block3:7", End::Done, End::Done},
    {"damaged footer", "corrupt:footer:12", End::Error, End::Done},
    {"cut header", "truncate:header:9", End::Either, End::Done},
    {"footer twice", "duplicate:footer:3", End::Done, End::Done},
    {"slow", "delay=2:every", End::Done, End::Done},
    {"much too slow", "delay=150:every", End::Error, End::Error},
    {"gone in the middle", Gone, End::Error, End::Error},
    {"port refuses", Refusing, End::Error, End::Error},
};

} // namespace

class TestAutoSync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init();
    void cleanup();

    void theForm();
    void theReadyState();
    void everyCallerWithEveryFault_data();
    void everyCallerWithEveryFault();

    void startDuringARunHasNoEffect();
    void theRunningState();
    void aRunningPanelRefusesToClose();
    void theErrorState();
    void afterAFailedFirstReceiveARetryReceivesAgain();
    void afterARunWithTheEditorsDataALaterOneOnlySends();
    void theCurrentTemplateNumberSurvives();
    void aLateCompletionDoesNothing();
    void anErrorIgnoresAReturningDevice();
    void aDeviceThatReturnsWhileThePanelCloses();
    void aDeviceThatWasGoneWhenThePanelCame();
    void aDeviceThatReturnsAfterACancelledError();
    void closingReadyOrErrorStaysOffline_data();
    void closingReadyOrErrorStaysOffline();
    void aWaitingFileKeepsTheEditFlagDown();

    void keys_data();
    void keys();
    void theLightRuns();
    void theLineFills_data();
    void theLineFills();
    void theLinesRounding();

    void thePortMenu();
    void notAssignedHidesStartAndRetry();
    void withoutAPortNothingStarts();
    void aPortThatCannotBeOpened();
    void theMenuCloseWhenTheRunStarts();
    void aHeldButtonIsFreeAfterTheRun();
    void theMenuStaysOnTheScreen();
    void theMenusRows();

    void theWindowDiesDuringARun();
    void theInstrumentComesAndGoes();

private:
    bool openWindow(bool autoSyncAtStart = false)
    {
        return m_rig->openWindow(DeviceName, autoSyncAtStart);
    }
    // The panel, ready.
    bool openPanel(bool editorToDevice, bool editBufferOnly)
    {
        if (!openWindow()) {
            return false;
        }
        m_rig->window->autoSync(editorToDevice, editBufferOnly);
        return panel() != nullptr;
    }
    // A first synchronisation, without faults.
    bool goOnline()
    {
        m_rig->window->autoSync(false, true);
        return panel() != nullptr && finish();
    }
    bool finish()
    {
        startOrRetry();
        return QTest::qWaitFor([this] { return panel() == nullptr; }, WaitMs) &&
               m_rig->api->isONLINE();
    }
    void startOrRetry()
    {
        auto *retry = m_rig->inPanel<COnOffButton>("btnRetry");
        m_rig->click(retry->isVisible() ? retry : m_rig->inPanel<COnOffButton>("btnStart"));
    }
    bool call(Caller caller);
    bool waitForEnd(End *end);
    bool isShown(const char *name) const { return m_rig->inPanel(name)->isVisible(); }
    QStringList shown() const;
    AutoSync *panel() const { return m_rig->panel<AutoSync>(); }
    QString message() const { return m_rig->inPanel<CText>("txtMessage")->text(); }
    void plug(const QString &name = DeviceName)
    {
        m_loopback = std::make_unique<LoopbackInstrument>(m_memory, name);
    }
    int availableFlag(int bank) const
    {
        return m_rig->api->getBankAvailableFlag(bank).getCurrentValue();
    }
    void checkIdle(bool inError);

    InstrumentMemory m_memory;
    std::unique_ptr<LoopbackInstrument> m_loopback;
    std::unique_ptr<PanelRig> m_rig;
};

void TestAutoSync::init()
{
    QRandomGenerator random(4711);
    m_memory = randomInstrument(&random);
    m_memory.currentTemplate = 17;
    timings() = Timings();
    timings().connectionWatcherPeriodMs = 600000; // nobody is sensed here unless a test says so
    timings().lastDumpsTimeoutMs = 50;
    plug();
    m_rig = std::make_unique<PanelRig>();
}

void TestAutoSync::cleanup()
{
    LoopbackHub::instance().setRefusing(false);
    m_rig.reset();
    m_loopback.reset();
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

QStringList TestAutoSync::shown() const
{
    QStringList names;
    const QList<QWidget *> children =
        panel()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (const QWidget *child : children) {
        if (child->isVisible() && !child->isWindow()) {
            names.append(child->objectName());
        }
    }
    names.sort();
    return names;
}

const QStringList ReadyWidgets{QStringLiteral("btnCancel"), QStringLiteral("btnClose"),
                               QStringLiteral("btnMidiPort"), QStringLiteral("btnStart"),
                               QStringLiteral("txtMidiPort")};
const QStringList RunningWidgets{QStringLiteral("lblAnimation"), QStringLiteral("lineProgress"),
                                 QStringLiteral("txtMessage"), QStringLiteral("txtMidiPort")};
const QStringList ErrorWidgets{QStringLiteral("btnCancel"),   QStringLiteral("btnClose"),
                               QStringLiteral("btnMidiPort"), QStringLiteral("btnRetry"),
                               QStringLiteral("lblError"),    QStringLiteral("txtMidiPort")};

// --- Form and states -----------------------------------------------------------------------------

void TestAutoSync::theForm()
{
    const QList<FormPart> parts{
        {"btnClose", "COnOffButton", QRect(68, 95, 15, 15), ":/images/vd_nsw_close.png"},
        {"txtMidiPort", "CText", QRect(92, 150, 239, 15)},
        {"btnMidiPort", "COnOffButton", QRect(89, 149, 265, 18), ":/images/vd_nsw_pulldown.png"},
        {"btnStart", "COnOffButton", QRect(249, 287, 51, 15), ":/images/vd_nsw_start.png"},
        {"btnRetry", "COnOffButton", QRect(249, 287, 51, 15), ":/images/vd_nsw_retry.png"},
        {"btnCancel", "COnOffButton", QRect(304, 287, 51, 15), ":/images/vd_nsw_cancel.png"},
        {"lblAnimation", "QLabel", QRect(91, 214, 259, 10)},
        {"txtMessage", "CText", QRect(91, 212, 263, 14)},
        {"lineProgress", "ProgressLine", QRect(91, 229, 258, 2)},
        {"lblError", "QLabel", QRect(91, 212, 263, 14), ":/images/t27r_txt_error.png"},
    };
    QVERIFY(openPanel(false, true));
    checkForm(panel(), "AutoSync", ":/images/trn_bak_autosync.png", parts);
    QCOMPARE(m_rig->inPanel<QLabel>("lblError")->pixmap(Qt::ReturnByValue).cacheKey(),
             artwork(":/images/t27r_txt_error.png").cacheKey());
}

void TestAutoSync::theReadyState()
{
    QVERIFY(openPanel(false, true));
    QCOMPARE(shown(), ReadyWidgets);
    QCOMPARE(m_rig->inPanel<CText>("txtMidiPort")->text(), DeviceName);
    QVERIFY(m_rig->window->isWindowLocked());
    QVERIFY(m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, 0);
}

void TestAutoSync::theRunningState()
{
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    startOrRetry();
    QCOMPARE(shown(), RunningWidgets);
    QCOMPARE(message(), QStringLiteral("Receiving"));
    QVERIFY(!m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
    QVERIFY(QGuiApplication::overrideCursor() != nullptr);
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QVERIFY(!m_rig->api->isAllowToRaiseFileEditFlag());
    QVERIFY(m_rig->api->getBulkRecieveEnableFlag());
}

void TestAutoSync::theErrorState()
{
    timings().receiveRunTimeoutMs = ShortRunMs;
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    startOrRetry();
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    QCOMPARE(end, End::Error);
    QCOMPARE(shown(), ErrorWidgets);
    checkIdle(true);
}

// --- Callers and faults --------------------------------------------------------------------------

bool TestAutoSync::call(Caller caller)
{
    EditorMainWindow *window = m_rig->window.get();
    switch (caller) {
    case Caller::AtStart:
        break; // the window itself
    case Caller::PortWithDocument:
        m_rig->setFlag(ParamAddress::FileEditFlag, 1);
        m_rig->api->emitPortActivatedSignal();
        break;
    case Caller::Port:
        m_rig->api->emitPortActivatedSignal();
        break;
    case Caller::FileOpen:
        m_rig->setFlag(ParamAddress::FileEditFlag, 0);
        window->fileOpen(QStringLiteral(TRN_SOURCE_DIR "/tests/file/corpus/valid/document.Q7V"));
        break;
    case Caller::FileNew:
        window->executefileNew();
        break;
    case Caller::LibraryReset:
        window->resetFactorySet();
        break;
    case Caller::Restore:
        window->restoreHWBackup();
        break;
    }
    return QTest::qWaitFor([this] { return panel() != nullptr; }, WaitMs);
}

bool TestAutoSync::waitForEnd(End *end)
{
    return QTest::qWaitFor(
        [this, end] {
            *end = panel() == nullptr ? End::Done : isShown("lblError") ? End::Error : End::Either;
            return *end != End::Either;
        },
        WaitMs);
}

void TestAutoSync::checkIdle(bool inError)
{
    QVERIFY(m_rig->api->isAllowToRaiseFileEditFlag());
    QCOMPARE(m_rig->api->transmitedBulkCount(), 0);
    QCOMPARE(m_rig->api->transmitedBulkReqCount(), 0);
    QCOMPARE(m_rig->api->isONLINE(), !inError);
    QCOMPARE(m_rig->window->isWindowLocked(), inError);
    QVERIFY(m_rig->inWindow<COnOffButton>("btnWindowClose")->isVisible());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    if (!inError) {
        QVERIFY(!m_rig->api->needToWaitAutoSyncDone());
        QVERIFY(m_rig->inWindow<QLabel>("lblOnline")->isVisible());
    }
}

void TestAutoSync::everyCallerWithEveryFault_data()
{
    QTest::addColumn<int>("caller");
    QTest::addColumn<int>("fault");
    int callerIndex = 0;
    for (const CallerRow &caller : Callers) {
        int faultIndex = 0;
        for (const FaultRow &fault : Faults) {
            QTest::addRow("%s, %s", caller.name, fault.name) << callerIndex << faultIndex;
            ++faultIndex;
        }
        ++callerIndex;
    }
}

void TestAutoSync::everyCallerWithEveryFault()
{
    QFETCH(int, caller);
    QFETCH(int, fault);
    const CallerRow &who = Callers[caller];
    const FaultRow &what = Faults[fault];
    const bool receives = !who.needsOnline;
    const bool sends = who.editorToDevice;
    const bool isExact = what.rule != nullptr && *what.rule == '\0';
    QVERIFY(openWindow(who.caller == Caller::AtStart));
    if (who.needsOnline) {
        QVERIFY(goOnline());
    }
    const VirtualInstrument::Counters before = m_loopback->instrument.counters();

    const bool failsFirst = receives && what.receive == End::Error;
    const End expected = failsFirst                                ? End::Error
                         : receives && what.receive == End::Either ? End::Either
                         : sends                                   ? what.send
                                                                   : End::Done;
    if (expected != End::Done) {
        timings().receiveRunTimeoutMs = ShortRunMs;
        timings().sendRunTimeoutMs = ShortRunMs;
        // Of the two runs only the one that is to fail.
        if (receives && what.receive == End::Done) {
            timings().receiveRunTimeoutMs = LongRunMs;
        }
    }
    const bool goes = what.rule == Gone;
    if (what.rule == Silent) {
        m_loopback->instrument.fallSilent();
    } else if (what.rule == Refusing) {
        LoopbackHub::instance().setRefusing(true);
    } else {
        QVERIFY(m_loopback->setFault(goes ? QStringLiteral("delay=20:every")
                                          : QString::fromLatin1(what.rule)));
    }

    QVERIFY(call(who.caller));
    if (isShown("btnStart")) {
        startOrRetry();
    }
    if (goes) {
        auto *line = m_rig->inPanel<ProgressLine>("lineProgress");
        QVERIFY(QTest::qWaitFor([line] { return line->done() > 0; }, WaitMs));
        m_loopback.reset();
    }
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    if (expected != End::Either) {
        QCOMPARE(end, expected);
    }
    if (end == End::Error) {
        checkIdle(true);
        QCOMPARE(shown(), ErrorWidgets);
        if (failsFirst) {
            QCOMPARE(availableFlag(Bank::HardwareStored), 0);
            QCOMPARE(availableFlag(Bank::HardwareEditBuffer), 0);
            QVERIFY(!m_rig->api->getBulkRecieveEnableFlag());
        }
        // The device is as it should be, and the user tries again.
        timings().receiveRunTimeoutMs = LongRunMs;
        timings().sendRunTimeoutMs = LongRunMs;
        LoopbackHub::instance().setRefusing(false);
        if (m_loopback == nullptr) {
            plug();
        }
        m_loopback->setFault(QString());
        m_loopback->instrument.comeBack();
        QVERIFY(finish());
    }
    checkIdle(false);
    QCOMPARE(availableFlag(Bank::HardwareStored), 1);
    QCOMPARE(availableFlag(Bank::HardwareEditBuffer), 1);
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), who.fileEditFlag);
    if (!isExact) {
        return;
    }
    const VirtualInstrument::Counters after = m_loopback->instrument.counters();
    QCOMPARE(after.bulkRequests - before.bulkRequests,
             receives ? (who.editorToDevice ? 50 : 100) : 0);
    QCOMPARE(after.footers - before.footers, sends ? (who.editBufferOnly ? 50 : 100) : 0);
    const InstrumentMemory held = m_loopback->instrument.contents();
    QCOMPARE(differences(*m_rig->api, Bank::EditBuffer, held.editBuffer), QList<int>());
    if (!who.editBufferOnly || !sends) {
        QCOMPARE(differences(*m_rig->api, Bank::Stored, held.stored), QList<int>());
    }
    if (receives) {
        QCOMPARE(differences(*m_rig->api, Bank::HardwareStored, m_memory.stored), QList<int>());
    }
    QCOMPARE(after.storesToFlash - before.storesToFlash,
             who.caller == Caller::FileOpen || who.caller == Caller::Restore ? 1 : 0);
}

// --- Runs ----------------------------------------------------------------------------------------

void TestAutoSync::startDuringARunHasNoEffect()
{
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    startOrRetry();
    const int outstanding = m_rig->api->transmitedBulkReqCount();
    const int requests = m_loopback->instrument.counters().bulkRequests;
    QCOMPARE(outstanding, 100);
    panel()->start();
    panel()->activePort();
    m_rig->api->emitPortActivatedSignal();
    QCoreApplication::processEvents();
    m_rig->pressKey(Qt::Key_Return);
    QCOMPARE(m_rig->api->transmitedBulkReqCount(), outstanding);
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, requests);
    QCOMPARE(shown(), RunningWidgets);
    QVERIFY(!m_rig->api->isAllowToRaiseFileEditFlag());
}

void TestAutoSync::aRunningPanelRefusesToClose()
{
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    m_rig->api->setNeedToWaitAutoSyncDoneFlag(true);
    startOrRetry();
    m_rig->pressKey(Qt::Key_Escape);
    QVERIFY(!m_rig->inPanel<COnOffButton>("btnClose")->isDown());
    QVERIFY(!panel()->close());
    QVERIFY(!m_rig->window->close());
    QVERIFY(m_rig->window->isVisible());
    QVERIFY(panel()->isVisible());
    QVERIFY(m_rig->api->needToWaitAutoSyncDone());
}

void TestAutoSync::afterAFailedFirstReceiveARetryReceivesAgain()
{
    timings().receiveRunTimeoutMs = ShortRunMs;
    QVERIFY(m_loopback->setFault(QStringLiteral("drop:footer:12")));
    QVERIFY(openPanel(false, true));
    startOrRetry();
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    QCOMPARE(end, End::Error);
    QCOMPARE(availableFlag(Bank::HardwareStored), 0);
    QCOMPARE(availableFlag(Bank::HardwareEditBuffer), 0);
    timings().receiveRunTimeoutMs = LongRunMs;
    m_loopback->setFault(QString());
    const int before = m_loopback->instrument.counters().bulkRequests;
    QVERIFY(finish());
    QCOMPARE(m_loopback->instrument.counters().bulkRequests - before, 100);
}

void TestAutoSync::afterARunWithTheEditorsDataALaterOneOnlySends()
{
    QVERIFY(openPanel(true, false));
    QVERIFY(finish());
    QCOMPARE(availableFlag(Bank::HardwareStored), 1);
    QCOMPARE(availableFlag(Bank::HardwareEditBuffer), 1);
    const VirtualInstrument::Counters before = m_loopback->instrument.counters();
    m_rig->api->setONLINEstate(0);
    m_rig->window->autoSync(false, true);
    QVERIFY(finish());
    const VirtualInstrument::Counters after = m_loopback->instrument.counters();
    QCOMPARE(after.bulkRequests, before.bulkRequests);
    QCOMPARE(after.footers - before.footers, 50);
}

void TestAutoSync::theCurrentTemplateNumberSurvives()
{
    QVERIFY(openPanel(false, true));
    QVERIFY(finish());
    QCOMPARE(m_rig->api->getParam(currentTemplateAddress()).getCurrentValue(), 17);
}

void TestAutoSync::aLateCompletionDoesNothing()
{
    timings().receiveRunTimeoutMs = ShortRunMs;
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    startOrRetry();
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    m_rig->api->emitCompleteBulkReceiveSignal();
    m_rig->api->emitCompleteBulkTransmitSignal();
    QCoreApplication::processEvents();
    panel()->bulkReceived();
    panel()->bulkSended();
    QCOMPARE(shown(), ErrorWidgets);
    checkIdle(true);
    QCOMPARE(availableFlag(Bank::HardwareStored), 0);
}

void TestAutoSync::anErrorIgnoresAReturningDevice()
{
    timings().receiveRunTimeoutMs = ShortRunMs;
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    startOrRetry();
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    // Said on the thread that reads the port, heard on this one.
    const QObject here;
    bool activated = false;
    connect(m_rig->api.get(), &RemoteMemAPI::portActivated, &here,
            [&activated] { activated = true; });
    const int requests = m_loopback->instrument.counters().bulkRequests;
    m_loopback->instrument.comeBack();
    m_loopback->instrument.start();
    QTRY_VERIFY(activated);
    QCoreApplication::processEvents();
    QCOMPARE(shown(), ErrorWidgets);
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, requests);
    timings().receiveRunTimeoutMs = LongRunMs;
    QVERIFY(finish());
}

// Between the close and the deletion: the next panel follows the one that is going.
void TestAutoSync::aDeviceThatReturnsWhileThePanelCloses()
{
    QVERIFY(openPanel(false, true));
    const QPointer<AutoSync> first(panel());
    QVERIFY(panel()->close());
    m_rig->window->activePort();
    QVERIFY(first != nullptr);
    QTRY_VERIFY(first == nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QTRY_VERIFY(panel() == nullptr);
    checkIdle(false);
}

// Pulled out just before: the list of ports is without it, and so without a start.
void TestAutoSync::aDeviceThatWasGoneWhenThePanelCame()
{
    QVERIFY(openWindow());
    QVERIFY(goOnline());
    m_loopback.reset();
    m_rig->window->executefileNew();
    QVERIFY(panel() != nullptr);
    QCOMPARE(m_rig->inPanel<CText>("txtMidiPort")->text(), PortNotAssigned);
    QVERIFY(!isShown("btnStart"));
    m_rig->api->emitPortActivatedSignal();
    QVERIFY(!isShown("btnStart"));
    plug();
    m_rig->api->emitPortActivatedSignal();
    QTRY_VERIFY_WITH_TIMEOUT(panel() == nullptr, WaitMs);
    checkIdle(false);
    QCOMPARE(QSettings(QSettings::UserScope, CorporationName, SettingName)
                 .value(QStringLiteral("PortName"))
                 .toString(),
             DeviceName);
}

// Who has turned it away is left in peace, until it goes and comes anew.
void TestAutoSync::aDeviceThatReturnsAfterACancelledError()
{
    timings().connectionWatcherPeriodMs = 1000;
    timings().receiveRunTimeoutMs = ShortRunMs;
    QVERIFY(m_loopback->setFault(QStringLiteral("drop:footer:12")));
    m_loopback->instrument.start();
    QVERIFY(openWindow());
    QTRY_VERIFY(panel() != nullptr);
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    QCOMPARE(end, End::Error);
    QTRY_VERIFY(!m_rig->api->isWatchPortActivate());
    m_rig->click(m_rig->inPanel("btnCancel"));
    QTRY_VERIFY(panel() == nullptr);
    QVERIFY(!m_rig->api->isWatchPortActivate());
    timings().receiveRunTimeoutMs = LongRunMs;
    m_loopback.reset();
    QTRY_VERIFY(m_rig->api->isWatchPortActivate());
    plug();
    m_loopback->instrument.start();
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QTRY_VERIFY(panel() == nullptr);
    checkIdle(false);
}

void TestAutoSync::closingReadyOrErrorStaysOffline_data()
{
    QTest::addColumn<bool>("afterError");
    QTest::addColumn<QString>("name");
    for (const bool afterError : {false, true}) {
        for (const char *name : {"btnClose", "btnCancel"}) {
            QTest::addRow("%s %s", afterError ? "error" : "ready", name)
                << afterError << QString::fromLatin1(name);
        }
    }
}

void TestAutoSync::closingReadyOrErrorStaysOffline()
{
    QFETCH(bool, afterError);
    QFETCH(QString, name);
    timings().receiveRunTimeoutMs = ShortRunMs;
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    m_rig->api->setNeedToWaitAutoSyncDoneFlag(true);
    if (afterError) {
        startOrRetry();
        End end = End::Either;
        QVERIFY(waitForEnd(&end));
    }
    m_rig->click(m_rig->inPanel(qPrintable(name)));
    QTRY_VERIFY(panel() == nullptr);
    QVERIFY(!m_rig->api->isONLINE());
    QVERIFY(!m_rig->api->needToWaitAutoSyncDone());
    QVERIFY(!m_rig->window->isWindowLocked());
}

void TestAutoSync::aWaitingFileKeepsTheEditFlagDown()
{
    QVERIFY(openPanel(false, true));
    m_rig->api->setFileOpenRequestFlag(true);
    QVERIFY(finish());
    QVERIFY(!m_rig->api->isFileOpenRequestExist());
    QCOMPARE(m_rig->flag(ParamAddress::FileEditFlag), 0);
}

// --- Keys and display ----------------------------------------------------------------------------

void TestAutoSync::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("afterError");
    QTest::addColumn<QString>("name");
    struct Row
    {
        Qt::Key key;
        bool afterError;
        const char *button;
    };
    for (const Row &row :
         {Row{Qt::Key_Return, false, "btnStart"}, Row{Qt::Key_Enter, false, "btnStart"},
          Row{Qt::Key_Return, true, "btnRetry"}, Row{Qt::Key_Enter, true, "btnRetry"},
          Row{Qt::Key_Escape, false, "btnClose"}, Row{Qt::Key_Escape, true, "btnClose"}}) {
        QTest::addRow("%s %s %s", qPrintable(QKeySequence(row.key).toString()),
                      row.afterError ? "error" : "ready", row.button)
            << int(row.key) << row.afterError << QString::fromLatin1(row.button);
    }
}

void TestAutoSync::keys()
{
    QFETCH(int, key);
    QFETCH(bool, afterError);
    QFETCH(QString, name);
    QVERIFY(openPanel(false, true));
    if (afterError) {
        timings().receiveRunTimeoutMs = ShortRunMs;
        m_loopback->instrument.fallSilent();
        startOrRetry();
        End end = End::Either;
        QVERIFY(waitForEnd(&end));
        m_loopback->instrument.comeBack();
        timings().receiveRunTimeoutMs = LongRunMs;
    }
    QSignalSpy pressed(m_rig->inPanel<COnOffButton>(qPrintable(name)), &QAbstractButton::pressed);
    m_rig->pressKey(static_cast<Qt::Key>(key));
    QCOMPARE(pressed.count(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(panel() == nullptr, WaitMs);
    QCOMPARE(m_rig->api->isONLINE(), key != Qt::Key_Escape);
}

void TestAutoSync::theLightRuns()
{
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    startOrRetry();
    auto *label = m_rig->inPanel<QLabel>("lblAnimation");
    QVERIFY(label->pixmap(Qt::ReturnByValue).isNull());
    // The head of the light, its rightmost coloured pixel.
    const auto head = [label] {
        const QImage image = label->pixmap(Qt::ReturnByValue).toImage();
        for (int x = image.width() - 1; x >= 0; --x) {
            if (image.pixelColor(x, image.height() / 2).alpha() > 0) {
                return x;
            }
        }
        return -1;
    };
    QTRY_VERIFY(!label->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(label->pixmap(Qt::ReturnByValue).deviceIndependentSize().toSize(), label->size());
    const int first = head();
    QTRY_VERIFY(head() > first);
    QTRY_VERIFY(head() >= label->width() - 14);
    QTRY_VERIFY(head() < 100); // and again
}

void TestAutoSync::theLineFills_data()
{
    QTest::addColumn<bool>("editorToDevice");
    QTest::addColumn<bool>("editBufferOnly");
    QTest::addColumn<int>("total");
    QTest::newRow("receive") << false << true << 100;
    QTest::newRow("receive and send all") << true << false << 150;
    QTest::newRow("receive and send the edit buffer") << true << true << 100;
}

void TestAutoSync::theLineFills()
{
    QFETCH(bool, editorToDevice);
    QFETCH(bool, editBufferOnly);
    QFETCH(int, total);
    QVERIFY(m_loopback->setFault(QStringLiteral("delay=10:every")));
    QVERIFY(openPanel(editorToDevice, editBufferOnly));
    auto *line = m_rig->inPanel<ProgressLine>("lineProgress");
    startOrRetry();
    QCOMPARE(line->total(), total);
    QCOMPARE(line->done(), 0);
    QList<int> seen;
    QVERIFY(QTest::qWaitFor(
        [&] {
            if (panel() == nullptr) {
                return true;
            }
            if (seen.isEmpty() || seen.last() != line->done()) {
                seen.append(line->done());
            }
            return false;
        },
        WaitMs));
    QVERIFY(seen.size() > 3);
    QVERIFY(std::is_sorted(seen.cbegin(), seen.cend()));
    if (editorToDevice) {
        QVERIFY(seen.last() > 50);
    }
}

void TestAutoSync::theLinesRounding()
{
    ProgressLine line;
    line.resize(258, 2);
    QCOMPARE(line.filledWidth(), 0);
    line.setProgress(5, 0);
    QCOMPARE(line.filledWidth(), 0);
    line.setProgress(-1, 100);
    QCOMPARE(line.done(), 0);
    line.setProgress(99, 100);
    QCOMPARE(line.filledWidth(), 255);
    line.setProgress(101, 100);
    QCOMPARE(line.filledWidth(), 258);
    QCOMPARE(line.accessibleDescription(), QStringLiteral("100 of 100"));
}

// --- Ports ---------------------------------------------------------------------------------------

void TestAutoSync::thePortMenu()
{
    LoopbackInstrument other(m_memory, OtherDeviceName);
    QVERIFY(openPanel(false, true));
    m_rig->click(m_rig->inPanel("btnMidiPort"));
    auto *menu = panel()->findChild<PulldownMenu *>();
    QVERIFY(menu != nullptr);
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), panel()->mapToGlobal(QPoint(89, 167)));
    QCOMPARE(menu->width(), 265);
    QCOMPARE(menu->actions().size(), 3);
    // A click anywhere on the row.
    const QRect row = menu->actionGeometry(menu->actions().at(2));
    QVERIFY(QTest::qWaitForWindowExposed(menu));
    QTest::mouseClick(menu->windowHandle(), Qt::LeftButton, {},
                      {row.right() - 3, row.center().y()});
    QTRY_VERIFY(panel()->findChild<PulldownMenu *>() == nullptr);
    QCOMPARE(m_rig->inPanel<CText>("txtMidiPort")->text(), OtherDeviceName);
    // Nothing changes until the start.
    QCOMPARE(m_rig->window->getPortIndex(), 1);
    QVERIFY(finish());
    QCOMPARE(m_rig->window->getPortIndex(), 2);
    QCOMPARE(other.instrument.counters().bulkRequests, 100);
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, 0);
}

void TestAutoSync::notAssignedHidesStartAndRetry()
{
    QVERIFY(openPanel(false, true));
    const auto choose = [this](int index) {
        m_rig->click(m_rig->inPanel("btnMidiPort"));
        auto *menu = panel()->findChild<PulldownMenu *>();
        menu->actions().at(index)->trigger();
        menu->close();
        return QTest::qWaitFor([this] { return panel()->findChild<PulldownMenu *>() == nullptr; });
    };
    QVERIFY(choose(0));
    QVERIFY(!isShown("btnStart"));
    QVERIFY(!isShown("btnRetry"));
    QCOMPARE(m_rig->inPanel<CText>("txtMidiPort")->text(), PortNotAssigned);
    QVERIFY(choose(1));
    QVERIFY(isShown("btnStart"));
    timings().receiveRunTimeoutMs = ShortRunMs;
    m_loopback->instrument.fallSilent();
    startOrRetry();
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    QVERIFY(choose(0));
    QVERIFY(!isShown("btnStart"));
    QVERIFY(!isShown("btnRetry"));
    QVERIFY(choose(1));
    QVERIFY(!isShown("btnStart"));
    QVERIFY(isShown("btnRetry"));
}

void TestAutoSync::withoutAPortNothingStarts()
{
    QVERIFY(openPanel(false, true));
    m_rig->click(m_rig->inPanel("btnMidiPort"));
    panel()->findChild<PulldownMenu *>()->actions().at(0)->trigger();
    panel()->findChild<PulldownMenu *>()->close();
    m_rig->pressKey(Qt::Key_Return);
    panel()->activePort();
    QVERIFY(!m_rig->inPanel<COnOffButton>("btnStart")->isDown());
    QVERIFY(isShown("btnCancel"));
    QCOMPARE(m_rig->window->getPortIndex(), 1);
}

void TestAutoSync::aPortThatCannotBeOpened()
{
    auto other = std::make_unique<LoopbackInstrument>(m_memory, OtherDeviceName);
    QVERIFY(openPanel(false, true));
    m_rig->click(m_rig->inPanel("btnMidiPort"));
    panel()->findChild<PulldownMenu *>()->actions().at(2)->trigger();
    panel()->findChild<PulldownMenu *>()->close();
    other.reset();
    startOrRetry();
    QCOMPARE(shown(), ErrorWidgets);
    QVERIFY(m_rig->panel<PortOpenError>() == nullptr); // waits for the window
    // Still not there.
    startOrRetry();
    QCOMPARE(shown(), ErrorWidgets);
    other = std::make_unique<LoopbackInstrument>(m_memory, OtherDeviceName);
    QVERIFY(finish());
    QCOMPARE(other->instrument.counters().bulkRequests, 100);
    // What went well in the end is not complained about any more.
    QVERIFY(m_rig->anyPanel() == nullptr);
}

void TestAutoSync::theMenuCloseWhenTheRunStarts()
{
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    m_rig->click(m_rig->inPanel("btnMidiPort"));
    QTRY_VERIFY(QApplication::activePopupWidget() != nullptr);
    m_rig->api->emitPortActivatedSignal();
    QTRY_COMPARE(shown(), RunningWidgets);
    QCOMPARE(QApplication::activePopupWidget(), nullptr);
    QTRY_VERIFY(panel()->findChild<PulldownMenu *>() == nullptr);
}

void TestAutoSync::aHeldButtonIsFreeAfterTheRun()
{
    timings().receiveRunTimeoutMs = ShortRunMs;
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    auto *cancel = m_rig->inPanel<COnOffButton>("btnCancel");
    m_rig->press(cancel);
    QVERIFY(cancel->isDown());
    m_rig->api->emitPortActivatedSignal();
    QTRY_COMPARE(shown(), RunningWidgets);
    QVERIFY(!cancel->isDown());
    End end = End::Either;
    QVERIFY(waitForEnd(&end));
    m_rig->release(cancel);
    QVERIFY(!cancel->isDown());
    QVERIFY(!panel()->isClosed());
}

void TestAutoSync::theMenuStaysOnTheScreen()
{
    QVERIFY(openPanel(false, true));
    const QRect screen = m_rig->window->screen()->geometry();
    m_rig->window->move(screen.right() - 200, screen.bottom() - 200);
    const QPoint field = panel()->mapToGlobal(QPoint(89, 167));
    QTRY_VERIFY(panel()->mapToGlobal(QPoint(89, 167)) != QPoint() &&
                field.x() + 270 > screen.right() && field.y() + 270 > screen.bottom());
    m_rig->click(m_rig->inPanel("btnMidiPort"));
    auto *menu = panel()->findChild<PulldownMenu *>();
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->pos(), QPoint(screen.right() - 269, screen.bottom() - 269));
    QVERIFY(screen.contains(menu->geometry()));
}

void TestAutoSync::theMenusRows()
{
    QVERIFY(openWindow());
    auto *menu = new PulldownMenu(
        m_rig->window.get(),
        {QStringLiteral("a"), QStringLiteral("Rock && Roll & co"),
         QStringLiteral(
             "a name that is wider than the row of a menu, so that nothing fits behind")});
    const QFontMetrics metrics(menu->font());
    QCOMPARE(menu->font().family(), QStringLiteral("Corvan QRL 8"));
    const QString filled = menu->actions().at(0)->text();
    QVERIFY(metrics.horizontalAdvance(filled) <= 229);
    QVERIFY(metrics.horizontalAdvance(filled + QLatin1Char(' ')) > 229);
    QVERIFY(menu->actions().at(1)->text().startsWith(QStringLiteral("Rock &&&& Roll && co ")));
    QVERIFY(!menu->actions().at(2)->text().endsWith(QLatin1Char(' ')));
    QSignalSpy chosen(menu, &PulldownMenu::chosen);
    menu->open(QPoint(10, 10));
    menu->actions().at(1)->trigger();
    QCOMPARE(chosen.takeFirst().first().toInt(), 1);
    // Dies with its panel while it is open.
}

// --- Ends ----------------------------------------------------------------------------------------

void TestAutoSync::theWindowDiesDuringARun()
{
    m_loopback->instrument.fallSilent();
    QVERIFY(openPanel(false, true));
    startOrRetry();
    QVERIFY(QGuiApplication::overrideCursor() != nullptr);
    m_rig->window.reset();
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
    QVERIFY(m_rig->api->isAllowToRaiseFileEditFlag());
    QCOMPARE(m_rig->api->transmitedBulkReqCount(), 0);
}

// With sensing, and nobody at the keys.
void TestAutoSync::theInstrumentComesAndGoes()
{
    timings().connectionWatcherPeriodMs = 1000;
    m_loopback->instrument.start();
    QVERIFY(openWindow());
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QTRY_VERIFY(panel() == nullptr);
    checkIdle(false);
    m_loopback.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!m_rig->api->isONLINE(), WaitMs);
    QTRY_VERIFY(!m_rig->inWindow<QLabel>("lblOnline")->isVisible());
    plug();
    m_loopback->instrument.start();
    QTRY_VERIFY_WITH_TIMEOUT(m_rig->api->isONLINE(), WaitMs);
    QTRY_VERIFY(panel() == nullptr);
    checkIdle(false);
}

QTEST_MAIN(TestAutoSync)
#include "tst_autosync.moc"
