// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Timings.h"
#include "memory/RemoteMemAPI.h"
#include "midi/ConnectionWatcher.h"
#include "midi/LoopbackHarness.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtTest/QtTest>

#include <atomic>
#include <functional>
#include <thread>

namespace
{

tagMPEVENT sensing()
{
    return shortOutput(MPEventActiveSensing, 1, 0, "00FE");
}

// Sees each period of a watcher end, just before the watcher does.
class PeriodEnds : public QObject
{
    Q_OBJECT

public:
    explicit PeriodEnds(ConnectionWatcher &watcher) { watcher.installEventFilter(this); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Timer) {
            ++count;
            if (onEnd) {
                onEnd();
            }
        }
        return false;
    }

    int count = 0;
    std::function<void()> onEnd;
};

} // namespace

class TestConnectionWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { timings().connectionWatcherPeriodMs = 10; }
    void cleanup() { timings() = Timings(); }

    void thePeriodIsTakenAtConstructionAndIsFiveSeconds()
    {
        timings() = Timings();
        RemoteMemAPI memory;
        ConnectionWatcher watcher(1, &memory);
        timings().connectionWatcherPeriodMs = 1;
        const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&watcher);
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.first().interval, 5000);
        QCOMPARE(watcher.getPortID(), 1);
        QCOMPARE(watcher.getMidiFilterType(), 0);
    }

    void withEventsFlowingTheStateStaysAsItWas_data()
    {
        QTest::addColumn<bool>("isOnline");
        QTest::addColumn<bool>("isSensing");
        QTest::newRow("online, active sensing") << true << true;
        QTest::newRow("online, any other event") << true << false;
        QTest::newRow("offline, active sensing: the watcher only turns it off") << false << true;
    }
    void withEventsFlowingTheStateStaysAsItWas()
    {
        QFETCH(bool, isOnline);
        QFETCH(bool, isSensing);
        RemoteMemAPI memory;
        memory.setONLINEstate(isOnline ? 1 : 0);
        ConnectionWatcher watcher(1, &memory);
        PeriodEnds ends(watcher);
        tagMPEVENT event = isSensing ? sensing() : shortOutput(MPEventNoteOn, 1, 0, "3C40");
        bool wasSteady = true;
        ends.onEnd = [&] {
            wasSteady = wasSteady && memory.isONLINE() == isOnline;
            watcher.Process(event);
        };
        QTRY_VERIFY(ends.count >= 10);
        QVERIFY(wasSteady);
        QCOMPARE(memory.isONLINE(), isOnline);
    }

    void aWholePeriodWithoutAnEventTurnsTheStateOff()
    {
        RemoteMemAPI memory;
        memory.setONLINEstate(1);
        ConnectionWatcher watcher(1, &memory);
        PeriodEnds ends(watcher);
        QList<bool> online;
        ends.onEnd = [&] { online.append(memory.isONLINE()); };
        tagMPEVENT event = sensing();
        watcher.Process(event);
        QTRY_VERIFY(!memory.isONLINE());
        // The period in which the last event came does not count, the one behind it does.
        QVERIFY(online.size() >= 2);
        QCOMPARE(online.mid(0, 2), (QList<bool>{true, true}));
        QVERIFY(!online.mid(2).contains(true));
    }

    void withTheDeviceSilentNoSignalComesAndTheStateStaysOffline()
    {
        RemoteMemAPI memory;
        QSignalSpy activated(&memory, &RemoteMemAPI::portActivated);
        ConnectionWatcher watcher(1, &memory);
        const PeriodEnds ends(watcher);
        QTRY_VERIFY(ends.count >= 5);
        QCOMPARE(activated.size(), 0);
        QVERIFY(!memory.isONLINE());
    }

    // Also for one who stopped watching, as after a synchronisation that the user has cancelled.
    void afterASilenceTheReturnIsReportedAgain()
    {
        RemoteMemAPI memory;
        memory.setWatchPortActivate(false);
        QSignalSpy activated(&memory, &RemoteMemAPI::portActivated);
        ConnectionWatcher watcher(1, &memory);
        PeriodEnds ends(watcher);
        tagMPEVENT event = sensing();
        ends.onEnd = [&] { watcher.Process(event); };
        QTRY_VERIFY(ends.count >= 5);
        QVERIFY(!memory.isWatchPortActivate());
        QCOMPARE(activated.size(), 0);
        ends.onEnd = {};
        QTRY_VERIFY(memory.isWatchPortActivate());
        watcher.Process(event);
        QCOMPARE(activated.size(), 1);
    }

    void theFirstSignIsReportedWhileOfflineAndWatching_data()
    {
        QTest::addColumn<bool>("isOnline");
        QTest::addColumn<bool>("isWatching");
        QTest::addColumn<quint32>("type");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<int>("signalCount");
        const quint32 active = MPEventActiveSensing;
        QTest::newRow("offline and watching") << false << true << active << QByteArray("00FE") << 1;
        QTest::newRow("online") << true << true << active << QByteArray("00FE") << 0;
        QTest::newRow("not watching") << false << false << active << QByteArray("00FE") << 0;
        QTest::newRow("another kind of event")
            << false << true << quint32(MPEventNoteOn) << QByteArray("00FE") << 0;
        QTest::newRow("the byte in another place")
            << false << true << active << QByteArray("FE00") << 0;
    }
    void theFirstSignIsReportedWhileOfflineAndWatching()
    {
        QFETCH(bool, isOnline);
        QFETCH(bool, isWatching);
        QFETCH(quint32, type);
        QFETCH(QByteArray, data);
        RemoteMemAPI memory;
        memory.setONLINEstate(isOnline ? 1 : 0);
        memory.setWatchPortActivate(isWatching);
        QSignalSpy activated(&memory, &RemoteMemAPI::portActivated);
        ConnectionWatcher watcher(1, &memory);
        tagMPEVENT event = shortOutput(type, 1, 0, data.constData());
        watcher.Process(event);
        QTEST(static_cast<int>(activated.size()), "signalCount");
    }

    void withoutAMemoryEveryEventIsSafe()
    {
        ConnectionWatcher watcher(1, nullptr);
        const PeriodEnds ends(watcher);
        tagMPEVENT event = sensing();
        watcher.Process(event);
        QTRY_VERIFY(ends.count >= 3);
    }

    void anotherTimerOfTheObjectIsNotThePeriod()
    {
        RemoteMemAPI memory;
        memory.setONLINEstate(1);
        timings().connectionWatcherPeriodMs = 100000;
        ConnectionWatcher watcher(1, &memory);
        const PeriodEnds ends(watcher);
        const int other = watcher.startTimer(1);
        QTRY_VERIFY(ends.count >= 5);
        watcher.killTimer(other);
        QVERIFY(memory.isONLINE());
    }

    void eventsOnAThreadOfTheirOwn()
    {
        // For the thread sanitizer.
        RemoteMemAPI memory;
        memory.setONLINEstate(1);
        ConnectionWatcher watcher(1, &memory);
        PeriodEnds ends(watcher);
        std::atomic<bool> isOver{false};
        std::atomic<int> processed{0};
        // However slow the machine, no period ends without an event.
        ends.onEnd = [&] { processed.wait(processed.load()); };
        std::thread input([&] {
            while (!isOver) {
                tagMPEVENT event = sensing();
                watcher.Process(event);
                ++processed;
                processed.notify_all();
            }
        });
        QTRY_VERIFY_WITH_TIMEOUT(ends.count >= 20, 30000);
        QVERIFY(memory.isONLINE());
        isOver = true;
        input.join();
    }

    void overTheCable()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        RemoteMemAPI memory;
        std::atomic<int> activated{0};
        connect(
            &memory, &RemoteMemAPI::portActivated, this, [&] { ++activated; },
            Qt::DirectConnection);
        QVERIFY(memory.createMIDIComunicationRoute(1, 5, 5));
        // Sensing on another port is no sign.
        device.send(5, "\xFE");
        device.send(1, "\xFE");
        QTRY_COMPARE(activated.load(), 1);
        memory.setONLINEstate(1);
        QTRY_VERIFY(!memory.isONLINE());
        memory.deleteMIDIComunicationRoute();
        QCOMPARE(activated.load(), 1);
    }
};

QTEST_GUILESS_MAIN(TestConnectionWatcher)
#include "tst_connectionwatcher.moc"
