// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstrumentTestTools.h"

#include <QtTest/QTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace EditorSide;

namespace
{

constexpr int Port = VirtualInstrument::MessagePort;
const QByteArray Ack = hex("F0 43 60 02 F7");
const QByteArray FlagUp = hex("F0 43 10 7F 15 01 23 00 01 F7");

FaultPlan planOf(const QByteArrayList &rules)
{
    FaultPlan plan;
    for (const QByteArray &rule : rules) {
        QString error;
        if (!plan.add(QString::fromLatin1(rule), &error)) {
            qFatal("%s", error.toLatin1().constData());
        }
    }
    return plan;
}

QByteArray dumpOf(char type, int number)
{
    QByteArray dump = header(type, number) + templateBlock("Name", "Vsti", 1);
    for (int k = 0; k < 12; ++k) {
        dump += knobBlock(k, "10000000" + QByteArray(1, static_cast<char>('0' + k % 10)),
                          "Knob " + QByteArray::number(k), static_cast<char>(100 + k), 1);
    }
    return dump + footer(type, number);
}

// What dumpOf() leaves.
InstrumentTemplate dumped()
{
    InstrumentTemplate t;
    t.templateName.set("Name");
    t.vstiName.set("Vsti");
    t.controlType = 1;
    for (int k = 0; k < 12; ++k) {
        InstrumentKnob &knob = t.knobs[static_cast<std::size_t>(k)];
        knob.remoteId.set("10000000" + QByteArray(1, static_cast<char>('0' + k % 10)));
        knob.displayName.set("Knob " + QByteArray::number(k));
        knob.ccNumber = static_cast<quint8>(100 + k);
        knob.displayFormat = 1;
    }
    return t;
}

} // namespace

