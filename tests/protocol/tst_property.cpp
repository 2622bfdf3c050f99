// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol/RunRig.h"

#include <QtTest/QtTest>

// Properties that hold for any content, with random documents of fixed seeds.

class TestProperty : public QObject
{
    Q_OBJECT

private:
    static void seeds(int count)
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= static_cast<quint32>(count); ++seed) {
            QTest::addRow("seed %u", seed) << seed;
        }
    }

private Q_SLOTS:
    void whatIsSentIsReceivedAgain_data() { seeds(4); }
    void whatIsSentIsReceivedAgain()
    {
        QFETCH(quint32, seed);
        RunRig rig;
        QRandomGenerator random(seed);
        fillDocument(rig.api.get(), &random);
        const BankData document[2] = {rig.api->getBank(0), rig.api->getBank(1)};
        const int current = rig.api->getParam(currentTemplateAddress()).getCurrentValue();
        QVERIFY(rig.send(false));
        QCOMPARE(differences(*rig.api, 0, rig.instrument.contents().editBuffer), QList<int>());
        QCOMPARE(differences(*rig.api, 1, rig.instrument.contents().stored), QList<int>());

        rig.restart();
        QVERIFY(rig.receive(true));
        rig.takeOver();
        for (int number = 0; number < 50; ++number) {
            QVERIFY(rig.api->getTemplateData(0, number) == document[0].getTemplate(number));
            QVERIFY(rig.api->getTemplateData(1, number) == document[1].getTemplate(number));
        }
        QCOMPARE(rig.api->getParam(currentTemplateAddress()).getCurrentValue(), current);
    }

    void whatTheInstrumentHoldsComesBackToIt_data() { seeds(3); }
    void whatTheInstrumentHoldsComesBackToIt()
    {
        QFETCH(quint32, seed);
        RunRig rig;
        QRandomGenerator random(seed + 100);
        const InstrumentMemory memory = randomInstrument(&random);
        QVERIFY(rig.instrument.setContents(memory));
        QVERIFY(rig.receive(true));
        rig.takeOver();
        QVERIFY(rig.instrument.setContents(InstrumentMemory()));
        QVERIFY(rig.send(false));
        const InstrumentMemory after = rig.instrument.contents();
        QVERIFY(after.stored == memory.stored);
        QVERIFY(after.editBuffer == memory.editBuffer);
        QCOMPARE(after.currentTemplate, memory.currentTemplate);
    }

    void aReplayWritesTheCurrentTemplateWhole_data() { seeds(3); }
    void aReplayWritesTheCurrentTemplateWhole()
    {
        QFETCH(quint32, seed);
        RunRig rig;
        QRandomGenerator random(seed + 200);
        fillDocument(rig.api.get(), &random);
        const int source = random.bounded(50);
        QVERIFY(rig.instrument.selectTemplate(13));
        QVERIFY(rig.fence());
        QVERIFY(rig.api->send1TemplateDataParamChange(1, source));
        QVERIFY(rig.instrument.contents().editBuffer[13] ==
                asInstrument(rig.api->getTemplateData(1, source)));
        QCOMPARE(rig.instrument.counters().changes, 243);
    }

    void liveEditsFromBothSidesEndEqual_data() { seeds(6); }
    void liveEditsFromBothSidesEndEqual()
    {
        QFETCH(quint32, seed);
        RunRig rig;
        QRandomGenerator random(seed + 300);
        // Names that came character by character arrive whole only over a text that is there, so
        // none is empty, and the device's own have no blanks within.
        const auto name = [&random](int maximum) {
            return QStringLiteral("n") + randomText(&random, maximum - 1, false);
        };
        for (int number = 0; number < 50; ++number) {
            rig.api->setParam(templateAddress(0, number, 13), name(13));
            rig.api->setParam(templateAddress(0, number, 15), name(12));
            for (int knob = 0; knob < 12; ++knob) {
                rig.api->setParam(knobAddress(0, number, knob, 0), name(15));
            }
        }
        QVERIFY(rig.send(false));
        rig.api->setONLINEstate(1);
        for (int step = 0; step < 300; ++step) {
            const int current = rig.api->getParam(currentTemplateAddress()).getCurrentValue();
            const int knob = random.bounded(12);
            switch (random.bounded(19)) {
            case 0:
                rig.api->setParam(knobAddress(0, current, knob, 1), random.bounded(128));
                break;
            case 1:
                rig.api->setParam(knobAddress(0, current, knob, 2), random.bounded(2));
                break;
            case 2:
                rig.api->setParam(knobAddress(0, current, knob, 0), name(15));
                break;
            case 3:
                rig.api->setParam(knobAddress(0, current, knob, 3), randomId(&random));
                break;
            case 4:
                rig.api->setParam(templateAddress(0, current, 13), name(13));
                break;
            case 5:
                rig.api->setParam(templateAddress(0, current, 15), name(12));
                break;
            case 6:
                rig.api->setParam(templateAddress(0, current, 14), random.bounded(2));
                break;
            case 7:
                rig.api->setParam(currentTemplateAddress(), random.bounded(50));
                break;
            case 8:
                rig.api->exchangeTemplate(0, random.bounded(50), 0, random.bounded(50));
                break;
            case 9:
                rig.api->exchangeController(0, current, knob, 0, current, random.bounded(12));
                break;
            case 10:
                rig.api->copyController(0, random.bounded(50), knob, 0, current,
                                        random.bounded(12));
                break;
            case 11:
                QVERIFY(rig.api->storeBank(true));
                break;
            case 12:
                rig.instrument.setCCNumber(knob, random.bounded(128));
                break;
            case 13:
                rig.instrument.setDisplayFormat(knob, random.bounded(2));
                break;
            case 14:
                rig.instrument.setKnobName(knob, name(15));
                break;
            case 15:
                rig.instrument.setRemoteId(knob, randomId(&random));
                break;
            case 16:
                rig.instrument.setTemplateName(name(13));
                rig.instrument.setVstiName(name(12));
                break;
            case 17:
                rig.instrument.selectTemplate(random.bounded(50));
                break;
            default:
                rig.instrument.pressStore();
                break;
            }
            // Two edits of one place that cross on the cable end differently by nature.
            QVERIFY(rig.fence());
        }
        const InstrumentMemory after = rig.instrument.contents();
        QCOMPARE(differences(*rig.api, 0, after.editBuffer), QList<int>());
        QCOMPARE(differences(*rig.api, 1, after.stored), QList<int>());
        QCOMPARE(rig.api->getParam(currentTemplateAddress()).getCurrentValue(),
                 after.currentTemplate);
        QCOMPARE(rig.api->getParam(ParamAddress(-6, -1, -1, -1)).getCurrentValue(),
                 int(after.editFlag));
        QCOMPARE(rig.instrument.counters().refusedMessages, 0);
        QCOMPARE(rig.instrument.counters().refusedBlocks, 0);
    }

    void anyFaultsLeaveTheMemorySaneAndTheNextRunWhole_data() { seeds(10); }
    void anyFaultsLeaveTheMemorySaneAndTheNextRunWhole()
    {
        QFETCH(quint32, seed);
        RunRig rig;
        QRandomGenerator random(seed + 400);
        fillDocument(rig.api.get(), &random);
        QVERIFY(rig.instrument.setContents(randomInstrument(&random)));
        FaultPlan plan;
        const QStringList actions{QStringLiteral("drop"),       QStringLiteral("duplicate"),
                                  QStringLiteral("corrupt"),    QStringLiteral("truncate"),
                                  QStringLiteral("truncate=3"), QStringLiteral("shorten"),
                                  QStringLiteral("shorten=9")};
        const QStringList kinds{QStringLiteral("header"),  QStringLiteral("block"),
                                QStringLiteral("footer"),  QStringLiteral("ack"),
                                QStringLiteral("change"),  QStringLiteral("bulkrequest"),
                                QStringLiteral("request"), QStringLiteral("store")};
        for (int i = 0; i < 30; ++i) {
            const QString rule =
                QStringLiteral("%1%2:%3:#%4")
                    .arg(random.bounded(2) == 0 ? QString() : QStringLiteral("in:"))
                    .arg(actions.at(random.bounded(actions.size())))
                    .arg(kinds.at(random.bounded(kinds.size())))
                    .arg(1 + random.bounded(120));
            QString error;
            QVERIFY2(plan.add(rule, &error), qPrintable(error));
        }
        rig.instrument.setFaultPlan(plan);
        rig.api->setONLINEstate(1);
        for (int step = 0; step < 40; ++step) {
            switch (random.bounded(6)) {
            case 0:
                rig.api->setWaitBulkReceiveDone(true);
                rig.api->sendHardWareDataReq(random.bounded(2) == 0);
                break;
            case 1:
                rig.api->setWaitBulkTransmitDone(true);
                rig.api->sendEditorAllData(random.bounded(2) == 0);
                break;
            case 2:
                rig.api->setParam(currentTemplateAddress(), random.bounded(50));
                break;
            case 3:
                rig.instrument.setKnobName(random.bounded(12), randomText(&random, 15, true));
                break;
            case 4:
                rig.instrument.pressStore();
                break;
            default:
                rig.instrument.selectTemplate(random.bounded(50));
                break;
            }
        }
        rig.instrument.setFaultPlan(FaultPlan());
        rig.breakOff();
        // An unfinished message of the device ends with its next one.
        rig.restart();
        QVERIFY(isSane(*rig.api));
        fillDocument(rig.api.get(), &random);
        QVERIFY(rig.send(false));
        QCOMPARE(differences(*rig.api, 0, rig.instrument.contents().editBuffer), QList<int>());
        QCOMPARE(differences(*rig.api, 1, rig.instrument.contents().stored), QList<int>());
        QVERIFY(rig.receive(true));
        QCOMPARE(differences(*rig.api, 2, rig.instrument.contents().stored), QList<int>());
        QCOMPARE(differences(*rig.api, 3, rig.instrument.contents().editBuffer), QList<int>());
    }
};

QTEST_GUILESS_MAIN(TestProperty)

#include "tst_property.moc"
