// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/LoopbackHarness.h"
#include "midi/MIDIBinding.h"
#include "midi/TMIDITransport.h"
#include "midi/TUniMIDIPortAccessor.h"
#include "midi/TransportHarness.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

#include <atomic>
#include <future>
#include <thread>

namespace
{

using Messages = QList<LoopbackDeviceStub::Message>;

std::unique_ptr<TMIDITransport> newTransport()
{
    return std::unique_ptr<TMIDITransport>(MIDITransportInstance());
}

bool output(TMIDITransport &transport, const QByteArray &bytes, unsigned char status = 0)
{
    return transport.outputData(static_cast<int>(bytes.size()),
                                reinterpret_cast<const unsigned char *>(bytes.constData()), status);
}

QStringList inputNames()
{
    const std::unique_ptr<TUniMIDIPortAccessor> accessor(MIDIPortAccessor());
    QList<QUuid> ids;
    accessor->qUuids(0, ids);
    QStringList names;
    for (const QUuid &id : std::as_const(ids)) {
        names.append(accessor->encodedName(id));
    }
    return names;
}

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

QList<QByteArray> longBytes(const CollectingReader &reader)
{
    QList<QByteArray> result;
    const QList<SeenEvent> events = reader.events();
    for (const SeenEvent &event : events) {
        result.append(event.longData);
    }
    return result;
}

} // namespace