class TestVirtualInstrument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTurnedKnobPlaysItsControlChangeOnThePlayingPort()
    {
        InstrumentMemory memory;
        memory.currentTemplate = 3;
        memory.editBuffer[3].controlType = 1;
        memory.editBuffer[3].knobs[11].ccNumber = 74;
        VirtualInstrument instrument(memory);
        Recorder recorder(instrument);
        QVERIFY(instrument.turnKnob(11, 100));
        QCOMPARE(recorder.all().size(), 1);
        QCOMPARE(recorder.all().first().port, VirtualInstrument::PlayPort);
        QCOMPARE(recorder.take().first(), hex("B0 4A 64"));
        QCOMPARE(instrument.contents(), memory);
        QVERIFY(!instrument.turnKnob(12, 0));
        QVERIFY(!instrument.turnKnob(-1, 0));
        QVERIFY(!instrument.turnKnob(0, 128));
        QVERIFY(!instrument.turnKnob(0, -1));
        QVERIFY(recorder.take().isEmpty());
    }

    void aTurnedKnobOfARemoteTemplateSendsNothing()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        QVERIFY(instrument.turnKnob(0, 1));
        QVERIFY(recorder.take().isEmpty());
    }

    void aSilentInstrumentPlaysNothing()
    {
        InstrumentMemory memory;
        memory.editBuffer[0].controlType = 1;
        VirtualInstrument instrument(memory);
        Recorder recorder(instrument);
        instrument.fallSilent();
        QVERIFY(instrument.turnKnob(0, 1));
        instrument.comeBack();
        QVERIFY(instrument.turnKnob(0, 2));
        QCOMPARE(recorder.take(), QList<QByteArray>{hex("B0 00 02")});
    }

    void aBulkRequestIsAnsweredByHeaderThirteenBlocksAndFooter()
    {
        InstrumentMemory memory;
        memory.stored[0].knobs[0].remoteId.set("");
        VirtualInstrument instrument(memory);
        Recorder recorder(instrument);
        instrument.receive(Port, bulkRequest(0x60, 0));
        const QList<QByteArray> sent = recorder.take();
        QCOMPARE(sent.size(), 15);
        QCOMPARE(sent.at(0), hex("F0 43 00 7F 15 00 00 0E 60 00 12 F7"));
        QCOMPARE(sent.at(1), hex("F0 43 00 7F 15 00 1B 01 00 00"
                                 "20 20 20 20 20 20 20 20 20 20 20 20 20"
                                 "20 20 20 20 20 20 20 20 20 20 20 20 00 00 44 F7"));
        QCOMPARE(sent.at(2), hex("F0 43 00 7F 15 00 1A 01 10 00"
                                 "20 20 20 20 20 20 20 20 20"
                                 "20 20 20 20 20 20 20 20 20 20 20 20 20 20 20 00 00 55 F7"));
        for (int k = 1; k < 12; ++k) {
            // The identifier's sum is 25E, fifteen blanks 1E0: the checksum falls with the address.
            QByteArray expected = hex("F0 43 00 7F 15 00 1A 01 10 00"
                                      "32 30 34 31 34 33 64 66 66"
                                      "20 20 20 20 20 20 20 20 20 20 20 20 20 20 20 00 00 17 F7");
            expected[8] = static_cast<char>(0x10 + k);
            expected[36] = static_cast<char>(0x17 - k);
            QCOMPARE(sent.at(2 + k).toHex(' '), expected.toHex(' '));
        }
        QCOMPARE(sent.at(14), hex("F0 43 00 7F 15 00 00 0F 60 00 11 F7"));
        QByteArray all;
        for (const QByteArray &message : sent) {
            all += message;
        }
        QCOMPARE(all.size(), 519);
    }

    void storedAndEditBufferAreServedByTheirType()
    {
        InstrumentMemory memory;
        memory.stored[7].controlType = 1;
        memory.editBuffer[7].reserved = 9;
        VirtualInstrument instrument(memory);
        Recorder recorder(instrument);
        instrument.receive(Port, bulkRequest(0x60, 7) + bulkRequest(0x6F, 7));
        const QList<QByteArray> sent = recorder.take();
        QCOMPARE(sent.size(), 30);
        QCOMPARE(sent.at(1).mid(35, 2), hex("01 00"));
        QCOMPARE(sent.at(16).mid(35, 2), hex("00 09"));
        QCOMPARE(sent.at(15), hex("F0 43 00 7F 15 00 00 0E 6F 07 7C F7"));
        QCOMPARE(instrument.counters().bulkRequests, 2);
        QCOMPARE(instrument.counters().sentMessages, 30);
    }

    void parameterRequestsOfTheCurrentTemplateAreAnswered()
    {
        InstrumentMemory memory = randomMemory(3);
        memory.currentTemplate = 33;
        memory.editFlag = true;
        VirtualInstrument instrument(memory);
        Recorder recorder(instrument);
        const InstrumentTemplate &t = memory.editBuffer[33];
        const auto answered = [&](int mid, int low) {
            instrument.receive(Port, request(static_cast<char>(mid), static_cast<char>(low)));
            return recorder.take().value(0);
        };
        const QByteArray names = t.templateName.padded() + t.vstiName.padded();
        for (int low = 0; low < 25; ++low) {
            QCOMPARE(answered(0, low),
                     hex("F0 43 10 7F 15 01 00") + static_cast<char>(low) + names.at(low) + '\xF7');
        }
        QCOMPARE(answered(0, 0x19),
                 hex("F0 43 10 7F 15 01 00 19") + static_cast<char>(t.controlType) + '\xF7');
        QCOMPARE(answered(0, 0x1A), hex("F0 43 10 7F 15 01 00 1A 00 F7"));
        for (int k = 0; k < 12; ++k) {
            const InstrumentKnob &knob = t.knobs[static_cast<std::size_t>(k)];
            const QByteArray start = hex("F0 43 10 7F 15 01") + static_cast<char>(0x10 + k);
            for (int low = 0; low < 9; ++low) {
                QCOMPARE(answered(0x10 + k, low), start + '\0' + knob.remoteId.padded() + '\xF7');
            }
            for (int low = 9; low < 24; ++low) {
                QCOMPARE(answered(0x10 + k, low), start + static_cast<char>(low) +
                                                      knob.displayName.padded().at(low - 9) +
                                                      '\xF7');
            }
            QCOMPARE(answered(0x10 + k, 24),
                     start + '\x18' + static_cast<char>(knob.ccNumber) + '\xF7');
            QCOMPARE(answered(0x10 + k, 25),
                     start + '\x19' + static_cast<char>(knob.displayFormat) + '\xF7');
        }
        QCOMPARE(answered(0x20, 0), hex("F0 43 10 7F 15 01 20 00 21 F7"));
        QCOMPARE(answered(0x23, 0), hex("F0 43 10 7F 15 01 23 00 01 F7"));
        QCOMPARE(instrument.counters().parameterRequests, 27 + 12 * 26 + 2);
        for (const auto &[mid, low] :
             {std::pair{0, 0x1B}, {0x10, 0x1A}, {0x1C, 0}, {0x20, 1}, {0x22, 0}, {0x23, 1}}) {
            QCOMPARE(answered(mid, low), QByteArray());
        }
        QCOMPARE(instrument.counters().refusedMessages, 6);
    }

    void aDumpIsTakenAndAcknowledgedAfterItsFooter_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("runLength");
        for (const int runLength : {1, 5, 519}) {
            QTest::addRow("stored, %d bytes at a time", runLength) << 0x60 << runLength;
            QTest::addRow("edit buffer, %d bytes at a time", runLength) << 0x6F << runLength;
        }
    }
    void aDumpIsTakenAndAcknowledgedAfterItsFooter()
    {
        QFETCH(int, type);
        QFETCH(int, runLength);
        InstrumentMemory expected = randomMemory(1);
        VirtualInstrument instrument(expected);
        Recorder recorder(instrument);
        const QByteArray dump = dumpOf(static_cast<char>(type), 49);
        QCOMPARE(dump.size(), 519);
        for (qsizetype at = 0; at < dump.size(); at += runLength) {
            QCOMPARE(recorder.take(), QList<QByteArray>());
            instrument.receive(Port, dump.mid(at, runLength));
        }
        QCOMPARE(recorder.take(), (QList<QByteArray>{FlagUp, Ack}));
        (type == 0x60 ? expected.stored : expected.editBuffer)[49] = dumped();
        expected.editFlag = true;
        QCOMPARE(instrument.contents(), expected);
        VirtualInstrument::Counters counters;
        counters.headers = counters.footers = counters.acknowledgedDumps = 1;
        counters.blocks = 13;
        counters.sentMessages = 2;
        QCOMPARE(instrument.counters(), counters);
    }

    void badBlocksAreNotTakenAndTheDumpIsAcknowledged_data()
    {
        QTest::addColumn<QByteArray>("block");
        QByteArray wrongSum = knobBlock(2, "123456789", "Name", 5, 1);
        wrongSum[36] = static_cast<char>(wrongSum.at(36) ^ 1);
        QTest::newRow("wrong checksum") << wrongSum;
        QTest::newRow("a byte short") << bulk(hex("01 12 00"), QByteArray(25, '1'));
        QTest::newRow("a byte long") << bulk(hex("01 12 00"), QByteArray(27, '\1'));
        QTest::newRow("display format 2") << knobBlock(2, "123456789", "Name", 5, 2);
        QTest::newRow("a thirteenth knob") << knobBlock(12, "123456789", "Name", 5, 1);
        QTest::newRow("not at the start") << bulk(hex("01 12 01"), QByteArray(26, '\1'));
    }
    void badBlocksAreNotTakenAndTheDumpIsAcknowledged()
    {
        QFETCH(QByteArray, block);
        const InstrumentMemory before = randomMemory(1);
        VirtualInstrument instrument(before);
        Recorder recorder(instrument);
        instrument.receive(Port, header(0x60, 5) + block + footer(0x60, 5));
        QCOMPARE(recorder.take(), QList<QByteArray>{Ack});
        QCOMPARE(instrument.contents(), before);
        QCOMPARE(instrument.counters().refusedBlocks, 1);
        QCOMPARE(instrument.counters().blocks, 0);
    }

    void withoutADumpThereIsNothingToTakeOrAcknowledge()
    {
        const InstrumentMemory before = randomMemory(1);
        VirtualInstrument instrument(before);
        Recorder recorder(instrument);
        const QByteArray block = templateBlock("x", "y", 1);
        instrument.receive(Port, block + footer(0x60, 5));
        // A header for another template, for another kind, or that is broken.
        instrument.receive(Port, header(0x60, 4) + footer(0x60, 5) + block);
        instrument.receive(Port, header(0x6F, 5) + footer(0x60, 5) + footer(0x6F, 5));
        QByteArray broken = header(0x60, 5);
        broken[10] = static_cast<char>(broken.at(10) ^ 1);
        instrument.receive(Port, broken + block + footer(0x60, 5));
        QCOMPARE(recorder.take(), QList<QByteArray>());
        QCOMPARE(instrument.contents(), before);
        QCOMPARE(instrument.counters().refusedBlocks, 3);
    }

    void aNewHeaderBeginsANewDump()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.receive(Port, header(0x60, 1) + dumpOf(0x60, 2));
        QCOMPARE(recorder.take(), (QList<QByteArray>{FlagUp, Ack}));
        QCOMPARE(instrument.contents().stored[1], InstrumentTemplate());
        QCOMPARE(instrument.contents().stored[2], dumped());
    }

    void changesGoIntoTheCurrentTemplateOfTheEditBuffer()
    {
        InstrumentMemory expected = randomMemory(5);
        VirtualInstrument instrument(expected);
        Recorder recorder(instrument);
        InstrumentTemplate &t =
            expected.editBuffer[static_cast<std::size_t>(expected.currentTemplate)];
        instrument.receive(Port, change(0x1B, 0x18, hex("63")) + change(0x10, 0x19, hex("01")) +
                                     change(0x11, 0x00, "0deadbeef") +
                                     change(0x00, 0x19, hex("01")) + change(0x00, 0x00, "Q") +
                                     change(0x00, 0x18, "R") + change(0x12, 0x17, "S") +
                                     change(0x00, 0x1A, hex("07")));
        t.knobs[11].ccNumber = 99;
        t.knobs[0].displayFormat = 1;
        t.knobs[1].remoteId.set("0deadbeef");
        t.controlType = 1;
        t.templateName.bytes[0] = 'Q';
        t.vstiName.bytes[11] = 'R';
        t.knobs[2].displayName.bytes[14] = 'S';
        t.reserved = 7;
        expected.editFlag = true;
        QCOMPARE(instrument.contents(), expected);
        QCOMPARE(recorder.take(), QList<QByteArray>{FlagUp});
        QCOMPARE(instrument.counters().changes, 8);

        instrument.receive(Port, change(0x00, 0x19, hex("02")) + change(0x30, 0x00, hex("01")) +
                                     change(0x11, 0x01, "0deadbeef"));
        QCOMPARE(instrument.contents(), expected);
        QCOMPARE(instrument.counters().refusedMessages, 3);
    }

    void theFlagTellsThatTheEditBufferHoldsWhatIsNotStored()
    {
        const QByteArray flagDown = hex("F0 43 10 7F 15 01 23 00 00 F7");
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        // A change to what is there already is none, and neither is another template.
        instrument.receive(Port, change(0x10, 0x18, hex("00")));
        QCOMPARE(recorder.take(), QList<QByteArray>());
        instrument.receive(Port, change(0x20, 0, hex("02")));
        QCOMPARE(recorder.take().size(), 1);
        QVERIFY(!instrument.contents().editFlag);

        instrument.receive(Port, change(0x10, 0x18, hex("07")) + change(0x10, 0x18, hex("08")));
        QCOMPARE(recorder.take(), QList<QByteArray>{FlagUp});
        instrument.receive(Port, Store);
        QCOMPARE(recorder.take(), QList<QByteArray>{flagDown});
        QCOMPARE(instrument.contents().stored[2].knobs[0].ccNumber, 8);

        // A whole document that is the same in both memories has nothing to store in the end.
        instrument.receive(Port, dumpOf(0x6F, 2));
        QCOMPARE(recorder.take(), (QList<QByteArray>{FlagUp, Ack}));
        instrument.receive(Port, dumpOf(0x6F, 2));
        QCOMPARE(recorder.take(), QList<QByteArray>{Ack});
        instrument.receive(Port, dumpOf(0x60, 2));
        QCOMPARE(recorder.take(), (QList<QByteArray>{flagDown, Ack}));
        QVERIFY(!instrument.contents().editFlag);
    }

    void aChangeOfTheCurrentTemplateIsEchoed()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.receive(Port, change(0x20, 0, hex("31")) + change(0x20, 0, hex("31")));
        const QByteArray echo = hex("F0 43 10 7F 15 01 20 00 31 F7");
        QCOMPARE(recorder.take(), (QList<QByteArray>{echo, echo}));
        QCOMPARE(instrument.contents().currentTemplate, 49);
        instrument.receive(Port, change(0x20, 0, hex("32")) + change(0x20, 0, "204143dff"));
        QCOMPARE(recorder.take(), QList<QByteArray>());
        QCOMPARE(instrument.contents().currentTemplate, 49);
    }

    void aStoreCopiesTheEditBufferAndLowersTheFlag()
    {
        InstrumentMemory memory = randomMemory(2);
        memory.editFlag = true;
        VirtualInstrument instrument(memory);
        Recorder recorder(instrument);
        instrument.receive(Port, Store);
        QCOMPARE(recorder.take(), QList<QByteArray>{hex("F0 43 10 7F 15 01 23 00 00 F7")});
        memory.stored = memory.editBuffer;
        memory.editFlag = false;
        QCOMPARE(instrument.contents(), memory);
        instrument.receive(Port, StoreToFlash);
        QCOMPARE(recorder.take(), QList<QByteArray>());
        QCOMPARE(instrument.contents(), memory);
        QCOMPARE(instrument.counters().stores, 1);
        QCOMPARE(instrument.counters().storesToFlash, 1);
    }

    void storePressedAtTheInstrument()
    {
        InstrumentMemory memory = randomMemory(2);
        memory.editFlag = true;
        VirtualInstrument instrument(memory);
        Recorder recorder(instrument);
        instrument.pressStore();
        QCOMPARE(recorder.take(), (QList<QByteArray>{hex("F0 43 10 7F 15 01 22 00 F7"),
                                                     hex("F0 43 10 7F 15 01 23 00 00 F7")}));
        QCOMPARE(instrument.contents().stored, memory.editBuffer);
        QVERIFY(!instrument.contents().editFlag);
    }

    void ownEditsChangeSendAndReportTheFlag()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        QVERIFY(instrument.selectTemplate(2));
        QCOMPARE(recorder.take(), QList<QByteArray>{hex("F0 43 10 7F 15 01 20 00 02 F7")});
        QVERIFY(!instrument.contents().editFlag);

        QVERIFY(instrument.setCCNumber(11, 127));
        QCOMPARE(recorder.take(),
                 (QList<QByteArray>{hex("F0 43 10 7F 15 01 1B 18 7F F7"), FlagUp}));
        QVERIFY(instrument.contents().editFlag);
        QVERIFY(instrument.setDisplayFormat(0, 1));
        QCOMPARE(recorder.take(),
                 (QList<QByteArray>{hex("F0 43 10 7F 15 01 10 19 01 F7"), FlagUp}));
        QVERIFY(instrument.setControlType(1));
        QCOMPARE(recorder.take(),
                 (QList<QByteArray>{hex("F0 43 10 7F 15 01 00 19 01 F7"), FlagUp}));
        QVERIFY(instrument.setRemoteId(4, QStringLiteral("100000401")));
        QCOMPARE(recorder.take(),
                 (QList<QByteArray>{hex("F0 43 10 7F 15 01 14 00 31 30 30 30 30 30 34 30 31 F7"),
                                    FlagUp}));

        const auto byCharacter = [&](char mid, int low, const QByteArray &text) {
            QList<QByteArray> messages;
            for (const char c : text) {
                messages.append(hex("F0 43 10 7F 15 01") + mid + static_cast<char>(low++) + c +
                                '\xF7');
            }
            messages.append(FlagUp);
            return messages;
        };
        QVERIFY(instrument.setKnobName(1, QStringLiteral("Cut \u00E9")));
        QCOMPARE(recorder.take(), byCharacter(0x11, 9, "Cut ?          "));
        instrument.setTemplateName(QStringLiteral("A name that is too long"));
        QCOMPARE(recorder.take(), byCharacter(0x00, 0, "A name that i"));
        instrument.setVstiName(QString());
        QCOMPARE(recorder.take(), byCharacter(0x00, 13, "            "));

        InstrumentMemory expected;
        expected.currentTemplate = 2;
        expected.editFlag = true;
        InstrumentTemplate &t = expected.editBuffer[2];
        t.knobs[11].ccNumber = 127;
        t.knobs[0].displayFormat = 1;
        t.controlType = 1;
        t.knobs[4].remoteId.set("100000401");
        t.knobs[1].displayName.set("Cut ?");
        t.templateName.set("A name that i");
        QCOMPARE(instrument.contents(), expected);
    }

    void editsOutOfRangeDoNothing()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        QVERIFY(!instrument.setCCNumber(12, 0));
        QVERIFY(!instrument.setCCNumber(-1, 0));
        QVERIFY(!instrument.setCCNumber(0, 128));
        QVERIFY(!instrument.setCCNumber(0, -1));
        QVERIFY(!instrument.setDisplayFormat(0, 2));
        QVERIFY(!instrument.setKnobName(12, QStringLiteral("x")));
        QVERIFY(!instrument.setRemoteId(12, QStringLiteral("x")));
        QVERIFY(!instrument.setControlType(2));
        QVERIFY(!instrument.selectTemplate(50));
        QVERIFY(!instrument.selectTemplate(-1));
        InstrumentMemory bad;
        bad.currentTemplate = 50;
        QVERIFY(!instrument.setContents(bad));
        bad = InstrumentMemory();
        bad.stored[1].knobs[1].ccNumber = 128;
        QVERIFY(!instrument.setContents(bad));
        QCOMPARE(recorder.take(), QList<QByteArray>());
        QCOMPARE(instrument.contents(), InstrumentMemory());
    }

    void foreignMessagesAndOtherPortsPassUnanswered()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        for (int port = -1; port <= 6; ++port) {
            if (port != Port) {
                instrument.receive(port, dumpOf(0x60, 1) + Store);
            }
        }
        QCOMPARE(instrument.counters().ignoredMessages, 4 * 16);
        instrument.receive(Port, hex("F0 43 30 7F 15 01 23 00 F7 F0 42 01 F7 90 40 40 FE"));
        QCOMPARE(instrument.counters().ignoredMessages, 4 * 16 + 2);
        QCOMPARE(recorder.take(), QList<QByteArray>());
        QCOMPARE(instrument.contents(), InstrumentMemory());
    }

    void twoInstrumentsGiveEachOtherTheSameContent()
    {
        // One serves its dumps, their model is turned into the editor's, and the other takes them.
        const InstrumentMemory memory = randomMemory(8);
        VirtualInstrument source(memory);
        VirtualInstrument target;
        Recorder acknowledged(target);
        source.setOutput([&](int port, const QByteArray &bytes) {
            QByteArray wire = bytes;
            wire[4] = 0x14;
            target.receive(port, wire);
        });
        for (int n = 0; n < 50; ++n) {
            source.receive(Port, bulkRequest(0x60, n) + bulkRequest(0x6F, n));
        }
        QCOMPARE(acknowledged.take().count(Ack), 100);
        QCOMPARE(target.contents().stored, memory.stored);
        QCOMPARE(target.contents().editBuffer, memory.editBuffer);
    }

    void theOutputMayLeadStraightBackIn()
    {
        VirtualInstrument instrument;
        int left = 5000;
        int depth = 0;
        int deepest = 0;
        instrument.setOutput([&](int, const QByteArray &) {
            ++depth;
            deepest = std::max(deepest, depth);
            if (left-- > 0) {
                instrument.receive(Port, request(0x20, 0));
                instrument.contents();
            }
            --depth;
        });
        instrument.receive(Port, request(0x20, 0));
        QCOMPARE(instrument.counters().sentMessages, 5001);
        QCOMPARE(deepest, 1);
    }

    void theOutputMayReplaceItselfAndStop()
    {
        VirtualInstrument instrument;
        std::atomic<int> calls{0};
        std::atomic<bool> done{false};
        instrument.setOutput([&](int, const QByteArray &) {
            ++calls;
            instrument.stop();
            instrument.setOutput({});
            done = true;
        });
        instrument.start();
        QTRY_VERIFY(done);
        QCOMPARE(calls, 1);
        instrument.receive(Port, request(0x20, 0));
        QCOMPARE(calls, 1);
    }

    void sensingComesEvery300MsOnTheFirstPortAndStops()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.start();
        instrument.start();
        QVERIFY(recorder.waitFor(4));
        instrument.stop();
        const auto sent = recorder.all();
        for (const Recorder::Sent &s : sent) {
            QCOMPARE(s.port, 1);
            QCOMPARE(s.bytes, hex("FE"));
        }
        // Three periods lie between the first and the fourth; on a busy machine the first may come
        // up to one period late without moving the others.
        const auto span = sent.at(3).when - sent.at(0).when;
        QVERIFY(span > std::chrono::milliseconds(600));
        QCOMPARE(instrument.counters().sentMessages, 0);
        // What would still come after stop() would be caught by the next line's record.
        recorder.take();
        instrument.start();
        QVERIFY(recorder.waitFor(1));
        instrument.stop();
        QVERIFY(recorder.all().size() <= 2);
    }

    void theChangeCallbackComesWithoutTheLock()
    {
        VirtualInstrument instrument;
        int changes = 0;
        int template_ = -1;
        instrument.setChangeCallback([&] {
            ++changes;
            template_ = instrument.contents().currentTemplate;
        });
        instrument.receive(Port, change(0x20, 0, hex("05")));
        QCOMPARE(changes, 1);
        QCOMPARE(template_, 5);
        instrument.receive(Port, request(0x20, 0) + bulkRequest(0x60, 0));
        QCOMPARE(changes, 1);
        instrument.setCCNumber(0, 1);
        QCOMPARE(changes, 2);
        instrument.receive(Port, Store);
        QCOMPARE(changes, 3);
    }

    void theLogTellsEveryMessageInOrder()
    {
        VirtualInstrument instrument;
        QStringList lines;
        instrument.setLog([&](const QString &line) { lines.append(line); });
        instrument.setFaultPlan(planOf({"drop:change:#2"}));
        instrument.receive(Port, request(0x20, 0) + request(0x20, 0));
        QCOMPARE(
            lines,
            (QStringList{QStringLiteral("received port 5  F0 43 30 7F 14 01 20 00 F7  parameter "
                                        "request, currentTemplateNumber"),
                         QStringLiteral("sent     port 5  F0 43 10 7F 15 01 20 00 00 F7  change, "
                                        "currentTemplateNumber = 0"),
                         QStringLiteral("received port 5  F0 43 30 7F 14 01 20 00 F7  parameter "
                                        "request, currentTemplateNumber"),
                         QStringLiteral("dropped  port 5  change, currentTemplateNumber = 0")}));
    }

    // --- Faults ---------------------------------------------------------------------------------

    void faultsInWhatIsSent_data()
    {
        QTest::addColumn<QByteArrayList>("rules");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("index");
        QTest::addColumn<QByteArray>("there");
        const QByteArray good = hex("F0 43 00 7F 15 00 00 0F 60 0B 06 F7");
        QTest::newRow("none") << QByteArrayList{} << 15 << 14 << good;
        QTest::newRow("drop a footer")
            << QByteArrayList{"drop:footer:12"} << 14 << 14 << QByteArray();
        QTest::newRow("drop another's footer")
            << QByteArrayList{"drop:footer:11"} << 15 << 14 << good;
        QTest::newRow("drop a header") << QByteArrayList{"drop:header:stored"} << 14 << 13 << good;
        QTest::newRow("drop a block") << QByteArrayList{"drop:block0:12"} << 14 << 13 << good;
        QTest::newRow("duplicate the footer")
            << QByteArrayList{"duplicate:footer"} << 16 << 15 << good;
        QTest::newRow("corrupt the footer") << QByteArrayList{"corrupt:footer"} << 15 << 14
                                            << hex("F0 43 00 7F 15 00 00 0F 60 0B 07 F7");
        QTest::newRow("truncate the footer")
            << QByteArrayList{"truncate=4:footer"} << 15 << 14 << hex("F0 43 00 7F");
        QTest::newRow("shorten the footer") << QByteArrayList{"shorten:footer"} << 15 << 14
                                            << hex("F0 43 00 7F 15 00 00 0F 60 06 F7");
        QTest::newRow("silent in the middle")
            << QByteArrayList{"silent:block5:12"} << 6 << 6 << QByteArray();
        QTest::newRow("silent after three")
            << QByteArrayList{"silent:after:3"} << 3 << 3 << QByteArray();
        QTest::newRow("two rules on one message")
            << QByteArrayList{"corrupt:footer", "duplicate:footer"} << 16 << 15
            << hex("F0 43 00 7F 15 00 00 0F 60 0B 07 F7");
    }
    void faultsInWhatIsSent()
    {
        QFETCH(QByteArrayList, rules);
        QFETCH(int, index);
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.setFaultPlan(planOf(rules));
        instrument.receive(Port, bulkRequest(0x60, 11));
        const QList<QByteArray> sent = recorder.take();
        QTEST(static_cast<int>(sent.size()), "count");
        QTEST(sent.value(index), "there");
    }

    void faultsInWhatIsReceived()
    {
        const InstrumentMemory blank;
        const auto after = [](const QByteArrayList &rules, QList<QByteArray> *sent) {
            auto instrument = std::make_unique<VirtualInstrument>();
            Recorder recorder(*instrument);
            instrument->setFaultPlan(planOf(rules));
            instrument->receive(Port, dumpOf(0x60, 3));
            *sent = recorder.take();
            return instrument;
        };
        QList<QByteArray> sent;
        auto instrument = after({"in:corrupt:block4"}, &sent);
        QCOMPARE(sent, (QList<QByteArray>{FlagUp, Ack}));
        QCOMPARE(instrument->counters().refusedBlocks, 1);
        QCOMPARE(instrument->contents().stored[3].knobs[3], InstrumentKnob());
        QCOMPARE(instrument->contents().stored[3].knobs[4], dumped().knobs[4]);

        // The template and the kind of dump of a block are those of its header.
        for (const char *rule : {"in:corrupt:block4:stored:4", "in:corrupt:block4:4",
                                 "in:corrupt:block:stored:#5", "in:drop:block4:stored"}) {
            instrument = after({rule}, &sent);
            QCOMPARE(instrument->contents().stored[3].knobs[3], InstrumentKnob());
            QCOMPARE(instrument->contents().stored[3].knobs[4], dumped().knobs[4]);
        }
        for (const char *rule : {"in:corrupt:block4:edit", "in:corrupt:block4:stored:5"}) {
            instrument = after({rule}, &sent);
            QCOMPARE(instrument->counters().refusedBlocks, 0);
            QCOMPARE(instrument->contents().stored[3].knobs[3], dumped().knobs[3]);
        }
        // Also if the instrument never hears of the header.
        instrument = after({"in:drop:header", "in:silent:block4:stored:4"}, &sent);
        QVERIFY(instrument->isSilent());

        instrument = after({"in:drop:header"}, &sent);
        QCOMPARE(sent, QList<QByteArray>());
        QCOMPARE(instrument->contents(), blank);

        instrument = after({"in:truncate:footer:4"}, &sent);
        QCOMPARE(sent, QList<QByteArray>());
        QCOMPARE(instrument->counters().refusedMessages, 1);

        instrument = after({"in:shorten:block0"}, &sent);
        QCOMPARE(sent, (QList<QByteArray>{FlagUp, Ack}));
        QCOMPARE(instrument->contents().stored[3].templateName, blank.stored[3].templateName);

        instrument = after({"in:duplicate:footer"}, &sent);
        QCOMPARE(sent, (QList<QByteArray>{FlagUp, Ack}));
        QCOMPARE(instrument->counters().footers, 1);

        instrument = after({"in:silent:footer"}, &sent);
        QCOMPARE(sent, QList<QByteArray>());
        QVERIFY(instrument->isSilent());
    }

    void aDelayedMessageHoldsUpThoseBehindIt()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.setFaultPlan(planOf({"delay=60:footer:1"}));
        const auto begin = std::chrono::steady_clock::now();
        instrument.receive(Port, bulkRequest(0x60, 0) + bulkRequest(0x60, 1));
        QCOMPARE(recorder.all().size(), 14);
        QVERIFY(recorder.waitFor(30));
        const auto sent = recorder.all();
        QVERIFY(sent.at(14).when - begin >= std::chrono::milliseconds(60));
        QCOMPARE(sent.at(14).bytes, hex("F0 43 00 7F 15 00 00 0F 60 00 11 F7"));
        QCOMPARE(sent.at(15).bytes, hex("F0 43 00 7F 15 00 00 0E 60 01 11 F7"));
        QCOMPARE(sent.at(29).bytes, hex("F0 43 00 7F 15 00 00 0F 60 01 10 F7"));
    }

    void aDelayOfWhatIsReceivedKeepsTheOrder()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.setFaultPlan(planOf({"in:delay=40:change:#1", "delay=20:change"}));
        instrument.receive(Port, change(0x20, 0, hex("07")) + request(0x20, 0) +
                                     change(0x20, 0, hex("08")));
        QCOMPARE(recorder.all().size(), 0);
        QVERIFY(recorder.waitFor(3));
        QCOMPARE(recorder.take(), (QList<QByteArray>{hex("F0 43 10 7F 15 01 20 00 07 F7"),
                                                     hex("F0 43 10 7F 15 01 20 00 07 F7"),
                                                     hex("F0 43 10 7F 15 01 20 00 08 F7")}));
    }

    void silenceTakesSensingWithItAndEndsWithTheComeback()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.setFaultPlan(planOf({"silent:ack", "comeback=700"}));
        instrument.start();
        QVERIFY(recorder.waitFor(1));
        const auto begin = std::chrono::steady_clock::now();
        instrument.receive(Port, dumpOf(0x60, 3));
        QVERIFY(instrument.isSilent());
        // What it said before the silence, perhaps by the sensing thread.
        QTRY_VERIFY(recorder.hasSent(FlagUp));
        const auto before = recorder.all().size();
        // It hears, but what it would say is lost.
        instrument.receive(Port, change(0x20, 0, hex("05")));
        QCOMPARE(instrument.contents().currentTemplate, 5);
        QVERIFY(recorder.waitFor(before + 1));
        const auto next = recorder.all().at(before);
        QCOMPARE(next.bytes, hex("FE"));
        QVERIFY(next.when - begin >= std::chrono::milliseconds(700));
        QVERIFY(!instrument.isSilent());
        instrument.receive(Port, dumpOf(0x60, 3));
        // The sensing thread may be emitting at that moment, and then says this too.
        QTRY_VERIFY(recorder.hasSent(Ack));
    }

    void silenceByHand()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.fallSilent();
        instrument.setCCNumber(0, 1);
        instrument.receive(Port, bulkRequest(0x60, 0));
        QCOMPARE(recorder.take(), QList<QByteArray>());
        instrument.comeBack();
        instrument.receive(Port, request(0x23, 0));
        QCOMPARE(recorder.take(), QList<QByteArray>{hex("F0 43 10 7F 15 01 23 00 01 F7")});
        instrument.fallSilent(30);
        QTRY_VERIFY(!instrument.isSilent());
    }

    void anEndWhileMessagesAreDelayed()
    {
        VirtualInstrument instrument;
        Recorder recorder(instrument);
        instrument.setFaultPlan(planOf({"delay=3600000"}));
        instrument.start();
        instrument.receive(Port, bulkRequest(0x60, 0));
        // Leaving the scope ends the instrument at once, with fifteen messages still held.
    }

    // --- Hostile bytes and threads --------------------------------------------------------------

    void randomBytesNeverHarm()
    {
        QRandomGenerator random(815);
        VirtualInstrument instrument;
        int answers = 0;
        instrument.setOutput([&](int port, const QByteArray &bytes) {
            ++answers;
            QCOMPARE(port, 5);
            QVERIFY(bytes.startsWith('\xF0') && bytes.endsWith('\xF7'));
        });
        const QByteArrayList seeds = {dumpOf(0x60, 1),
                                      dumpOf(0x6F, 49),
                                      Store,
                                      StoreToFlash,
                                      change(0x10, 0, "204143dff"),
                                      change(0x20, 0, hex("31")),
                                      request(0x10, 0),
                                      bulkRequest(0x6F, 49)};
        for (int i = 0; i < 4000; ++i) {
            QByteArray bytes = seeds.at(random.bounded(static_cast<int>(seeds.size())));
            for (int hits = random.bounded(4); hits > 0; --hits) {
                const auto at = random.bounded(static_cast<int>(bytes.size()));
                switch (random.bounded(3)) {
                case 0:
                    bytes[at] = static_cast<char>(random.bounded(256));
                    break;
                case 1:
                    bytes.remove(at, random.bounded(20));
                    bytes += '\xF7';
                    break;
                default:
                    bytes.insert(at, static_cast<char>(random.bounded(256)));
                    break;
                }
            }
            instrument.receive(random.bounded(10) == 0 ? random.bounded(8) : Port, bytes);
        }
        QVERIFY(answers > 0);
        // Whatever came, the contents stayed such as can be served and set.
        VirtualInstrument other;
        QVERIFY(other.setContents(instrument.contents()));
    }

    void manyThreadsAtOnce()
    {
        VirtualInstrument instrument;
        std::atomic<int> running{0};
        std::atomic<int> overlaps{0};
        std::atomic<int> sent{0};
        instrument.setOutput([&](int, const QByteArray &bytes) {
            overlaps += running++ > 0 ? 1 : 0;
            sent += bytes == hex("FE") ? 0 : 1;
            --running;
        });
        instrument.setChangeCallback([&] { instrument.counters(); });
        instrument.setFaultPlan(planOf({"delay=1:change:#50", "duplicate:ack:#3"}));
        instrument.start();
        std::vector<std::thread> threads;
        threads.reserve(4);
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&instrument, t] {
                for (int i = 0; i < 50; ++i) {
                    switch (t) {
                    case 0:
                        instrument.receive(Port, dumpOf(0x60, i));
                        break;
                    case 1:
                        instrument.setCCNumber(i % 12, i);
                        instrument.setContents(instrument.contents());
                        break;
                    case 2:
                        instrument.receive(1, request(0x20, 0));
                        instrument.fallSilent(1);
                        instrument.comeBack();
                        break;
                    default:
                        instrument.stop();
                        instrument.start();
                        break;
                    }
                }
            });
        }
        for (std::thread &thread : threads) {
            thread.join();
        }
        instrument.setOutput({});
        const int before = sent;
        instrument.receive(Port, request(0x20, 0));
        QCOMPARE(sent.load(), before);
        QCOMPARE(overlaps.load(), 0);
        QCOMPARE(instrument.counters().acknowledgedDumps, 50);
    }
};

QTEST_GUILESS_MAIN(TestVirtualInstrument)
#include "tst_virtualinstrument.moc"
