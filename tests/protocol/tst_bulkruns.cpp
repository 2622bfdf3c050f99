// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Timings.h"
#include "protocol/RunRig.h"

#include <QtTest/QtTest>

#include <atomic>
#include <thread>

namespace
{

using Messages = QList<QByteArray>;

QByteArray editor(const char *text)
{
    return 'E' + hex(text);
}

QByteArray device(const QByteArray &message)
{
    return 'D' + message;
}

// A message with its content left out: side, class, and what it names.
QByteArray outline(const QByteArray &noted)
{
    const bool isBlock = (noted.at(2) & 0xF0) == 0 && noted.at(7) == 0x01;
    return isBlock ? noted.left(1) + "block" + noted.mid(8, 1).toHex() : noted;
}

Messages outlines(const Messages &traffic)
{
    Messages result;
    for (const QByteArray &noted : traffic) {
        result.append(outline(noted));
    }
    return result;
}

Messages dumpOutline(char side, const QByteArray &header, const QByteArray &footer)
{
    Messages result{side + header, side + QByteArray("block00")};
    for (int knob = 0; knob < 12; ++knob) {
        result.append(side + QByteArray("block") +
                      QByteArray(1, static_cast<char>(0x10 + knob)).toHex());
    }
    result.append(side + footer);
    return result;
}

QByteArray editorFraming(int high, int type, int number)
{
    QByteArray message =
        high == 0x0E ? DeviceSide::header(type, number) : DeviceSide::footer(type, number);
    message[3] = 0x14;
    return message;
}

FaultPlan planOf(const QStringList &rules)
{
    FaultPlan plan;
    for (const QString &rule : rules) {
        QString error;
        if (!plan.add(rule, &error)) {
            qFatal("%s", qPrintable(error));
        }
    }
    return plan;
}

} // namespace

