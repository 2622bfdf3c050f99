// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CliHarness.h"
#include "cli/LoopbackInstrument.h"
#include "cli/SysExFile.h"
#include "instrument/InstrumentFile.h"
#include "instrument/InstrumentProtocol.h"
#include "instrument/InstrumentTestTools.h"

#include <QtTest/QtTest>

#include <memory>

// export and import.

namespace
{

constexpr int DumpBytes = 519;
constexpr int FullSendBytes = 100 * DumpBytes + 10;

QByteArray deviceDump(DumpType type, int number, const InstrumentTemplate &source)
{
    QByteArray bytes = InstrumentProtocol::dumpHeader(type, number);
    for (int block = 0; block <= 12; ++block) {
        bytes += InstrumentProtocol::dumpBlock(block, source);
    }
    return bytes + InstrumentProtocol::dumpFooter(type, number);
}

} // namespace

class TestSyxFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void exportIsWhatAFullSendTransmits();
    void importOfAnExportGivesTheSameDocument();
    void importTakesTheDevicesOwnDumps();
    void importKeepsWhatTheDumpsDoNotHave();
    void importIntoANewFileFillsUpWithBlanks();
    void theLaterOfTwoDumpsCounts();
    void foreignMessagesAndRealTimeBytesArePassedOver();
    void cutAtEveryByte();
    void everyDamagedByteIsSafe();
    void hostileFiles_data();
    void hostileFiles();
    void importIntoADamagedFileLeavesIt();

private:
    int import(const QByteArray &bytes)
    {
        return m_cli->write("in.syx"_qs, bytes)
                   ? m_cli->run({"import", m_cli->path("in.syx"_qs), file()})
                   : -1;
    }
    InstrumentMemory contents()
    {
        InstrumentMemory memory;
        QString error;
        return InstrumentFile::load(file(), &memory, &error) ? memory : InstrumentMemory();
    }
    bool writeFile(const InstrumentMemory &memory)
    {
        QString error;
        return InstrumentFile::save(file(), memory, &error);
    }
    QByteArray exported(const InstrumentMemory &memory)
    {
        QString error;
        const QString source = m_cli->path("source.Q7V"_qs);
        if (!InstrumentFile::save(source, memory, &error) ||
            m_cli->run({"export", source, m_cli->path("out.syx"_qs)}) != 0) {
            return QByteArray();
        }
        return m_cli->read("out.syx"_qs);
    }
    QString file() const { return m_cli->path("a.Q7V"_qs); }

    std::unique_ptr<CliHarness> m_cli;
};

void TestSyxFile::init()
{
    m_cli = std::make_unique<CliHarness>();
}

void TestSyxFile::exportIsWhatAFullSendTransmits()
{
    const InstrumentMemory memory = randomMemory(21);
    const QByteArray bytes = exported(memory);
    QCOMPARE(bytes.size(), FullSendBytes);
    QCOMPARE(bytes.first(12), QByteArray::fromHex("F04300 7F14 0000 0E6F00 03F7"));

    QByteArray wire;
    VirtualInstrument instrument;
    int device = 0;
    Mutex mutex;
    device = LoopbackHub::instance().plug("Corvan TARN/TERN"_qs, 5,
                                          [&](int port, const QByteArray &run) {
                                              {
                                                  const MutexLocker lock(mutex);
                                                  wire += run;
                                              }
                                              instrument.receive(port, run);
                                          });
    instrument.setOutput(
        [&](int port, const QByteArray &run) { LoopbackHub::instance().send(device, port, run); });
    const int code = m_cli->run({"send", m_cli->path("source.Q7V"_qs)});
    LoopbackHub::instance().unplug(device);
    instrument.setOutput({});
    QCOMPARE(code, 0);
    QCOMPARE(bytes, wire);
}

void TestSyxFile::importOfAnExportGivesTheSameDocument()
{
    const InstrumentMemory memory = randomMemory(22);
    QCOMPARE(import(exported(memory)), 0);
    QVERIFY(contents() == memory);
    QCOMPARE(m_cli->run({"diff", m_cli->path("source.Q7V"_qs), file()}), 0);
}

