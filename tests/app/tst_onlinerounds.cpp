// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MainWindowRig.h"
#include "cli/LoopbackInstrument.h"
#include "protocol/AutoSync.h"
#include "tests/tools/ResidentMemory.h"
#include "tests/tools/Sanitizers.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <array>

// Going online and offline again and again, as over months of use: memory stays flat, and no
// thread, no file and no lock is left behind.

namespace
{

const QString DeviceName = QStringLiteral("Corvan TARN/TERN");
constexpr int WaitMs = 30000;
// A sanitizer looks for leaks itself, keeps what was freed, and takes its time.
constexpr bool IsSanitized = UnderAddressSanitizer || UnderThreadSanitizer;
constexpr bool MeasuresMemory = !IsSanitized;
// Half a minute; TRN_ONLINE_ROUNDS in the environment for more.
constexpr int Rounds = IsSanitized ? 400 : 2500;
// The first rounds fill what is kept: fonts, pictures, the heap's own spare room.
constexpr int WarmUpRounds = 300;
// What the heap may hold on to more at the end than behind the first rounds. One round's panel
// alone, left behind each time, would be many times as much.
constexpr qint64 MostGrowthKiB = 1024;

qsizetype entriesOf(const char *folder)
{
    return QDir(QLatin1String(folder))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

// What a round must leave as it found it.
std::array<qsizetype, 3> heldThings(const EditorMainWindow &window)
{
    return {entriesOf("/proc/self/task"), entriesOf("/proc/self/fd"),
            window.findChildren<QObject *>().size()};
}

} // namespace

class TestOnlineRounds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PanelRig::setUpApplication(); }
    void init()
    {
        timings() = Timings();
        timings().connectionWatcherPeriodMs = 600000;
        timings().lastDumpsTimeoutMs = 50;
        m_loopback = std::make_unique<LoopbackInstrument>();
        m_rig = std::make_unique<MainWindowRig>();
    }
    void cleanup()
    {
        m_rig.reset();
        m_loopback.reset();
    }

    void thousandsOfRounds();
    void roundsOfSilence();
    void roundsOfTheCable();

private:
    bool isOnlineAndFree() const
    {
        return m_rig->api->isONLINE() && m_rig->anyPanel() == nullptr && m_rig->isFree();
    }

    std::unique_ptr<LoopbackInstrument> m_loopback;
    std::unique_ptr<MainWindowRig> m_rig;
};

// The word of the port is given by hand, so that nobody waits for a sensing. The first round
// fetches the instrument's memory, each later one sends the edit buffer.
void TestOnlineRounds::thousandsOfRounds()
{
    const int wanted = qEnvironmentVariableIntValue("TRN_ONLINE_ROUNDS");
    const int rounds = wanted > WarmUpRounds ? wanted : Rounds;
    QVERIFY(m_rig->openWindow(DeviceName));
    std::array<qsizetype, 3> before{};
    qint64 residentBefore = 0;
    for (int round = 0; round < rounds; ++round) {
        m_rig->api->setONLINEstate(0);
        m_rig->setFlag(ParamAddress::FileEditFlag, 0);
        m_rig->api->emitPortActivatedSignal();
        QElapsedTimer time;
        time.start();
        while (!m_rig->api->isONLINE() || m_rig->anyPanel() != nullptr) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY2(time.elapsed() < WaitMs, qPrintable(QString::number(round)));
        }
        if (round == WarmUpRounds) {
            QVERIFY(isOnlineAndFree());
            before = heldThings(*m_rig->window);
            residentBefore = residentKiB();
        }
    }
    QVERIFY(isOnlineAndFree());
    QVERIFY(m_rig->onlineLamp()->isVisible());
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, 100);
    QCOMPARE(m_loopback->instrument.counters().footers, (rounds - 1) * 50);
    QCOMPARE(heldThings(*m_rig->window), before);
    const qint64 growth = residentKiB() - residentBefore;
    QVERIFY2(!MeasuresMemory || (residentBefore > 0 && growth < MostGrowthKiB),
             qPrintable(QString::number(growth)));
}

// The instrument falls silent and speaks again.
void TestOnlineRounds::roundsOfSilence()
{
    constexpr int Cycles = 12;
    // More than twice the time between two words of the instrument.
    timings().connectionWatcherPeriodMs = 800;
    m_loopback->instrument.start();
    QVERIFY(m_rig->openWindow(DeviceName));
    QTRY_VERIFY_WITH_TIMEOUT(isOnlineAndFree(), WaitMs);
    const auto before = heldThings(*m_rig->window);
    for (int round = 0; round < Cycles; ++round) {
        m_loopback->instrument.fallSilent();
        QTRY_VERIFY_WITH_TIMEOUT(!m_rig->api->isONLINE(), WaitMs);
        QTRY_VERIFY(!m_rig->onlineLamp()->isVisible());
        QVERIFY(m_rig->anyPanel() == nullptr);
        m_loopback->instrument.comeBack();
        QTRY_VERIFY_WITH_TIMEOUT(isOnlineAndFree(), WaitMs);
        QTRY_VERIFY(m_rig->onlineLamp()->isVisible());
    }
    QCOMPARE(heldThings(*m_rig->window), before);
}

// The instrument is pulled out and plugged in.
void TestOnlineRounds::roundsOfTheCable()
{
    constexpr int Cycles = 6;
    timings().connectionWatcherPeriodMs = 800;
    m_loopback->instrument.start();
    QVERIFY(m_rig->openWindow(DeviceName));
    QTRY_VERIFY_WITH_TIMEOUT(isOnlineAndFree(), WaitMs);
    const auto before = heldThings(*m_rig->window);
    for (int round = 0; round < Cycles; ++round) {
        m_loopback.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!m_rig->api->isONLINE(), WaitMs);
        m_loopback = std::make_unique<LoopbackInstrument>();
        m_loopback->instrument.start();
        QTRY_VERIFY_WITH_TIMEOUT(isOnlineAndFree(), WaitMs);
    }
    QCOMPARE(heldThings(*m_rig->window), before);
}

QTEST_MAIN(TestOnlineRounds)
#include "tst_onlinerounds.moc"