class TestBulkRuns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // --- Order -----------------------------------------------------------------------------------

    void theFullReceiveRunInItsOrder_data()
    {
        QTest::addColumn<bool>("editBufferToo");
        QTest::newRow("stored data alone") << false;
        QTest::newRow("stored data and edit buffer") << true;
    }
    void theFullReceiveRunInItsOrder()
    {
        QFETCH(bool, editBufferToo);
        RunRig rig;
        QRandomGenerator random(1);
        InstrumentMemory memory = randomInstrument(&random);
        memory.currentTemplate = 31;
        memory.editFlag = true;
        QVERIFY(rig.instrument.setContents(memory));
        QVERIFY(rig.receive(editBufferToo));
        QCOMPARE(rig.api->getParam(ParamAddress(-3, -1, -1, -1)).getCurrentValue(), 0);
        QVERIFY(rig.fence());
        const Messages traffic = outlines(rig.takeTraffic());

        Messages expected;
        const auto dumps = [&expected](int type) {
            for (int number = 0; number < 50; ++number) {
                expected.append(editor("43 20 7F 14 0E") + static_cast<char>(type) +
                                static_cast<char>(number) + '\xF7');
                expected += dumpOutline('D', DeviceSide::header(type, number),
                                        DeviceSide::footer(type, number));
            }
        };
        dumps(0x60);
        expected.append(editor("43 30 7F 14 01 23 00 F7"));
        expected.append(device(DeviceSide::change(0x23, 0x00, 1)));
        if (editBufferToo) {
            expected.append(editor("43 30 7F 14 01 20 00 F7"));
            expected.append(device(DeviceSide::change(0x20, 0x00, 31)));
            dumps(0x6F);
        }
        QCOMPARE(traffic, expected);

        QCOMPARE(rig.runSignals->received(), 1);
        // The last group of the shorter run does not wait, and empties the queue.
        QCOMPARE(rig.runSignals->transmitted(), editBufferToo ? 0 : 1);
        QCOMPARE(rig.api->getBulkRecieveEnableFlag(), editBufferToo);
        QCOMPARE(rig.api->transmitedBulkReqCount(), 0);
        QCOMPARE(rig.api->getParam(ParamAddress(-6, -1, -1, -1)).getCurrentValue(), 1);
        QCOMPARE(rig.api->getParam(currentTemplateAddress()).getCurrentValue(),
                 editBufferToo ? 31 : 0);
        QCOMPARE(differences(*rig.api, 2, memory.stored), QList<int>());
        QVERIFY(rig.api->bulkReceipt().incomplete(BulkReceipt::Stored).isEmpty());
        QCOMPARE(rig.api->bulkReceipt().incomplete(BulkReceipt::EditBuffer).size(),
                 editBufferToo ? 0 : 50);
        if (editBufferToo) {
            QCOMPARE(differences(*rig.api, 3, memory.editBuffer), QList<int>());
        }
    }

    void theFullSendRunInItsOrder_data()
    {
        QTest::addColumn<bool>("editBufferOnly");
        QTest::newRow("edit buffer alone") << true;
        QTest::newRow("edit buffer and stored data") << false;
    }
    void theFullSendRunInItsOrder()
    {
        QFETCH(bool, editBufferOnly);
        RunRig rig;
        QRandomGenerator random(2);
        fillDocument(rig.api.get(), &random);
        rig.api->setParam(currentTemplateAddress(), 9);
        const InstrumentMemory before = rig.instrument.contents();
        QVERIFY(rig.send(editBufferOnly));
        QVERIFY(rig.fence());
        const Messages traffic = outlines(rig.takeTraffic());

        Messages expected;
        const auto dumps = [&expected](int type) {
            for (int number = 0; number < 50; ++number) {
                expected += dumpOutline('E', editorFraming(0x0E, type, number),
                                        editorFraming(0x0F, type, number));
                if (type == 0x6F && number == 0) {
                    // From here on the edit buffer is not what is stored.
                    expected.append(device(DeviceSide::change(0x23, 0x00, 1)));
                }
                expected.append(device(DeviceSide::acknowledge()));
            }
        };
        dumps(0x6F);
        expected.append(editor("43 10 7F 14 01 20 00 09 F7"));
        expected.append(device(DeviceSide::change(0x20, 0x00, 9)));
        if (!editBufferOnly) {
            dumps(0x60);
        }
        QCOMPARE(traffic, expected);

        QCOMPARE(rig.runSignals->transmitted(), 1);
        QCOMPARE(rig.runSignals->received(), 0);
        QCOMPARE(rig.api->transmitedBulkCount(), 0);
        QVERIFY(!rig.api->isWaitBulkTransmitDone());
        QVERIFY(!rig.api->getBulkRecieveEnableFlag());
        const InstrumentMemory after = rig.instrument.contents();
        QCOMPARE(differences(*rig.api, 0, after.editBuffer), QList<int>());
        QCOMPARE(after.currentTemplate, 9);
        if (editBufferOnly) {
            QVERIFY(after.stored == before.stored);
        } else {
            QCOMPARE(differences(*rig.api, 1, after.stored), QList<int>());
        }
    }

    void theSendRunWithItsStoreFlags_data()
    {
        QTest::addColumn<bool>("editBufferOnly");
        QTest::addColumn<bool>("store");
        QTest::addColumn<bool>("flash");
        for (const bool only : {true, false}) {
            for (const bool store : {true, false}) {
                for (const bool flash : {true, false}) {
                    QTest::addRow("%s, store %d, flash %d", only ? "edit buffer" : "all", store,
                                  flash)
                        << only << store << flash;
                }
            }
        }
    }
    void theSendRunWithItsStoreFlags()
    {
        QFETCH(bool, editBufferOnly);
        QFETCH(bool, store);
        QFETCH(bool, flash);
        RunRig rig;
        QRandomGenerator random(3);
        fillDocument(rig.api.get(), &random);
        rig.api->setStoreFlag(store);
        rig.api->setStoreToFlashSendingFlag(flash);
        QVERIFY(rig.send(editBufferOnly));
        QVERIFY(rig.fence());
        QCOMPARE(rig.runSignals->transmitted(), 1);
        QCOMPARE(rig.api->transmitedBulkCount(), 0);
        QCOMPARE(rig.instrument.counters().stores, int(store));
        QCOMPARE(rig.instrument.counters().storesToFlash, int(flash));
        QCOMPARE(rig.instrument.counters().footers, editBufferOnly ? 50 : 100);
        QCOMPARE(rig.instrument.counters().refusedMessages, 0);
        QCOMPARE(rig.instrument.counters().refusedBlocks, 0);
        const InstrumentMemory after = rig.instrument.contents();
        QCOMPARE(differences(*rig.api, 0, after.editBuffer), QList<int>());
        if (store || !editBufferOnly) {
            QCOMPARE(differences(*rig.api, 1, after.stored), QList<int>());
        }
        // Store and store to flash stand behind everything else that the editor sent.
        Messages sent;
        for (const QByteArray &noted : rig.takeTraffic()) {
            if (noted.startsWith('E')) {
                sent.append(noted);
            }
        }
        if (flash) {
            QCOMPARE(sent.takeLast(), editor("43 00 7F 14 00 00 11 00 00 6F F7"));
        }
        if (store) {
            QCOMPARE(sent.takeLast(), editor("43 10 7F 14 01 22 00 F7"));
        }
        QCOMPARE(sent.size(), (editBufferOnly ? 50 : 100) * 15 + 1);
    }

    // --- Faults ----------------------------------------------------------------------------------

    void aLostFooterStallsTheReceiveAndARetryReceives()
    {
        RunRig rig;
        QRandomGenerator random(4);
        const InstrumentMemory memory = randomInstrument(&random);
        QVERIFY(rig.instrument.setContents(memory));
        rig.instrument.setFaultPlan(planOf({QStringLiteral("drop:footer:12:stored")}));
        rig.api->setWaitBulkReceiveDone(true);
        const auto waitStall = [&rig] {
            return QTest::qWaitFor([&rig] { return rig.instrument.counters().bulkRequests == 12; },
                                   30000);
        };
        QVERIFY(rig.api->sendHardWareDataReq(true));
        QVERIFY(waitStall());
        QVERIFY(rig.fence());
        QCOMPARE(rig.runSignals->received(), 0);
        QCOMPARE(rig.api->transmitedBulkReqCount(), 100 - 11);
        rig.breakOff();
        QCOMPARE(rig.api->transmitedBulkReqCount(), 0);
        rig.instrument.setFaultPlan(FaultPlan());
        QVERIFY(rig.receive(true));
        QCOMPARE(differences(*rig.api, 2, memory.stored), QList<int>());
        QCOMPARE(differences(*rig.api, 3, memory.editBuffer), QList<int>());
    }

    void aLostAcknowledgeStallsTheSendAndARetrySends()
    {
        RunRig rig;
        QRandomGenerator random(5);
        fillDocument(rig.api.get(), &random);
        rig.instrument.setFaultPlan(planOf({QStringLiteral("drop:ack:#7")}));
        rig.api->setWaitBulkTransmitDone(true);
        QVERIFY(rig.api->sendEditorAllData(false));
        QVERIFY(QTest::qWaitFor([&rig] { return rig.instrument.counters().footers == 7; }, 30000));
        QVERIFY(rig.fence());
        QCOMPARE(rig.runSignals->transmitted(), 0);
        QCOMPARE(rig.api->transmitedBulkCount(), 94);
        rig.breakOff();
        rig.instrument.setFaultPlan(FaultPlan());
        QVERIFY(rig.send(false));
        QCOMPARE(differences(*rig.api, 0, rig.instrument.contents().editBuffer), QList<int>());
        QCOMPARE(differences(*rig.api, 1, rig.instrument.contents().stored), QList<int>());
    }

    void damagedBlocksDoNotStallAndAreTold_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::newRow("dropped") << QStringLiteral("drop:block3:edit:7");
        QTest::newRow("corrupt") << QStringLiteral("corrupt:block3:edit:7");
        QTest::newRow("shortened by one") << QStringLiteral("shorten:block3:edit:7");
        QTest::newRow("shortened by ten") << QStringLiteral("shorten=10:block3:edit:7");
        QTest::newRow("the template block shortened by its zero")
            << QStringLiteral("shorten:block0:edit:7");
    }
    void damagedBlocksDoNotStallAndAreTold()
    {
        QFETCH(QString, rule);
        RunRig rig;
        QRandomGenerator random(6);
        const InstrumentMemory memory = randomInstrument(&random);
        QVERIFY(rig.instrument.setContents(memory));
        rig.instrument.setFaultPlan(planOf({rule}));
        QVERIFY(rig.receive(true));
        QCOMPARE(rig.api->bulkReceipt().incomplete(BulkReceipt::Stored), QList<int>());
        QCOMPARE(rig.api->bulkReceipt().incomplete(BulkReceipt::EditBuffer), QList<int>{6});
        QCOMPARE(differences(*rig.api, 3, memory.editBuffer), QList<int>{6});
        QVERIFY(isSane(*rig.api));
    }

    void aBlockCutOffWithoutItsEndIsLostAlone()
    {
        RunRig rig;
        QRandomGenerator random(7);
        const InstrumentMemory memory = randomInstrument(&random);
        QVERIFY(rig.instrument.setContents(memory));
        rig.instrument.setFaultPlan(planOf({QStringLiteral("truncate:block3:edit:7")}));
        QVERIFY(rig.receive(true));
        QCOMPARE(rig.api->bulkReceipt().incomplete(BulkReceipt::EditBuffer), QList<int>{6});
        QVERIFY(isSane(*rig.api));
    }

    void duplicatesAreHarmless()
    {
        RunRig rig;
        QRandomGenerator random(8);
        const InstrumentMemory memory = randomInstrument(&random);
        QVERIFY(rig.instrument.setContents(memory));
        rig.instrument.setFaultPlan(
            planOf({QStringLiteral("duplicate:block"), QStringLiteral("duplicate:header"),
                    QStringLiteral("duplicate:change")}));
        QVERIFY(rig.receive(true));
        QVERIFY(rig.api->bulkReceipt().incomplete(BulkReceipt::EditBuffer).isEmpty());
        QCOMPARE(differences(*rig.api, 2, memory.stored), QList<int>());
        QCOMPARE(differences(*rig.api, 3, memory.editBuffer), QList<int>());
    }

    // --- The connection --------------------------------------------------------------------------

    void aSilentInstrumentIsLostAndOneThatReturnsIsReported()
    {
        const int usual = timings().connectionWatcherPeriodMs;
        timings().connectionWatcherPeriodMs = 1000; // sensing comes every 300 ms
        {
            RunRig rig;
            rig.instrument.start();
            QVERIFY(rig.runSignals->waitActivated(1));
            rig.api->setWatchPortActivate(false);
            rig.api->setONLINEstate(1);
            rig.instrument.fallSilent();
            QTRY_VERIFY_WITH_TIMEOUT(!rig.api->isONLINE(), 20000);
            const int activated = rig.runSignals->activated();
            rig.api->setWatchPortActivate(true);
            rig.instrument.comeBack();
            QVERIFY(rig.runSignals->waitActivated(activated + 1));
            QVERIFY(!rig.api->isONLINE());
            rig.instrument.stop();
        }
        timings().connectionWatcherPeriodMs = usual;
    }

    void aDeviceThatIsPulledInARunLeavesTheRouteUsable()
    {
        RunRig rig;
        QRandomGenerator random(9);
        fillDocument(rig.api.get(), &random);
        rig.api->setWaitBulkTransmitDone(true);
        QVERIFY(rig.api->sendEditorAllData(false));
        QVERIFY(QTest::qWaitFor([&rig] { return rig.instrument.counters().footers >= 3; }, 30000));
        LoopbackHub::instance().unplug(rig.handle);
        rig.breakOff();
        QVERIFY(rig.api->sendAllTemplatesStoreMessage()); // refused by the service, as told nowhere
        rig.handle = LoopbackHub::instance().plug(
            QStringLiteral("Instrument"), 5,
            [&rig](int port, const QByteArray &bytes) { rig.instrument.receive(port, bytes); });
        QVERIFY(rig.send(false));
        QCOMPARE(differences(*rig.api, 1, rig.instrument.contents().stored), QList<int>());
    }

    // --- Threads ---------------------------------------------------------------------------------

    void deletingTheRouteWhileInputArrives()
    {
        RecordingDevice recorder;
        RemoteMemAPI api;
        makeBanks(&api);
        api.setAllowToSendSysExFlag(false);
        api.setParam(templateAddress(0, 0, 13), QStringLiteral("Name"));
        api.setAllowToSendSysExFlag(true);
        std::atomic<bool> stop{false};
        std::thread input([&] {
            QRandomGenerator random(10);
            while (!stop) {
                switch (random.bounded(6)) {
                case 0:
                    recorder.send(DeviceSide::acknowledge());
                    break;
                case 1:
                    recorder.send(DeviceSide::change(0x20, 0, random.bounded(50)));
                    break;
                case 2:
                    recorder.send(DeviceSide::change(0x10, 0x18, random.bounded(128)));
                    break;
                case 3:
                    recorder.send(DeviceSide::change(0, 0, 'A' + random.bounded(20)));
                    break;
                case 4:
                    recorder.sendRaw(1, QByteArray("\xFE"));
                    break;
                default:
                    for (const QByteArray &message : DeviceSide::dump(0x60, random.bounded(50))) {
                        recorder.send(message);
                    }
                }
            }
        });
        std::thread writer([&] {
            QRandomGenerator random(11);
            while (!stop) {
                api.setParam(knobAddress(0, random.bounded(50), 3, 1), random.bounded(128));
                api.setParam(currentTemplateAddress(), random.bounded(50));
                recorder.take();
            }
        });
        QRandomGenerator random(12);
        for (int round = 0; round < 60; ++round) {
            QVERIFY(api.createMIDIComunicationRoute(1, 5, 5));
            api.setONLINEstate(1);
            if (random.bounded(2) == 0) {
                api.sendHardWareDataReq(true);
            }
            if (random.bounded(2) == 0) {
                api.sendEditorAllData(false);
            }
            QTest::qWait(random.bounded(4)); // some input on its way, as chance will have it
            api.deleteMIDIComunicationRoute();
        }
        stop = true;
        input.join();
        writer.join();
        QVERIFY(isSane(api));
    }

    void destroyingTheDoorWhileInputArrives()
    {
        RecordingDevice recorder;
        std::atomic<bool> stop{false};
        std::thread input([&] {
            int number = 0;
            while (!stop) {
                for (const QByteArray &message : DeviceSide::dump(0x6F, ++number % 50)) {
                    recorder.send(message);
                }
                recorder.send(DeviceSide::acknowledge());
                recorder.sendRaw(1, QByteArray("\xFE"));
                recorder.take();
            }
        });
        QRandomGenerator random(13);
        for (int round = 0; round < 25; ++round) {
            auto api = std::make_unique<RemoteMemAPI>();
            makeBanks(api.get());
            QVERIFY(api->createMIDIComunicationRoute(1, 5, 5));
            api->setONLINEstate(1);
            api->sendEditorAllData(true);
            QTest::qWait(random.bounded(4));
            api.reset();
        }
        stop = true;
        input.join();
    }

    void deletingTheRouteWithinARun()
    {
        RunRig rig;
        QRandomGenerator random(14);
        fillDocument(rig.api.get(), &random);
        for (int round = 0; round < 20; ++round) {
            rig.api->setWaitBulkTransmitDone(true);
            rig.api->setWaitBulkReceiveDone(true);
            if (round % 2 == 0) {
                QVERIFY(rig.api->sendEditorAllData(false));
            } else {
                QVERIFY(rig.api->sendHardWareDataReq(true));
            }
            QTest::qWait(random.bounded(6));
            rig.api->deleteMIDIComunicationRoute();
            QVERIFY(!rig.api->sendEditorAllData(false));
            QVERIFY(rig.openRoute());
        }
        QVERIFY(rig.send(false));
        QCOMPARE(differences(*rig.api, 0, rig.instrument.contents().editBuffer), QList<int>());
        QCOMPARE(differences(*rig.api, 1, rig.instrument.contents().stored), QList<int>());
    }
};

QTEST_GUILESS_MAIN(TestBulkRuns)

#include "tst_bulkruns.moc"
