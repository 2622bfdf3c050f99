// SPDX-License-Identifier: GPL-3.0-or-later
#include "midi/CircularBuffer.h"
#include "midi/TMIDIEventPushThread.h"
#include "midi/TransportHarness.h"

#include <QtTest/QtTest>

#include <future>
#include <optional>
#include <random>
#include <thread>

namespace
{

using Runs = QList<QByteArray>;
using Events = QList<SeenEvent>;

QByteArray hex(const char *text)
{
    return QByteArray::fromHex(text);
}

SeenEvent shortEvent(quint32 type, int channel, const char *data)
{
    return {type, channel, 0, hex(data), QByteArray()};
}

SeenEvent longEvent(quint32 type, const QByteArray &bytes)
{
    return {type, 0, static_cast<quint32>(bytes.size()), QByteArray(4, '\0'), bytes};
}

SeenEvent sysEx(const char *bytes)
{
    return longEvent(MPEventSysEx, hex(bytes));
}

// Says the rules once more, from the message's side instead of the byte's: what a run gives, with
// the part of a message that an earlier run left open.
class ReferenceParser
{
public:
    Events parse(const QByteArray &run)
    {
        Events events;
        qsizetype at = 0;
        while (at < run.size()) {
            const auto byte = static_cast<unsigned char>(run.at(at));
            if (m_open) {
                if (byte >= 0xF8) {
                    ++at;
                } else if (byte >= 0x80) {
                    m_open->append('\xF7');
                    events.append(closed());
                    at += byte == 0xF7 ? 1 : 0;
                } else {
                    takeThroughLastEnd(run, at, at, events);
                }
            } else if (byte == 0xF0 || byte == 0xF7) {
                m_open.emplace();
                takeThroughLastEnd(run, at, at + 1, events);
            } else if (byte == 0xFE) {
                events.append(shortEvent(MPEventActiveSensing, 0, "00FE0000"));
                ++at;
            } else if (byte < 0x80 || byte > 0xF0) {
                ++at; // stray data, a system common message with its data, another real-time byte
            } else {
                const bool isTwoBytes = byte >= 0xC0 && byte < 0xE0;
                const qsizetype length = isTwoBytes ? 2 : 3;
                if (run.size() - at < length) {
                    at = run.size();
                } else {
                    QByteArray data = run.mid(at + 1, length - 1);
                    data.append(QByteArray(4 - data.size(), '\0'));
                    events.append({32U << ((byte >> 4) - 8), byte & 0x0F, 0, data, QByteArray()});
                    at += length;
                }
            }
        }
        return events;
    }

private:
    void takeThroughLastEnd(const QByteArray &run, qsizetype &at, qsizetype from, Events &events)
    {
        const qsizetype end = run.lastIndexOf('\xF7');
        if (end >= from) {
            m_open->append(run.mid(at, end + 1 - at));
            at = end + 1;
            events.append(closed());
        } else {
            m_open->append(run.mid(at));
            at = run.size();
        }
    }
    SeenEvent closed()
    {
        const QByteArray bytes = *m_open;
        m_open.reset();
        return longEvent(bytes.at(0) == '\xF0' ? MPEventSysEx : MPEventSysExContinuation,
                         bytes.mid(1));
    }

    std::optional<QByteArray> m_open;
};

} // namespace

class TestMidiEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthTables_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("length");
        const int high[16] = {1, 1, 1, 1, 1, 1, 1, 1, 3, 3, 3, 3, 2, 2, 3, 1};
        const int low[16] = {1, 1, 3, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
        for (int status = 0; status < 256; ++status) {
            QTest::addRow("%02X", status)
                << status << (status < 0xF0 ? high[status >> 4] : low[status & 0x0F]);
        }
    }
    void lengthTables()
    {
        QFETCH(int, status);
        QTEST(TMIDITransport::midi_msg_length(static_cast<unsigned char>(status)), "length");
    }

    void runs_data()
    {
        QTest::addColumn<Runs>("runs");
        QTest::addColumn<Events>("events");
        const auto note = shortEvent(MPEventNoteOn, 1, "3C400000");

        QTest::newRow("a message in two runs is one event without its 0xF0")
            << Runs{hex("F043"), hex("107F15F7")} << Events{sysEx("43107F15F7")};
        QTest::newRow("a note cut by the end of the run is dropped, and its last byte too")
            << Runs{hex("9040"), hex("7F")} << Events{};
        QTest::newRow("a clock between two runs of a message leaves it unharmed")
            << Runs{hex("F043"), hex("F8"), hex("1020F7")} << Events{sysEx("431020F7")};
        QTest::newRow("a clock at the head of a message's run leaves it unharmed")
            << Runs{hex("F043"), hex("F81020F7")} << Events{sysEx("431020F7")};
        QTest::newRow("every real-time byte leaves an open message unharmed")
            << Runs{hex("F043"), hex("F8F9FAFBFCFDFEFF"), hex("10F7")} << Events{sysEx("4310F7")};
        QTest::newRow("a real-time byte between the bytes of one run stays where it is")
            << Runs{hex("F043F810F7")} << Events{sysEx("43F810F7")};
        QTest::newRow("active sensing has its byte in the second place")
            << Runs{hex("FE")} << Events{shortEvent(MPEventActiveSensing, 0, "00FE0000")};
        QTest::newRow("running status is not supported") << Runs{hex("913C403D40")} << Events{note};
        QTest::newRow("stray data in front of a status is passed over")
            << Runs{hex("3D40913C40")} << Events{note};
        QTest::newRow("two whole messages in one run are one event that holds both")
            << Runs{hex("F043F7F044F7")} << Events{sysEx("43F7F044F7")};
        QTest::newRow("a whole message and the start of the next are split at the last end")
            << Runs{hex("F043F7F044")} << Events{sysEx("43F7")};
        QTest::newRow("the started next message goes on")
            << Runs{hex("F043F7F044"), hex("45F7")} << Events{sysEx("43F7"), sysEx("4445F7")};
        QTest::newRow("a message and a note behind it in one run")
            << Runs{hex("F04310F7913C40")} << Events{sysEx("4310F7"), note};
        QTest::newRow("two notes in one run") << Runs{hex("913C40913C40")} << Events{note, note};
        QTest::newRow("every channel kind")
            << Runs{hex("800102910304A20506B30708C409D50AE60B0C")}
            << Events{shortEvent(MPEventNoteOff, 0, "01020000"),
                      shortEvent(MPEventNoteOn, 1, "03040000"),
                      shortEvent(MPEventPolyPressure, 2, "05060000"),
                      shortEvent(MPEventControlChange, 3, "07080000"),
                      shortEvent(MPEventProgramChange, 4, "09000000"),
                      shortEvent(MPEventChannelPressure, 5, "0A000000"),
                      shortEvent(MPEventPitchBend, 6, "0B0C0000")};
        QTest::newRow("a program change needs two bytes") << Runs{hex("C0"), hex("05")} << Events{};
        QTest::newRow("the last channel is 15")
            << Runs{hex("9F0001")} << Events{shortEvent(MPEventNoteOn, 15, "00010000")};
        QTest::newRow("real-time bytes other than sensing are dropped when idle")
            << Runs{hex("F8F9FAFBFCFDFF913C40")} << Events{note};
        QTest::newRow("system common messages are dropped with their data")
            << Runs{hex("F10102"), hex("F20102"), hex("F301"), hex("F4F5F6913C40")} << Events{note};
        QTest::newRow("a status interrupts a message, which is delivered as complete")
            << Runs{hex("F04310"), hex("913C40")} << Events{sysEx("4310F7"), note};
        QTest::newRow("a system common byte interrupts a message")
            << Runs{hex("F04310"), hex("F301"), hex("913C40")} << Events{sysEx("4310F7"), note};
        QTest::newRow("a new start interrupts a message")
            << Runs{hex("F04310"), hex("F044F7")} << Events{sysEx("4310F7"), sysEx("44F7")};
        QTest::newRow("an end alone in its run ends the message")
            << Runs{hex("F04310"), hex("F7")} << Events{sysEx("4310F7")};
        QTest::newRow("a status behind open data in one run belongs to the message")
            << Runs{hex("F043903C40"), hex("F7")} << Events{sysEx("43903C40F7")};
        QTest::newRow("one byte in each run")
            << Runs{hex("F0"), hex("43"), hex("10"), hex("F7")} << Events{sysEx("4310F7")};
        QTest::newRow("a start and an end are the shortest message")
            << Runs{hex("F0F7")} << Events{sysEx("F7")};
        QTest::newRow("a lone start waits") << Runs{hex("F0")} << Events{};
        QTest::newRow("a lone end opens a continuation, which the next end closes")
            << Runs{hex("F7"), hex("F7")} << Events{longEvent(MPEventSysExContinuation, hex("F7"))};
        QTest::newRow("a continuation with its bytes")
            << Runs{hex("F74310F7")} << Events{longEvent(MPEventSysExContinuation, hex("4310F7"))};
        QTest::newRow("a continuation in pieces")
            << Runs{hex("F743"), hex("10F7")}
            << Events{longEvent(MPEventSysExContinuation, hex("4310F7"))};
        QTest::newRow("a continuation's own first byte does not end it")
            << Runs{hex("F74310"), hex("913C40")}
            << Events{longEvent(MPEventSysExContinuation, hex("4310F7")), note};
        QTest::newRow("an empty run") << Runs{hex("")} << Events{};
    }
    void runs()
    {
        QFETCH(Runs, runs);
        QFETCH(Events, events);
        CollectingReader reader;
        {
            BareTransport transport;
            transport.openInput(1, &reader, 0);
            for (const QByteArray &run : std::as_const(runs)) {
                QCOMPARE(transport.read(static_cast<int>(run.size()), run.constData()), 0);
            }
            // Stopping delivers everything that is in the ring.
        }
        compare(reader.events(), events);
        // The model that the random runs are checked against must say the same.
        ReferenceParser reference;
        Events expected;
        for (const QByteArray &run : std::as_const(runs)) {
            expected += reference.parse(run);
        }
        compare(expected, events);
    }

    void aLengthBelowOneIsNothing()
    {
        CollectingReader reader;
        BareTransport transport;
        transport.openInput(1, &reader, 0);
        QCOMPARE(transport.read(0, nullptr), 0);
        QCOMPARE(transport.read(-1, nullptr), 0);
        QCOMPARE(transport.read(-2147483647, "\xFE"), 0);
        transport.closeInput();
        QCOMPARE(reader.events().size(), 0);
    }

    void aMessageLeftInProgressIsFreedAtTheEnd()
    {
        // Seen by the address sanitizer.
        CollectingReader reader;
        auto transport = std::make_unique<BareTransport>();
        transport->openInput(1, &reader, 0);
        transport->feed(hex("F043F7F044"));
        transport.reset();
        compare(reader.events(), {sysEx("43F7")});
    }

    void withoutAThreadEveryEventIsDroppedAndFreed()
    {
        BareTransport transport;
        transport.feed(hex("F0431020F7FE913C40"));
        transport.feed(hex("F043"));
        CollectingReader reader;
        transport.openInput(1, &reader, 0);
        transport.feed(hex("44F7"));
        transport.closeInput();
        compare(reader.events(), {sysEx("4344F7")});
    }

    void withoutAReaderEventsAreTakenAndFreed()
    {
        BareTransport transport;
        transport.openInput(1, nullptr, 0);
        transport.feed(hex("F0431020F7FE913C40"));
        transport.closeInput();
    }

    void stepsOfTheParserConsumeWhatTheySay()
    {
        BareTransport transport;
        const auto bytes = [](const QByteArray &run) {
            return reinterpret_cast<const unsigned char *>(run.constData());
        };
        const QByteArray note = hex("913C40");
        QCOMPARE(transport.readShort(3, bytes(note)), 3);
        QCOMPARE(transport.readShort(2, bytes(note)), 2);
        const QByteArray clock = hex("F8");
        QCOMPARE(transport.readShort(1, bytes(clock)), 1);
        const QByteArray stray = hex("4041");
        QCOMPARE(transport.readLong(2, bytes(stray)), 2);
        const QByteArray message = hex("F043F7F044");
        QCOMPARE(transport.readLong(5, bytes(message)), 3);
        const QByteArray open = hex("F04310");
        QCOMPARE(transport.readLong(3, bytes(open)), 3);
        QCOMPARE(transport.pushLongEvent(bytes(note)), 0);
        QCOMPARE(transport.readLong(3, bytes(open)), 3);
        const QByteArray end = hex("F7");
        QCOMPARE(transport.pushLongEvent(bytes(end)), 1);
    }

    void anOverLongMessageIsDroppedWhole_data()
    {
        QTest::addColumn<Runs>("runs");
        QTest::addColumn<Events>("events");
        const QByteArray million(TMIDITransport::MaximumSysExBytes, 'x');
        const QByteArray fits = million.left(million.size() - 2);
        const auto note = shortEvent(MPEventNoteOn, 1, "3C400000");

        QTest::newRow("the longest message passes")
            << Runs{'\xF0' + fits + '\xF7'} << Events{longEvent(MPEventSysEx, fits + '\xF7')};
        QTest::newRow("one byte more does not, and the next message passes")
            << Runs{"\xF0x" + fits + '\xF7', hex("913C40")} << Events{note};
        QTest::newRow("in pieces") << Runs{'\xF0' + fits, hex("7879F7913C40")} << Events{note};
        QTest::newRow("a synthetic end that does not fit")
            << Runs{"\xF0x" + fits, hex("913C40")} << Events{note};
        QTest::newRow("without an end, up to the next status")
            << Runs{'\xF0' + million, million, hex("70913C40")} << Events{note};
        QTest::newRow("its own end opens no continuation")
            << Runs{'\xF0' + million, million, hex("70F7913C40"), hex("4344")} << Events{note};
        QTest::newRow("its own end alone in a run opens no continuation")
            << Runs{'\xF0' + million, hex("F7"), hex("4344"), hex("913C40")} << Events{note};
        QTest::newRow("real-time bytes in its rest are dropped as in any message")
            << Runs{'\xF0' + million, hex("FE"), hex("70"), hex("F7"), hex("FE")}
            << Events{shortEvent(MPEventActiveSensing, 0, "00FE0000")};
        QTest::newRow("a new message behind it begins anew")
            << Runs{'\xF0' + million, hex("F04344F7")} << Events{sysEx("4344F7")};
        QTest::newRow("a sender that never ends it")
            << Runs{'\xF0' + million, million, million, million, million} << Events{};
    }
    void anOverLongMessageIsDroppedWhole()
    {
        QFETCH(Runs, runs);
        QFETCH(Events, events);
        CollectingReader reader;
        BareTransport transport;
        transport.openInput(1, &reader, 0);
        for (const QByteArray &run : std::as_const(runs)) {
            transport.feed(run);
        }
        transport.closeInput();
        compare(reader.events(), events);
    }

    void randomRunsAreParsedAsTheReferenceSays_data()
    {
        QTest::addColumn<int>("seed");
        QTest::addColumn<bool>("isDense");
        for (int seed = 1; seed <= 30; ++seed) {
            QTest::addRow("any bytes, seed %d", seed) << seed << false;
            QTest::addRow("mostly message bytes, seed %d", seed) << seed << true;
        }
    }
    void randomRunsAreParsedAsTheReferenceSays()
    {
        QFETCH(int, seed);
        QFETCH(bool, isDense);
        std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
        const auto below = [&](int bound) {
            return static_cast<int>(random() % static_cast<unsigned>(bound));
        };
        static const unsigned char likely[] = {0xF0, 0xF7, 0xF8, 0xFE, 0x90, 0xC0, 0xF2, 0x43,
                                               0x10, 0x7F, 0x00, 0x20, 0x60, 0x31, 0x05, 0x44};
        CollectingReader reader;
        BareTransport transport;
        transport.openInput(1, &reader, 0);
        ReferenceParser reference;
        for (int round = 0; round < 60; ++round) {
            // One stream, cut at random places.
            QByteArray stream;
            const int size = 1 + below(600);
            for (int i = 0; i < size; ++i) {
                stream.append(static_cast<char>(isDense ? likely[below(16)] : below(256)));
            }
            Events expected;
            for (qsizetype at = 0; at < stream.size();) {
                const qsizetype length = 1 + below(below(4) == 0 ? 200 : 6);
                const QByteArray run = stream.mid(at, length);
                transport.feed(run);
                expected += reference.parse(run);
                at += run.size();
            }
            // Fewer than the ring holds, so that none is lost.
            QVERIFY(expected.size() < 900);
            QVERIFY(reader.waitCount(expected.size()));
            compare(reader.events(), expected);
            reader.clear();
        }
    }

    void aNewEventIsDroppedWith959RecordsInTheRing()
    {
        CollectingReader reader;
        BareTransport transport;
        QCOMPARE(transport.inputRoom(), 0);
        transport.openInput(1, &reader, 0);
        QCOMPARE(transport.inputRoom(), 959);
        fillRing(transport, reader);
        QCOMPARE(transport.inputRoom(), 0);
        // 72 bytes are free, and one event more needs twice that.
        transport.feed(hex("FE"));
        transport.feed(hex("F04344F7"));
        reader.hold(false);
        QVERIFY(reader.waitCount(960));
        // A ring that has emptied takes events again.
        transport.feed(hex("C07F"));
        QVERIFY(reader.waitCount(961));
        transport.closeInput();
        const Events events = reader.events();
        QCOMPARE(events.size(), 961);
        // The newest were lost, not the oldest.
        for (int i = 0; i < 960; ++i) {
            QCOMPARE(events.at(i).shortData, numbered(i));
        }
        QCOMPARE(events.at(960), shortEvent(MPEventProgramChange, 0, "7F000000"));
    }

    void stopsWithAFullRing()
    {
        CollectingReader reader;
        BareTransport transport;
        transport.openInput(1, &reader, 0);
        fillRing(transport, reader);
        std::promise<void> stopped;
        auto stoppedFuture = stopped.get_future();
        std::thread stopper([&] {
            // The stop record has its place although the ring takes no event.
            transport.stopPusherThread();
            stopped.set_value();
        });
        QCOMPARE(stoppedFuture.wait_for(std::chrono::milliseconds(100)),
                 std::future_status::timeout);
        reader.hold(false);
        stopper.join();
        // Everything in front of the stop record was delivered.
        QCOMPARE(reader.events().size(), 960);
    }

    void stoppingWaitsForTheEventInDelivery()
    {
        CollectingReader reader;
        BareTransport transport;
        transport.openInput(1, &reader, 0);
        reader.hold(true);
        transport.feed(hex("FE"));
        QVERIFY(reader.waitEntered(1));
        std::promise<void> stopped;
        auto stoppedFuture = stopped.get_future();
        std::thread stopper([&] {
            transport.stopPusherThread();
            stopped.set_value();
        });
        QCOMPARE(stoppedFuture.wait_for(std::chrono::milliseconds(100)),
                 std::future_status::timeout);
        reader.hold(false);
        stopper.join();
        QCOMPARE(reader.events().size(), 1);
    }

    void stopsTwiceAndStartsAgain()
    {
        CollectingReader reader;
        BareTransport transport;
        transport.openInput(1, &reader, 0);
        QVERIFY(transport.startPusherThread());
        transport.feed(hex("FE"));
        transport.stopPusherThread();
        transport.stopPusherThread();
        transport.openInput(1, &reader, 0);
        transport.feed(hex("FE"));
        transport.stopPusherThread();
        QCOMPARE(reader.events().size(), 2);
    }

    void recordsLeftInTheRingAreFreed()
    {
        // Seen by the address sanitizer.
        BareTransport transport;
        TMIDIEventPushThread thread(&transport);
        tagMPEVENT event;
        event.eventType = MPEventSysEx;
        event.longData = reinterpret_cast<unsigned char *>(new QByteArray("left behind"));
        event.length = 10;
        thread.ring().write(&event, sizeof event);
        QCOMPARE(thread.ring().size(), 69120);
    }

    void aStopRecordEndsTheThreadInFrontOfWhatFollows()
    {
        BareTransport transport;
        TMIDIEventPushThread thread(&transport);
        const tagMPEVENT stop;
        tagMPEVENT event;
        event.eventType = MPEventSysEx;
        event.longData = reinterpret_cast<unsigned char *>(new QByteArray("behind the stop"));
        event.length = 14;
        thread.ring().write(&stop, sizeof stop);
        thread.ring().write(&event, sizeof event);
        thread.start();
        QVERIFY(thread.wait(30000));
        joinedThread(&thread);
        QCOMPARE(thread.ring().avail(), static_cast<int>(sizeof event));
    }

    void callbackAndOwnerOnTheirOwnThreads()
    {
        // Many short lives of a transport with a callback that never stops talking while open.
        for (int life = 0; life < 30; ++life) {
            CollectingReader reader;
            BareTransport transport;
            transport.openInput(1, &reader, 0);
            std::thread callback([&] {
                for (int i = 0; i < 300; ++i) {
                    transport.feed(hex("F04310"));
                    transport.feed(hex("FE"));
                    transport.feed(hex("20F7913C40"));
                }
            });
            if (life % 2 == 0) {
                QVERIFY(reader.waitCount(10));
            }
            callback.join();
            transport.closeInput();
            const Events events = reader.events();
            for (const SeenEvent &event : events) {
                QVERIFY(event == sysEx("431020F7") ||
                        event == shortEvent(MPEventNoteOn, 1, "3C400000"));
            }
        }
    }

    void refusalsAreCountedOverAllTransports()
    {
        BareTransport first;
        BareTransport second;
        const quint64 before = TMIDITransport::outputFailureCount();
        const unsigned char byte = 1;
        QVERIFY(first.outputData(1, &byte, 0));
        QCOMPARE(TMIDITransport::outputFailureCount(), before);
        first.setSending(false);
        second.setSending(false);
        QVERIFY(!first.outputData(1, &byte, 0));
        QVERIFY(!second.outputData(1, &byte, 0));
        QCOMPARE(TMIDITransport::outputFailureCount(), before + 2);
    }

