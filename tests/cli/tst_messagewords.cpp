// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MessageWords.h"

#include "midi/MPEvent.h"

#include <QtTest/QtTest>

class TestMessageWords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void systemExclusive_data();
    void systemExclusive();
    void aMessageCutAnywhereHasWords();
    void shortMessages_data();
    void shortMessages();
    void aLongEventWithoutBytesHasWords();
};

void TestMessageWords::systemExclusive_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *name, const char *bytes, const char *words) {
        QTest::newRow(name) << QByteArray::fromHex(bytes) << QString::fromLatin1(words);
    };
    row("header, stored", "43007f1500000e600012f7", "dump begins: stored template 1");
    row("header, edit buffer", "43007f1400000e6f3152f7", "dump begins: edit buffer template 50");
    row("header of no type", "43007f1500000e000171f7", "dump begins: unknown template 2");
    row("footer", "43007f1500000f600011f7", "dump ends: stored template 1");
    row("footer, wrong checksum", "43007f1500000f600012f7",
        "dump ends: stored template 1 (wrong checksum)");
    row("footer, too short", "43007f1500000f6000f7", "dump ends: stored template 1 (too short)");
    row("store to flash",
        "43007f140000110000"
        "6ff7",
        "store to flash");
    row("template block",
        "43007f15001b010000"
        "4c656164202020202020202020"
        "202020202020202020202020"
        "000064f7",
        "dump block: template \"Lead\" (wrong checksum)");
    row("knob block", "43007f15001a011b00", "dump block: knobD3 (too short)");
    row("block of no knob", "43007f15001a011c0000f7",
        "unknown dump message: 43 00 7F 15 00 1A 01 1C 00 00 F7");
    row("a long one of no kind", "43007f1500007f00000000000000000000000000f7",
        "unknown dump message: 43 00 7F 15 00 00 7F 00 00 00 00 00 00 00 00 00 ... (21 bytes)");
    row("acknowledge", "436002f7", "acknowledge");
    row("dump request, stored", "43207f140e6000f7", "dump request: stored template 1");
    row("dump request, edit buffer", "43207f140e6f31f7", "dump request: edit buffer template 50");
    row("request, current template", "43307f14012000f7", "request: current template");
    row("request, edit flag", "43307f14012300f7", "request: edit flag");
    row("change, current template", "43107f1501200031f7", "change: current template = 50");
    row("change, edit flag", "43107f1501230001f7", "change: edit flag = 1");
    row("change, number", "43107f150110184af7", "change: knobA1/ccNumber = 74");
    row("change, control type", "43107f1501001901f7", "change: controlType = 1");
    row("change, reserved", "43107f1501001a00f7", "change: reserved byte = 0");
    row("change, name", "43107f1501000241f7", "change: templateName, character 3 = \"A\"");
    row("change, name, no character", "43107f1501000d01f7",
        "change: vstiName, character 1 = \"?\"");
    row("change, identifier", "43107f15011b00323034313433646666f7",
        "change: knobD3/remoteNumber = \"204143df"
        "f\"");
    row("change without a value", "43107f15011018f7", "change without a value: knobA1/ccNumber");
    row("change of an unknown place", "43107f15017f0001f7", "change: unknown place 7f 00 = 1");
    row("store", "43107f15012200f7", "store");
    row("another class", "43507f15f7", "other system exclusive: 43 50 7F 15 F7");
    row("another model", "43007e15f7", "other system exclusive: 43 00 7E 15 F7");
    row("another maker", "7e7f0601f7", "other system exclusive: 7E 7F 06 01 F7");
    row("nothing", "", "other system exclusive: ");
}

void TestMessageWords::systemExclusive()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, words);
    QCOMPARE(MessageWords::ofSysEx(bytes), words);
}

void TestMessageWords::aMessageCutAnywhereHasWords()
{
    for (const char *hex :
         {"43007f15001b0100004c65616420202020202020202020202020202020202020202020000064f7",
          "43107f15011b00323034313433646666f7", "43207f140e6000f7", "43307f14012000f7",
          "436002f7"}) {
        const QByteArray whole = QByteArray::fromHex(hex);
        for (qsizetype length = 0; length <= whole.size(); ++length) {
            QVERIFY(!MessageWords::ofSysEx(whole.left(length)).isEmpty());
        }
    }
}

void TestMessageWords::shortMessages_data()
{
    QTest::addColumn<unsigned>("type");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *name, unsigned type, const char *words) {
        QTest::newRow(name) << type << QString::fromLatin1(words);
    };
    row("active sensing", MPEventActiveSensing, "active sensing");
    row("note off", MPEventNoteOff, "note off, channel 10: 60 64");
    row("note on", MPEventNoteOn, "note on, channel 10: 60 64");
    row("polyphonic pressure", MPEventPolyPressure, "polyphonic pressure, channel 10: 60 64");
    row("control change", MPEventControlChange, "control change, channel 10: 60 64");
    row("program change", MPEventProgramChange, "program change, channel 10: 60 64");
    row("channel pressure", MPEventChannelPressure, "channel pressure, channel 10: 60 64");
    row("pitch bend", MPEventPitchBend, "pitch bend, channel 10: 60 64");
    row("what is only sent", MPEventNRPN, "other event");
}

void TestMessageWords::shortMessages()
{
    QFETCH(unsigned, type);
    QFETCH(QString, words);
    tagMPEVENT event;
    event.eventType = type;
    event.channel = 9;
    event.shortData[0] = 60;
    event.shortData[1] = 64;
    QCOMPARE(MessageWords::ofEvent(event), words);
}

void TestMessageWords::aLongEventWithoutBytesHasWords()
{
    tagMPEVENT event;
    event.eventType = MPEventSysEx;
    event.length = 20;
    QCOMPARE(MessageWords::ofEvent(event), QStringLiteral("other system exclusive: "));
    unsigned char bytes[] = {0x01, 0xF7};
    event.eventType = MPEventSysExContinuation;
    event.longData = bytes;
    event.length = 2;
    QCOMPARE(MessageWords::ofEvent(event), QStringLiteral("continued system exclusive: 01 F7"));
}

QTEST_GUILESS_MAIN(TestMessageWords)
#include "tst_messagewords.moc"
