// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/SyncRun.h"

#include "app/Timings.h"
#include "cli/LoopbackInstrument.h"
#include "instrument/InstrumentTestTools.h"
#include "memory/RemoteMemAPI.h"
#include "protocol/BulkReceipt.h"

#include <QtCore/QLoggingCategory>
#include <QtTest/QSignalSpy>
#include <QtTest/QtTest>

#include <memory>

namespace
{

constexpr int WaitMs = 30000;
const ParamAddress CurrentNumber(Bank::EditBuffer, ParamAddress::CurrentTemplateNumber, -1, -1);
const ParamAddress FileEdit(ParamAddress::FileEditFlag, -1, -1, -1);

} // namespace

class TestSyncRun : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void receiveFetchesBothBanksAndTheCurrentNumber();
    void receiveOfTheStoredBankAloneEndsAfterFifty();
    void appliedBanksKeepTheCurrentTemplateNumber();
    void sendWritesBothBanks();
    void sendOfTheEditBufferAloneEndsAfterFifty();
    void startDuringARunHasNoEffect();
    void withoutARouteARunIsRefused();
    void aRefusedReceiveLeavesTheHardwareBanksUnavailable();
    void anEarlierLoneChangeDoesNotEndASend();
    void aStoreBehindTheDumpsDoesNotEndASendEarly();
    void silenceTimesOutAndARetryStartsOver_data();
    void silenceTimesOutAndARetryStartsOver();
    void aCompletionAfterTheFailureDoesNothing();
    void aFooterThatComesTwiceDoesNotEndAReceiveEarly_data();
    void aFooterThatComesTwiceDoesNotEndAReceiveEarly();
    void aLostLastHeaderEndsAReceiveAllTheSame();
    void whatAnEarlierDumpLeftUnansweredIsNotCounted();
    void destructionDuringARunLeavesNothingWaiting();
    void aSlotMayStartTheNextRun();

private:
    struct Spies
    {
        explicit Spies(SyncRun &run)
            : progress(&run, &SyncRun::progress)
            , succeeded(&run, &SyncRun::succeeded)
            , failed(&run, &SyncRun::failed)
        {
        }
        QSignalSpy progress;
        QSignalSpy succeeded;
        QSignalSpy failed;
    };
    bool openRoute() { return m_api->createMIDIComunicationRoute(1, 5, 5); }

    InstrumentMemory m_memory;
    std::unique_ptr<LoopbackInstrument> m_loopback;
    std::unique_ptr<RemoteMemAPI> m_api;
};

void TestSyncRun::initTestCase()
{
    // Lest a few thousand of the engine's debug lines hide the results.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
}

void TestSyncRun::init()
{
    qRegisterMetaType<SyncRun::Reason>();
    timings() = Timings();
    m_memory = randomMemory(4711);
    m_loopback = std::make_unique<LoopbackInstrument>(m_memory);
    m_api = std::make_unique<RemoteMemAPI>();
    QVERIFY(openRoute());
}

void TestSyncRun::cleanup()
{
    m_api.reset();
    m_loopback.reset();
}

void TestSyncRun::receiveFetchesBothBanksAndTheCurrentNumber()
{
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(true));
    QVERIFY(run.isRunning());
    QVERIFY(!m_api->isAllowToRaiseFileEditFlag());
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QVERIFY(!run.isRunning());
    QVERIFY(spies.failed.isEmpty());
    QCOMPARE(spies.progress.last(), QVariantList({100, 100}));
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
    QVERIFY(m_api->bulkReceipt().incomplete(BulkReceipt::Stored).isEmpty());
    QVERIFY(m_api->bulkReceipt().incomplete(BulkReceipt::EditBuffer).isEmpty());
    QCOMPARE(m_api->getParam(CurrentNumber).getCurrentValue(), m_memory.currentTemplate);
    QCOMPARE(m_api->getBankAvailableFlag(Bank::HardwareStored).getCurrentValue(), 1);
    QCOMPARE(m_api->getBankAvailableFlag(Bank::HardwareEditBuffer).getCurrentValue(), 1);
    QCOMPARE(m_api->getParam(FileEdit).getCurrentValue(), 0);
    QCOMPARE(m_api->getTemplateData(Bank::HardwareEditBuffer, 49).getController(11).getCCNum(),
             NumericParameter(0, 127, m_memory.editBuffer[49].knobs[11].ccNumber));
}

