// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstrumentTestTools.h"
#include "instrument/InstrumentProtocol.h"

#include <QtTest/QTest>

// Every message that the device sends, byte by byte, with checksums summed by hand, and what it
// makes of the messages that reach it.
class TestInstrumentProtocol : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySentMessageByteByByte_data()
    {
        using namespace InstrumentProtocol;
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<QByteArray>("expected");

        // 0E + 60 + 00 = 6E, and 80 - 6E = 12
        QTest::newRow("header, stored, template 0")
            << dumpHeader(DumpType::Stored, 0) << hex("F0 43 00 7F 15 00 00 0E 60 00 12 F7");
        QTest::newRow("footer, stored, template 0")
            << dumpFooter(DumpType::Stored, 0) << hex("F0 43 00 7F 15 00 00 0F 60 00 11 F7");
        // 0E + 6F + 31 = AE, of which seven bits are 2E
        QTest::newRow("header, edit buffer, template 49")
            << dumpHeader(DumpType::EditBuffer, 49) << hex("F0 43 00 7F 15 00 00 0E 6F 31 52 F7");
        QTest::newRow("footer, edit buffer, template 49")
            << dumpFooter(DumpType::EditBuffer, 49) << hex("F0 43 00 7F 15 00 00 0F 6F 31 51 F7");
        // 0E + 60 + 12 = 80: the complement of 0 is 0
        QTest::newRow("header whose sum is a multiple of 128")
            << dumpHeader(DumpType::Stored, 0x12) << hex("F0 43 00 7F 15 00 00 0E 60 12 00 F7");

        InstrumentTemplate blank;
        // 1B + 01 + 25 * 20 = 33C
        QTest::newRow("block of a blank template")
            << dumpBlock(0, blank)
            << hex("F0 43 00 7F 15 00 1B 01 00 00"
                   "20 20 20 20 20 20 20 20 20 20 20 20 20"
                   "20 20 20 20 20 20 20 20 20 20 20 20 00 00 44 F7");
        InstrumentTemplate named;
        named.templateName.set("Grand Piano12");
        named.vstiName.set("Corvan Keys1");
        named.controlType = 1;
        named.reserved = 5;
        // 1B + 01 + names 466 and 456 + 1 + 5 = 8DE, of which seven bits are 5E
        QTest::newRow("block of a template with full names")
            << dumpBlock(0, named)
            << hex("F0 43 00 7F 15 00 1B 01 00 00"
                   "47 72 61 6E 64 20 50 69 61 6E 6F 31 32"
                   "43 6F 72 76 61 6E 20 4B 65 79 73 31 01 05 22 F7");

        blank.knobs[0].remoteId.set("");
        // 1A + 01 + 10 + 24 * 20 = 32B
        QTest::newRow("block of a knob without texts")
            << dumpBlock(1, blank)
            << hex("F0 43 00 7F 15 00 1A 01 10 00"
                   "20 20 20 20 20 20 20 20 20"
                   "20 20 20 20 20 20 20 20 20 20 20 20 20 20 20 00 00 55 F7");
        blank.knobs[11].displayName.set("Cutoff");
        blank.knobs[11].ccNumber = 0x7F;
        blank.knobs[11].displayFormat = 1;
        // 1A + 01 + 1B + identifier 25E + "Cutoff" 267 + 9 * 20 + 7F + 01 = 69B
        QTest::newRow("block of the last knob")
            << dumpBlock(12, blank)
            << hex("F0 43 00 7F 15 00 1A 01 1B 00"
                   "32 30 34 31 34 33 64 66 66"
                   "43 75 74 6F 66 66 20 20 20 20 20 20 20 20 20 7F 01 65 F7");

        QTest::newRow("acknowledge") << acknowledge() << hex("F0 43 60 02 F7");
        QTest::newRow("edit flag")
            << parameterChange(0x23, 0, QByteArray(1, 1)) << hex("F0 43 10 7F 15 01 23 00 01 F7");
        QTest::newRow("current template")
            << parameterChange(0x20, 0, QByteArray(1, 49)) << hex("F0 43 10 7F 15 01 20 00 31 F7");
        QTest::newRow("store pressed") << storePressed() << hex("F0 43 10 7F 15 01 22 00 F7");
        QTest::newRow("answer, one byte")
            << answer(0x1B, 0x18, blank) << hex("F0 43 10 7F 15 01 1B 18 7F F7");
        QTest::newRow("answer, a character")
            << answer(0x00, 0x0C, named) << hex("F0 43 10 7F 15 01 00 0C 32 F7");
        QTest::newRow("answer, reserved byte")
            << answer(0x00, 0x1A, named) << hex("F0 43 10 7F 15 01 00 1A 05 F7");
        QTest::newRow("answer, identifier")
            << answer(0x1B, 0x00, blank)
            << hex("F0 43 10 7F 15 01 1B 00 32 30 34 31 34 33 64 66 66 F7");
        QTest::newRow("answer, within an identifier: the whole")
            << answer(0x1B, 0x05, blank)
            << hex("F0 43 10 7F 15 01 1B 00 32 30 34 31 34 33 64 66 66 F7");
        QTest::newRow("no answer behind the template's page")
            << answer(0x00, 0x1B, blank) << QByteArray();
        QTest::newRow("no answer behind a knob's page")
            << answer(0x10, 0x1A, blank) << QByteArray();
        QTest::newRow("no answer for a thirteenth knob") << answer(0x1C, 0, blank) << QByteArray();
        QTest::newRow("no answer between the pages") << answer(0x0F, 0, blank) << QByteArray();
    }
    void everySentMessageByteByByte()
    {
        QFETCH(QByteArray, sent);
        QFETCH(QByteArray, expected);
        QCOMPARE(sent.toHex(' '), expected.toHex(' '));
    }

    void theTestsOwnEditorMessagesAreRight()
    {
        QCOMPARE(EditorSide::header(0x60, 0), hex("F0 43 00 7F 14 00 00 0E 60 00 12 F7"));
        QCOMPARE(EditorSide::header(0x6F, 49), hex("F0 43 00 7F 14 00 00 0E 6F 31 52 F7"));
        const QByteArray block = EditorSide::templateBlock("", "", 0);
        QCOMPARE(block.size(), 39);
        QCOMPARE(block.at(37), '\x44');
        const QByteArray knob = EditorSide::knobBlock(0, "", "", 0, 0);
        QCOMPARE(knob.size(), 38);
        QCOMPARE(knob.at(36), '\x55');
    }

    void decodingTellsKindAndDefect_data()
    {
        using Kind = InstrumentMessage::Kind;
        QTest::addColumn<QByteArray>("wire");
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("taken");
        const auto row = [](const char *name, const QByteArray &wire, Kind kind, bool taken) {
            QTest::newRow(name) << wire << static_cast<int>(kind) << taken;
        };
        row("header", EditorSide::header(0x60, 49), Kind::Header, true);
        row("header of template 50", EditorSide::header(0x60, 50), Kind::Header, false);
        row("header of another type", EditorSide::header(0x61, 0), Kind::Header, false);
        row("header with a wrong checksum", hex("F0 43 00 7F 14 00 00 0E 60 00 13 F7"),
            Kind::Header, false);
        row("header with a data byte", EditorSide::bulk(hex("0E 60 00"), hex("01")), Kind::Header,
            false);
        row("footer", EditorSide::footer(0x6F, 0), Kind::Footer, true);
        row("template block", EditorSide::templateBlock("a", "b", 1), Kind::Block, true);
        row("block a byte short", EditorSide::bulk(hex("01 00 00"), QByteArray(26, ' ')),
            Kind::Block, false);
        row("block a byte long", EditorSide::bulk(hex("01 10 00"), QByteArray(27, ' ')),
            Kind::Block, false);
        row("block with a count that is not its own",
            hex("F0 43 00 7F 14 00 1A 01 00 00"
                "20 20 20 20 20 20 20 20 20 20 20 20 20"
                "20 20 20 20 20 20 20 20 20 20 20 20 00 00 45 F7"),
            Kind::Block, false);
        row("knob block", EditorSide::knobBlock(11, "1", "2", 3, 1), Kind::Block, true);
        row("block of a thirteenth knob", EditorSide::knobBlock(12, "1", "2", 3, 1), Kind::Block,
            false);
        row("block not at the page's start", EditorSide::bulk(hex("01 10 01"), QByteArray(26, ' ')),
            Kind::Block, false);
        row("change", EditorSide::change(0x10, 0x18, hex("05")), Kind::Change, true);
        row("change of nine bytes", EditorSide::change(0x10, 0, "204143dff"), Kind::Change, true);
        row("change without data", EditorSide::change(0x10, 0x18, {}), Kind::Change, false);
        row("change of two bytes", EditorSide::change(0x10, 0x18, hex("05 06")), Kind::Change,
            false);
        row("change outside the data", hex("F0 43 10 7F 14 02 10 18 05 F7"), Kind::Change, false);
        row("store", EditorSide::Store, Kind::Store, true);
        row("store with a byte", EditorSide::change(0x22, 0, hex("00")), Kind::Store, false);
        row("store to flash", EditorSide::StoreToFlash, Kind::StoreToFlash, true);
        row("store to flash, wrong checksum", hex("F0 43 00 7F 14 00 00 11 00 00 6E F7"),
            Kind::StoreToFlash, false);
        row("parameter request", EditorSide::request(0x23, 0), Kind::ParameterRequest, true);
        row("parameter request too long", hex("F0 43 30 7F 14 01 23 00 00 F7"),
            Kind::ParameterRequest, false);
        row("bulk request", EditorSide::bulkRequest(0x6F, 49), Kind::BulkRequest, true);
        row("bulk request of template 50", EditorSide::bulkRequest(0x6F, 50), Kind::BulkRequest,
            false);
        row("bulk request of a footer", hex("F0 43 20 7F 14 0F 60 00 F7"), Kind::BulkRequest,
            false);
        row("the device's own model", hex("F0 43 30 7F 15 01 23 00 F7"), Kind::Foreign, true);
        row("another manufacturer", hex("F0 42 30 7F 14 01 23 00 F7"), Kind::Foreign, true);
        row("another device number", hex("F0 43 31 7F 14 01 23 00 F7"), Kind::Foreign, true);
        row("another class", hex("F0 43 40 7F 14 01 23 00 F7"), Kind::Malformed, false);
        row("empty system exclusive", hex("F0 F7"), Kind::Foreign, true);
        row("model and nothing more", hex("F0 43 00 7F 14 F7"), Kind::Malformed, false);
    }
    void decodingTellsKindAndDefect()
    {
        QFETCH(QByteArray, wire);
        const InstrumentMessage message = InstrumentProtocol::decode(wire);
        QTEST(static_cast<int>(message.kind), "kind");
        QTEST(message.defect.isEmpty(), "taken");
    }

    void aMessageCutAtEveryByteIsNeverTaken()
    {
        const QList<QByteArray> messages = {EditorSide::header(0x60, 7),
                                            EditorSide::templateBlock("name", "vsti", 1),
                                            EditorSide::knobBlock(3, "204143dff", "Cutoff", 5, 1),
                                            EditorSide::footer(0x60, 7),
                                            EditorSide::change(0x10, 0x18, hex("05")),
                                            EditorSide::change(0x10, 0, "204143dff"),
                                            EditorSide::request(0x20, 0),
                                            EditorSide::bulkRequest(0x60, 7),
                                            EditorSide::Store,
                                            EditorSide::StoreToFlash};
        for (const QByteArray &whole : messages) {
            QVERIFY(InstrumentProtocol::decode(whole).defect.isEmpty());
            for (qsizetype length = 0; length < whole.size() - 1; ++length) {
                for (const QByteArray &cut : {whole.first(length), whole.first(length) + '\xF7'}) {
                    const InstrumentMessage message = InstrumentProtocol::decode(cut);
                    const bool isShorterChange =
                        message.kind == InstrumentMessage::Kind::Change && message.data.size() == 1;
                    QVERIFY2(!message.defect.isEmpty() || isShorterChange ||
                                 message.kind == InstrumentMessage::Kind::Foreign,
                             cut.toHex(' ').constData());
                }
            }
        }
    }

    void changesOutOfTheirRangeAreNotTaken()
    {
        using namespace InstrumentProtocol;
        const InstrumentTemplate before;
        InstrumentTemplate t = before;
        QVERIFY(!takeChange(0x00, 0x19, hex("02"), &t)); // control type
        QVERIFY(!takeChange(0x10, 0x19, hex("02"), &t)); // display format
        QVERIFY(!takeChange(0x10, 0x1A, hex("00"), &t)); // behind the page
        QVERIFY(!takeChange(0x00, 0x1B, hex("00"), &t));
        QVERIFY(!takeChange(0x0F, 0x00, hex("00"), &t));
        QVERIFY(!takeChange(0x1C, 0x00, hex("00"), &t));
        QVERIFY(!takeChange(0x10, 0x01, "204143dff", &t)); // nine, not at the start
        QVERIFY(!takeChange(0x00, 0x00, "204143dff", &t)); // nine, not an identifier
        QCOMPARE(t, before);
        QVERIFY(takeChange(0x1B, 0x19, hex("01"), &t));
        QCOMPARE(t.knobs[11].displayFormat, 1);
        QVERIFY(takeChange(0x1B, 0x08, "0", &t));
        QCOMPARE(t.knobs[11].remoteId.padded(), QByteArray("204143df0"));
        QVERIFY(takeChange(0x00, 0x0D, "V", &t));
        QCOMPARE(t.vstiName.trimmed(), QByteArray("V"));
    }

    void wordsForTheLog()
    {
        using namespace InstrumentProtocol;
        QCOMPARE(describe(EditorSide::header(0x60, 11), MessageOrigin::Editor),
                 QStringLiteral("dump header, stored template 12"));
        QCOMPARE(describe(EditorSide::change(0x15, 0x18, hex("05")), MessageOrigin::Editor),
                 QStringLiteral("change, knobB2/ccNumber = 5"));
        QCOMPARE(describe(parameterChange(0x00, 0x02, "x"), MessageOrigin::Device),
                 QStringLiteral("change, templateName[2] = 120 'x'"));
        QCOMPARE(describe(hex("F0 43 00 7F 14 00 00 0E 60 00 13 F7"), MessageOrigin::Editor),
                 QStringLiteral("dump header, stored template 1 (wrong checksum)"));
        QCOMPARE(describe(acknowledge(), MessageOrigin::Device), QStringLiteral("acknowledge"));
        QCOMPARE(describe(hex("FE"), MessageOrigin::Device), QStringLiteral("active sensing"));
        QCOMPARE(describe(controlChange(74, 127), MessageOrigin::Device),
                 QStringLiteral("control change, 74 = 127"));
    }
};

QTEST_APPLESS_MAIN(TestInstrumentProtocol)
#include "tst_instrumentprotocol.moc"