private:
    static void compare(const Events &got, const Events &expected)
    {
        const auto text = [](const Events &events) {
            QStringList lines;
            for (const SeenEvent &event : events) {
                lines.append(QStringLiteral("%1/%2/%3/%4/%5")
                                 .arg(event.type, 0, 16)
                                 .arg(event.channel)
                                 .arg(event.length)
                                 .arg(QString::fromLatin1(event.shortData.toHex()),
                                      QString::fromLatin1(event.longData.left(40).toHex())));
            }
            return lines;
        };
        QCOMPARE(text(got), text(expected));
        QVERIFY(got == expected);
    }

    static QByteArray numbered(int i)
    {
        return QByteArray()
            .append(static_cast<char>(i & 0x7F))
            .append(static_cast<char>(i >> 7))
            .append(2, '\0');
    }

    // One event in delivery, held there, and 959 records behind it.
    static void fillRing(BareTransport &transport, CollectingReader &reader)
    {
        reader.hold(true);
        const auto feed = [&](int i) {
            transport.feed(QByteArray("\x90").append(numbered(i).left(2)));
        };
        feed(0);
        QVERIFY(reader.waitEntered(1));
        for (int i = 1; i < 960; ++i) {
            feed(i);
        }
    }
};

QTEST_GUILESS_MAIN(TestMidiEvents)
#include "tst_midievents.moc"