class TestLoopback : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { LoopbackHub::instance().setRefusing(false); }

    void withoutADeviceThereAreNoPortsAndNothingOpens()
    {
        const std::unique_ptr<TUniMIDIPortAccessor> accessor(MIDIPortAccessor());
        QCOMPARE(accessor->getNumPorts(0), 0);
        QCOMPARE(accessor->getNumPorts(1), 0);
        QCOMPARE(accessor->identifierForIndex(0, 0), QString());
        const auto transport = newTransport();
        CollectingReader reader;
        QVERIFY(!transport->openInput(1, &reader, 0));
        QVERIFY(!transport->openOutput(1));
        QVERIFY(!output(*transport, hex("90")));
    }

    void portsAreNumberedOverAllDevicesInTheOrderOfPlugging()
    {
        LoopbackDeviceStub first(QStringLiteral("Synth"), 2);
        LoopbackDeviceStub second(QStringLiteral("Organ"), 1);
        QVERIFY(first.handle() > 0);
        QVERIFY(second.handle() > first.handle());
        QCOMPARE(inputNames(),
                 (QStringList{QStringLiteral("1;Synth Port1"), QStringLiteral("2;Synth Port2"),
                              QStringLiteral("3;Organ Port1")}));
        const auto out = newTransport();
        QVERIFY(out->openOutput(3));
        QVERIFY(output(*out, hex("903C40")));
        QCOMPARE(second.messages(), (Messages{{1, hex("903C40")}}));
        QCOMPARE(first.messages(), Messages());
        first.unplug();
        QCOMPARE(inputNames(), QStringList{QStringLiteral("1;Organ Port1")});
    }

    void refusesPortNumbersOutsideTheList_data()
    {
        QTest::addColumn<int>("port");
        QTest::newRow("0") << 0;
        QTest::newRow("negative") << -1;
        QTest::newRow("one too many") << 6;
        QTest::newRow("far too many") << 2147483647;
    }
    void refusesPortNumbersOutsideTheList()
    {
        QFETCH(int, port);
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto transport = newTransport();
        CollectingReader reader;
        QVERIFY(!transport->openInput(port, &reader, 0));
        QVERIFY(!transport->openOutput(port));
    }

    void aReceiverGetsTheStatusInFront()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(out->openOutput(5));
        QVERIFY(output(*out, hex("4310F7"), 0xF0));
        QVERIFY(output(*out, hex("4310F7")));
        QVERIFY(output(*out, QByteArray(), 0xFE));
        QVERIFY(!output(*out, QByteArray()));
        QCOMPARE(device.messages(),
                 (Messages{{5, hex("F04310F7")}, {5, hex("4310F7")}, {5, hex("FE")}}));
    }

    void aDeviceReachesEveryoneWhoHasItsPortOpen()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        device.send(1, hex("FE")); // nobody has it open
        CollectingReader one;
        CollectingReader other;
        CollectingReader elsewhere;
        const auto first = newTransport();
        const auto second = newTransport();
        const auto third = newTransport();
        QVERIFY(first->openInput(1, &one, 0));
        QVERIFY(second->openInput(1, &other, 0));
        QVERIFY(third->openInput(2, &elsewhere, 0));
        device.send(1, hex("F04310F7"));
        device.send(0, hex("FE"));
        device.send(6, hex("FE"));
        first->closeInput();
        second->closeInput();
        third->closeInput();
        QCOMPARE(longBytes(one), QList<QByteArray>{hex("4310F7")});
        QCOMPARE(longBytes(other), QList<QByteArray>{hex("4310F7")});
        QCOMPARE(elsewhere.events().size(), 0);
        device.send(1, hex("F04310F7"));
        QCOMPARE(one.events().size(), 1);
    }

    void cutsAMessageIntoChunksWithAPause()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        QByteArray data(2 * 4096 + 10, '\0');
        for (qsizetype i = 0; i < data.size(); ++i) {
            data[i] = static_cast<char>(i % 127);
        }
        QElapsedTimer clock;
        clock.start();
        QVERIFY(output(*out, data, 0xF0));
        QVERIFY(clock.elapsed() >= 2 * TMIDITransport::OutputChunkPauseMs);
        const Messages got = device.messages();
        QCOMPARE(got.size(), 3);
        QCOMPARE(got.at(0).second, '\xF0' + data.left(4095));
        QCOMPARE(got.at(1).second, data.mid(4095, 4096));
        QCOMPARE(got.at(2).second, data.mid(4095 + 4096));
    }

    void aWholeChunkIsSentInOnePiece()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        QVERIFY(output(*out, QByteArray(4095, 'x'), 0xF0));
        QVERIFY(output(*out, QByteArray(4096, 'x')));
        const Messages got = device.messages();
        QCOMPARE(got.size(), 2);
        QCOMPARE(got.at(0).second.size(), 4096);
        QCOMPARE(got.at(1).second.size(), 4096);
    }

    void aRefusalBetweenTwoChunksEndsTheMessage()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        device.setAnswer(
            [](int, const QByteArray &) { LoopbackHub::instance().setRefusing(true); });
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        QVERIFY(!output(*out, QByteArray(3 * 4096, 'x')));
        QCOMPARE(device.messages().size(), 1);
    }

    void refusesAndCountsWhileTold()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        const quint64 before = TMIDITransport::outputFailureCount();
        LoopbackHub::instance().setRefusing(true);
        QVERIFY(!output(*out, hex("903C40")));
        QVERIFY(!output(*out, hex("903C40")));
        QCOMPARE(TMIDITransport::outputFailureCount(), before + 2);
        LoopbackHub::instance().setRefusing(false);
        QVERIFY(output(*out, hex("913C40")));
        QCOMPARE(TMIDITransport::outputFailureCount(), before + 2);
        QCOMPARE(device.messages(), (Messages{{1, hex("913C40")}}));
    }

    void aSendOnAClosedPortIsFalse()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(!output(*out, hex("FE")));
        QVERIFY(out->openOutput(1));
        out->closeOutput();
        QVERIFY(!output(*out, hex("FE")));
        QCOMPARE(device.messages(), Messages());
    }

    void anOpenPortIsTakenUpAgainWhenItsDeviceReturnsUnderANewNumber()
    {
        auto device = std::make_unique<LoopbackDeviceStub>(QStringLiteral("Synth"));
        const auto in = newTransport();
        const auto out = newTransport();
        CollectingReader reader;
        QVERIFY(in->openInput(1, &reader, 0));
        QVERIFY(out->openOutput(5));
        device->unplug();
        const quint64 before = TMIDITransport::outputFailureCount();
        QVERIFY(!output(*out, hex("F04301F7"))); // refused, not queued
        QCOMPARE(TMIDITransport::outputFailureCount(), before + 1);

        LoopbackDeviceStub other(QStringLiteral("Organ"));
        QVERIFY(!output(*out, hex("F04302F7")));
        LoopbackDeviceStub again(QStringLiteral("Synth"));
        QVERIFY(output(*out, hex("F04303F7")));
        again.send(1, hex("F04304F7"));
        other.send(1, hex("F04305F7"));
        QVERIFY(reader.waitCount(1));
        in->closeInput();
        QCOMPARE(again.messages(), (Messages{{5, hex("F04303F7")}}));
        QCOMPARE(other.messages(), Messages());
        QCOMPARE(longBytes(reader), QList<QByteArray>{hex("4304F7")});
    }

    void aPortThatTheReturnedDeviceLacksStaysDead()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(out->openOutput(5));
        device.unplug();
        LoopbackDeviceStub smaller(QStringLiteral("Synth"), 4);
        QVERIFY(!output(*out, hex("FE")));
        smaller.unplug();
        LoopbackDeviceStub whole(QStringLiteral("Synth"), 5);
        QVERIFY(output(*out, hex("FE")));
    }

    void aSecondDeviceOfTheNameDoesNotTakeAnOpenPortAway()
    {
        LoopbackDeviceStub first(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        LoopbackDeviceStub second(QStringLiteral("Synth"));
        QVERIFY(output(*out, hex("FE")));
        QCOMPARE(first.messages().size(), 1);
        QCOMPARE(second.messages().size(), 0);
    }

    void unpluggingTwiceOrWhatIsNotThereIsNothing()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const int handle = device.handle();
        device.unplug();
        LoopbackHub::instance().unplug(handle);
        LoopbackHub::instance().unplug(0);
        LoopbackHub::instance().send(handle, 1, hex("FE"));
    }

    void aDeviceWithoutReceiverTakesEverything()
    {
        const int handle = LoopbackHub::instance().plug(QStringLiteral("Sink"), 1, nullptr);
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        QVERIFY(output(*out, hex("FE")));
        LoopbackHub::instance().unplug(handle);
    }

    void aDeviceAnswersFromWithinItsReceiver()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        std::atomic<Qt::HANDLE> answeredOn{nullptr};
        device.setAnswer([&](int port, const QByteArray &bytes) {
            answeredOn = QThread::currentThreadId();
            device.send(port, bytes);
        });
        const auto in = newTransport();
        const auto out = newTransport();
        CollectingReader reader;
        QVERIFY(in->openInput(5, &reader, 0));
        QVERIFY(out->openOutput(5));
        QVERIFY(output(*out, hex("4310F7"), 0xF0));
        QCOMPARE(answeredOn.load(), QThread::currentThreadId());
        QVERIFY(reader.waitCount(1));
        QCOMPARE(longBytes(reader), QList<QByteArray>{hex("4310F7")});
    }

    void anAnswerReceivedMaySendTheNextMessageAtOnce()
    {
        // The pusher thread sends from within delivery, as a running bulk does, while the device
        // answers each message from within its receiver.
        constexpr int rounds = 500;
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        device.setAnswer([&](int port, const QByteArray &bytes) { device.send(port, bytes); });
        const auto out = newTransport();
        QVERIFY(out->openOutput(5));
        struct Sender : TMIDIReaderRefConInterface
        {
            TMIDITransport *out = nullptr;
            std::promise<void> finished;
            int left = rounds;
            void midiIn(tagMPEVENT *) override
            {
                if (--left == 0) {
                    finished.set_value();
                } else {
                    output(*out, hex("4310F7"), 0xF0);
                }
            }
        } sender;
        sender.out = out.get();
        auto finished = sender.finished.get_future();
        const auto in = newTransport();
        QVERIFY(in->openInput(5, &sender, 0));
        QVERIFY(output(*out, hex("4310F7"), 0xF0));
        QCOMPARE(finished.wait_for(std::chrono::seconds(30)), std::future_status::ready);
        QCOMPARE(device.messages().size(), rounds);
    }

    void aReceiverMaySendOnItsOwnThreadAgain()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        device.setAnswer([&](int, const QByteArray &bytes) {
            if (bytes.size() < 4) {
                output(*out, bytes + 'x');
            }
        });
        QVERIFY(output(*out, "x"));
        QCOMPARE(device.messages().size(), 4);
    }

    void aReceiverMayUnplugItself()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        device.setAnswer([&](int, const QByteArray &) { device.unplug(); });
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        QVERIFY(output(*out, "x"));
        QVERIFY(!output(*out, "y"));
        QCOMPARE(device.messages().size(), 1);
    }

    void unpluggingWaitsForTheCallUnderWay()
    {
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        std::promise<void> entered;
        std::promise<void> go;
        auto goFuture = go.get_future();
        std::atomic<bool> hasLeft{false};
        device.setAnswer([&](int, const QByteArray &) {
            entered.set_value();
            goFuture.wait();
            hasLeft = true;
        });
        const auto out = newTransport();
        QVERIFY(out->openOutput(1));
        std::thread sender([&] { output(*out, "x"); });
        entered.get_future().wait();
        bool wasOver = false;
        std::promise<void> unplugged;
        auto unpluggedFuture = unplugged.get_future();
        std::thread unplugger([&] {
            device.unplug();
            wasOver = hasLeft;
            unplugged.set_value();
        });
        // Gone for newcomers at once, but not done with the call under way.
        QTRY_COMPARE(inputNames(), QStringList());
        QCOMPARE(unpluggedFuture.wait_for(std::chrono::milliseconds(100)),
                 std::future_status::timeout);
        go.set_value();
        unplugger.join();
        sender.join();
        QVERIFY(wasOver);
    }

    void twoThreadsSendingAreTakenOneAtATime()
    {
        constexpr int count = 500;
        LoopbackDeviceStub device(QStringLiteral("Synth"));
        std::atomic<int> inside{0};
        std::atomic<int> collisions{0};
        device.setAnswer([&](int port, const QByteArray &bytes) {
            if (++inside != 1) {
                ++collisions;
            }
            device.send(port, bytes);
            --inside;
        });
        const auto in = newTransport();
        CollectingReader reader;
        QVERIFY(in->openInput(1, &reader, 0));
        const auto run = [&](char mark) {
            const auto out = newTransport();
            QVERIFY(out->openOutput(1));
            for (int i = 0; i < count; ++i) {
                const QByteArray message = QByteArray("\xF0")
                                               .append(mark)
                                               .append(static_cast<char>(i & 0x7F))
                                               .append(static_cast<char>(i >> 7))
                                               .append('\xF7');
                QVERIFY(output(*out, message));
                // Never more under way than the ring holds.
                QVERIFY(reader.waitCount(i));
            }
        };
        std::thread other([&] { run('B'); });
        run('A');
        other.join();
        QVERIFY(reader.waitCount(2 * count));
        in->closeInput();
        QCOMPARE(collisions.load(), 0);
        // Whole, and in order for each sender.
        int next[2] = {0, 0};
        const QList<QByteArray> got = longBytes(reader);
        QCOMPARE(got.size(), 2 * count);
        for (const QByteArray &bytes : got) {
            QCOMPARE(bytes.size(), 4);
            int &expected = next[bytes.at(0) == 'A' ? 0 : 1];
            QCOMPARE(bytes.at(1) + 128 * bytes.at(2), expected);
            ++expected;
        }
    }

    void devicesComeAndGoWhilePortsOpenAndClose()
    {
        // For the thread sanitizer: nothing is promised but that all of it is safe and ends.
        std::atomic<bool> isOver{false};
        std::thread plugging([&] {
            for (int i = 0; i < 200; ++i) {
                LoopbackDeviceStub device(QStringLiteral("Synth"));
                device.setAnswer(
                    [&](int port, const QByteArray &bytes) { device.send(port, bytes); });
                device.send(5, hex("F04310F7"));
            }
            isOver = true;
        });
        std::thread sending([&] {
            while (!isOver) {
                const auto out = newTransport();
                if (out->openOutput(5)) {
                    for (int i = 0; i < 20; ++i) {
                        output(*out, hex("F04310F7"));
                    }
                }
            }
        });
        while (!isOver) {
            CollectingReader reader;
            const auto in = newTransport();
            in->openInput(5, &reader, 0);
            in->closeInput();
            for (const QByteArray &bytes : longBytes(reader)) {
                QCOMPARE(bytes, hex("4310F7"));
            }
        }
        plugging.join();
        sending.join();
    }
};

QTEST_GUILESS_MAIN(TestLoopback)
#include "tst_loopback.moc"