void TestSyncRun::receiveOfTheStoredBankAloneEndsAfterFifty()
{
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(false));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QCOMPARE(spies.progress.last(), QVariantList({50, 50}));
    QCOMPARE(m_api->bulkReceipt().incomplete(BulkReceipt::EditBuffer).size(), 50);
}

void TestSyncRun::appliedBanksKeepTheCurrentTemplateNumber()
{
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(true));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QVERIFY(m_memory.currentTemplate != 0);
    run.applyReceived();
    QCOMPARE(m_api->getParam(CurrentNumber).getCurrentValue(), m_memory.currentTemplate);
    for (int number = 0; number < ParamAddress::TemplateCount; ++number) {
        QVERIFY(m_api->getTemplateData(Bank::Stored, number) ==
                m_api->getTemplateData(Bank::HardwareStored, number));
        QVERIFY(m_api->getTemplateData(Bank::EditBuffer, number) ==
                m_api->getTemplateData(Bank::HardwareEditBuffer, number));
    }
    QCOMPARE(m_api->getParam(FileEdit).getCurrentValue(), 0);
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
}

void TestSyncRun::sendWritesBothBanks()
{
    m_api->setParam(ParamAddress(Bank::EditBuffer, 3, 4, ParamAddress::CCNumber), 99);
    m_api->setParam(ParamAddress(Bank::Stored, 49, ParamAddress::TemplateName, -1),
                    QStringLiteral("last"));
    m_api->setParam(CurrentNumber, 7);
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startSend(false));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QCOMPARE(spies.progress.last(), QVariantList({100, 100}));
    const InstrumentMemory held = m_loopback->instrument.contents();
    QCOMPARE(int(held.editBuffer[3].knobs[4].ccNumber), 99);
    QCOMPARE(held.stored[49].templateName.trimmed(), QByteArray("last"));
    QCOMPARE(held.currentTemplate, 7);
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
}

void TestSyncRun::sendOfTheEditBufferAloneEndsAfterFifty()
{
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startSend(true));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QCOMPARE(spies.progress.last(), QVariantList({50, 50}));
    QVERIFY(m_loopback->instrument.contents().stored == m_memory.stored);
    QCOMPARE(m_loopback->instrument.counters().footers, 50);
}

void TestSyncRun::startDuringARunHasNoEffect()
{
    m_loopback->instrument.fallSilent();
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(true));
    QVERIFY(!run.startReceive(true));
    QVERIFY(!run.startSend(false));
    QVERIFY(run.isRunning());
    QCOMPARE(m_api->transmitedBulkReqCount(), 100);
    QCOMPARE(m_api->transmitedBulkCount(), 0);
    QVERIFY(spies.failed.isEmpty());
}

void TestSyncRun::withoutARouteARunIsRefused()
{
    m_api->deleteMIDIComunicationRoute();
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(!run.startReceive(true));
    QVERIFY(!run.startSend(false));
    QCOMPARE(spies.failed.count(), 2);
    QCOMPARE(spies.failed.first().first().value<SyncRun::Reason>(), SyncRun::Reason::Refused);
    QVERIFY(!run.isRunning());
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
}

void TestSyncRun::aRefusedReceiveLeavesTheHardwareBanksUnavailable()
{
    m_loopback->instrument.fallSilent();
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(true, 50));
    QTRY_COMPARE_WITH_TIMEOUT(spies.failed.count(), 1, WaitMs);
    QCOMPARE(m_api->getBankAvailableFlag(Bank::HardwareStored).getCurrentValue(), 0);
    QCOMPARE(m_api->getBankAvailableFlag(Bank::HardwareEditBuffer).getCurrentValue(), 0);
}

