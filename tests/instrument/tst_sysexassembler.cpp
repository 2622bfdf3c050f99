// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstrumentTestTools.h"
#include "instrument/SysExAssembler.h"

#include <QtTest/QTest>

class TestSysExAssembler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messagesOutOfRawBytes_data()
    {
        QTest::addColumn<QByteArrayList>("runs");
        QTest::addColumn<QByteArrayList>("whole");
        QTest::addColumn<int>("broken");
        QTest::newRow("one") << QByteArrayList{hex("F0 01 02 F7")}
                             << QByteArrayList{hex("F0 01 02 F7")} << 0;
        QTest::newRow("two in one run") << QByteArrayList{hex("F0 01 F7 F0 02 F7")}
                                        << QByteArrayList{hex("F0 01 F7"), hex("F0 02 F7")} << 0;
        QTest::newRow("cut into three runs") << QByteArrayList{hex("F0"), hex("01 02"), hex("F7")}
                                             << QByteArrayList{hex("F0 01 02 F7")} << 0;
        QTest::newRow("real-time bytes inside") << QByteArrayList{hex("FE F0 F8 01 FE 02 FF F7")}
                                                << QByteArrayList{hex("F0 01 02 F7")} << 0;
        QTest::newRow("broken off by a status byte")
            << QByteArrayList{hex("F0 01 90 40 40 F7 F0 02 F7")} << QByteArrayList{hex("F0 02 F7")}
            << 1;
        QTest::newRow("begun anew")
            << QByteArrayList{hex("F0 01 F0 02 F7")} << QByteArrayList{hex("F0 02 F7")} << 1;
        QTest::newRow("data and ends outside")
            << QByteArrayList{hex("01 F7 F7 02")} << QByteArrayList{} << 0;
        QTest::newRow("empty message")
            << QByteArrayList{hex("F0 F7")} << QByteArrayList{hex("F0 F7")} << 0;
        QTest::newRow("never ending, then a good one")
            << QByteArrayList{hex("F0") + QByteArray(100000, 1), hex("F7 F0 02 F7")}
            << QByteArrayList{hex("F0 02 F7")} << 1;
    }
    void messagesOutOfRawBytes()
    {
        QFETCH(QByteArrayList, runs);
        SysExAssembler assembler;
        QByteArrayList got;
        for (const QByteArray &run : runs) {
            for (const QByteArray &message : assembler.push(run)) {
                got.append(message);
            }
        }
        QTEST(got, "whole");
        QTEST(assembler.brokenMessages(), "broken");
    }

    void randomBytesGiveOnlyWellFormedMessages()
    {
        QRandomGenerator random(4711);
        SysExAssembler assembler;
        for (int run = 0; run < 2000; ++run) {
            QByteArray bytes(random.bounded(64), '\0');
            for (char &c : bytes) {
                const int choice = random.bounded(8);
                c = static_cast<char>(choice == 0   ? 0xF0
                                      : choice == 1 ? 0xF7
                                                    : random.bounded(256));
            }
            for (const QByteArray &message : assembler.push(bytes)) {
                QVERIFY(message.startsWith('\xF0') && message.endsWith('\xF7'));
                for (qsizetype i = 1; i < message.size() - 1; ++i) {
                    QVERIFY(static_cast<unsigned char>(message.at(i)) < 0x80);
                }
            }
        }
    }
};

QTEST_APPLESS_MAIN(TestSysExAssembler)
#include "tst_sysexassembler.moc"
