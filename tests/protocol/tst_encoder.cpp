// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/MessageEncoder.h"

#include "memory/ForcedCurrentTemplate.h"
#include "protocol/EncoderRig.h"

#include <QtTest/QtTest>

namespace
{

using Messages = QList<QByteArray>;

// Messages of each class, as the rules of the queue tell them apart.
const QByteArray Header = QByteArray::fromHex("43007F1400000E600012F7");
const QByteArray Contents = QByteArray::fromHex("43007F1400000100007FF7");
const QByteArray Footer = QByteArray::fromHex("43007F1400000F600011F7");
const QByteArray Change = QByteArray::fromHex("43107F1401101840F7");
const QByteArray ParamRequest = QByteArray::fromHex("43307F14012300F7");
const QByteArray BulkRequest = QByteArray::fromHex("43207F140E6000F7");
const QByteArray Flash = QByteArray::fromHex("43007F1400001100006FF7");
const QByteArray OtherFlash = QByteArray::fromHex("43007F1400001100016EF7");

const unsigned char CcOfKnobA1[2] = {0x10, 0x18};

Messages nameChanges(int mid, int low, const QByteArray &field)
{
    Messages messages;
    for (int i = 0; i < field.size(); ++i) {
        messages.append(hex("43 10 7F 14 01") + static_cast<char>(mid) +
                        static_cast<char>(low + i) + field.at(i) + '\xF7');
    }
    return messages;
}

} // namespace