void TestSyncRun::anEarlierLoneChangeDoesNotEndASend()
{
    SyncRun first(m_api.get());
    Spies firstSpies(first);
    QVERIFY(first.startSend(true));
    QTRY_COMPARE_WITH_TIMEOUT(firstSpies.succeeded.count(), 1, WaitMs);

    m_loopback->instrument.fallSilent();
    SyncRun run(m_api.get());
    Spies spies(run);
    // Its completion is still queued for whoever listens when the send begins, and more of them
    // come while it runs.
    QVERIFY(m_api->sendAllTemplatesStoreMessage());
    QVERIFY(run.startSend(false));
    m_api->emitCompleteBulkTransmitSignal();
    QCoreApplication::processEvents();
    QVERIFY(run.isRunning());
    QVERIFY(spies.succeeded.isEmpty());
    run.cancel();

    m_loopback->instrument.comeBack();
    QVERIFY(run.startSend(false));
    m_api->emitCompleteBulkTransmitSignal();
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QCOMPARE(m_loopback->instrument.counters().acknowledgedDumps, 50 + 1 + 100);
}

void TestSyncRun::aStoreBehindTheDumpsDoesNotEndASendEarly()
{
    QVERIFY(m_loopback->setFault(QStringLiteral("delay=5:ack")));
    m_api->setStoreFlag(true);
    m_api->setStoreToFlashSendingFlag(true);
    SyncRun run(m_api.get());
    QSignalSpy succeeded(&run, &SyncRun::succeeded);
    int acknowledged = -1;
    connect(&run, &SyncRun::succeeded, this, [&] { acknowledged = m_api->transmitedBulkCount(); });
    QVERIFY(run.startSend(false));
    QTRY_COMPARE_WITH_TIMEOUT(succeeded.count(), 1, WaitMs);
    QCOMPARE(acknowledged, 0);
    QCOMPARE(m_loopback->instrument.counters().acknowledgedDumps, 100);
    QCOMPARE(m_loopback->instrument.counters().stores, 1);
    QCOMPARE(m_loopback->instrument.counters().storesToFlash, 1);
}

void TestSyncRun::silenceTimesOutAndARetryStartsOver_data()
{
    QTest::addColumn<bool>("sends");
    QTest::addColumn<QString>("fault");
    QTest::newRow("receive, silent from the start") << false << QStringLiteral("silent");
    QTest::newRow("receive, silent in the middle") << false << QStringLiteral("silent:after:300");
    QTest::newRow("receive, a footer lost") << false << QStringLiteral("drop:footer:stored:30");
    QTest::newRow("send, silent from the start") << true << QStringLiteral("silent");
    QTest::newRow("send, an acknowledge lost") << true << QStringLiteral("drop:ack:#60");
}

void TestSyncRun::silenceTimesOutAndARetryStartsOver()
{
    QFETCH(bool, sends);
    QFETCH(QString, fault);
    QVERIFY(m_loopback->setFault(fault));
    timings().receiveRunTimeoutMs = 400;
    timings().sendRunTimeoutMs = 400;
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(sends ? run.startSend(false) : run.startReceive(true));
    QTRY_COMPARE_WITH_TIMEOUT(spies.failed.count(), 1, WaitMs);
    QCOMPARE(spies.failed.first().first().value<SyncRun::Reason>(), SyncRun::Reason::TimedOut);
    QVERIFY(spies.succeeded.isEmpty());
    QCOMPARE(m_api->transmitedBulkCount(), 0);
    QCOMPARE(m_api->transmitedBulkReqCount(), 0);
    bool wasEmpty = false;
    QVERIFY(m_api->sendMessage(&wasEmpty));
    QVERIFY(wasEmpty);
    QCOMPARE(m_api->getBulkRecieveEnableFlag(), sends);
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());

    QVERIFY(m_loopback->setFault(QString()));
    m_loopback->instrument.comeBack();
    QVERIFY(sends ? run.startSend(false, WaitMs) : run.startReceive(true, WaitMs));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QCOMPARE(spies.failed.count(), 1);
}