void TestSyxFile::importTakesTheDevicesOwnDumps()
{
    const InstrumentMemory memory = randomMemory(23);
    QByteArray bytes = InstrumentProtocol::parameterChange(
        InstrumentProtocol::CurrentTemplateMid, 0,
        QByteArray(1, static_cast<char>(memory.currentTemplate)));
    for (int number = 0; number < 50; ++number) {
        const auto index = static_cast<std::size_t>(number);
        bytes += deviceDump(DumpType::Stored, number, memory.stored[index]);
        bytes += deviceDump(DumpType::EditBuffer, number, memory.editBuffer[index]);
    }
    QCOMPARE(import(bytes), 0);
    QVERIFY(contents() == memory);
}

void TestSyxFile::importKeepsWhatTheDumpsDoNotHave()
{
    const InstrumentMemory before = randomMemory(24);
    const InstrumentMemory other = randomMemory(25);
    QVERIFY(writeFile(before));
    InstrumentMemory expected = before;
    expected.stored[3] = other.stored[0];
    expected.editBuffer[49] = other.editBuffer[1];
    QCOMPARE(import(deviceDump(DumpType::Stored, 3, other.stored[0]) +
                    deviceDump(DumpType::EditBuffer, 49, other.editBuffer[1])),
             0);
    QVERIFY(contents() == expected);
}

void TestSyxFile::importIntoANewFileFillsUpWithBlanks()
{
    const InstrumentMemory other = randomMemory(25);
    QCOMPARE(import(deviceDump(DumpType::Stored, 3, other.stored[0])), 0);
    const InstrumentMemory memory = contents();
    QVERIFY(memory.stored[3] == other.stored[0]);
    QVERIFY(memory.stored[4] == memory.editBuffer[3]);
    QVERIFY(memory.stored[4].templateName.trimmed().isEmpty());
    QCOMPARE(memory.currentTemplate, 0);
}

void TestSyxFile::theLaterOfTwoDumpsCounts()
{
    const InstrumentMemory other = randomMemory(26);
    QCOMPARE(import(deviceDump(DumpType::Stored, 3, other.stored[0]) +
                    deviceDump(DumpType::Stored, 3, other.stored[1])),
             0);
    QVERIFY(contents().stored[3] == other.stored[1]);
}

void TestSyxFile::foreignMessagesAndRealTimeBytesArePassedOver()
{
    const InstrumentMemory other = randomMemory(27);
    QByteArray dump = deviceDump(DumpType::Stored, 3, other.stored[0]);
    dump.insert(30, '\xFE');
    dump.insert(1, '\xF8');
    const QByteArray foreign = QByteArray::fromHex("F0 7E 7F 06 01 F7 F0 F7 F0 43 60 02 F7"
                                                   "F0 43 10 7F 15 01 22 00 F7"
                                                   "F0 43 00 7F 14 00 00 11 00 00 6F F7");
    QCOMPARE(import(foreign + "\xFE" + dump + foreign), 0);
    QVERIFY(contents().stored[3] == other.stored[0]);
    // The store message among them copied nothing.
    QVERIFY(!(contents().editBuffer[3] == other.stored[0]));
}

void TestSyxFile::cutAtEveryByte()
{
    const InstrumentMemory memory = randomMemory(28);
    const QByteArray bytes = exported(memory);
    // Every cut of the first three dumps, and those around the change in the middle and at the end.
    QList<qsizetype> cuts;
    for (qsizetype cut = 0; cut < bytes.size(); ++cut) {
        cuts.append(cut);
    }
    for (const qsizetype cut : cuts) {
        const qsizetype behindChange = cut - 10;
        const bool isWhole = cut > 0 && ((cut <= 50 * DumpBytes && cut % DumpBytes == 0) ||
                                         (cut > 50 * DumpBytes && behindChange % DumpBytes == 0));
        SysExFile::Import import;
        QString error;
        const bool isRead = SysExFile::read(bytes.first(cut), &import, &error);
        QVERIFY2(isRead == isWhole, qPrintable(QString::number(cut)));
        QCOMPARE(error.isEmpty(), isWhole);
    }
    // The same through the command, where a dump's parts meet.
    QVERIFY(writeFile(memory));
    const QByteArray before = m_cli->read("a.Q7V"_qs);
    for (const int cut : {0, 1, 2, 11, 12, 13, 50, 51, 518, 520, FullSendBytes - 1}) {
        QCOMPARE(import(bytes.first(cut)), 1);
        QVERIFY(m_cli->err.contains("in.syx: "));
        QCOMPARE(m_cli->read("a.Q7V"_qs), before);
    }
}

