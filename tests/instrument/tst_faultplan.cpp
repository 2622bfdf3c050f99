// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstrumentTestTools.h"
#include "instrument/FaultPlan.h"

#include <QtTest/QTest>

namespace
{

MessageTag tag(MessageClass messageClass, int templateNumber = -1, int block = -1,
               DumpType type = DumpType::Stored)
{
    MessageTag result;
    result.messageClass = messageClass;
    result.templateNumber = templateNumber;
    result.block = block;
    if (templateNumber >= 0) {
        result.type = type;
    }
    return result;
}

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

constexpr auto Sent = MessageDirection::Sent;

} // namespace

class TestFaultPlan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsNoRuleIsRefusedAndLeavesThePlan_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"",
                                 ":",
                                 "in",
                                 "in:",
                                 "bogus",
                                 "drop:bogus",
                                 "drop=3",
                                 "delay",
                                 "delay=",
                                 "delay=x",
                                 "delay=-1",
                                 "delay=99999999999",
                                 "drop:footer:0",
                                 "drop:footer:51",
                                 "drop:footer:1:2",
                                 "drop:header:footer",
                                 "drop:block13",
                                 "drop:change:12",
                                 "drop:sensing:stored",
                                 "drop:ack:#0",
                                 "drop:ack:#",
                                 "drop:ack:#1:after:2",
                                 "drop:after",
                                 "drop:after:x",
                                 "corrupt:sensing",
                                 "truncate:sensing",
                                 "truncate=0",
                                 "truncate=65",
                                 "comeback",
                                 "comeback=0",
                                 "comeback=5:ack",
                                 "in:comeback=5",
                                 "drop:",
                                 "drop:footer:",
                                 "drop:stored:edit",
                                 "silent=5",
                                 "DROP",
                                 " drop"}) {
            QTest::newRow(text) << QString::fromLatin1(text);
        }
    }
    void whatIsNoRuleIsRefusedAndLeavesThePlan()
    {
        QFETCH(QString, text);
        FaultPlan plan;
        QString error;
        QVERIFY(!plan.add(text, &error));
        QVERIFY(error.contains(text));
        QVERIFY(plan.isEmpty());
        QCOMPARE(plan.comebackMs(), 0);
    }

    void aRuleWithoutSelectorMeansAllButSensing()
    {
        FaultPlan plan = planOf({"drop"});
        QVERIFY(plan.judge(Sent, tag(MessageClass::Header, 3)).drop);
        QVERIFY(plan.judge(Sent, tag(MessageClass::Change)).drop);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Sensing)).drop);
        QVERIFY(!plan.judge(MessageDirection::Received, tag(MessageClass::Change)).drop);
    }

    void templatesAreCountedFromOne()
    {
        FaultPlan plan = planOf({"drop:footer:12"});
        QVERIFY(plan.judge(Sent, tag(MessageClass::Footer, 11)).drop);
        QVERIFY(plan.judge(Sent, tag(MessageClass::Footer, 11, -1, DumpType::EditBuffer)).drop);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Footer, 12)).drop);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Header, 11)).drop);
    }

    void kindOfDumpAndBlockSelect()
    {
        FaultPlan plan = planOf({"corrupt:block3:edit:7", "duplicate:block"});
        const FaultVerdict hit =
            plan.judge(Sent, tag(MessageClass::Block, 6, 3, DumpType::EditBuffer));
        QVERIFY(hit.corrupt);
        QCOMPARE(hit.copies, 2);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Block, 6, 3, DumpType::Stored)).corrupt);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Block, 6, 4, DumpType::EditBuffer)).corrupt);
    }

    void numbersCountOnlyWhatTheSelectorsFit()
    {
        FaultPlan plan = planOf({"drop:ack:#2"});
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Acknowledge, 0)).drop);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Change)).drop);
        QVERIFY(plan.judge(Sent, tag(MessageClass::Acknowledge, 1)).drop);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Acknowledge, 2)).drop);
    }

    void silenceAfterSomeMessagesComesOnce()
    {
        FaultPlan plan = planOf({"silent:after:2", "comeback=2000"});
        QCOMPARE(plan.comebackMs(), 2000);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Change)).silence);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Sensing)).silence);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Change)).silence);
        QVERIFY(plan.judge(Sent, tag(MessageClass::Change)).silence);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::Change)).silence);
    }

    void directionInAimsAtWhatIsReceived()
    {
        FaultPlan plan = planOf({"in:drop:bulkrequest:5", "delay=50:ack"});
        QVERIFY(plan.judge(MessageDirection::Received, tag(MessageClass::BulkRequest, 4)).drop);
        QVERIFY(!plan.judge(Sent, tag(MessageClass::BulkRequest, 4)).drop);
        QCOMPARE(plan.judge(Sent, tag(MessageClass::Acknowledge, 4)).delayMs, 50);
    }

    void bytesOfAFaultyMessage()
    {
        const QByteArray wire = hex("F0 43 00 7F 15 00 00 0E 60 00 12 F7");
        FaultVerdict verdict;
        QCOMPARE(verdict.applied(wire), wire);
        verdict.corrupt = true;
        QCOMPARE(verdict.applied(wire), hex("F0 43 00 7F 15 00 00 0E 60 00 13 F7"));
        verdict = {};
        verdict.keepBytes = 5;
        QCOMPARE(verdict.applied(wire), hex("F0 43 00 7F 15"));
        verdict.keepBytes = 0;
        QCOMPARE(verdict.applied(wire), hex("F0 43 00 7F 15 00"));
        verdict.keepBytes = 64;
        QCOMPARE(verdict.applied(wire), wire.first(11));
        verdict = {};
        verdict.loseBytes = 2;
        QCOMPARE(verdict.applied(wire), hex("F0 43 00 7F 15 00 00 0E 12 F7"));
        verdict.loseBytes = 64;
        QCOMPARE(verdict.applied(wire), hex("F0 43 12 F7"));
        verdict.corrupt = true;
        verdict.keepBytes = 0;
        for (const QByteArray &tiny : {hex(""), hex("F0"), hex("F0 F7"), hex("F0 01 F7")}) {
            QVERIFY(verdict.applied(tiny).size() <= tiny.size());
        }
    }
};

QTEST_APPLESS_MAIN(TestFaultPlan)
#include "tst_faultplan.moc"