class TestEncoder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // --- Message forms ---------------------------------------------------------------------------

    void aChangeOfOneByte()
    {
        EncoderRig rig;
        tagMPEVENT event;
        const unsigned char value = 0x7F;
        QVERIFY(rig.encoder.createParamChange(&event, CcOfKnobA1, &value, 1));
        const OwnedBytes bytes(event);
        QCOMPARE(bytesOf(event), hex("43 10 7F 14 01 10 18 7F F7"));
        QCOMPARE(event.eventType, std::uint32_t(0x10000));
        QCOMPARE(event.portID, RecordingDevice::MessagePort);
        QCOMPARE(event.channel, 0);
        QCOMPARE(event.length, 9u);
    }

    void aChangeOfNineBytes()
    {
        EncoderRig rig;
        tagMPEVENT event;
        const unsigned char address[2] = {0x1B, 0x00};
        const auto *id = reinterpret_cast<const unsigned char *>("204143dff");
        QVERIFY(rig.encoder.createParamChange(&event, address, id, 9));
        const OwnedBytes bytes(event);
        QCOMPARE(bytesOf(event), hex("43 10 7F 14 01 1B 00 32 30 34 31 34 33 64 66 66 F7"));
        QCOMPARE(event.length, 17u);
    }

    void aChangeWithoutData()
    {
        EncoderRig rig;
        tagMPEVENT event;
        const unsigned char address[2] = {0x22, 0x00};
        QVERIFY(rig.encoder.createParamChange(&event, address, nullptr, 0));
        const OwnedBytes bytes(event);
        QCOMPARE(bytesOf(event), hex("43 10 7F 14 01 22 00 F7"));
    }

    void aParameterRequestOnTheGivenPort()
    {
        EncoderRig rig;
        tagMPEVENT event;
        QVERIFY(rig.encoder.createParamReq(CcOfKnobA1, 3, &event));
        const OwnedBytes bytes(event);
        QCOMPARE(bytesOf(event), hex("43 30 7F 14 01 10 18 F7"));
        QCOMPARE(event.portID, 3);
    }

    void aNullEventIsRefused()
    {
        EncoderRig rig;
        const unsigned char value = 1;
        QVERIFY(!rig.encoder.createParamChange(nullptr, CcOfKnobA1, &value, 1));
        QVERIFY(!rig.encoder.createParamReq(CcOfKnobA1, 5, nullptr));
        QVERIFY(!rig.encoder.bufferingMsg(nullptr));
    }

    void aByteThatIsNoDataByteIsNeverSent()
    {
        EncoderRig rig;
        tagMPEVENT event;
        const unsigned char values[2] = {0x10, 0x80};
        QVERIFY(!rig.encoder.createParamChange(&event, CcOfKnobA1, values, 2));
        QVERIFY(!rig.encoder.sendParamChange(CcOfKnobA1, 0xF7));
        for (const int value : {0x80, 0xFF, -1, 255}) {
            QVERIFY(!rig.encoder.enqueueParamChange(knobAddress(0, 0, 0, 1), value));
        }
        QVERIFY(rig.step().isEmpty());
    }

    void requestsOfNamedParameters()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.enququeTemplateNumberReq());
        QVERIFY(rig.encoder.enququeBankEditFlagReq());
        const Messages expected{hex("43 30 7F 14 01 20 00 F7"), hex("43 30 7F 14 01 23 00 F7")};
        QCOMPARE(rig.step(), expected);
    }

    void selectSendsTheNumberOfBank0()
    {
        EncoderRig rig;
        rig.api.setParam(currentTemplateAddress(Bank::EditBuffer), 49);
        rig.api.setParam(currentTemplateAddress(Bank::Stored), 7);
        QVERIFY(rig.encoder.enququeTemplateNumberSelect());
        QCOMPARE(rig.step(), Messages{hex("43 10 7F 14 01 20 00 31 F7")});
    }

    void aNumericChangeByAddress_data()
    {
        QTest::addColumn<ParamAddress>("address");
        QTest::addColumn<int>("value");
        QTest::addColumn<QByteArray>("expected"); // empty: refused
        const auto row = [](const char *name, const ParamAddress &address, int value,
                            const char *bytes) {
            QTest::newRow(name) << address << value << hex(bytes);
        };
        row("ccNumber 127", knobAddress(0, 3, 11, 1), 127, "43 10 7F 14 01 1B 18 7F F7");
        row("ccNumber 0", knobAddress(0, 3, 0, 1), 0, "43 10 7F 14 01 10 18 00 F7");
        row("displayFormat", knobAddress(0, 3, 4, 2), 1, "43 10 7F 14 01 14 19 01 F7");
        row("controlType", templateAddress(0, 3, 14), 1, "43 10 7F 14 01 00 19 01 F7");
        row("reserved byte", templateAddress(0, 3, 16), 0, "43 10 7F 14 01 00 1A 00 F7");
        row("current template", currentTemplateAddress(), 49, "43 10 7F 14 01 20 00 31 F7");
        row("bank edit flag", ParamAddress(-6, -1, -1, -1), 1, "43 10 7F 14 01 23 00 01 F7");
        row("bank does not matter", knobAddress(8, 49, 1, 1), 2, "43 10 7F 14 01 11 18 02 F7");
        row("low eight bits alone", knobAddress(0, 0, 0, 1), 0x105, "43 10 7F 14 01 10 18 05 F7");
        row("no such field", ParamAddress(0, 0, 12, 1), 1, "");
        row("online state", ParamAddress(-2, -1, -1, -1), 1, "");
    }
    void aNumericChangeByAddress()
    {
        QFETCH(ParamAddress, address);
        QFETCH(int, value);
        QFETCH(QByteArray, expected);
        EncoderRig rig;
        QCOMPARE(rig.encoder.enqueueParamChange(address, value), !expected.isEmpty());
        QCOMPARE(rig.step(), expected.isEmpty() ? Messages() : Messages{expected});
    }

    void anAddressWithoutEntryLeavesTheQueueAlone()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Change));
        QVERIFY(!rig.encoder.enqueueParamChange(ParamAddress(0, 0, 12, 1), 1));
        QVERIFY(!rig.encoder.enqueueParamChange(ParamAddress(0, 0, 12, 0), QStringLiteral("x")));
        QCOMPARE(rig.step(), Messages{Change});
    }

    // --- Texts -----------------------------------------------------------------------------------

    void textsOfEveryLength()
    {
        EncoderRig rig;
        struct Field
        {
            ParamAddress address;
            int mid;
            int low;
            int width;
        };
        const Field fields[] = {{templateAddress(0, 0, 13), 0x00, 0x00, 13},
                                {templateAddress(0, 0, 15), 0x00, 0x0D, 12},
                                {knobAddress(0, 0, 0, 0), 0x10, 0x09, 15},
                                {knobAddress(0, 0, 11, 0), 0x1B, 0x09, 15}};
        for (const Field &field : fields) {
            for (int length = 0; length <= 40; ++length) {
                QString text;
                for (int i = 0; i < length; ++i) {
                    text.append(QChar(u'!' + i));
                }
                QVERIFY(rig.encoder.enqueueParamChange(field.address, text));
                const QByteArray expected = text.toLatin1().leftJustified(field.width, ' ', true);
                QCOMPARE(rig.step(), nameChanges(field.mid, field.low, expected));
            }
        }
        QVERIFY(rig.device.isWellFormed());
    }

    void aTemplateNameOf20CharactersSendsItsFirst13()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.enqueueParamChange(templateAddress(0, 0, 13),
                                               QStringLiteral("ABCDEFGHIJKLMNOPQRST")));
        QCOMPARE(rig.step(), nameChanges(0x00, 0x00, "ABCDEFGHIJKLM"));
    }

    void anEmptyDisplayNameSends15Blanks()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.enqueueParamChange(knobAddress(0, 0, 0, 0), QString()));
        QCOMPARE(rig.step(), nameChanges(0x10, 0x09, QByteArray(15, ' ')));
    }

    void remoteIdentifiersOfEveryLength()
    {
        EncoderRig rig;
        for (int length = 0; length <= 20; ++length) {
            const QString id = QStringLiteral("0123456789abcdefghij").left(length);
            QVERIFY(rig.encoder.enqueueParamChange(knobAddress(0, 0, 2, 3), id));
            const Messages expected{hex("43 10 7F 14 01 12 00") +
                                    id.toLatin1().leftJustified(9, ' ', true) + '\xF7'};
            QCOMPARE(rig.step(), expected);
        }
    }

    void charactersOutsideAsciiGoOutAsQuestionMarks()
    {
        EncoderRig rig;
        const QString text = QString::fromUtf8("Bä€\xF0\x9F\x8E\xB9z"); // the last takes two units
        QVERIFY(rig.encoder.enqueueParamChange(templateAddress(0, 0, 13), text));
        QCOMPARE(rig.step(), nameChanges(0x00, 0x00, "B????z       "));
        QVERIFY(rig.encoder.enqueueParamChange(knobAddress(0, 0, 0, 3), text));
        QCOMPARE(rig.step(), Messages{hex("43 10 7F 14 01 10 00") + "B????z   " + '\xF7'});
    }

    void aTextForANumberIsRefused()
    {
        EncoderRig rig;
        for (const ParamAddress &address :
             {knobAddress(0, 0, 0, 1), knobAddress(0, 0, 0, 2), templateAddress(0, 0, 14),
              templateAddress(0, 0, 16), currentTemplateAddress()}) {
            QVERIFY(!rig.encoder.enqueueParamChange(address, QStringLiteral("1")));
        }
        QVERIFY(rig.step().isEmpty());
    }

    // --- Grouping --------------------------------------------------------------------------------

    void grouping_data()
    {
        QTest::addColumn<Messages>("queued");
        QTest::addColumn<QList<bool>>("taken");
        QTest::addColumn<QList<Messages>>("steps"); // what each sendMessage lets out
        const auto row = [](const char *name, const Messages &queued, const QList<bool> &taken,
                            const QList<Messages> &steps) {
            QTest::newRow(name) << queued << taken << steps;
        };
        const bool yes = true;
        const bool no = false;
        row("header opens a waiting group", {Header, Contents, Footer, Header, Footer},
            {yes, yes, yes, yes, yes}, {{Header, Contents, Footer}, {Header, Footer}});
        row("header within an open group is refused", {Header, Header}, {yes, no}, {{Header}});
        row("header of device 15", {hex("43 0F 7F 14 00 00 0E 60 00 12 F7"), Footer}, {yes, yes},
            {{hex("43 0F 7F 14 00 00 0E 60 00 12 F7"), Footer}});
        row("no header with class 4", {hex("43 40 7F 14 00 00 0E 60 00 12 F7")}, {no}, {});
        row("changes do not wait", {Change, Change}, {yes, yes}, {{Change, Change}});
        row("parameter requests do not wait", {ParamRequest, Change}, {yes, yes},
            {{ParamRequest, Change}});
        row("bulk requests wait", {BulkRequest, BulkRequest}, {yes, yes},
            {{BulkRequest}, {BulkRequest}});
        row("parameter request, then bulk request go together", {ParamRequest, BulkRequest, Change},
            {yes, yes, yes}, {{ParamRequest, BulkRequest}, {Change}});
        row("change ends an open group", {Header, Contents, Change, Contents}, {yes, yes, yes, no},
            {{Header, Contents}, {Change}});
        row("parameter request ends an open group", {Header, ParamRequest, Footer}, {yes, yes, no},
            {{Header}, {ParamRequest}});
        row("after a change another header opens a group", {Header, Change, Header, Footer},
            {yes, yes, yes, yes}, {{Header}, {Change, Header, Footer}});
        row("bulk request within an open group is refused", {Header, BulkRequest, Footer},
            {yes, no, yes}, {{Header, Footer}});
        row("bulk request of template 14 is no header", {hex("43 20 7F 14 0E 60 0E F7")}, {yes},
            {{hex("43 20 7F 14 0E 60 0E F7")}});
        row("bulk requests of templates 14, 15, 17 within an open group",
            {Header, hex("43 20 7F 14 0E 60 0E F7"), hex("43 20 7F 14 0E 60 0F F7"),
             hex("43 20 7F 14 0E 60 11 F7"), Footer},
            {yes, no, no, no, yes}, {{Header, Footer}});
        row("change whose low address is 0E, 0F, 11 is a change",
            {hex("43 10 7F 14 01 10 0E 20 F7"), hex("43 10 7F 14 01 10 0F 20 F7"),
             hex("43 10 7F 14 01 10 11 00 F7")},
            {yes, yes, yes},
            {{hex("43 10 7F 14 01 10 0E 20 F7"), hex("43 10 7F 14 01 10 0F 20 F7"),
              hex("43 10 7F 14 01 10 11 00 F7")}});
        row("store to flash alone does not wait", {Flash, Change}, {yes, yes}, {{Flash, Change}});
        row("store to flash joins an open group and lifts its mark",
            {Header, Contents, Flash, Change}, {yes, yes, yes, yes},
            {{Header, Contents, Flash, Change}});
        row("store to flash ends the open group", {Header, Flash, Footer}, {yes, yes, no},
            {{Header, Flash}});
        row("store to flash behind a dump", {Header, Footer, Flash}, {yes, yes, yes},
            {{Header, Footer}, {Flash}});
        row("other flash address joins the open group", {Header, OtherFlash, Footer},
            {yes, yes, yes}, {{Header, OtherFlash, Footer}});
        row("other flash address without a group", {OtherFlash}, {no}, {});
        row("other flash address of class 4", {Header, hex("43 40 7F 14 00 00 11 00 01 6E F7")},
            {yes, no}, {{Header}});
        row("footer ends the open group", {Header, Footer, Contents}, {yes, yes, no},
            {{Header, Footer}});
        row("footer without a group", {Footer}, {no}, {});
        row("footer of class 5", {Header, hex("43 50 7F 14 00 00 0F 60 00 11 F7")}, {yes, no},
            {{Header}});
        row("contents without a group", {Contents}, {no}, {});
        row("contents of class 6", {Header, hex("43 60 7F 14 00 00 01 00 00 7F F7")}, {yes, no},
            {{Header}});
        row("too short to be told", {hex("43 10 7F 14 01 F7"), QByteArray()}, {no, no}, {});
        row("flash cut behind its address high byte", {hex("43 00 7F 14 00 00 11")}, {no}, {});
    }
    void grouping()
    {
        QFETCH(Messages, queued);
        QFETCH(QList<bool>, taken);
        QFETCH(QList<Messages>, steps);
        EncoderRig rig;
        for (qsizetype i = 0; i < queued.size(); ++i) {
            QCOMPARE(rig.buffer(queued.at(i)), taken.at(i));
        }
        for (const Messages &step : std::as_const(steps)) {
            QCOMPARE(rig.step(), step);
        }
        QVERIFY(rig.step().isEmpty());
        QVERIFY(rig.device.isWellFormed());
    }

    void countersRiseWithHeadersAndBulkRequests()
    {
        EncoderRig rig;
        for (const QByteArray &message :
             {Header, Contents, Footer, Header, Footer, BulkRequest, Change, ParamRequest, Flash}) {
            QVERIFY(rig.buffer(message));
        }
        QCOMPARE(rig.api.transmitedBulkCount(), 2);
        QCOMPARE(rig.api.transmitedBulkReqCount(), 1);
        QVERIFY(!rig.buffer(Footer));
        QCOMPARE(rig.api.transmitedBulkCount(), 2);
    }

    // --- Sending ---------------------------------------------------------------------------------

    void anEmptyQueueIsToldAndEmitsNothing()
    {
        EncoderRig rig;
        rig.api.setWaitBulkTransmitDone(true);
        QVERIFY(rig.encoder.sendMessage(nullptr));
        bool wasEmpty = false;
        QVERIFY(rig.encoder.sendMessage(&wasEmpty));
        QVERIFY(wasEmpty);
        QCOMPARE(rig.runSignals.transmitted(), 0);
        QVERIFY(rig.api.isWaitBulkTransmitDone());
        QVERIFY(rig.api.getBulkRecieveEnableFlag());
    }

    void aQueueThatIsNotEmptyOnEntryIsToldSo()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Change));
        bool wasEmpty = true;
        QVERIFY(rig.encoder.sendMessage(&wasEmpty));
        QVERIFY(!wasEmpty);
        QVERIFY(rig.encoder.sendMessage(&wasEmpty));
        QVERIFY(wasEmpty);
    }

    void aLoneChangeCompletesATransmit()
    {
        EncoderRig rig;
        rig.api.setWaitBulkTransmitDone(true);
        QVERIFY(rig.encoder.sendParamChange(CcOfKnobA1, 5));
        QCOMPARE(rig.device.take(), Messages{hex("43 10 7F 14 01 10 18 05 F7")});
        QCOMPARE(rig.runSignals.transmitted(), 1);
        QVERIFY(!rig.api.isWaitBulkTransmitDone());
        QVERIFY(!rig.api.getBulkRecieveEnableFlag());
    }

    void everyChangeThatEmptiesTheQueueCompletes()
    {
        EncoderRig rig;
        QVERIFY(rig.encoder.sendParamChange(CcOfKnobA1, 5));
        QVERIFY(rig.encoder.sendParamChange(CcOfKnobA1, 6));
        QCOMPARE(rig.runSignals.transmitted(), 2);
    }

    void changesQueuedTogetherCompleteOnce()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Change));
        QVERIFY(rig.buffer(Change));
        QCOMPARE(rig.step(), (Messages{Change, Change}));
        QCOMPARE(rig.runSignals.transmitted(), 1);
    }

    void aWaitingGroupThatEmptiesTheQueueCompletesNothing()
    {
        EncoderRig rig;
        rig.api.setWaitBulkTransmitDone(true);
        QVERIFY(rig.buffer(BulkRequest));
        QCOMPARE(rig.step(), Messages{BulkRequest});
        QCOMPARE(rig.runSignals.transmitted(), 0);
        QVERIFY(rig.api.isWaitBulkTransmitDone());
        QVERIFY(rig.api.getBulkRecieveEnableFlag());
    }

    void aFailedDispatchDropsTheWholeQueue()
    {
        EncoderRig rig;
        for (const QByteArray &message : {Header, Contents, Footer, Header, Footer, Change}) {
            QVERIFY(rig.buffer(message));
        }
        rig.api.setWaitBulkTransmitDone(true);
        rig.api.getComuController()->releasePort(1, RecordingDevice::MessagePort);
        QVERIFY(!rig.encoder.sendMessage(nullptr));
        rig.api.getComuController()->requestPort(1, RecordingDevice::MessagePort, 0, nullptr);
        QVERIFY(rig.step().isEmpty());
        QCOMPARE(rig.runSignals.transmitted(), 0);
        QVERIFY(rig.api.isWaitBulkTransmitDone());
        QCOMPARE(rig.api.transmitedBulkCount(), 2); // left to whoever runs the transfer
    }

    void aFailedSendOfAChangeGivesFalseAndDropsTheQueue()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Change));
        rig.api.getComuController()->releasePort(1, RecordingDevice::MessagePort);
        QVERIFY(!rig.encoder.sendParamChange(CcOfKnobA1, 5));
        rig.api.getComuController()->requestPort(1, RecordingDevice::MessagePort, 0, nullptr);
        QVERIFY(rig.step().isEmpty());
    }

    void whatTheServiceRefusesCountsAsSent()
    {
        EncoderRig rig;
        LoopbackHub::instance().setRefusing(true);
        QVERIFY(rig.encoder.sendParamChange(CcOfKnobA1, 5));
        LoopbackHub::instance().setRefusing(false);
        QVERIFY(rig.step().isEmpty());
        QCOMPARE(rig.runSignals.transmitted(), 1);
    }

    void aFailedChangeDropsWhatWasWaiting()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Change));
        const unsigned char bad = 0x80;
        QVERIFY(!rig.encoder.enqueueParamChange(CcOfKnobA1, &bad, 1));
        QVERIFY(rig.step().isEmpty());
    }

    void aRefusedBulkRequestDropsWhatWasWaiting()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Change));
        QVERIFY(rig.buffer(Header));
        QVERIFY(!rig.encoder.enqueueBulkReqHeaderFooter(MessageEncoder::BulkStored,
                                                        MessageEncoder::BulkHeader, 0));
        QVERIFY(rig.step().isEmpty());
    }

    // --- The open group and a cleared queue ------------------------------------------------------

    void clearingKeepsTheOpenGroupSoThatALaterHeaderIsRefused()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Header));
        QVERIFY(rig.buffer(Contents));
        rig.encoder.clearTransmitQueue(true);
        QVERIFY(!rig.buffer(Header));
        QVERIFY(rig.buffer(Contents)); // of the broken dump, and thrown away with it
        QVERIFY(rig.step().isEmpty());
        QVERIFY(rig.buffer(Footer));
        QVERIFY(rig.step().isEmpty());
        QVERIFY(rig.buffer(Header));
        QVERIFY(rig.buffer(Footer));
        QCOMPARE(rig.step(), (Messages{Header, Footer}));
    }

    void aChangeEndsAnOpenGroupThatWasCutOff()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Header));
        rig.encoder.clearTransmitQueue(true);
        QVERIFY(rig.buffer(Change));
        QVERIFY(rig.buffer(Header));
        QVERIFY(rig.buffer(Footer));
        QCOMPARE(rig.step(), (Messages{Change, Header, Footer}));
    }

    void storeToFlashBehindABrokenDumpGoesOutAlone()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Header));
        QVERIFY(rig.buffer(Contents));
        rig.encoder.clearTransmitQueue(true);
        QVERIFY(rig.buffer(Contents));
        QVERIFY(rig.encoder.enqueueStoreToFlash());
        QCOMPARE(rig.step(), Messages{Flash});
        QVERIFY(rig.buffer(Header));
    }

    void anOpenGroupSentHalfwayKeepsTheRestToItself()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Header));
        QCOMPARE(rig.step(), Messages{Header});
        QVERIFY(rig.buffer(Contents));
        QVERIFY(rig.buffer(Footer));
        QVERIFY(rig.step().isEmpty());
    }

    void clearingTwiceAndClearingNothing()
    {
        EncoderRig rig;
        rig.encoder.clearTransmitQueue(true);
        rig.encoder.clearTransmitQueue(false);
        QVERIFY(rig.buffer(Change));
        rig.encoder.clearTransmitQueue(false);
        rig.encoder.clearTransmitQueue(true);
        QVERIFY(rig.step().isEmpty());
    }

    void clearingLeavesTheCounters()
    {
        EncoderRig rig;
        QVERIFY(rig.buffer(Header));
        QVERIFY(rig.buffer(Footer));
        QVERIFY(rig.buffer(BulkRequest));
        rig.encoder.clearTransmitQueue(true);
        QCOMPARE(rig.api.transmitedBulkCount(), 1);
        QCOMPARE(rig.api.transmitedBulkReqCount(), 1);
    }

    // --- Re-entry --------------------------------------------------------------------------------

    void aReceiverOfTheCompletionMayQueueAndSendMore()
    {
        EncoderRig rig;
        QObject context;
        int rounds = 0;
        QObject::connect(
            &rig.api, &RemoteMemAPI::completeBulkTransmit, &context,
            [&] {
                if (++rounds < 4) {
                    rig.buffer(Change);
                    rig.buffer(Header);
                    rig.buffer(Footer);
                    rig.encoder.sendMessage(nullptr);
                }
            },
            Qt::DirectConnection);
        QVERIFY(rig.buffer(Change));
        QCOMPARE(rig.step(), (Messages{Change, Change, Header, Footer}));
        QCOMPARE(rounds, 1);
    }

    // --- Through the memory's door ---------------------------------------------------------------

    void theDoorSendsOnlyOnlineOnlyBank0AndOnlyThroughAnOpenGate()
    {
        RecordingDevice device;
        RemoteMemAPI api;
        makeBanks(&api);
        QVERIFY(api.createMIDIComunicationRoute(1, 5, 5));
        QVERIFY(api.setParam(knobAddress(0, 0, 0, 1), 1)); // offline
        QVERIFY(device.take().isEmpty());
        api.setONLINEstate(1);
        QVERIFY(!api.setParam(knobAddress(0, 0, 0, 1), 1)); // no change
        QVERIFY(api.setParam(knobAddress(1, 0, 0, 1), 1));  // stored
        QVERIFY(api.setParam(ParamAddress(0, 51, -1, -1), 0));
        QVERIFY(api.setParam(ParamAddress(-3, -1, -1, -1), 0));
        QVERIFY(api.setParam(ParamAddress(-4, -1, -1, -1), QStringLiteral("file")));
        api.setAllowToSendSysExFlag(false);
        QVERIFY(api.setParam(knobAddress(0, 0, 0, 1), 2));
        QVERIFY(device.take().isEmpty());
        api.setAllowToSendSysExFlag(true);
        QVERIFY(api.setParam(knobAddress(0, 0, 0, 1), 3));
        QCOMPARE(device.take(), Messages{hex("43 10 7F 14 01 10 18 03 F7")});
        QVERIFY(api.setParam(knobAddress(0, 0, 0, 0), QStringLiteral("Cut")));
        QCOMPARE(device.take(), nameChanges(0x10, 0x09, "Cut            "));
        QVERIFY(api.setParam(currentTemplateAddress(), 3));
        QCOMPARE(device.take(), Messages{hex("43 10 7F 14 01 20 00 03 F7")});
    }

    void withoutARouteEveryCallIsFalse()
    {
        RemoteMemAPI api;
        makeBanks(&api);
        api.setStoreFlag(true);
        api.setStoreToFlashSendingFlag(true);
        bool wasEmpty = false;
        QVERIFY(!api.sendMessage(&wasEmpty));
        QVERIFY(!wasEmpty);
        QVERIFY(!api.sendHardWareDataReq(true));
        QVERIFY(!api.sendEditorAllData(true));
        QVERIFY(!api.sendStoreToFlash());
        QVERIFY(!api.sendAllTemplatesStoreMessage());
        QVERIFY(!api.send1TemplateDataParamChange(0, 0));
        QVERIFY(!api.storeBank(true));
        QVERIFY(api.storeBank(false));
        api.clearTransmitQueue();
        api.incrementTransmitedBulkCounter();
        api.incrementTransmitedBulkReqCounter();
        api.clearTransmitedBulkCounter();
        api.clearTransmitedBulkReqCounter();
        QCOMPARE(api.transmitedBulkCount(), 0);
        QCOMPARE(api.transmitedBulkReqCount(), 0);
    }

    void aRouteWithoutSuchPortsFails()
    {
        RecordingDevice device;
        RemoteMemAPI api;
        QVERIFY(!api.createMIDIComunicationRoute(1, 5, 99));
        QVERIFY(!api.createMIDIComunicationRoute(1, 99, 5));
        QVERIFY(!api.createMIDIComunicationRoute(99, 5, 5));
        QVERIFY(!api.createMIDIComunicationRoute(1, 0, 5));
        QVERIFY(!api.createMIDIComunicationRoute(1, 5, 0));
        QVERIFY(!api.sendAllTemplatesStoreMessage());
        QVERIFY(api.createMIDIComunicationRoute(1, 5, 5));
        QVERIFY(!api.createMIDIInput(1, 5));
        QVERIFY(!api.createMIDIOutput(5));
        QVERIFY(api.sendAllTemplatesStoreMessage());
        QCOMPARE(device.take(), Messages{hex("43 10 7F 14 01 22 00 F7")});
        api.deleteMIDIComunicationRoute();
        api.deleteMIDIComunicationRoute();
        QVERIFY(!api.sendAllTemplatesStoreMessage());
    }

    void aForcedCurrentTemplateIsSentAgain()
    {
        RecordingDevice device;
        RemoteMemAPI api;
        makeBanks(&api);
        QVERIFY(api.createMIDIComunicationRoute(1, 5, 5));
        api.setONLINEstate(1);
        {
            const ForcedCurrentTemplate forced(&api);
            QVERIFY(api.setParam(currentTemplateAddress(), 0));
            QVERIFY(!api.setParam(currentTemplateAddress(), 0));
        }
        QCOMPARE(device.take(), Messages{hex("43 10 7F 14 01 20 00 00 F7")});
    }
};

QTEST_GUILESS_MAIN(TestEncoder)

#include "tst_encoder.moc"