void TestSyxFile::everyDamagedByteIsSafe()
{
    const QByteArray dump = deviceDump(DumpType::Stored, 3, randomMemory(29).stored[0]);
    for (qsizetype position = 0; position < dump.size(); ++position) {
        for (const char value : {'\x00', '\x7F', '\x80', '\xF0', '\xF7', '\xFE', '\xFF'}) {
            QByteArray damaged = dump;
            if (damaged.at(position) == value) {
                continue;
            }
            damaged[position] = value;
            SysExFile::Import import;
            QString error;
            if (SysExFile::read(damaged, &import, &error)) {
                // The device number takes no part, and nothing else may be changed unnoticed.
                QVERIFY2(position < 519, qPrintable(QString::number(position)));
                QCOMPARE(import.storedTemplates, QList<int>{3});
            } else {
                QVERIFY(!error.isEmpty());
            }
        }
    }
}

void TestSyxFile::hostileFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const InstrumentTemplate source = randomMemory(30).stored[0];
    const QByteArray dump = deviceDump(DumpType::Stored, 3, source);
    const QByteArray header = InstrumentProtocol::dumpHeader(DumpType::Stored, 3);
    const QByteArray footer = InstrumentProtocol::dumpFooter(DumpType::Stored, 3);
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("not a dump");
    QTest::newRow("an editor file") << QByteArray("<!DOCTYPE TARN_TERNRemoteEditorFile><bank/>");
    QTest::newRow("zeros") << QByteArray(1000, '\0');
    QTest::newRow("starts alone") << QByteArray(1000, '\xF0');
    QTest::newRow("real time alone") << QByteArray(1000, '\xFE');
    QTest::newRow("foreign messages alone") << QByteArray::fromHex("F07E7F0601F7");
    QTest::newRow("header and footer alone") << header + footer;
    QTest::newRow("footer alone") << footer;
    QTest::newRow("block alone") << InstrumentProtocol::dumpBlock(0, source);
    QTest::newRow("two headers") << header + dump;
    QTest::newRow("another footer")
        << dump.first(dump.size() - 12) + InstrumentProtocol::dumpFooter(DumpType::Stored, 4);
    QTest::newRow("good, then a broken one") << dump + dump.first(100);
    QTest::newRow("current template 50") << QByteArray::fromHex("F043107F1501200032F7");
    QTest::newRow("current template without a number") << QByteArray::fromHex("F043107F15012000F7");
    QTest::newRow("template 50") << QByteArray::fromHex("F043007F1500000E603260F7");
    QTest::newRow("longer than the limit") << QByteArray(SysExFile::MaximumBytes + 1, '\xFE');
}

void TestSyxFile::hostileFiles()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(writeFile(randomMemory(31)));
    const QByteArray before = m_cli->read("a.Q7V"_qs);
    QCOMPARE(import(bytes), 1);
    QVERIFY2(m_cli->err.contains("in.syx: "), m_cli->err.constData());
    QVERIFY(m_cli->err.size() > 20);
    QCOMPARE(m_cli->read("a.Q7V"_qs), before);
    QVERIFY(QFile::remove(file()));
    QCOMPARE(import(bytes), 1);
    QVERIFY(!m_cli->exists("a.Q7V"_qs));
}

void TestSyxFile::importIntoADamagedFileLeavesIt()
{
    QVERIFY(m_cli->write("a.Q7V"_qs, "damaged"));
    QCOMPARE(import(deviceDump(DumpType::Stored, 3, randomMemory(32).stored[0])), 1);
    QVERIFY(m_cli->err.contains("a.Q7V: Parse error"));
    QCOMPARE(m_cli->read("a.Q7V"_qs), QByteArray("damaged"));
    QCOMPARE(m_cli->run({"import", m_cli->path("none.syx"_qs), file()}), 1);
    QVERIFY(m_cli->err.contains("none.syx: File was not found."));
    QCOMPARE(m_cli->run({"import", m_cli->path("."_qs), file()}), 1);
    QVERIFY(m_cli->err.contains("File could not be opened."));
}

QTEST_GUILESS_MAIN(TestSyxFile)
#include "tst_syxfile.moc"
