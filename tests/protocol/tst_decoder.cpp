// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/MessageDecoder.h"

#include "memory/MemChangeObserver.h"
#include "protocol/DecoderRig.h"
#include "protocol/SysExBytes.h"

#include <QtTest/QtTest>

#include <memory>
#include <random>
#include <thread>
#include <vector>

namespace
{

using Messages = QList<QByteArray>;
using namespace DeviceSide;

const ParamAddress BankEditFlagAddress(-6, -1, -1, -1);
const ParamAddress FileEditFlagAddress(-3, -1, -1, -1);

// Each form that the device sends, for cutting and for damaging.
Messages everyForm()
{
    return {header(Stored, 3),
            header(EditBuffer, 3),
            templateBlock("Name", "VSTi", 1),
            knobBlock(0, "204143dff", "Cutoff", 74, 1),
            knobBlock(11, "204143dff", "Cutoff", 74, 1),
            footer(Stored, 3),
            footer(EditBuffer, 3),
            acknowledge(),
            change(0x00, 0x00, 'X'),
            change(0x00, 0x0D, 'X'),
            change(0x00, 0x19, 1),
            change(0x00, 0x1A, 1),
            change(0x10, 0x00, QByteArray("204143dff")),
            change(0x10, 0x09, 'X'),
            change(0x10, 0x18, 99),
            change(0x10, 0x19, 1),
            change(0x20, 0x00, 5),
            change(0x22, 0x00, QByteArray()),
            change(0x23, 0x00, 1)};
}

class HearingObserver : public MemChangeObserver
{
public:
    explicit HearingObserver(RemoteMemAPI *api) { setMemAPI(api); }
    ~HearingObserver() override { memAPI->unregistObserver(this); }
    HearingObserver(const HearingObserver &) = delete;
    HearingObserver &operator=(const HearingObserver &) = delete;
    void paramUpdate() override { ++heard; }

    int heard = 0;
};

} // namespace

class TestDecoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // --- What is taken at all --------------------------------------------------------------------

    void refusedMessages_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<quint32>("type");
        const auto row = [](const char *name, const QByteArray &message, quint32 type = 0x10000) {
            QTest::newRow(name) << message << type;
        };
        row("another kind of event", change(0x10, 0x18, 9), 0x20000);
        row("active sensing", QByteArray(), 16);
        row("another maker", QByteArray(change(0x10, 0x18, 9)).replace(0, 1, hex("44")));
        row("the editor's own model", QByteArray(change(0x10, 0x18, 9)).replace(3, 1, hex("14")));
        row("another first model byte", QByteArray(change(0x10, 0x18, 9)).replace(2, 1, hex("7E")));
        row("bulk request class", QByteArray(change(0x10, 0x18, 9)).replace(1, 1, hex("20")));
        row("parameter request class", QByteArray(change(0x10, 0x18, 9)).replace(1, 1, hex("30")));
        row("acknowledge with the model", hex("43 60 7F 15 02 F7"));
        row("acknowledge with another byte 2", hex("43 60 03 F7"));
        row("acknowledge of class 5", hex("43 50 02 F7"));
        row("contents outside a dump", knobBlock(0, "204143dff", "Cutoff", 74, 1));
        row("template block outside a dump", templateBlock("Name", "VSTi", 1));
        row("header of another type", header(0x61, 0));
        row("header of template 50", header(Stored, 50));
        row("footer of another type", footer(0x61, 0));
        row("footer of template 50", footer(EditBuffer, 50));
        row("unknown bulk address", bulk(hex("02 00 00")));
        row("store to flash", bulk(hex("11 00 00")));
        row("empty", QByteArray());
        row("maker alone", hex("43"));
        row("maker and end", hex("43 F7"));
    }
    void refusedMessages()
    {
        QFETCH(QByteArray, message);
        QFETCH(quint32, type);
        DecoderRig rig;
        rig.decoder.incrementTransmitedBulkCounter();
        rig.decoder.incrementTransmitedBulkReqCounter();
        const QByteArray before = rig.snapshot();
        QVERIFY(!rig.process(message, type));
        QCOMPARE(rig.snapshot(), before);
        QCOMPARE(rig.decoder.transmitedBulkCount(), 1);
        QCOMPARE(rig.decoder.transmitedBulkReqCount(), 1);
        QVERIFY(rig.device.take().isEmpty());
    }

    void aNullPointerOfAnySaidLengthIsSafe()
    {
        DecoderRig rig;
        for (const quint32 length : {0u, 1u, 9u, 38u, 0xFFFFFFFFu}) {
            tagMPEVENT event;
            event.eventType = MPEventSysEx;
            event.length = length;
            QVERIFY(!rig.decoder.Process(event));
        }
    }

    void testsOnAnEvent()
    {
        DecoderRig rig;
        const MessageDecoder &d = rig.decoder;
        const ExactEvent head(header(Stored, 49));
        QVERIFY(d.isSysEx(head.event) && d.isCorvanSysEx(head.event));
        QVERIFY(d.isDesiredModelSysEx(head.event) && d.isBulkDump(head.event));
        QVERIFY(d.isBulkHeader(head.event) && d.isNormalBulkHeader(head.event));
        QVERIFY(!d.isEditBuffBulkHeader(head.event) && !d.isBulkFooter(head.event));
        QVERIFY(!d.isParameterChange(head.event) && !d.isBulkAcknowledge(head.event));
        QVERIFY(!d.isBulkContents(head.event) && d.isBulkChecksumCorrect(head.event));
        QCOMPARE(d.getTemplateNumberFromBulk(head.event), 49);
        const ExactEvent edit(header(EditBuffer, 0));
        QVERIFY(d.isEditBuffBulkHeader(edit.event) && !d.isNormalBulkHeader(edit.event));
        const ExactEvent foot(footer(EditBuffer, 0));
        QVERIFY(d.isBulkFooter(foot.event) && !d.isBulkHeader(foot.event));
        const ExactEvent common(templateBlock("", "", 0));
        int knob = -1;
        QVERIFY(d.isBulkContents(common.event) && d.isBulkContentsCommon(common.event));
        QVERIFY(!d.isBulkContentsController(common.event, &knob));
        const ExactEvent block(knobBlock(11, "", "", 0, 0));
        QVERIFY(d.isBulkContents(block.event) && !d.isBulkContentsCommon(block.event));
        QVERIFY(d.isBulkContentsController(block.event, &knob));
        QVERIFY(d.isBulkContentsController(block.event, nullptr));
        QCOMPARE(knob, 11);
        const ExactEvent changed(change(0x10, 0x18, 1));
        QVERIFY(d.isParameterChange(changed.event) && !d.isBulkDump(changed.event));
        const ExactEvent other(change(0x10, 0x18, 1), MPEventSysExContinuation);
        QVERIFY(!d.isSysEx(other.event));
        const ExactEvent ack(hex("43 6F 02 F7"));
        QVERIFY(d.isBulkAcknowledge(ack.event) && !d.isDesiredModelSysEx(ack.event));
    }

    void theDeviceNumberIsIgnored()
    {
        DecoderRig rig;
        for (int device = 0; device < 16; ++device) {
            QByteArray message = change(0x10, 0x18, device + 1);
            message[1] = static_cast<char>(0x10 | device);
            QVERIFY(rig.process(message));
            QCOMPARE(rig.number(knobAddress(0, 0, 0, 1)), device + 1);
            QByteArray head = header(Stored, device);
            head[1] = static_cast<char>(device);
            QVERIFY(rig.process(head));
        }
    }

    // --- Acknowledges ----------------------------------------------------------------------------

    void anyAcknowledgeIsTaken_data()
    {
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("as the device sends it") << hex("43 60 02 F7");
        QTest::newRow("other third and later bytes") << hex("43 60 02 11 22 33 44 F7");
        QTest::newRow("device number 15") << hex("43 6F 02 F7");
        QTest::newRow("without more bytes") << hex("43 60 02");
    }
    void anyAcknowledgeIsTaken()
    {
        QFETCH(QByteArray, message);
        DecoderRig rig;
        rig.decoder.incrementTransmitedBulkCounter();
        rig.decoder.incrementTransmitedBulkCounter();
        QVERIFY(rig.process(message));
        QCOMPARE(rig.decoder.transmitedBulkCount(), 1);
    }

    void anAcknowledgeWithEmptyQueueAndCounterAt0CompletesOnce()
    {
        DecoderRig rig;
        rig.api.setWaitBulkTransmitDone(true);
        rig.decoder.incrementTransmitedBulkCounter();
        rig.decoder.incrementTransmitedBulkCounter();
        QVERIFY(rig.process(acknowledge()));
        QCOMPARE(rig.runSignals.transmitted(), 0);
        QVERIFY(rig.api.getBulkRecieveEnableFlag());
        QVERIFY(rig.process(acknowledge()));
        QCOMPARE(rig.runSignals.transmitted(), 1);
        QVERIFY(!rig.api.isWaitBulkTransmitDone());
        QVERIFY(!rig.api.getBulkRecieveEnableFlag());
        QVERIFY(rig.process(acknowledge()));
        QCOMPARE(rig.runSignals.transmitted(), 1);
        QCOMPARE(rig.decoder.transmitedBulkCount(), 0);
    }

    void noDumpsCanBeAskedForBetweenTheCompletionAndTheRevoking()
    {
        DecoderRig rig;
        rig.api.setWaitBulkTransmitDone(true);
        int completions = 0;
        bool isLocked = false;
        QObject context;
        QObject::connect(
            &rig.api, &RemoteMemAPI::completeBulkTransmit, &context,
            [&] {
                ++completions;
                // Another thread that wants to ask for dumps now has to wait.
                std::thread other([&] {
                    isLocked = !rig.api.memoryMutex.try_lock();
                    if (!isLocked) {
                        rig.api.memoryMutex.unlock();
                    }
                });
                other.join();
            },
            Qt::DirectConnection);
        QVERIFY(rig.process(acknowledge()));
        QCOMPARE(completions, 1);
        QVERIFY(isLocked);
    }

    void anAcknowledgeThatNobodyWaitsForCompletesNothing()
    {
        DecoderRig rig;
        QVERIFY(rig.process(acknowledge()));
        QCOMPARE(rig.runSignals.transmitted(), 0);
        QVERIFY(rig.api.getBulkRecieveEnableFlag());
    }

    void anAcknowledgeReleasesTheNextGroup()
    {
        DecoderRig rig;
        rig.api.setParam(templateAddress(0, 1, 13), QStringLiteral("A"));
        QVERIFY(rig.api.sendEditorAllData(true));
        QCOMPARE(rig.device.take().size(), 15);
        QVERIFY(rig.process(acknowledge()));
        const Messages sent = rig.device.take();
        QCOMPARE(sent.size(), 15);
        QCOMPARE(int(sent.first().at(8)), 1);
    }

    void anAcknowledgeWithoutAnEncoderCompletesNothing()
    {
        DecoderRig rig;
        rig.api.deleteMIDIComunicationRoute();
        rig.api.setWaitBulkTransmitDone(true);
        QVERIFY(rig.process(acknowledge()));
        QCOMPARE(rig.runSignals.transmitted(), 0);
        QVERIFY(rig.api.isWaitBulkTransmitDone());
    }

    void countersNeverFallBelow0()
    {
        DecoderRig rig;
        rig.decoder.decrementTransmitedBulkCounter();
        rig.decoder.decrementTransmitedBulkReqCounter();
        rig.decoder.incrementTransmitedBulkCounter();
        rig.decoder.incrementTransmitedBulkReqCounter();
        QCOMPARE(rig.decoder.transmitedBulkCount(), 1);
        QCOMPARE(rig.decoder.transmitedBulkReqCount(), 1);
        rig.decoder.clearTransmitedBulkCounter();
        QCOMPARE(rig.decoder.transmitedBulkCount(), 0);
        QCOMPARE(rig.decoder.transmitedBulkReqCount(), 1);
        rig.decoder.clearTransmitedBulkReqCounter();
        QCOMPARE(rig.decoder.transmitedBulkReqCount(), 0);
    }

    // --- Dumps -----------------------------------------------------------------------------------

    void dumpsGoIntoTheHardwareBanks_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("bank");
        QTest::newRow("type 60 goes to bank 2") << Stored << 2;
        QTest::newRow("type 6F goes to bank 3") << EditBuffer << 3;
    }
    void dumpsGoIntoTheHardwareBanks()
    {
        QFETCH(int, type);
        QFETCH(int, bank);
        DecoderRig rig;
        const BankData before[] = {rig.api.getBank(0), rig.api.getBank(1),
                                   rig.api.getBank(bank == 2 ? 3 : 2)};
        for (const int number : {0, 7, 49}) {
            QVERIFY(rig.processAll(dump(type, number)));
            const QString tag = QStringLiteral("%1-%2").arg(type).arg(number);
            QCOMPARE(rig.text(templateAddress(bank, number, 13)), QLatin1Char('T') + tag);
            QCOMPARE(rig.text(templateAddress(bank, number, 15)), QLatin1Char('V') + tag);
            QCOMPARE(rig.number(templateAddress(bank, number, 14)), number % 2);
            for (int knob = 0; knob < 12; ++knob) {
                QCOMPARE(rig.text(knobAddress(bank, number, knob, 0)),
                         QStringLiteral("K%1-%2").arg(tag).arg(knob));
                QCOMPARE(rig.number(knobAddress(bank, number, knob, 1)), (number + knob) % 128);
                QCOMPARE(rig.number(knobAddress(bank, number, knob, 2)), knob % 2);
                QCOMPARE(rig.text(knobAddress(bank, number, knob, 3)),
                         QStringLiteral("20414%1").arg(1000 + number + knob));
            }
            const auto kind = bank == 2 ? BulkReceipt::Stored : BulkReceipt::EditBuffer;
            QVERIFY(rig.decoder.bulkReceipt().isComplete(kind, number));
        }
        const int others[] = {0, 1, bank == 2 ? 3 : 2};
        for (int i = 0; i < 3; ++i) {
            for (int number = 0; number < 50; ++number) {
                QVERIFY(rig.api.getTemplateData(others[i], number) ==
                        before[i].getTemplate(number));
            }
        }
        QCOMPARE(rig.number(FileEditFlagAddress), 0);
        QVERIFY(rig.device.take().isEmpty());
    }

    void whatIsHeldAlreadyIsReceivedAndNobodyHears()
    {
        DecoderRig rig;
        QVERIFY(rig.processAll(dump(Stored, 7)));
        const QByteArray before = rig.snapshot();
        std::vector<std::unique_ptr<ParamAddress>> addresses;
        for (int selector = 13; selector <= 15; ++selector) {
            addresses.push_back(std::make_unique<ParamAddress>(templateAddress(2, 7, selector)));
        }
        for (int parameter = 0; parameter < 4; ++parameter) {
            addresses.push_back(std::make_unique<ParamAddress>(knobAddress(2, 7, 3, parameter)));
        }
        std::vector<std::unique_ptr<HearingObserver>> observers;
        for (const std::unique_ptr<ParamAddress> &address : addresses) {
            observers.push_back(std::make_unique<HearingObserver>(&rig.api));
            rig.api.registObserver(address.get(), observers.back().get());
        }
        rig.decoder.clearBulkReceipt();
        QVERIFY(rig.processAll(dump(Stored, 7)));
        QVERIFY(rig.decoder.bulkReceipt().isComplete(BulkReceipt::Stored, 7));
        QCOMPARE(rig.snapshot(), before);
        for (const std::unique_ptr<HearingObserver> &observer : observers) {
            QCOMPARE(observer->heard, 0);
        }
        // And each field that is new is written and heard once, alone.
        QVERIFY(rig.process(header(Stored, 7)));
        QVERIFY(rig.process(templateBlock("Other", "Another", 0)));
        QVERIFY(rig.process(knobBlock(3, "204143dff", "Cutoff", 127, 0)));
        for (const std::unique_ptr<HearingObserver> &observer : observers) {
            QCOMPARE(observer->heard, 1);
        }
    }

    void aRemoteIdentifierInCapitalsIsTheOneInSmallLetters()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        QVERIFY(rig.process(knobBlock(0, "2ABCDEF01", "x", 1, 1)));
        QCOMPARE(rig.text(knobAddress(2, 0, 0, 3)), QStringLiteral("2abcdef01"));
        const QByteArray before = rig.snapshot();
        ParamAddress address = knobAddress(2, 0, 0, 3);
        HearingObserver observer(&rig.api);
        rig.api.registObserver(&address, &observer);
        QVERIFY(rig.process(knobBlock(0, "2ABCDEF01", "x", 1, 1)));
        QCOMPARE(rig.snapshot(), before);
        QCOMPARE(observer.heard, 0);
    }

    void textsOfABlockLoseTheirTrailingBlanksAlone()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        QVERIFY(rig.process(templateBlock("  A  B", "", 0)));
        QVERIFY(rig.process(knobBlock(0, "2 3", "exactly fifteen", 0, 0)));
        QCOMPARE(rig.text(templateAddress(2, 0, 13)), QStringLiteral("  A  B"));
        QCOMPARE(rig.text(templateAddress(2, 0, 15)), QString());
        QCOMPARE(rig.text(knobAddress(2, 0, 0, 0)), QStringLiteral("exactly fifteen"));
        QCOMPARE(rig.text(knobAddress(2, 0, 0, 3)), QStringLiteral("2 3"));
    }

    void aNumberOutOfRangeLeavesTheOldOneAndTakesTheRest()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        rig.process(knobBlock(0, "204143dff", "Res", 99, 2));
        QCOMPARE(rig.text(knobAddress(2, 0, 0, 0)), QStringLiteral("Res"));
        QCOMPARE(rig.number(knobAddress(2, 0, 0, 1)), 99);
        QCOMPARE(rig.number(knobAddress(2, 0, 0, 2)), 0);
    }

    void knobsThatDoNotExistAreRefusedAndTheOthersGoOn()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        const QByteArray before = rig.snapshot();
        for (int knob = 12; knob < 16; ++knob) {
            QVERIFY(!rig.process(knobBlock(knob, "1", "x", 1, 1)));
        }
        QCOMPARE(rig.snapshot(), before);
        QVERIFY(rig.process(knobBlock(11, "1", "x", 1, 1)));
        QCOMPARE(rig.text(knobAddress(2, 0, 11, 0)), QStringLiteral("x"));
    }

    void contentsOfAnotherPageAreIgnoredAsGood()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        const QByteArray before = rig.snapshot();
        for (const int mid : {0x01, 0x0F, 0x20, 0x2B, 0x7F}) {
            QVERIFY(rig.process(bulk(address(0x01, mid, 0), QByteArray(26, '1'))));
        }
        QCOMPARE(rig.snapshot(), before);
    }

    void theCountAndTheLowAddressOfABlockAreNotRead()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        QByteArray block = knobBlock(0, "204143dff", "Wide", 5, 1);
        block[5] = static_cast<char>(block.at(5) + 3); // count
        block[8] = static_cast<char>(block.at(8) + 2); // low address
        block[block.size() - 2] = static_cast<char>((block.at(block.size() - 2) - 5 + 128) % 128);
        QVERIFY(rig.process(block));
        QCOMPARE(rig.text(knobAddress(2, 0, 0, 0)), QStringLiteral("Wide"));
    }

    void sumsAndDataBytesAreThoseOfOneByteAfterAnother()
    {
        std::mt19937 random(7);
        std::uniform_int_distribution<int> anyByte(0, 255);
        for (std::size_t length = 0; length < 300; ++length) {
            std::vector<unsigned char> bytes(length);
            unsigned sum = 0;
            for (unsigned char &byte : bytes) {
                byte = static_cast<unsigned char>(anyByte(random));
                sum += byte;
            }
            QCOMPARE(SysEx::sum7(bytes.data(), length), sum % 128);
            std::fill(bytes.begin(), bytes.end(), static_cast<unsigned char>(0x7F));
            QCOMPARE(SysEx::sum7(bytes.data(), length), static_cast<unsigned>(length * 0x7F % 128));
            QVERIFY(SysEx::areDataBytes(bytes.data(), length));
            for (unsigned char &byte : bytes) {
                byte = 0x80;
                QVERIFY(!SysEx::areDataBytes(bytes.data(), length));
                byte = 0x7F;
            }
        }
    }

    void wrongChecksumsDropThatOneMessage()
    {
        DecoderRig rig;
        const Messages messages = dump(Stored, 4);
        for (qsizetype bad = 1; bad < messages.size() - 1; ++bad) {
            rig.decoder.clearBulkReceipt();
            for (qsizetype i = 0; i < messages.size(); ++i) {
                QByteArray message = messages.at(i);
                if (i == bad) {
                    message[message.size() - 2] =
                        static_cast<char>(message.at(message.size() - 2) ^ (1 << (bad % 7)));
                }
                QCOMPARE(rig.process(message), i != bad);
            }
            const BulkReceipt receipt = rig.decoder.bulkReceipt();
            QVERIFY(!receipt.isComplete(BulkReceipt::Stored, 4));
            QCOMPARE(int(receipt.blocks[BulkReceipt::Stored][4]), 0x1FFF & ~(1 << (bad - 1)));
            QVERIFY(receipt.finished[BulkReceipt::Stored][4]);
        }
    }

    void everySingleBitErrorInADataByteIsNoticed()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        const QByteArray before = rig.snapshot();
        const QByteArray block = knobBlock(3, "204143dff", "Cutoff", 74, 1);
        for (qsizetype i = 4; i < block.size() - 1; ++i) {
            for (int bit = 0; bit < 7; ++bit) {
                QByteArray broken = block;
                broken[i] = static_cast<char>(broken.at(i) ^ (1 << bit));
                QVERIFY(!rig.process(broken));
            }
        }
        QCOMPARE(rig.snapshot(), before);
    }

    void aMissingBlockKeepsTheOldValuesAndIsToldByTheReceipt()
    {
        DecoderRig rig;
        QVERIFY(rig.processAll(dump(Stored, 4)));
        Messages second{header(Stored, 4), templateBlock("New", "New", 0)};
        for (int knob = 0; knob < 12; ++knob) {
            if (knob != 5) {
                second.append(knobBlock(knob, "1", "new", 1, 1));
            }
        }
        second.append(footer(Stored, 4));
        QVERIFY(rig.processAll(second));
        QCOMPARE(rig.text(knobAddress(2, 4, 5, 0)), QStringLiteral("K96-4-5"));
        QCOMPARE(rig.text(knobAddress(2, 4, 6, 0)), QStringLiteral("new"));
        const BulkReceipt receipt = rig.decoder.bulkReceipt();
        QVERIFY(!receipt.isComplete(BulkReceipt::Stored, 4));
        QVERIFY(receipt.incomplete(BulkReceipt::Stored).contains(4));
    }

    void aNewHeaderRestartsWithItsOwnTemplateAndBank()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 1)));
        QVERIFY(rig.process(templateBlock("First", "", 0)));
        QVERIFY(rig.process(header(EditBuffer, 2)));
        QVERIFY(rig.process(templateBlock("Second", "", 0)));
        QCOMPARE(rig.text(templateAddress(2, 1, 13)), QStringLiteral("First"));
        QCOMPARE(rig.text(templateAddress(3, 2, 13)), QStringLiteral("Second"));
        QVERIFY(rig.process(footer(EditBuffer, 2)));
        QVERIFY(!rig.decoder.bulkReceipt().finished[BulkReceipt::Stored][1]);
        QVERIFY(rig.decoder.bulkReceipt().finished[BulkReceipt::EditBuffer][2]);
    }

    void aHeaderSeenAgainForgetsTheBlocksBeforeIt()
    {
        DecoderRig rig;
        QVERIFY(rig.processAll(dump(Stored, 1)));
        QVERIFY(rig.decoder.bulkReceipt().isComplete(BulkReceipt::Stored, 1));
        QVERIFY(rig.process(header(Stored, 1)));
        QVERIFY(!rig.decoder.bulkReceipt().isComplete(BulkReceipt::Stored, 1));
        QVERIFY(rig.process(footer(Stored, 1)));
        QVERIFY(!rig.decoder.bulkReceipt().isComplete(BulkReceipt::Stored, 1));
    }

    void theFootersTypeAndNumberAreNotCompared()
    {
        DecoderRig rig;
        rig.decoder.incrementTransmitedBulkReqCounter();
        QVERIFY(rig.process(header(Stored, 1)));
        QVERIFY(rig.process(footer(EditBuffer, 40)));
        QCOMPARE(rig.decoder.transmitedBulkReqCount(), 0);
        QVERIFY(!rig.process(templateBlock("Late", "", 0)));
        QCOMPARE(rig.text(templateAddress(2, 1, 13)), QString());
    }

    void aFooterReleasesTheNextRequestAndTheLastOneCompletesOnce()
    {
        DecoderRig rig;
        rig.api.setWaitBulkReceiveDone(true);
        QVERIFY(rig.api.sendHardWareDataReq(false));
        rig.decoder.incrementTransmitedBulkReqCounter();
        rig.decoder.incrementTransmitedBulkReqCounter();
        QCOMPARE(rig.device.take(), Messages{hex("43 20 7F 14 0E 60 00 F7")});
        QVERIFY(rig.processAll(dump(Stored, 0)));
        QCOMPARE(rig.device.take(), Messages{hex("43 20 7F 14 0E 60 01 F7")});
        QCOMPARE(rig.runSignals.received(), 0);
        QVERIFY(rig.processAll(dump(Stored, 1)));
        QCOMPARE(rig.runSignals.received(), 1);
        QVERIFY(rig.processAll(dump(Stored, 2)));
        QCOMPARE(rig.runSignals.received(), 1);
        QCOMPARE(rig.decoder.transmitedBulkReqCount(), 0);
    }

    void dumpsAreTakenOnlyWhileTheyAreWanted()
    {
        DecoderRig rig;
        const QByteArray before = rig.snapshot();
        rig.api.revokeReceivedBulk();
        rig.decoder.incrementTransmitedBulkReqCounter();
        for (const QByteArray &message : dump(Stored, 0)) {
            QVERIFY(!rig.process(message));
        }
        QCOMPARE(rig.snapshot(), before);
        QCOMPARE(rig.decoder.transmitedBulkReqCount(), 1);
        rig.api.sendHardWareDataReq(false);
        QVERIFY(rig.processAll(dump(Stored, 0)));
        QVERIFY(rig.snapshot() != before);
    }

    void revokingWithinADumpDropsTheRestOfIt()
    {
        DecoderRig rig;
        const Messages messages = dump(Stored, 0);
        QVERIFY(rig.processAll(messages.mid(0, 5)));
        rig.api.revokeReceivedBulk();
        for (const QByteArray &message : messages.mid(5)) {
            QVERIFY(!rig.process(message));
        }
        QCOMPARE(rig.text(knobAddress(2, 0, 2, 0)), QStringLiteral("K96-0-2"));
        QCOMPARE(rig.text(knobAddress(2, 0, 3, 0)), QString());
    }

    void changesAreTakenWhileDumpsAreNotWanted()
    {
        DecoderRig rig;
        rig.api.revokeReceivedBulk();
        QVERIFY(rig.process(change(0x10, 0x18, 9)));
        QCOMPARE(rig.number(knobAddress(0, 0, 0, 1)), 9);
    }

    // --- Changes: numbers ------------------------------------------------------------------------

    void numericChangesLandInTheCurrentTemplateOfBank0()
    {
        DecoderRig rig;
        rig.api.setParam(currentTemplateAddress(), 17);
        for (int knob = 0; knob < 12; ++knob) {
            QVERIFY(rig.process(change(0x10 + knob, 0x18, 100 + knob)));
            QVERIFY(rig.process(change(0x10 + knob, 0x19, 1)));
            QCOMPARE(rig.number(knobAddress(0, 17, knob, 1)), 100 + knob);
            QCOMPARE(rig.number(knobAddress(0, 17, knob, 2)), 1);
        }
        QVERIFY(rig.process(change(0x00, 0x19, 1)));
        QCOMPARE(rig.number(templateAddress(0, 17, 14)), 1);
        QCOMPARE(rig.number(templateAddress(0, 0, 14)), 0);
        QCOMPARE(rig.number(FileEditFlagAddress), 1);
    }

    void changesFollowTheCurrentTemplateWhenItMoves()
    {
        DecoderRig rig;
        QVERIFY(rig.process(change(0x10, 0x18, 1)));
        QVERIFY(rig.process(change(0x20, 0x00, 8)));
        QVERIFY(rig.process(change(0x10, 0x18, 2)));
        rig.api.setParam(currentTemplateAddress(), 9);
        QVERIFY(rig.process(change(0x10, 0x18, 3)));
        QCOMPARE(rig.number(knobAddress(0, 0, 0, 1)), 1);
        QCOMPARE(rig.number(knobAddress(0, 8, 0, 1)), 2);
        QCOMPARE(rig.number(knobAddress(0, 9, 0, 1)), 3);
    }

    void theHighAddressByteIsNotRead()
    {
        DecoderRig rig;
        QByteArray message = change(0x10, 0x18, 77);
        message[4] = 0x55;
        QVERIFY(rig.process(message));
        QCOMPARE(rig.number(knobAddress(0, 0, 0, 1)), 77);
    }

    void valuesOutOfRangeAreNotWritten()
    {
        DecoderRig rig;
        QVERIFY(rig.process(change(0x10, 0x19, 1)));
        const QByteArray before = rig.snapshot();
        rig.process(change(0x10, 0x19, 2));
        rig.process(change(0x00, 0x19, 0x7F));
        rig.process(change(0x20, 0x00, 50));
        rig.process(change(0x23, 0x00, 2));
        QCOMPARE(rig.snapshot(), before);
    }

    void addressesThatTheMemoryDoesNotHoldChangeNothing_data()
    {
        QTest::addColumn<int>("mid");
        QTest::addColumn<int>("low");
        QTest::newRow("00 1A, the reserved byte") << 0x00 << 0x1A;
        QTest::newRow("00 1B") << 0x00 << 0x1B;
        QTest::newRow("1C 00") << 0x1C << 0x00;
        QTest::newRow("10 1A") << 0x10 << 0x1A;
        QTest::newRow("20 01") << 0x20 << 0x01;
        QTest::newRow("21 00") << 0x21 << 0x00;
        QTest::newRow("22 01") << 0x22 << 0x01;
        QTest::newRow("23 01") << 0x23 << 0x01;
        QTest::newRow("7F 7F") << 0x7F << 0x7F;
    }
    void addressesThatTheMemoryDoesNotHoldChangeNothing()
    {
        QFETCH(int, mid);
        QFETCH(int, low);
        DecoderRig rig;
        rig.api.setParam(templateAddress(0, 0, 13), QStringLiteral("Mine"));
        rig.api.setParam(FileEditFlagAddress, 0);
        const QByteArray before = rig.snapshot();
        QVERIFY(rig.process(change(mid, low, 1))); // handed on as a number, and refused there
        QCOMPARE(rig.snapshot(), before);
        QCOMPARE(rig.runSignals.notified(), 0);
        QVERIFY(rig.api.isAllowToSendSysEx());
    }

    void theBankEditFlagIsRaisedAndLowered()
    {
        DecoderRig rig;
        QVERIFY(rig.process(change(0x23, 0x00, 1)));
        QCOMPARE(rig.number(BankEditFlagAddress), 1);
        QVERIFY(rig.process(change(0x23, 0x00, 0)));
        QCOMPARE(rig.number(BankEditFlagAddress), 0);
        QCOMPARE(rig.number(FileEditFlagAddress), 0);
    }

    void aStoreReportCopiesTheEditBufferToStored()
    {
        DecoderRig rig;
        rig.api.setONLINEstate(1);
        rig.api.setAllowToSendSysExFlag(false);
        rig.api.setParam(templateAddress(0, 6, 13), QStringLiteral("Kept"));
        rig.api.setAllowToSendSysExFlag(true);
        rig.api.setParam(FileEditFlagAddress, 0);
        QVERIFY(rig.process(change(0x22, 0x00, QByteArray())));
        QCOMPARE(rig.text(templateAddress(1, 6, 13)), QStringLiteral("Kept"));
        QCOMPARE(rig.number(FileEditFlagAddress), 1);
        QVERIFY(rig.device.take().isEmpty());
        // With data it is a store report too.
        rig.api.setAllowToSendSysExFlag(false);
        rig.api.setParam(templateAddress(0, 6, 13), QStringLiteral("Again"));
        QVERIFY(rig.process(change(0x22, 0x00, 1)));
        QCOMPARE(rig.text(templateAddress(1, 6, 13)), QStringLiteral("Again"));
    }

    // --- Changes: the current template number ----------------------------------------------------

    void aSelectionAtTheDeviceIsWrittenAndSignalled()
    {
        DecoderRig rig;
        QVERIFY(rig.process(change(0x20, 0x00, 12)));
        QCOMPARE(rig.number(currentTemplateAddress()), 12);
        QCOMPARE(rig.runSignals.notified(), 1);
        QVERIFY(rig.process(change(0x20, 0x00, 12))); // nothing to write
        QCOMPARE(rig.runSignals.notified(), 2);
        QVERIFY(rig.process(change(0x20, 0x00, 99))); // refused by the memory
        QCOMPARE(rig.number(currentTemplateAddress()), 12);
        QCOMPARE(rig.runSignals.notified(), 3);
    }

    void theEchoOfAnOwnSelectionIsSwallowedAndSignalled()
    {
        DecoderRig rig;
        rig.api.setONLINEstate(1);
        rig.api.setParam(currentTemplateAddress(), 5);
        rig.api.setParam(currentTemplateAddress(), 6);
        rig.device.take();
        QVERIFY(rig.process(change(0x20, 0x00, 5))); // the echo of the first
        QCOMPARE(rig.number(currentTemplateAddress()), 6);
        QCOMPARE(rig.runSignals.notified(), 1);
        QVERIFY(rig.process(change(0x20, 0x00, 6)));
        QCOMPARE(rig.number(currentTemplateAddress()), 6);
        QVERIFY(rig.process(change(0x20, 0x00, 5))); // a selection at the device now
        QCOMPARE(rig.number(currentTemplateAddress()), 5);
        QCOMPARE(rig.runSignals.notified(), 3);
        QVERIFY(rig.device.take().isEmpty());
    }

    void aNumberThatDiffersFromTheHeadIsWrittenAndLeavesTheList()
    {
        DecoderRig rig;
        rig.api.setONLINEstate(1);
        rig.api.setParam(currentTemplateAddress(), 5);
        QVERIFY(rig.process(change(0x20, 0x00, 9)));
        QCOMPARE(rig.number(currentTemplateAddress()), 9);
        QVERIFY(rig.process(change(0x20, 0x00, 5))); // the head is still there
        QCOMPARE(rig.number(currentTemplateAddress()), 9);
        QVERIFY(rig.process(change(0x20, 0x00, 5)));
        QCOMPARE(rig.number(currentTemplateAddress()), 5);
    }

    void aNewRouteForgetsTheEchoesOfTheOld()
    {
        DecoderRig rig;
        rig.api.setONLINEstate(1);
        rig.api.setParam(currentTemplateAddress(), 5);
        rig.api.deleteMIDIComunicationRoute();
        rig.api.setParam(currentTemplateAddress(), 6);
        QVERIFY(rig.process(change(0x20, 0x00, 5)));
        QCOMPARE(rig.number(currentTemplateAddress()), 5);
    }

    // --- Changes: texts --------------------------------------------------------------------------

    void patchesOfNames_data()
    {
        QTest::addColumn<ParamAddress>("place");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QString>("after");
        const auto row = [](const char *name, const ParamAddress &place, const char *before,
                            const QByteArray &message, const char *after) {
            QTest::newRow(name) << place << QString::fromLatin1(before) << message
                                << QString::fromLatin1(after);
        };
        const ParamAddress name = templateAddress(0, 0, 13);
        const ParamAddress vsti = templateAddress(0, 0, 15);
        const ParamAddress display = knobAddress(0, 0, 11, 0);
        row("first of two characters", name, "AB", change(0, 0, 'x'), "xB");
        row("second of two characters", name, "AB", change(0, 1, 'x'), "Ax");
        row("at the end appends", name, "AB", change(0, 2, 'x'), "ABx");
        row("one past the end changes nothing", name, "AB", change(0, 3, 'x'), "AB");
        row("far past the end changes nothing", name, "AB", change(0, 5, 'x'), "AB");
        row("an empty name stays empty", name, "", change(0, 0, 'x'), "");
        row("a blank at the last place shortens", name, "A  B", change(0, 3, ' '), "A");
        row("a blank within stays", name, "ABC", change(0, 1, ' '), "A C");
        row("a blank in place of the only character", name, "A", change(0, 0, ' '), "");
        row("a blank at the end adds nothing", name, "AB", change(0, 2, ' '), "AB");
        row("last place of the template name", name, "ABCDEFGHIJKLM", change(0, 12, 'x'),
            "ABCDEFGHIJKLx");
        row("first place of the VSTi name", vsti, "Synth", change(0, 13, 'x'), "xynth");
        row("last place of the VSTi name", vsti, "ABCDEFGHIJKL", change(0, 24, 'x'),
            "ABCDEFGHIJKx");
        row("VSTi name at the end", vsti, "Synth", change(0, 18, 'x'), "Synthx");
        row("an empty VSTi name stays empty", vsti, "", change(0, 13, 'x'), "");
        row("display name", display, "Cutoff", change(0x1B, 9, 'x'), "xutoff");
        row("display name at its last place", display, "exactly fifteen", change(0x1B, 23, 'x'),
            "exactly fifteex");
        row("an empty display name stays empty", display, "", change(0x1B, 9, 'x'), "");
    }
    void patchesOfNames()
    {
        QFETCH(ParamAddress, place);
        QFETCH(QString, before);
        QFETCH(QByteArray, message);
        QFETCH(QString, after);
        DecoderRig rig;
        rig.api.setONLINEstate(1);
        rig.api.setAllowToSendSysExFlag(false);
        rig.api.setParam(place, before);
        rig.api.setAllowToSendSysExFlag(true);
        QCOMPARE(rig.process(message), !before.isEmpty());
        QCOMPARE(rig.text(place), after);
        QVERIFY(rig.api.isAllowToSendSysEx());
        QVERIFY(rig.device.take().isEmpty());
    }

    void patchesOfTheRemoteIdentifier_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<int>("low");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("after");
        const auto row = [](const char *name, const char *before, int low, const char *data,
                            const char *after) {
            QTest::newRow(name) << QString::fromLatin1(before) << low << QByteArray(data)
                                << QString::fromLatin1(after);
        };
        row("the whole", "204143dff", 0, "123456789", "123456789");
        row("the whole over an empty one", "", 0, "123456789", "123456789");
        row("capital letters become small", "204143dff", 0, "2041ABCDE", "2041abcde");
        row("trailing blanks go", "204143dff", 0, "12       ", "12");
        row("three digits are patched in nine places", "123", 8, "4        ", "000000124");
        row("from place 8 on nothing fits but one", "204143dff", 8, "x        ", "204143dfx");
        row("too long for the memory", "204143dff", 8, "123456789", "204143dff");
    }
    void patchesOfTheRemoteIdentifier()
    {
        QFETCH(QString, before);
        QFETCH(int, low);
        QFETCH(QByteArray, data);
        QFETCH(QString, after);
        DecoderRig rig;
        const ParamAddress place = knobAddress(0, 0, 4, 3);
        rig.api.setParam(place, before);
        QVERIFY(rig.process(change(0x14, low, data)));
        QCOMPARE(rig.text(place), after);
    }

    void aRemoteIdentifierOfFewerThanNineBytesIsRefused()
    {
        DecoderRig rig;
        for (int count = 0; count < 9; ++count) {
            QVERIFY(!rig.process(change(0x10, 0x00, QByteArray(count, '1'))));
        }
        QCOMPARE(rig.text(knobAddress(0, 0, 0, 3)), QStringLiteral("204143dff"));
    }

    // --- The gate --------------------------------------------------------------------------------

    void nothingReceivedIsEverSentBack()
    {
        DecoderRig rig;
        rig.api.setAllowToSendSysExFlag(false);
        rig.api.setParam(templateAddress(0, 5, 13), QStringLiteral("Name"));
        rig.api.setParam(templateAddress(0, 5, 15), QStringLiteral("Name"));
        rig.api.setParam(knobAddress(0, 5, 0, 0), QStringLiteral("Name"));
        rig.api.setParam(currentTemplateAddress(), 5);
        rig.api.setONLINEstate(1);
        rig.api.setAllowToSendSysExFlag(true);
        for (const QByteArray &message : everyForm()) {
            rig.process(message);
            QVERIFY(rig.api.isAllowToSendSysEx());
            QVERIFY(rig.device.take().isEmpty());
        }
    }

    void aReceivedValueDuringAFileLoadDoesNotOpenTheGate()
    {
        DecoderRig rig;
        rig.api.setONLINEstate(1);
        rig.api.setAllowToSendSysExFlag(false); // as a load does for its whole length
        rig.api.setParam(templateAddress(0, 0, 13), QStringLiteral("Name"));
        for (const QByteArray &message : everyForm()) {
            rig.process(message);
            QVERIFY(!rig.api.isAllowToSendSysEx());
        }
        rig.api.setParam(knobAddress(0, 9, 0, 1), 9);
        QVERIFY(rig.device.take().isEmpty());
    }

    // --- Short, cut and joined messages ----------------------------------------------------------

    void everyMessageCutAtEveryLengthIsHarmless_data()
    {
        QTest::addColumn<bool>("inDump");
        QTest::addColumn<bool>("hasEnd"); // as the input gives it, or bare
        QTest::newRow("outside a dump, bare") << false << false;
        QTest::newRow("outside a dump, ended") << false << true;
        QTest::newRow("in a dump, bare") << true << false;
        QTest::newRow("in a dump, ended") << true << true;
    }
    void everyMessageCutAtEveryLengthIsHarmless()
    {
        QFETCH(bool, inDump);
        QFETCH(bool, hasEnd);
        DecoderRig rig;
        rig.api.setParam(templateAddress(0, 0, 13), QStringLiteral("Name"));
        rig.api.setParam(templateAddress(0, 0, 15), QStringLiteral("Name"));
        rig.api.setParam(knobAddress(0, 0, 0, 0), QStringLiteral("Name"));
        if (inDump) {
            QVERIFY(rig.process(header(Stored, 0)));
        }
        const QByteArray before = rig.snapshot();
        for (const QByteArray &message : everyForm()) {
            for (qsizetype length = 0; length + 1 < message.size(); ++length) {
                const QByteArray cut = message.left(length) + (hasEnd ? hex("F7") : QByteArray());
                QVERIFY2(!rig.process(cut), cut.toHex(' ').constData());
            }
            QCOMPARE(rig.snapshot(), before);
        }
        QCOMPARE(rig.runSignals.notified(), 0);
        QVERIFY(rig.device.take().isEmpty());
    }

    void shortBlocksWithAGoodChecksumAreRefusedWhole()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        const QByteArray before = rig.snapshot();
        for (int count = 0; count < 27; ++count) {
            QVERIFY(!rig.process(bulk(hex("01 00 00"), QByteArray(count, '1'))));
            if (count < 26) {
                QVERIFY(!rig.process(bulk(hex("01 13 00"), QByteArray(count, '1'))));
            }
        }
        QCOMPARE(rig.snapshot(), before);
        QCOMPARE(int(rig.decoder.bulkReceipt().blocks[BulkReceipt::Stored][0]), 0);
    }

    void aTemplateBlockWithoutItsReservedByteIsRefused()
    {
        DecoderRig rig;
        QVERIFY(rig.process(header(Stored, 0)));
        QByteArray block = templateBlock("Name", "VSTi", 1);
        block.remove(block.size() - 3, 1); // a zero, so that the checksum fits all the same
        QVERIFY(!rig.process(block));
        QCOMPARE(rig.text(templateAddress(2, 0, 13)), QString());
    }

    void twoMessagesJoinedInOneRunDoNoHarm()
    {
        DecoderRig rig;
        rig.api.setParam(templateAddress(0, 0, 13), QStringLiteral("Name"));
        const QByteArray before = rig.snapshot();
        // The first has no data, and what follows it is another message.
        const QByteArray second = '\xF0' + change(0x10, 0x18, 9);
        for (const QByteArray &first :
             {change(0x00, 0x00, QByteArray()), change(0x10, 0x18, QByteArray()),
              change(0x20, 0x00, QByteArray()), change(0x10, 0x00, QByteArray("204")),
              change(0x23, 0x00, QByteArray())}) {
            QVERIFY(!rig.process(first + second));
        }
        QCOMPARE(rig.runSignals.notified(), 0);
        // A block that ends early, with a checksum that fits over both.
        QVERIFY(rig.process(header(Stored, 0)));
        QVERIFY(!rig.process(bulk(hex("01 10 00"), QByteArray("20414\xF7\xF0\x43 of another") +
                                                       QByteArray(9, '1'))));
        QCOMPARE(rig.snapshot(), before);
        // Of two whole ones the first is taken.
        QVERIFY(rig.process(change(0x10, 0x18, 33) + second));
        QCOMPARE(rig.number(knobAddress(0, 0, 0, 1)), 33);
    }

    void longerMessagesThanNeededAreTaken()
    {
        DecoderRig rig;
        QVERIFY(rig.process(change(0x10, 0x18, QByteArray("\x05\x06\x07"))));
        QCOMPARE(rig.number(knobAddress(0, 0, 0, 1)), 5);
        QVERIFY(rig.process(header(Stored, 0)));
        QVERIFY(rig.process(bulk(hex("01 10 00"), QByteArray("204143dff") +
                                                      QByteArray("Long").leftJustified(15, ' ') +
                                                      "\x07\x01" + "more")));
        QCOMPARE(rig.text(knobAddress(2, 0, 0, 0)), QStringLiteral("Long"));
    }

    void aDecoderWithoutAMemoryTakesNothing()
    {
        const SysExParamChangeAddressTransTable table;
        AddressTransTable names;
        MessageDecoder decoder(5, nullptr, 6, 0x7F, 0x15,
                               const_cast<SysExParamChangeAddressTransTable *>(&table), &names);
        for (const QByteArray &message : everyForm()) {
            ExactEvent exact(message);
            QVERIFY(!decoder.Process(exact.event));
        }
    }

    void portAndFilterTypeAreKept()
    {
        DecoderRig rig;
        QCOMPARE(rig.decoder.getPortID(), 5);
        QCOMPARE(rig.decoder.getMidiFilterType(), 6);
    }
};

QTEST_GUILESS_MAIN(TestDecoder)

#include "tst_decoder.moc"
