// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/MessageEncoder.h"

#include "protocol/EncoderRig.h"

#include <QtTest/QtTest>

namespace
{

using Messages = QList<QByteArray>;
using BulkType = MessageEncoder::BulkType;
using BulkType2 = MessageEncoder::BulkType2;

QByteArray framing(int high, int type, int number)
{
    const int checksum = (128 - (high + type + number) % 128) % 128;
    QByteArray message = hex("43 00 7F 14 00 00");
    for (const int byte : {high, type, number, checksum, 0xF7}) {
        message.append(static_cast<char>(byte));
    }
    return message;
}

int checksumOf(const QByteArray &message)
{
    return message.at(message.size() - 2);
}

// The sum from the byte count through the checksum is 0 modulo 128, and the count is that of the
// data.
bool isSoundBlock(const QByteArray &message)
{
    int sum = 0;
    for (qsizetype i = 4; i < message.size() - 1; ++i) {
        sum += message.at(i);
    }
    return message.size() >= 11 && sum % 128 == 0 &&
           message.at(4) * 128 + message.at(5) == message.size() - 11;
}

void writeKnob(RemoteMemAPI *api, int bank, int template_, int knob, const QString &id,
               const QString &name, int cc, int format)
{
    api->setParam(knobAddress(bank, template_, knob, 3), id);
    api->setParam(knobAddress(bank, template_, knob, 0), name);
    api->setParam(knobAddress(bank, template_, knob, 1), cc);
    api->setParam(knobAddress(bank, template_, knob, 2), format);
}

} // namespace

