// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/ComuController.h"
#include "midi/LoopbackHarness.h"
#include "midi/MessageProcessor.h"
#include "midi/TAppMIDIIn.h"
#include "midi/TAppMIDIOut.h"
#include "midi/TMIDITransport.h"
#include "midi/TUniMIDIPortAccessor.h"
#include "midi/TransportHarness.h"
#include "tests/tools/OwnCopy.h"

#include <QtTest/QtTest>

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace
{

using Messages = QList<LoopbackDeviceStub::Message>;

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

// Keeps what comes, with what the input layer stamped on it.
class KeepingProcessor : public MessageProcessor
{
public:
    explicit KeepingProcessor(int port, int filterType = 0)
        : MessageProcessor(port, nullptr, filterType)
    {
    }

    bool Process(tagMPEVENT &event) override
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_events.append(event);
            m_changed.notify_all();
        }
        if (onEvent) {
            onEvent();
        }
        return true;
    }

    bool waitCount(qsizetype count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(30),
                                  [&] { return m_events.size() >= count; });
    }
    // Their longData is no longer there.
    QList<tagMPEVENT> events() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return ownCopy(m_events);
    }

    std::function<void()> onEvent;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QList<tagMPEVENT> m_events;
};

} // namespace

class TestComuController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { LoopbackHub::instance().setRefusing(false); }

    void requestingAPortTwiceGivesTrueTwiceAndOneTransporter()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(1, 5, 0, nullptr));
        QVERIFY(controller.requestPort(1, 5, 0, nullptr));
        KeepingProcessor first(5);
        KeepingProcessor second(5);
        QVERIFY(controller.requestPort(0, 5, 0, &first));
        QVERIFY(controller.requestPort(0, 5, 0, &second));
        device.send(5, hex("FE"));
        QVERIFY(first.waitCount(1));
        controller.releasePort(0, 5);
        // A second processor on the same port gets nothing.
        QCOMPARE(first.events().size(), 1);
        QCOMPARE(second.events().size(), 0);
        // One release closes it.
        controller.releasePort(1, 5);
        QVERIFY(!controller.isPortActive(1, 5));
        QVERIFY(!controller.isPortActive(0, 5));
    }

    void refusesPortsThatAreNone_data()
    {
        QTest::addColumn<int>("port");
        QTest::newRow("0") << 0;
        QTest::newRow("negative") << -1;
        QTest::newRow("unknown to the platform") << 6;
    }
    void refusesPortsThatAreNone()
    {
        QFETCH(int, port);
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        KeepingProcessor processor(port);
        QVERIFY(!controller.requestPort(0, port, 0, &processor));
        QVERIFY(!controller.requestPort(1, port, 0, nullptr));
        QVERIFY(!controller.isPortActive(0, port));
        QVERIFY(!controller.isPortActive(1, port));
        const tagMPEVENT event = shortOutput(MPEventNoteOn, port, 0, "3C40");
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiFailure);
        QVERIFY(!controller.setMessageProcessorAndOpenPort(&processor));
        QVERIFY(!controller.setMessageProcessorAndOpenPort(nullptr));
    }

    void openPortsAreKnownByDirection()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        KeepingProcessor processor(1, 6);
        QVERIFY(controller.setMessageProcessorAndOpenPort(&processor));
        QVERIFY(controller.requestPort(1, 5, 0, nullptr));
        QVERIFY(controller.isPortActive(0, 1));
        QVERIFY(!controller.isPortActive(1, 1));
        QVERIFY(controller.isPortActive(1, 5));
        QVERIFY(!controller.isPortActive(0, 5));
        controller.CloseAllOpendPortAndDeleteAllTransporters();
        QVERIFY(!controller.isPortActive(0, 1));
        QVERIFY(!controller.isPortActive(1, 5));
    }

    void anInputEventIsStampedAndProcessed()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        KeepingProcessor processor(3);
        QVERIFY(controller.setMessageProcessorAndOpenPort(&processor));
        const std::uint64_t before = ComuController::s_timeCounter;
        device.send(3, hex("FE"));
        device.send(3, hex("913C40"));
        QVERIFY(processor.waitCount(2));
        controller.releasePort(0, 3);
        const QList<tagMPEVENT> events = processor.events();
        QCOMPARE(events.size(), 2);
        QCOMPARE(events.at(0).portID, 3);
        QCOMPARE(events.at(0).inputMark, 1);
        QCOMPARE(events.at(0).timeCounter, before);
        QCOMPARE(events.at(1).timeCounter, before + 1);
        QCOMPARE(ComuController::s_timeCounter.load(), before + 2);
    }

    void anInputWithoutProcessorDropsEveryEvent()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(0, 1, 0, nullptr));
        device.send(1, hex("FE"));
        controller.releasePort(0, 1);
    }

    void noFilterHoldsAnEventBack()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        KeepingProcessor processor(1);
        TAppMIDIIn input(&processor);
        IMPEventFilter filter;
        input.attachEventFilter(&filter);
        input.attachEventFilter(&filter);
        QVERIFY(!input.openPort(9, 6));
        QVERIFY(input.openPort(1, 6));
        QCOMPARE(input.getPortID(), 1);
        device.send(1, hex("F04310F7FE"));
        device.send(1, hex("FE"));
        QVERIFY(processor.waitCount(2));
        input.detachEventFilter(&filter);
        input.detachEventFilter(&filter);
    }

    void anEventsBytesOnTheWire_data()
    {
        QTest::addColumn<quint32>("type");
        QTest::addColumn<int>("channel");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("longData");
        QTest::addColumn<QList<QByteArray>>("sent");
        QTest::addColumn<bool>("isSuccess");
        using Sent = QList<QByteArray>;
        const auto row = [](const char *name, quint32 type, int channel, const char *data,
                            const char *longData, const Sent &sent, bool isSuccess) {
            QTest::newRow(name) << type << channel << QByteArray(data) << hex(longData) << sent
                                << isSuccess;
        };
        row("system exclusive", 0x10000, 3, "", "4310F7", Sent{hex("F04310F7")}, true);
        row("system exclusive continuation", 0x20000, 0, "", "4310F7", Sent{hex("F74310F7")}, true);
        row("type 0x30000", 0x30000, 0, "", "4310F7", Sent{}, false);
        row("type 0x40000", 0x40000, 0, "", "4310F7", Sent{}, false);
        row("type 0x200000", 0x200000, 0, "", "4310F7", Sent{}, false);
        row("NRPN", 2, 1, "01020304", "",
            Sent{hex("B16301"), hex("B16202"), hex("B10603"), hex("B12604")}, true);
        row("RPN", 4, 2, "01020304", "",
            Sent{hex("B26501"), hex("B26402"), hex("B20603"), hex("B22604")}, true);
        row("bank select and program", 8, 3, "010203", "",
            Sent{hex("B30001"), hex("B32002"), hex("C303")}, true);
        row("note off", 32, 0, "3C40", "", Sent{hex("803C40")}, true);
        row("note on", 64, 15, "3C40", "", Sent{hex("9F3C40")}, true);
        row("note on with long data", 64, 15, "3C40", "01", Sent{}, false);
        row("polyphonic pressure", 128, 1, "3C40", "", Sent{hex("A13C40")}, true);
        row("control change", 256, 1, "0740", "", Sent{hex("B10740")}, true);
        row("program change", 512, 1, "05", "", Sent{hex("C105")}, true);
        row("channel pressure", 1024, 1, "05", "", Sent{hex("D105")}, true);
        row("pitch bend", 2048, 1, "0540", "", Sent{hex("E10540")}, true);
        row("only the channel's low nibble counts", 64, 0x12, "3C40", "", Sent{hex("923C40")},
            true);
        row("active sensing is never sent", 16, 0, "00FE", "", Sent{}, false);
        row("no event", 1, 0, "", "", Sent{}, false);
        row("type 0", 0, 0, "", "", Sent{}, false);
        row("two kinds at once", 96, 0, "3C40", "", Sent{}, false);
        row("a kind behind the last", 4096, 0, "3C40", "", Sent{}, false);
    }
    void anEventsBytesOnTheWire()
    {
        QFETCH(quint32, type);
        QFETCH(int, channel);
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, longData);
        QFETCH(QList<QByteArray>, sent);
        QFETCH(bool, isSuccess);
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        tagMPEVENT event = shortOutput(type, 5, channel, data.constData());
        if (!longData.isEmpty()) {
            event.length = static_cast<std::uint32_t>(longData.size());
            event.longData = reinterpret_cast<unsigned char *>(longData.data());
        }
        TAppMIDIOut output;
        QCOMPARE(output.midiOut(event), MidiFailure); // not open yet
        QVERIFY(!output.openPort(6));
        QCOMPARE(output.midiOut(event), MidiFailure);
        QVERIFY(output.openPort(5));
        QCOMPARE(output.midiOut(event), isSuccess ? MidiSuccess : MidiFailure);
        Messages expected;
        for (const QByteArray &bytes : std::as_const(sent)) {
            expected.append({5, bytes});
        }
        QCOMPARE(device.messages(), expected);
        if (isSuccess) {
            LoopbackHub::instance().setRefusing(true);
            QCOMPARE(output.midiOut(event), MidiFailure);
            LoopbackHub::instance().setRefusing(false);
        }
        // Through the controller it comes to the same, and what is refused counts as sent there.
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(1, 5, 0, nullptr));
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiSuccess);
        QCOMPARE(device.messages(), expected + expected);
    }

    void aLongEventThatClaimsBytesItHasNotFails()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        TAppMIDIOut output;
        QVERIFY(output.openPort(1));
        tagMPEVENT event;
        event.eventType = MPEventSysEx;
        event.length = 5;
        QCOMPARE(output.midiOut(event), MidiFailure);
        QByteArray bytes("x");
        event.longData = reinterpret_cast<unsigned char *>(bytes.data());
        event.length = 0x80000000U;
        QCOMPARE(output.midiOut(event), MidiFailure);
        QCOMPARE(output.midiOut(0, 0x90, 1, 2, 0), MidiFailure);
        QCOMPARE(output.midiOut(0, 0x90, 1, 2, 3), MidiFailure);
        QCOMPARE(device.messages(), Messages());
    }

    void aCompoundMessageStopsAtItsFailedPart_data()
    {
        QTest::addColumn<quint32>("type");
        QTest::addColumn<int>("accepted");
        QTest::addColumn<int>("parts");
        for (int accepted = 1; accepted <= 4; ++accepted) {
            QTest::addRow("NRPN after %d", accepted) << 2U << accepted << 4;
            QTest::addRow("RPN after %d", accepted) << 4U << accepted << 4;
            if (accepted < 4) {
                QTest::addRow("bank and program after %d", accepted) << 8U << accepted << 3;
            }
        }
    }
    void aCompoundMessageStopsAtItsFailedPart()
    {
        QFETCH(quint32, type);
        QFETCH(int, accepted);
        QFETCH(int, parts);
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        int left = accepted;
        device.setAnswer([&](int, const QByteArray &) {
            if (--left == 0) {
                LoopbackHub::instance().setRefusing(true);
            }
        });
        TAppMIDIOut output;
        QVERIFY(output.openPort(1));
        QCOMPARE(output.midiOut(shortOutput(type, 1, 0, "01020304")),
                 accepted == parts ? MidiSuccess : MidiFailure);
        QCOMPARE(device.messages().size(), accepted);
    }

    void aDispatchWithoutTheSendBitSendsNothing_data()
    {
        QTest::addColumn<int>("mode");
        QTest::newRow("0") << 0;
        QTest::newRow("2") << 2;
    }
    void aDispatchWithoutTheSendBitSendsNothing()
    {
        QFETCH(int, mode);
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        const tagMPEVENT event = shortOutput(MPEventNoteOn, 1, 0, "3C40");
        // Success even without such a port.
        QCOMPARE(controller.midiOutDispatch(event, static_cast<_MPASYNC_MODE>(mode)), MidiSuccess);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        QCOMPARE(controller.midiOutDispatch(event, static_cast<_MPASYNC_MODE>(mode)), MidiSuccess);
        QCOMPARE(device.messages(), Messages());
    }

    void aDispatchToAPortNeverOpenedOrReleasedFails()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        const tagMPEVENT event = shortOutput(MPEventNoteOn, 1, 0, "3C40");
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiFailure);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiSuccess);
        controller.releasePort(1, 1);
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiFailure);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiSuccess);
        controller.CloseAllOpendPortAndDeleteAllTransporters();
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiFailure);
        QCOMPARE(device.messages().size(), 2);
    }

    void severalEventsGoOutInTheirOrderUpToTheFirstPortThatIsNotOpen()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        QVERIFY(controller.requestPort(1, 2, 0, nullptr));
        const std::vector<tagMPEVENT> events = {
            shortOutput(MPEventNoteOn, 1, 0, "0101"), shortOutput(MPEventNoteOn, 1, 0, "0202"),
            shortOutput(MPEventNoteOn, 2, 0, "0303"), shortOutput(MPEventNoteOn, 1, 0, "0404"),
            shortOutput(MPEventNoteOn, 3, 0, "0505"), shortOutput(MPEventNoteOn, 1, 0, "0606")};
        QCOMPARE(controller.midiOutDispatchAll(events.data(), 0, MPAsyncSend), MidiSuccess);
        QCOMPARE(controller.midiOutDispatchAll(events.data(), events.size(), MPAsyncNone),
                 MidiSuccess);
        QCOMPARE(device.messages(), Messages());
        QCOMPARE(controller.midiOutDispatchAll(events.data(), events.size(), MPAsyncSend),
                 MidiFailure);
        QCOMPARE(device.messages(), (Messages{{1, QByteArray::fromHex("900101")},
                                              {1, QByteArray::fromHex("900202")},
                                              {2, QByteArray::fromHex("900303")},
                                              {1, QByteArray::fromHex("900404")}}));
    }

    void aReceiverThatClosesThePortEndsASeriesOfEvents()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        device.setAnswer([&controller](int, const QByteArray &bytes) {
            if (bytes.endsWith('\x02')) {
                controller.releasePort(1, 1);
            }
        });
        const std::vector<tagMPEVENT> events = {shortOutput(MPEventNoteOn, 1, 0, "0101"),
                                                shortOutput(MPEventNoteOn, 1, 0, "0202"),
                                                shortOutput(MPEventNoteOn, 1, 0, "0303")};
        QCOMPARE(controller.midiOutDispatchAll(events.data(), events.size(), MPAsyncSend),
                 MidiFailure);
        QCOMPARE(device.messages().size(), 2);
    }

    void theLinkIsThatOfTheWorstOpenPort()
    {
        using Link = TMIDITransport::Link;
        auto first = std::make_unique<LoopbackDeviceStub>(QStringLiteral("Synth"), 1);
        auto second = std::make_unique<LoopbackDeviceStub>(QStringLiteral("Other"), 1);
        ComuController controller(nullptr);
        KeepingProcessor processor(1, 6);
        QCOMPARE(controller.portLink(), Link::Connected);
        QVERIFY(controller.setMessageProcessorAndOpenPort(&processor));
        QVERIFY(controller.requestPort(1, 2, 0, nullptr));
        QCOMPARE(controller.portLink(), Link::Connected);
        second.reset();
        QCOMPARE(controller.portLink(), Link::PortAway);
        second = std::make_unique<LoopbackDeviceStub>(QStringLiteral("Other"), 1);
        QCOMPARE(controller.portLink(), Link::Connected);
        first.reset();
        QCOMPARE(controller.portLink(), Link::PortAway);
        // A loopback has nothing to abandon; what is open stays so.
        controller.abandonPorts();
        controller.releasePort(0, 1);
        QCOMPARE(controller.portLink(), Link::Connected);
    }

    void releasingWhatIsNotOpenIsNothing()
    {
        ComuController controller(nullptr);
        controller.releasePort(0, 1);
        controller.releasePort(1, 1);
        controller.CloseAllOpendPortAndDeleteAllTransporters();
    }

    void aRefusedSendCountsAsSentAndIsFoundInTheCount()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        device.unplug();
        const quint64 before = TMIDITransport::outputFailureCount();
        QCOMPARE(controller.midiOutDispatch(shortOutput(MPEventNoteOn, 1, 0, "3C40"), MPAsyncSend),
                 MidiSuccess);
        QCOMPARE(TMIDITransport::outputFailureCount(), before + 1);
    }

    void aReleaseWaitsForTheSendUnderWayAndANewRequestKeepsTheOrder()
    {
        // The mutex of a port lasts over a release and a new request: a sender that waited for it
        // all the while sends on the new transporter, one at a time with everyone else.
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        std::promise<void> entered;
        std::promise<void> go;
        auto goFuture = go.get_future().share();
        std::atomic<int> calls{0};
        std::atomic<bool> hasLeft{false};
        device.setAnswer([&](int, const QByteArray &) {
            if (++calls == 1) {
                entered.set_value();
                goFuture.wait();
                hasLeft = true;
            }
        });
        const tagMPEVENT event = shortOutput(MPEventNoteOn, 1, 0, "3C40");
        std::thread busy([&] { controller.midiOutDispatch(event, MPAsyncSend); });
        entered.get_future().wait();
        std::atomic<bool> wasOver{false};
        std::promise<void> released;
        auto releasedFuture = released.get_future();
        std::thread releaser([&] {
            controller.releasePort(1, 1);
            wasOver = hasLeft.load();
            released.set_value();
            QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        });
        QCOMPARE(releasedFuture.wait_for(std::chrono::milliseconds(100)),
                 std::future_status::timeout);
        go.set_value();
        busy.join();
        releaser.join();
        QVERIFY(wasOver);
        QCOMPARE(controller.midiOutDispatch(event, MPAsyncSend), MidiSuccess);
        QCOMPARE(device.messages().size(), 2);
    }

    void aBusyPortHoldsNobodyUpOnAnotherPort()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        QVERIFY(controller.requestPort(1, 1, 0, nullptr));
        QVERIFY(controller.requestPort(1, 2, 0, nullptr));
        std::promise<void> entered;
        std::promise<void> go;
        device.setAnswer([&](int port, const QByteArray &) {
            if (port == 1) {
                entered.set_value();
                go.get_future().wait();
            }
        });
        std::thread busy([&] {
            controller.midiOutDispatch(shortOutput(MPEventNoteOn, 1, 0, "3C40"), MPAsyncSend);
        });
        entered.get_future().wait();
        QCOMPARE(controller.midiOutDispatch(shortOutput(MPEventNoteOn, 2, 0, "3C40"), MPAsyncSend),
                 MidiSuccess);
        QVERIFY(controller.isPortActive(1, 1));
        go.set_value();
        busy.join();
        QCOMPARE(device.messages().size(), 2);
    }

    void closingAnInputWaitsForTheEventInDelivery()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        ComuController controller(nullptr);
        KeepingProcessor processor(1);
        std::promise<void> entered;
        std::promise<void> go;
        std::atomic<bool> hasLeft{false};
        processor.onEvent = [&] {
            entered.set_value();
            go.get_future().wait();
            hasLeft = true;
        };
        QVERIFY(controller.setMessageProcessorAndOpenPort(&processor));
        device.send(1, hex("FE"));
        entered.get_future().wait();
        std::promise<void> released;
        auto releasedFuture = released.get_future();
        std::thread releaser([&] {
            controller.releasePort(0, 1);
            released.set_value();
        });
        QCOMPARE(releasedFuture.wait_for(std::chrono::milliseconds(100)),
                 std::future_status::timeout);
        go.set_value();
        releaser.join();
        QVERIFY(hasLeft);
    }

    void theListsAreReadAnewAndHoldEncodedNames()
    {
        ComuController controller(nullptr);
        QCOMPARE(controller.getInputPortList(), QStringList());
        LoopbackDeviceStub device(QStringLiteral("Synth"), 1);
        QCOMPARE(controller.portAccessor()->getInputPortList(), QStringList());
        QCOMPARE(controller.getInputPortList(), QStringList{QStringLiteral("1;Synth Port1")});
        QCOMPARE(controller.getOutputPortList(), QStringList{QStringLiteral("1;Synth Port1")});
        device.unplug();
        QCOMPARE(controller.getOutputPortList(), QStringList());
    }

    void sendersOnSeveralThreadsWhilePortsOpenAndClose()
    {
        // For the thread sanitizer. Two senders beside a pusher thread that sends from within
        // delivery, while the owner opens, releases and closes everything.
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        device.setAnswer([&](int port, const QByteArray &) { device.send(port, hex("FE")); });
        ComuController controller(nullptr);
        const tagMPEVENT event = shortOutput(MPEventNoteOn, 5, 0, "3C40");
        KeepingProcessor processor(5);
        processor.onEvent = [&] { controller.midiOutDispatch(event, MPAsyncSend); };
        std::atomic<bool> isOver{false};
        std::atomic<int> sent{0};
        const auto send = [&] {
            while (!isOver) {
                if (controller.midiOutDispatch(event, MPAsyncSend) == MidiSuccess) {
                    ++sent;
                }
            }
        };
        std::thread first(send);
        std::thread second(send);
        for (int i = 0; i < 21 || sent < 100; ++i) {
            QVERIFY(controller.requestPort(1, 5, 0, nullptr));
            QVERIFY(controller.setMessageProcessorAndOpenPort(&processor));
            const int before = sent;
            QTRY_VERIFY_WITH_TIMEOUT(sent > before, 30000);
            if (i % 3 == 0) {
                controller.CloseAllOpendPortAndDeleteAllTransporters();
            } else {
                controller.releasePort(1, 5);
                controller.releasePort(0, 5);
            }
        }
        isOver = true;
        first.join();
        second.join();
        controller.CloseAllOpendPortAndDeleteAllTransporters();
    }
};

QTEST_GUILESS_MAIN(TestComuController)
#include "tst_comucontroller.moc"