void TestSyncRun::aCompletionAfterTheFailureDoesNothing()
{
    m_loopback->instrument.fallSilent();
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(true, 30));
    // Queued before the failure, delivered after it.
    m_api->emitCompleteBulkReceiveSignal();
    run.cancel();
    QCoreApplication::processEvents();
    QVERIFY(spies.succeeded.isEmpty());
    QVERIFY(run.startSend(false, 30));
    QTRY_COMPARE_WITH_TIMEOUT(spies.failed.count(), 1, WaitMs);
    m_api->emitCompleteBulkTransmitSignal();
    m_api->emitCompleteBulkReceiveSignal();
    QCoreApplication::processEvents();
    QVERIFY(spies.succeeded.isEmpty());
    QVERIFY(!run.isRunning());
}

void TestSyncRun::aFooterThatComesTwiceDoesNotEndAReceiveEarly_data()
{
    QTest::addColumn<bool>("editBufferToo");
    QTest::newRow("both banks") << true;
    QTest::newRow("the stored bank alone, whose last request empties the queue") << false;
}

void TestSyncRun::aFooterThatComesTwiceDoesNotEndAReceiveEarly()
{
    QFETCH(bool, editBufferToo);
    QVERIFY(m_loopback->setFault(QStringLiteral("duplicate:footer:stored:7")));
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(editBufferToo));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QVERIFY(m_api->bulkReceipt().incomplete(BulkReceipt::Stored).isEmpty());
    QCOMPARE(m_api->bulkReceipt().incomplete(BulkReceipt::EditBuffer).isEmpty(), editBufferToo);
    // Revoked by then, as after each receive of that bank alone.
    QCOMPARE(m_api->getBulkRecieveEnableFlag(), editBufferToo);
}

void TestSyncRun::aLostLastHeaderEndsAReceiveAllTheSame()
{
    timings().lastDumpsTimeoutMs = 50;
    QVERIFY(m_loopback->setFault(QStringLiteral("drop:header:edit:50")));
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startReceive(true));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
    QCOMPARE(m_api->bulkReceipt().incomplete(BulkReceipt::EditBuffer), QList<int>({49}));
}

void TestSyncRun::whatAnEarlierDumpLeftUnansweredIsNotCounted()
{
    QVERIFY(m_loopback->setFault(QStringLiteral("drop:ack:#1")));
    m_api->setONLINEstate(1);
    QVERIFY(m_api->setParam(ParamAddress(Bank::EditBuffer, 1, ParamAddress::TemplateName, -1),
                            QStringLiteral("second")));
    QVERIFY(m_api->exchangeTemplate(Bank::EditBuffer, 0, Bank::EditBuffer, 1));
    m_api->setONLINEstate(0);
    QTRY_VERIFY(m_api->transmitedBulkCount() > 0);
    SyncRun run(m_api.get());
    Spies spies(run);
    QVERIFY(run.startSend(false));
    QTRY_COMPARE_WITH_TIMEOUT(spies.succeeded.count(), 1, WaitMs);
}

void TestSyncRun::destructionDuringARunLeavesNothingWaiting()
{
    m_loopback->instrument.fallSilent();
    {
        SyncRun run(m_api.get());
        QVERIFY(run.startSend(false));
    }
    QCOMPARE(m_api->transmitedBulkCount(), 0);
    QVERIFY(m_api->isAllowToRaiseFileEditFlag());
}

void TestSyncRun::aSlotMayStartTheNextRun()
{
    SyncRun run(m_api.get());
    int runs = 0;
    connect(&run, &SyncRun::succeeded, this, [&] {
        if (++runs == 1) {
            QVERIFY(run.startSend(false));
        }
    });
    QVERIFY(run.startReceive(true));
    QTRY_COMPARE_WITH_TIMEOUT(runs, 2, WaitMs);
}

QTEST_GUILESS_MAIN(TestSyncRun)
#include "tst_syncrun.moc"