class TestEncoderBulk : public QObject
{
    Q_OBJECT

private:
    static QByteArray content(EncoderRig *rig, int block, int bank, int template_)
    {
        tagMPEVENT event;
        if (!rig->encoder.createBulkContent(block, bank, template_, &event)) {
            return {};
        }
        const OwnedBytes bytes(event);
        return bytesOf(event);
    }

private Q_SLOTS:
    void headersAndFooters_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("number");
        QTest::addColumn<QByteArray>("expected"); // empty: refused
        const auto row = [](const char *name, int type, int kind, int number, const char *bytes) {
            QTest::newRow(name) << type << kind << number << hex(bytes);
        };
        row("header of stored template 0", 0, 0, 0, "43 00 7F 14 00 00 0E 60 00 12 F7");
        row("footer of stored template 0", 0, 2, 0, "43 00 7F 14 00 00 0F 60 00 11 F7");
        row("header of edit buffer 49 has checksum 52", 1, 0, 49,
            "43 00 7F 14 00 00 0E 6F 31 52 F7");
        row("footer of edit buffer 49", 1, 2, 49, "43 00 7F 14 00 00 0F 6F 31 51 F7");
        row("checksum 0", 1, 0, 3, "43 00 7F 14 00 00 0E 6F 03 00 F7");
        row("another kind", 0, 1, 0, "");
        row("another type", 2, 0, 0, "");
        row("negative template", 0, 0, -1, "");
        row("template 50", 0, 0, 50, "");
    }
    void headersAndFooters()
    {
        QFETCH(int, type);
        QFETCH(int, kind);
        QFETCH(int, number);
        QFETCH(QByteArray, expected);
        EncoderRig rig;
        tagMPEVENT event;
        const bool made = rig.encoder.createBulkHeaderFooter(
            static_cast<BulkType>(type), static_cast<BulkType2>(kind), number, &event);
        const OwnedBytes bytes(event);
        QCOMPARE(made, !expected.isEmpty());
        if (made) {
            QCOMPARE(bytesOf(event), expected);
        }
    }

    void bulkRequests_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("number");
        QTest::addColumn<QByteArray>("expected");
        const auto row = [](const char *name, int type, int kind, int number, const char *bytes) {
            QTest::newRow(name) << type << kind << number << hex(bytes);
        };
        row("stored 0", 0, 0, 0, "43 20 7F 14 0E 60 00 F7");
        row("edit buffer 49", 1, 0, 49, "43 20 7F 14 0E 6F 31 F7");
        row("footer kind is refused", 0, 2, 0, "");
        row("another type", 5, 0, 0, "");
        row("template 50", 0, 0, 50, "");
    }
    void bulkRequests()
    {
        QFETCH(int, type);
        QFETCH(int, kind);
        QFETCH(int, number);
        QFETCH(QByteArray, expected);
        EncoderRig rig;
        QCOMPARE(rig.encoder.enqueueBulkReqHeaderFooter(static_cast<BulkType>(type),
                                                        static_cast<BulkType2>(kind), number),
                 !expected.isEmpty());
        QCOMPARE(rig.step(), expected.isEmpty() ? Messages() : Messages{expected});
    }

    void nullEventsAreRefused()
    {
        EncoderRig rig;
        QVERIFY(!rig.encoder.createBulkHeaderFooter(MessageEncoder::BulkStored,
                                                    MessageEncoder::BulkHeader, 0, nullptr));
        QVERIFY(!rig.encoder.createBulkReqHeaderFooter(MessageEncoder::BulkStored,
                                                       MessageEncoder::BulkHeader, 0, nullptr));
        QVERIFY(!rig.encoder.createBulkContent(0, 0, 0, nullptr));
    }

    void blocksThatDoNotExistAreRefused()
    {
        EncoderRig rig;
        for (const int block : {-1, 13, 14, 100}) {
            tagMPEVENT event;
            QVERIFY(!rig.encoder.createBulkContent(block, 0, 0, &event));
            QVERIFY(event.longData == nullptr);
        }
    }

    void anEmptyTemplateBlockHasChecksum44()
    {
        EncoderRig rig;
        const QByteArray expected =
            hex("43 00 7F 14 00 1B 01 00 00") + QByteArray(25, ' ') + hex("00 00 44 F7");
        QCOMPARE(content(&rig, 0, 0, 0), expected);
        QCOMPARE(expected.size(), 38);
    }

    void anEmptyKnobBlockHasChecksum55()
    {
        EncoderRig rig;
        writeKnob(&rig.api, 0, 0, 0, QString(), QString(), 0, 0);
        const QByteArray expected =
            hex("43 00 7F 14 00 1A 01 10 00") + QByteArray(24, ' ') + hex("00 00 55 F7");
        QCOMPARE(content(&rig, 1, 0, 0), expected);
        QCOMPARE(expected.size(), 37);
    }

    void aFullTemplateBlockByteByByte()
    {
        EncoderRig rig;
        rig.api.setParam(templateAddress(1, 49, 13), QStringLiteral("Thirteen char"));
        rig.api.setParam(templateAddress(1, 49, 15), QStringLiteral("Twelve chars"));
        rig.api.setParam(templateAddress(1, 49, 14), 1);
        const QByteArray message = content(&rig, 0, 1, 49);
        QCOMPARE(message.left(9), hex("43 00 7F 14 00 1B 01 00 00"));
        QCOMPARE(message.mid(9, 13), QByteArray("Thirteen char"));
        QCOMPARE(message.mid(22, 12), QByteArray("Twelve chars"));
        QCOMPARE(int(message.at(34)), 1);
        QCOMPARE(int(message.at(35)), 0);
        QVERIFY(isSoundBlock(message));
    }

    void aFullKnobBlockByteByByte()
    {
        EncoderRig rig;
        for (int knob = 0; knob < 12; ++knob) {
            writeKnob(&rig.api, 0, 7, knob, QStringLiteral("123456789"),
                      QStringLiteral("Fifteen chars..").left(knob + 4), 127 - knob, knob % 2);
            const QByteArray message = content(&rig, knob + 1, 0, 7);
            QCOMPARE(message.left(7), hex("43 00 7F 14 00 1A 01"));
            QCOMPARE(int(message.at(7)), 0x10 + knob);
            QCOMPARE(int(message.at(8)), 0);
            QCOMPARE(message.mid(9, 9), QByteArray("123456789"));
            QCOMPARE(message.mid(18, 15),
                     QByteArray("Fifteen chars..").left(knob + 4).leftJustified(15, ' '));
            QCOMPARE(int(message.at(33)), 127 - knob);
            QCOMPARE(int(message.at(34)), knob % 2);
            QVERIFY(isSoundBlock(message));
        }
    }

    void textsInBlocksAreCutAndFilledAndAscii()
    {
        EncoderRig rig;
        rig.api.setParam(templateAddress(0, 0, 13), QStringLiteral("ABCDEFGHIJKLMNOPQRST"));
        rig.api.setParam(templateAddress(0, 0, 15), QString::fromUtf8("Ä€\xF0\x9F\x8E\xB9"));
        writeKnob(&rig.api, 0, 0, 0, QStringLiteral("12"), QString::fromUtf8("ß"), 1, 1);
        const QByteArray block = content(&rig, 0, 0, 0);
        QCOMPARE(block.mid(9, 13), QByteArray("ABCDEFGHIJKLM"));
        QCOMPARE(block.mid(22, 12), QByteArray("????        "));
        const QByteArray knob = content(&rig, 1, 0, 0);
        QCOMPARE(knob.mid(9, 9), QByteArray("12       "));
        QCOMPARE(knob.mid(18, 15), QByteArray("?              "));
        QVERIFY(isSoundBlock(block));
        QVERIFY(isSoundBlock(knob));
        for (const QByteArray &message : {block, knob}) {
            for (qsizetype i = 1; i < message.size() - 1; ++i) {
                QVERIFY(static_cast<unsigned char>(message.at(i)) < 0x80);
            }
        }
    }

    void checksumAndByteCountOfABlockUnderConstruction()
    {
        QCOMPARE(int(MessageEncoder::CreateBulkChecksum({})), 0);
        QCOMPARE(int(MessageEncoder::CreateBulkChecksum({0x43, 0, 0x7F, 0x14})), 0);
        QCOMPARE(int(MessageEncoder::CreateBulkChecksum({0x43, 0, 0x7F, 0x14, 1})), 0x7F);
        QCOMPARE(int(MessageEncoder::CreateBulkChecksum({0x43, 0, 0x7F, 0x14, 0x81})), 0x7F);
        QCOMPARE(int(MessageEncoder::CreateBulkChecksum({0x43, 0, 0x7F, 0x14, 0x40, 0x40})), 0);
        for (const std::size_t size :
             {std::size_t(9), std::size_t(35), std::size_t(36), std::size_t(9 + 127),
              std::size_t(9 + 128), std::size_t(9 + 300)}) {
            unsigned char high = 0xEE;
            unsigned char low = 0xEE;
            MessageEncoder::CreateByteCount(std::vector<unsigned char>(size), &high, &low);
            QCOMPARE(std::size_t(high) * 128 + low, size - 9);
            QVERIFY(high < 0x80 && low < 0x80);
        }
    }

    void aDumpIsFifteenMessagesOf504Bytes_data()
    {
        QTest::addColumn<int>("bank");
        QTest::addColumn<int>("type");
        QTest::newRow("bank 0 goes out as edit buffer") << 0 << 0x6F;
        QTest::newRow("bank 1 goes out as stored") << 1 << 0x60;
    }
    void aDumpIsFifteenMessagesOf504Bytes()
    {
        QFETCH(int, bank);
        QFETCH(int, type);
        EncoderRig rig;
        rig.api.setParam(templateAddress(bank, 12, 13), QStringLiteral("Mine"));
        QVERIFY(rig.encoder.sendBulk(bank, 12));
        const Messages sent = rig.device.take();
        QCOMPARE(sent.size(), 15);
        QCOMPARE(sent.first(), framing(0x0E, type, 12));
        QCOMPARE(sent.last(), framing(0x0F, type, 12));
        int bytes = 0;
        for (int i = 0; i < 15; ++i) {
            bytes += static_cast<int>(sent.at(i).size());
            QVERIFY(isSoundBlock(sent.at(i)));
            if (i >= 1 && i <= 13) {
                QCOMPARE(sent.at(i), content(&rig, i - 1, bank, 12));
                QCOMPARE(int(sent.at(i).at(7)), i == 1 ? 0 : 0x10 + i - 2);
            }
        }
        QCOMPARE(bytes, 504);
        QCOMPARE(rig.api.transmitedBulkCount(), 1);
        QCOMPARE(rig.runSignals.transmitted(), 0);
        QVERIFY(rig.device.isWellFormed());
    }

    void noOtherBankCanBeDumped()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(hex("43 10 7F 14 01 10 18 40 F7")));
        for (const int bank : {-1, 2, 3, 5, 8, 100}) {
            QVERIFY(!rig.encoder.enqueue1TemplateBulk(bank, 0));
            QVERIFY(!rig.encoder.sendBulk(bank, 0));
        }
        QVERIFY(!rig.encoder.enqueue1TemplateBulk(0, -1));
        QVERIFY(!rig.encoder.enqueue1TemplateBulk(0, 50));
        QCOMPARE(rig.api.transmitedBulkCount(), 0);
        QCOMPARE(rig.step().size(), 1); // what was waiting still is
    }

    void aDumpWithinABrokenDumpIsRefusedAndDropsTheQueue()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(hex("43 10 7F 14 01 10 18 40 F7")));
        QVERIFY(rig.buffer(framing(0x0E, 0x60, 0)));
        QVERIFY(!rig.encoder.enqueue1TemplateBulk(0, 1));
        QVERIFY(rig.step().isEmpty());
        QVERIFY(!rig.encoder.sendEditorAllData(true));
        QVERIFY(rig.step().isEmpty());
    }

    void replayOfAKnobIs18Messages()
    {
        EncoderRig rig;
        writeKnob(&rig.api, 0, 30, 3, QStringLiteral("204143dff"), QStringLiteral("Res"), 74, 1);
        QVERIFY(rig.encoder.sendParamChangeOfController(0, 30, 3));
        const Messages sent = rig.device.take();
        QCOMPARE(sent.size(), 18);
        for (int i = 0; i < 15; ++i) {
            QCOMPARE(sent.at(i), hex("43 10 7F 14 01 13") + static_cast<char>(9 + i) +
                                     QByteArray("Res            ").at(i) + '\xF7');
        }
        QCOMPARE(sent.at(15), hex("43 10 7F 14 01 13 18 4A F7"));
        QCOMPARE(sent.at(16), hex("43 10 7F 14 01 13 19 01 F7"));
        QCOMPARE(sent.at(17), hex("43 10 7F 14 01 13 00") + "204143dff" + '\xF7');
        QCOMPARE(rig.runSignals.transmitted(), 1);
    }

    void replayOfAKnobThatDoesNotExistDropsTheQueue()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(hex("43 10 7F 14 01 10 18 40 F7")));
        QVERIFY(!rig.encoder.sendParamChangeOfController(0, 0, 12));
        QVERIFY(rig.step().isEmpty());
    }

    void replayOfATemplateIs243MessagesInOrder()
    {
        EncoderRig rig;
        rig.api.setParam(templateAddress(1, 8, 13), QStringLiteral("Pad"));
        rig.api.setParam(templateAddress(1, 8, 15), QStringLiteral("Synth"));
        rig.api.setParam(templateAddress(1, 8, 14), 1);
        QVERIFY(rig.encoder.send1TemplateDataParamChange(1, 8));
        const Messages sent = rig.device.take();
        QCOMPARE(sent.size(), 243);
        QByteArray addresses;
        for (const QByteArray &message : sent) {
            addresses.append(message.at(5)).append(message.at(6));
        }
        QByteArray expected;
        for (int low = 0; low <= 26; ++low) { // names, control type, reserved
            expected.append('\0').append(static_cast<char>(low));
        }
        for (int knob = 0; knob < 12; ++knob) {
            for (int low = 9; low <= 25; ++low) {
                expected.append(static_cast<char>(0x10 + knob)).append(static_cast<char>(low));
            }
            expected.append(static_cast<char>(0x10 + knob)).append('\0');
        }
        QCOMPARE(addresses, expected);
        QCOMPARE(sent.at(0), hex("43 10 7F 14 01 00 00 50 F7"));
        QCOMPARE(sent.at(13), hex("43 10 7F 14 01 00 0D 53 F7"));
        QCOMPARE(sent.at(25), hex("43 10 7F 14 01 00 19 01 F7"));
        QCOMPARE(sent.at(26), hex("43 10 7F 14 01 00 1A 00 F7"));
    }

    void storeMessages()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.sendStoreMessage());
        QCOMPARE(rig.device.take(), Messages{hex("43 10 7F 14 01 22 00 F7")});
        QVERIFY(rig.encoder.enqueueStoreToFlash());
        QVERIFY(rig.device.take().isEmpty()); // queued alone
        QCOMPARE(rig.step(), Messages{hex("43 00 7F 14 00 00 11 00 00 6F F7")});
        QCOMPARE(rig.api.transmitedBulkCount(), 0);
    }

    void allDataOfTheEditBufferIs50DumpsAndTheSelection()
    {
        EncoderRig rig;
        rig.api.setParam(currentTemplateAddress(), 21);
        QVERIFY(rig.encoder.sendEditorAllData(true));
        QCOMPARE(rig.api.transmitedBulkCount(), 50);
        Messages sent = rig.device.take();
        for (int number = 0; number < 50; ++number) {
            QCOMPARE(sent.size(), 15);
            QCOMPARE(sent.first(), framing(0x0E, 0x6F, number));
            QCOMPARE(sent.last(), framing(0x0F, 0x6F, number));
            QCOMPARE(rig.runSignals.transmitted(), 0);
            sent = rig.step();
        }
        QCOMPARE(sent, Messages{hex("43 10 7F 14 01 20 00 15 F7")});
        QCOMPARE(rig.runSignals.transmitted(), 1);
        QVERIFY(rig.step().isEmpty());
    }

    void allDataIs100DumpsWithTheSelectionBetween()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.sendEditorAllData(false));
        QCOMPARE(rig.api.transmitedBulkCount(), 100);
        Messages sent = rig.device.take();
        for (int i = 0; i < 100; ++i) {
            if (i == 50) {
                QCOMPARE(sent.size(), 16);
                QCOMPARE(sent.takeFirst(), hex("43 10 7F 14 01 20 00 00 F7"));
            }
            QCOMPARE(sent.size(), 15);
            QCOMPARE(sent.first(), framing(0x0E, i < 50 ? 0x6F : 0x60, i % 50));
            QCOMPARE(sent.last(), framing(0x0F, i < 50 ? 0x6F : 0x60, i % 50));
            sent = rig.step();
        }
        QVERIFY(sent.isEmpty());
        // The last acknowledge completes, and that is the decoder's.
        QCOMPARE(rig.runSignals.transmitted(), 0);
    }

    void requestsOfTheStoredDataEndWithTheFlagRequest()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.sendHardWareDataReq(false));
        QCOMPARE(rig.api.transmitedBulkReqCount(), 50);
        Messages sent = rig.device.take();
        for (int number = 0; number < 50; ++number) {
            QCOMPARE(sent, Messages{hex("43 20 7F 14 0E 60") + static_cast<char>(number) + '\xF7'});
            sent = rig.step();
        }
        QCOMPARE(sent, Messages{hex("43 30 7F 14 01 23 00 F7")});
        QVERIFY(rig.step().isEmpty());
    }

    void requestsOfAllDataEndWithABulkRequest()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.sendHardWareDataReq(true));
        QCOMPARE(rig.api.transmitedBulkReqCount(), 100);
        Messages sent = rig.device.take();
        for (int i = 0; i < 100; ++i) {
            if (i == 50) {
                QCOMPARE(sent.size(), 3);
                QCOMPARE(sent.takeFirst(), hex("43 30 7F 14 01 23 00 F7"));
                QCOMPARE(sent.takeFirst(), hex("43 30 7F 14 01 20 00 F7"));
            }
            QCOMPARE(sent,
                     Messages{hex("43 20 7F 14 0E") + static_cast<char>(i < 50 ? 0x60 : 0x6F) +
                              static_cast<char>(i % 50) + '\xF7'});
            sent = rig.step();
        }
        QVERIFY(sent.isEmpty());
        QCOMPARE(rig.runSignals.transmitted(), 0);
    }

    void aRefusedFirstRequestLeavesTheLaterStepsToTheResult()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(framing(0x0E, 0x60, 0))); // an open group refuses the first request
        QVERIFY(rig.encoder.sendHardWareDataReq(false));
        QCOMPARE(rig.device.take(), Messages{hex("43 30 7F 14 01 23 00 F7")});
        QVERIFY(rig.buffer(framing(0x0E, 0x60, 0)));
        QVERIFY(rig.encoder.sendHardWareDataReq(true));
        const Messages expected{hex("43 30 7F 14 01 23 00 F7"), hex("43 30 7F 14 01 20 00 F7"),
                                hex("43 20 7F 14 0E 6F 00 F7")};
        QCOMPARE(rig.device.take(), expected);
    }

    void aFailedSendOfARunDropsAllOfIt()
    {
        EncoderRig rig;
        rig.api.getComuController()->releasePort(1, RecordingDevice::MessagePort);
        QVERIFY(!rig.encoder.sendEditorAllData(false));
        QVERIFY(!rig.encoder.sendHardWareDataReq(true));
        QVERIFY(!rig.encoder.sendBulk(0, 0));
        QVERIFY(!rig.encoder.sendStoreMessage());
        QVERIFY(!rig.encoder.sendParamChangeOfController(0, 0, 0));
        QVERIFY(!rig.encoder.send1TemplateDataParamChange(0, 0));
        rig.api.getComuController()->requestPort(1, RecordingDevice::MessagePort, 0, nullptr);
        QVERIFY(rig.step().isEmpty());
    }

    // --- Through the memory's door, online -------------------------------------------------------

    void copiesAndExchangesOfBank0GoToTheDevice()
    {
        RecordingDevice device;
        RemoteMemAPI api;
        makeBanks(&api);
        QVERIFY(api.createMIDIComunicationRoute(1, 5, 5));
        api.setParam(templateAddress(0, 1, 13), QStringLiteral("One"));
        api.setParam(templateAddress(0, 2, 13), QStringLiteral("Two"));
        api.setParam(knobAddress(0, 1, 5, 1), 55);
        api.setONLINEstate(1);

        QVERIFY(api.exchangeTemplate(0, 1, 0, 2)); // the second side first
        Messages sent = device.take();
        QCOMPARE(sent.size(), 30);
        QCOMPARE(sent.at(0), framing(0x0E, 0x6F, 2));
        QCOMPARE(sent.at(15), framing(0x0E, 0x6F, 1));
        QCOMPARE(api.transmitedBulkCount(), 2);

        QVERIFY(api.exchangeTemplate(0, 1, 5, 2));
        sent = device.take();
        QCOMPARE(sent.size(), 15);
        QCOMPARE(sent.at(0), framing(0x0E, 0x6F, 1));

        QVERIFY(api.exchangeController(0, 2, 5, 0, 3, 6)); // the first side first
        sent = device.take();
        QCOMPARE(sent.size(), 36);
        QCOMPARE(int(sent.at(0).at(5)), 0x15);
        QCOMPARE(int(sent.at(18).at(5)), 0x16);

        QVERIFY(api.copyController(0, 3, 6, 0, 4, 7));
        sent = device.take();
        QCOMPARE(sent.size(), 18);
        QCOMPARE(int(sent.at(0).at(5)), 0x17);

        QVERIFY(api.copyController(0, 3, 6, 1, 4, 7));
        QVERIFY(api.copyTemplate(0, 3, 0, 9));
        api.copyBank(8, 0);
        QVERIFY(device.take().isEmpty());
    }

    void storeFlagsFollowTheFullSend_data()
    {
        QTest::addColumn<bool>("store");
        QTest::addColumn<bool>("flash");
        QTest::newRow("neither") << false << false;
        QTest::newRow("store") << true << false;
        QTest::newRow("flash") << false << true;
        QTest::newRow("both") << true << true;
    }
    void storeFlagsFollowTheFullSend()
    {
        QFETCH(bool, store);
        QFETCH(bool, flash);
        RecordingDevice device;
        RemoteMemAPI api;
        makeBanks(&api);
        QVERIFY(api.createMIDIComunicationRoute(1, 5, 5));
        api.setParam(templateAddress(0, 1, 13), QStringLiteral("One"));
        api.setStoreFlag(store);
        api.setStoreToFlashSendingFlag(flash);
        QVERIFY(api.sendEditorAllData(true));
        // Each of the two lets one more dump out without an acknowledge.
        Messages sent = device.take();
        QCOMPARE(sent.size(), 15 * (1 + int(store) + int(flash)));
        QCOMPARE(api.getParamQString(templateAddress(1, 1, 13)),
                 store ? QStringLiteral("One") : QString());
        while (api.transmitedBulkCount() > 0 && sent.size() < 2000) {
            device.take();
            api.sendMessage(nullptr);
            const Messages more = device.take();
            if (more.isEmpty()) {
                break;
            }
            sent += more;
        }
        Messages tail = sent.mid(50 * 15);
        QCOMPARE(tail.takeFirst(), hex("43 10 7F 14 01 20 00 00 F7"));
        if (store) {
            QCOMPARE(tail.takeFirst(), hex("43 10 7F 14 01 22 00 F7"));
        }
        if (flash) {
            QCOMPARE(tail.takeFirst(), hex("43 00 7F 14 00 00 11 00 00 6F F7"));
        }
        QVERIFY(tail.isEmpty());
        // Both flags are down: another run has none of it.
        QVERIFY(api.sendEditorAllData(true));
        QCOMPARE(device.take().size(), 15);
    }

    void aFailedSendKeepsTheStoreFlags()
    {
        RecordingDevice device;
        RemoteMemAPI api;
        makeBanks(&api);
        QVERIFY(api.createMIDIComunicationRoute(1, 5, 5));
        api.setStoreFlag(true);
        api.setStoreToFlashSendingFlag(true);
        api.getComuController()->releasePort(1, 5);
        QVERIFY(!api.sendEditorAllData(true));
        api.getComuController()->requestPort(1, 5, 0, nullptr);
        QVERIFY(api.sendEditorAllData(true));
        QCOMPARE(device.take().size(), 45);
    }

    void checksumsOfEveryHeaderAndFooter()
    {
        EncoderRig rig;
        for (const int type : {0, 1}) {
            for (int number = 0; number < 50; ++number) {
                for (const int kind : {0, 2}) {
                    tagMPEVENT event;
                    QVERIFY(rig.encoder.createBulkHeaderFooter(
                        static_cast<BulkType>(type), static_cast<BulkType2>(kind), number, &event));
                    const OwnedBytes bytes(event);
                    const QByteArray expected =
                        framing(kind == 0 ? 0x0E : 0x0F, type == 0 ? 0x60 : 0x6F, number);
                    QCOMPARE(bytesOf(event), expected);
                    QVERIFY(checksumOf(expected) < 0x80);
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(TestEncoderBulk)

#include "tst_encoderbulk.moc"
