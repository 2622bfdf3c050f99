// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Timings.h"
#include "cli/CliHarness.h"
#include "cli/LoopbackInstrument.h"
#include "instrument/InstrumentFile.h"
#include "instrument/InstrumentTestTools.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QJsonArray>
#include <QtCore/QLoggingCategory>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <memory>

// The commands that meet the instrument, over the loopback.

class TestInstrumentCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void portsTellsTheInstruments();
    void portsTellsAnEmptyList();
    void receiveWritesWhatTheInstrumentHolds();
    void receiveOfTheNamedInstrument();
    void withoutAnInstrumentEveryCommandEndsWithThree_data();
    void withoutAnInstrumentEveryCommandEndsWithThree();
    void anUnknownPortEndsWithThreeAndNamesTheOthers();
    void sendWritesTheInstrument();
    void sendOfTheEditBufferAloneLeavesTheStoredBank();
    void storeCopiesTheEditBufferToTheStoredBank();
    void backupKeepsWhatWasOverwritten();
    void aBackupOutlivesTheSendThatIsRepeated();
    void instrumentsOfOneNameAreRefused();
    void aSendThatNeverBeganSaysNothingOfAMixture();
    void aBackupOntoTheSentFileIsRefused();
    void aFailedBackupSendsNothing();
    void verifyNamesWhatDiffers();
    void verifyMindsWhatTheWireCarries();
    void sendVerifyFindsWhatWasNotTaken();
    void faultsOfAReceive_data();
    void faultsOfAReceive();
    void faultsOfASend_data();
    void faultsOfASend();
    void aRefusingServiceEndsASendWithFour();
    void unpluggingEndsASendWithFour();
    void anInstrumentThatStaysAwayEndsARunBeforeItsTimeout_data();
    void anInstrumentThatStaysAwayEndsARunBeforeItsTimeout();
    void anInstrumentThatIsAwayWhenTheTimeEndsIsToldAsLost();
    void aCablePulledAndPutBackWhileNothingIsSentEndsNothing();
    void interruptionEndsARunWithFour_data();
    void interruptionEndsARunWithFour();
    void progressIsDrawnOnATerminalAlone();
    void receiveIntoAnImpossiblePlaceAsksNothing_data();
    void receiveIntoAnImpossiblePlaceAsksNothing();
    void monitorTellsWhatPasses();
    void randomMemoriesSurviveTheWayThereAndBack_data();
    void randomMemoriesSurviveTheWayThereAndBack();

private:
    InstrumentMemory held() const { return m_loopback->instrument.contents(); }
    // As the instrument has it after a send: it knows that its two banks differ.
    static InstrumentMemory unstored(InstrumentMemory memory)
    {
        memory.editFlag = true;
        return memory;
    }
    // A file of other content than the instrument's.
    bool writeFile(const QString &name, quint32 seed)
    {
        QString error;
        return InstrumentFile::save(m_cli->path(name), randomMemory(seed), &error);
    }
    InstrumentMemory fileContents(const QString &name)
    {
        InstrumentMemory memory;
        QString error;
        return InstrumentFile::load(m_cli->path(name), &memory, &error) ? memory
                                                                        : InstrumentMemory();
    }
    QString file() const { return m_cli->path(QStringLiteral("a.Q7V")); }

    InstrumentMemory m_memory;
    std::unique_ptr<CliHarness> m_cli;
    std::unique_ptr<LoopbackInstrument> m_loopback;
};

void TestInstrumentCommands::initTestCase()
{
    // As the program, and lest a few thousand of the engine's debug lines hide the results.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
}

void TestInstrumentCommands::init()
{
    timings() = Timings();
    m_memory = randomMemory(1);
    m_cli = std::make_unique<CliHarness>();
    m_loopback = std::make_unique<LoopbackInstrument>(m_memory);
}

void TestInstrumentCommands::cleanup()
{
    m_loopback.reset();
    m_cli.reset();
}

void TestInstrumentCommands::portsTellsTheInstruments()
{
    QCOMPARE(m_cli->run({"ports", "--json"}), 0);
    const QJsonArray instruments = m_cli->json().value(QStringLiteral("instruments")).toArray();
    QCOMPARE(m_cli->json().keys(), QStringList{QStringLiteral("instruments")});
    QCOMPARE(instruments.size(), 1);
    const QJsonObject expected{{QStringLiteral("name"), QStringLiteral("Corvan TARN/TERN")},
                               {QStringLiteral("activeSense"), 1},
                               {QStringLiteral("communicationIn"), 5},
                               {QStringLiteral("communicationOut"), 5}};
    QCOMPARE(instruments.first().toObject(), expected);
    QCOMPARE(m_cli->run({"ports"}), 0);
    QVERIFY(m_cli->out.startsWith("Corvan TARN/TERN "));
}

void TestInstrumentCommands::portsTellsAnEmptyList()
{
    m_loopback.reset();
    QCOMPARE(m_cli->run({"ports", "--json"}), 0);
    QVERIFY(m_cli->json().value(QStringLiteral("instruments")).isArray());
    QVERIFY(m_cli->json().value(QStringLiteral("instruments")).toArray().isEmpty());
    QCOMPARE(m_cli->run({"ports"}), 0);
    QVERIFY(m_cli->out.isEmpty());
}

void TestInstrumentCommands::receiveWritesWhatTheInstrumentHolds()
{
    QCOMPARE(m_cli->run({"receive", file()}), 0);
    QVERIFY(m_cli->err.isEmpty());
    QVERIFY(fileContents(QStringLiteral("a.Q7V")) == m_memory);
    QCOMPARE(m_cli->run({"verify", file()}), 0);
    QVERIFY(m_cli->out.isEmpty());
}

void TestInstrumentCommands::receiveOfTheNamedInstrument()
{
    const InstrumentMemory other = randomMemory(2);
    const LoopbackInstrument second(other, QStringLiteral("Corvan TARN/TERN B"));
    QCOMPARE(m_cli->run({"receive", file(), "--port", "Corvan TARN/TERN B"}), 0);
    QVERIFY(fileContents(QStringLiteral("a.Q7V")) == other);
    QCOMPARE(m_cli->run({"receive", file()}), 0);
    QVERIFY(fileContents(QStringLiteral("a.Q7V")) == m_memory);
}

void TestInstrumentCommands::withoutAnInstrumentEveryCommandEndsWithThree_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("receive") << QStringLiteral("receive FILE");
    QTest::newRow("send") << QStringLiteral("send FILE");
    QTest::newRow("verify") << QStringLiteral("verify FILE");
    QTest::newRow("monitor") << QStringLiteral("monitor");
}

void TestInstrumentCommands::withoutAnInstrumentEveryCommandEndsWithThree()
{
    QFETCH(QString, line);
    m_loopback.reset();
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 3));
    const QByteArray before = m_cli->read(QStringLiteral("a.Q7V"));
    QStringList words = line.split(QLatin1Char(' '));
    words.replaceInStrings(QStringLiteral("FILE"), file());
    QCOMPARE(m_cli->runWords(words), 3);
    QVERIFY(m_cli->err.contains("No instrument was found"));
    QCOMPARE(m_cli->read(QStringLiteral("a.Q7V")), before);
}

void TestInstrumentCommands::anUnknownPortEndsWithThreeAndNamesTheOthers()
{
    QCOMPARE(m_cli->run({"receive", file(), "--port", "Elsewhere"}), 3);
    QVERIFY(m_cli->err.contains("Elsewhere"));
    QVERIFY(m_cli->err.contains("Corvan TARN/TERN"));
    QVERIFY(!m_cli->exists(QStringLiteral("a.Q7V")));
}

void TestInstrumentCommands::sendWritesTheInstrument()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    const QByteArray before = m_cli->read(QStringLiteral("a.Q7V"));
    QCOMPARE(m_cli->run({"send", file(), "--verify"}), 0);
    QVERIFY(held() == unstored(randomMemory(4)));
    QCOMPARE(m_loopback->instrument.counters().stores, 0);
    QCOMPARE(m_cli->read(QStringLiteral("a.Q7V")), before);
}

void TestInstrumentCommands::sendOfTheEditBufferAloneLeavesTheStoredBank()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    QCOMPARE(m_cli->run({"send", file(), "--edit-buffer-only", "--verify"}), 0);
    QVERIFY(held().editBuffer == randomMemory(4).editBuffer);
    QVERIFY(held().stored == m_memory.stored);
}

void TestInstrumentCommands::storeCopiesTheEditBufferToTheStoredBank()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    QCOMPARE(m_cli->run({"send", file(), "--edit-buffer-only", "--store"}), 0);
    QCOMPARE(m_loopback->instrument.counters().stores, 1);
    QVERIFY(held().editBuffer == randomMemory(4).editBuffer);
    QVERIFY(held().stored == randomMemory(4).editBuffer);
    QCOMPARE(m_cli->run({"send", file(), "--store", "--verify"}), 0);
    QCOMPARE(m_loopback->instrument.counters().stores, 2);
}

void TestInstrumentCommands::backupKeepsWhatWasOverwritten()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    const QString backup = m_cli->path(QStringLiteral("b.Q7V"));
    QCOMPARE(m_cli->run({"send", file(), "--backup", backup, "--verify"}), 0);
    QVERIFY(held() == unstored(randomMemory(4)));
    QVERIFY(fileContents(QStringLiteral("b.Q7V")) == m_memory);
}

void TestInstrumentCommands::aBackupOutlivesTheSendThatIsRepeated()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    const QString backup = m_cli->path(QStringLiteral("b.Q7V"));
    QVERIFY(m_loopback->setFault(QStringLiteral("drop:ack:#20")));
    QCOMPARE(m_cli->run({"send", file(), "--backup", backup, "--timeout", "1"}), 4);
    QVERIFY2(m_cli->err.contains("may now hold part of what was sent and part of what it held "
                                 "before, all of which is in \"" +
                                 backup.toUtf8() + "\"."),
             m_cli->err.constData());
    QVERIFY(held() != m_memory);
    QVERIFY(m_loopback->setFault(QString()));
    // The same again, as one does.
    QCOMPARE(m_cli->run({"send", file(), "--backup", backup}), 1);
    QVERIFY2(m_cli->err.contains("The file is there already, and a backup replaces none."),
             m_cli->err.constData());
    QVERIFY(fileContents(QStringLiteral("b.Q7V")) == m_memory);
    QCOMPARE(m_cli->run({"send", backup, "--verify"}), 0);
    QVERIFY(held() == unstored(m_memory));
    // Without a backup it is told, too, and after a receive there is nothing to tell.
    m_loopback->instrument.fallSilent();
    QCOMPARE(m_cli->run({"send", file(), "--timeout", "1"}), 4);
    QVERIFY2(m_cli->err.contains("part of what it held before.\n"), m_cli->err.constData());
    QCOMPARE(m_cli->run({"verify", file(), "--timeout", "1"}), 4);
    QVERIFY2(!m_cli->err.contains("may now hold"), m_cli->err.constData());
}

void TestInstrumentCommands::instrumentsOfOneNameAreRefused()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    const LoopbackInstrument twin(m_memory);
    for (const char *command : {"receive", "send", "verify", "monitor"}) {
        const int code = QByteArray(command) == "monitor" ? m_cli->run({command})
                                                          : m_cli->run({command, file()});
        QCOMPARE(code, 3);
        QVERIFY2(m_cli->err.contains("More than one instrument is named \"Corvan TARN/TERN\""),
                 m_cli->err.constData());
    }
    QVERIFY(held() == m_memory);
    QCOMPARE(m_cli->run({"ports", "--json"}), 0);
    QVERIFY(m_cli->err.contains("More than one instrument"));
    QVERIFY(m_cli->json().contains(QStringLiteral("instruments")));
    QVERIFY(m_cli->json().value(QStringLiteral("instruments")).toArray().isEmpty());
    // One of another name can be meant.
    const LoopbackInstrument other(m_memory, QStringLiteral("Corvan TARN/TERN 2"));
    QCOMPARE(m_cli->run({"verify", file(), "--port", "Corvan TARN/TERN 2"}), 1);
    QCOMPARE(m_cli->run({"verify", file()}), 3);
    QCOMPARE(m_cli->run({"ports", "--json"}), 0);
    QCOMPARE(m_cli->json().value(QStringLiteral("instruments")).toArray().size(), 1);
}

void TestInstrumentCommands::aSendThatNeverBeganSaysNothingOfAMixture()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    Interruption interruption;
    interruption.request();
    QCOMPARE(m_cli->run({"send", file()}, &interruption), 4);
    QVERIFY2(m_cli->err.contains("Sending was interrupted"), m_cli->err.constData());
    QVERIFY2(!m_cli->err.contains("may now hold"), m_cli->err.constData());
    QVERIFY(held() == m_memory);
}

void TestInstrumentCommands::aBackupOntoTheSentFileIsRefused()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    QVERIFY(QFile::link(file(), m_cli->path(QStringLiteral("link"))));
    for (const QString &same :
         {file(), m_cli->path(QStringLiteral("link")), m_cli->path(QStringLiteral("./a.Q7V"))}) {
        QCOMPARE(m_cli->run({"send", file(), "--backup", same}), 2);
    }
    QVERIFY(fileContents(QStringLiteral("a.Q7V")) == randomMemory(4));
    QVERIFY(held() == m_memory);
}

void TestInstrumentCommands::aFailedBackupSendsNothing()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    QVERIFY(m_loopback->setFault(QStringLiteral("corrupt:block3:stored:7")));
    const QString backup = m_cli->path(QStringLiteral("b.Q7V"));
    QCOMPARE(m_cli->run({"send", file(), "--backup", backup}), 4);
    QVERIFY(m_cli->err.contains("stored 7"));
    QVERIFY(!m_cli->exists(QStringLiteral("b.Q7V")));
    QVERIFY(held() == m_memory);
    QCOMPARE(m_loopback->instrument.counters().headers, 0);
}

void TestInstrumentCommands::verifyNamesWhatDiffers()
{
    QCOMPARE(m_cli->run({"receive", file()}), 0);
    InstrumentMemory changed = m_memory;
    changed.editBuffer[12].knobs[0].ccNumber =
        static_cast<quint8>((m_memory.editBuffer[12].knobs[0].ccNumber + 1) % 128);
    changed.stored[49].templateName.set("other");
    changed.currentTemplate = (m_memory.currentTemplate + 1) % 50;
    QVERIFY(m_loopback->instrument.setContents(changed));
    QCOMPARE(m_cli->run({"verify", file()}), 1);
    const QList<QByteArray> lines = m_cli->out.trimmed().split('\n');
    QCOMPARE(lines.size(), 3);
    QVERIFY(lines.at(0).startsWith("edit/currentTemplateNumber: "));
    QVERIFY(lines.at(1).startsWith("edit/13/knobA1/ccNumber: "));
    QVERIFY(lines.at(2).startsWith("stored/50/templateName: "));
    QVERIFY(lines.at(2).endsWith("-> \"other\""));
}

void TestInstrumentCommands::verifyMindsWhatTheWireCarries()
{
    QCOMPARE(m_cli->run({"receive", file()}), 0);
    const QString umlaut = QStringLiteral("\u00C4 b  ");
    QCOMPARE(m_cli->run({"set", file(), "edit/1/knobA1/displayName", umlaut}), 0);
    QCOMPARE(m_cli->run({"set", file(), "edit/1/templateName", umlaut}), 0);
    QCOMPARE(m_cli->run({"set", file(), "stored/1/knobD3/remoteNumber", "123"}), 0);
    QCOMPARE(m_cli->run({"send", file(), "--verify"}), 0);
    QCOMPARE(m_cli->run({"verify", file()}), 0);
    QCOMPARE(held().editBuffer[0].knobs[0].displayName.trimmed(), QByteArray("? b"));
}

void TestInstrumentCommands::sendVerifyFindsWhatWasNotTaken()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 4));
    QVERIFY(m_loopback->setFault(QStringLiteral("in:drop:block0:#3")));
    QCOMPARE(m_cli->run({"send", file(), "--verify"}), 1);
    QVERIFY(m_cli->out.startsWith("edit/3/templateName: "));
}

void TestInstrumentCommands::faultsOfAReceive_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("names");
    const auto row = [](const char *name, const char *fault, int code, const char *names = "") {
        QTest::newRow(name) << QString::fromLatin1(fault) << code << QByteArray(names);
    };
    row("a late message", "delay=20:block3:stored:7", 0);
    row("a footer that comes twice", "duplicate:footer:stored:7", 0);
    row("a block that comes twice", "duplicate:block3:edit:7", 0);
    row("a lost block", "drop:block3:stored:7", 4, "stored 7");
    row("a lost header", "drop:header:edit:7", 4, "edit buffer 7");
    row("lost template blocks", "drop:block0:stored", 4, "stored 1-50");
    row("a block with a wrong checksum", "corrupt:block12:edit:50", 4, "edit buffer 50");
    row("a block cut off", "truncate:block5:stored:1", 4, "stored 1");
    row("a block too short", "shorten:block5:stored:1", 4, "stored 1");
    row("a lost footer", "drop:footer:stored:7", 4, "timed out");
    row("a footer with a wrong checksum", "corrupt:footer:edit:7", 4, "timed out");
    row("a lost request", "in:drop:bulkrequest:stored:7", 4, "timed out");
    row("no current template number", "drop:change", 4, "current template");
    row("silent from the start", "silent", 4, "timed out");
    row("silent in the middle", "silent:after:700", 4, "timed out");
}

void TestInstrumentCommands::faultsOfAReceive()
{
    QFETCH(QString, fault);
    QFETCH(int, code);
    QFETCH(QByteArray, names);
    QVERIFY(m_loopback->setFault(fault));
    timings().lastDumpsTimeoutMs = 100;
    const QString timeout = names == "timed out" ? QStringLiteral("1") : QStringLiteral("60");
    QVERIFY(m_cli->write(QStringLiteral("a.Q7V"), "before"));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(m_cli->run({"receive", file(), "--timeout", timeout}), code);
    QVERIFY(clock.elapsed() < 60000);
    if (code == 0) {
        QVERIFY(fileContents(QStringLiteral("a.Q7V")) == m_memory);
    } else {
        QVERIFY2(m_cli->err.contains(names), m_cli->err.constData());
        QCOMPARE(m_cli->read(QStringLiteral("a.Q7V")), QByteArray("before"));
    }
}

void TestInstrumentCommands::faultsOfASend_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("code");
    const auto row = [](const char *name, const char *fault, int code) {
        QTest::newRow(name) << QString::fromLatin1(fault) << code;
    };
    row("a late acknowledge", "delay=50:ack:edit:7", 0);
    row("an acknowledge that comes twice", "duplicate:ack:#10", 0);
    row("a lost acknowledge", "drop:ack:stored:7", 4);
    row("an acknowledge cut off", "truncate:ack:#20", 4);
    row("a lost header at the instrument", "in:drop:header:#20", 4);
    row("a damaged footer at the instrument", "in:corrupt:footer:#20", 4);
    row("a lost block at the instrument", "in:drop:block5:#20", 1);
    row("a damaged block at the instrument", "in:corrupt:block5:#20", 1);
    row("silent from the start", "silent", 4);
    row("silent in the middle", "silent:after:30", 4);
}

void TestInstrumentCommands::faultsOfASend()
{
    QFETCH(QString, fault);
    QFETCH(int, code);
    QVERIFY(m_loopback->setFault(fault));
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 5));
    const QString timeout = code == 4 ? QStringLiteral("1") : QStringLiteral("60");
    const int result = m_cli->run({"send", file(), "--verify", "--timeout", timeout});
    QVERIFY2(result == code, m_cli->err.constData());
    if (code == 4) {
        QVERIFY2(m_cli->err.contains("Sending timed out"), m_cli->err.constData());
        m_loopback->instrument.comeBack();
        QVERIFY(m_loopback->setFault(QString()));
        QVERIFY2(m_cli->run({"send", file(), "--verify"}) == 0, m_cli->err.constData());
    }
}

void TestInstrumentCommands::aRefusingServiceEndsASendWithFour()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 5));
    LoopbackHub::instance().setRefusing(true);
    QElapsedTimer clock;
    clock.start();
    const int code = m_cli->run({"send", file()});
    LoopbackHub::instance().setRefusing(false);
    QCOMPARE(code, 4);
    QVERIFY(clock.elapsed() < 30000);
    QVERIFY2(m_cli->err.contains("refused"), m_cli->err.constData());
}

void TestInstrumentCommands::unpluggingEndsASendWithFour()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 5));
    QVERIFY(m_loopback->setFault(QStringLiteral("delay=5:ack")));
    QTimer::singleShot(100, this, [this] { m_loopback.reset(); });
    QCOMPARE(m_cli->run({"send", file(), "--timeout", "20"}), 4);
}

void TestInstrumentCommands::anInstrumentThatStaysAwayEndsARunBeforeItsTimeout_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("receive") << QStringLiteral("receive");
    QTest::newRow("send") << QStringLiteral("send");
    QTest::newRow("verify") << QStringLiteral("verify");
}

void TestInstrumentCommands::anInstrumentThatStaysAwayEndsARunBeforeItsTimeout()
{
    QFETCH(QString, command);
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 5));
    // Silent, so that nothing is sent that could be refused.
    m_loopback->instrument.fallSilent();
    QTimer::singleShot(50, this, [this] { m_loopback.reset(); });
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(m_cli->run({command, file()}), 4);
    QVERIFY(clock.elapsed() < 10000);
    QVERIFY2(m_cli->err.contains("the connection to \"Corvan TARN/TERN\" was lost"),
             m_cli->err.constData());
}

void TestInstrumentCommands::anInstrumentThatIsAwayWhenTheTimeEndsIsToldAsLost()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 5));
    m_loopback->instrument.fallSilent();
    QTimer::singleShot(50, this, [this] { m_loopback.reset(); });
    QCOMPARE(m_cli->run({"send", file(), "--timeout", "1"}), 4);
    QVERIFY2(m_cli->err.contains("was lost"), m_cli->err.constData());
}

void TestInstrumentCommands::aCablePulledAndPutBackWhileNothingIsSentEndsNothing()
{
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 5));
    // The acknowledge that the run waits for comes only after the cable is back, from the
    // instrument itself: nothing is sent in between.
    LoopbackHub &hub = LoopbackHub::instance();
    VirtualInstrument instrument{InstrumentMemory()};
    m_loopback.reset();
    int device = 0;
    bool isHeld = true;
    QList<QByteArray> held;
    const auto plug = [&] {
        device =
            hub.plug(QStringLiteral("Corvan TARN/TERN"), VirtualInstrument::PortCount,
                     [&](int port, const QByteArray &bytes) { instrument.receive(port, bytes); });
    };
    instrument.setOutput([&](int port, const QByteArray &bytes) {
        if (isHeld) {
            held.append(bytes);
        } else {
            hub.send(device, port, bytes);
        }
    });
    plug();
    QTimer::singleShot(200, this, [&] { hub.unplug(device); });
    QTimer::singleShot(900, this, [&] {
        plug();
        isHeld = false;
        for (const QByteArray &bytes : std::as_const(held)) {
            hub.send(device, VirtualInstrument::MessagePort, bytes);
        }
    });
    const int code = m_cli->run({"send", file()});
    hub.unplug(device);
    instrument.setOutput({});
    QVERIFY2(code == 0, m_cli->err.constData());
}

void TestInstrumentCommands::interruptionEndsARunWithFour_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("receive") << QStringLiteral("receive");
    QTest::newRow("send") << QStringLiteral("send");
    QTest::newRow("verify") << QStringLiteral("verify");
}

void TestInstrumentCommands::interruptionEndsARunWithFour()
{
    QFETCH(QString, command);
    m_loopback->instrument.fallSilent();
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), 5));
    const QByteArray before = m_cli->read(QStringLiteral("a.Q7V"));
    Interruption interruption;
    QTimer::singleShot(50, &interruption, [&] { interruption.request(); });
    QCOMPARE(m_cli->run({command, file()}, &interruption), 4);
    QVERIFY2(m_cli->err.contains("interrupted"), m_cli->err.constData());
    QCOMPARE(m_cli->read(QStringLiteral("a.Q7V")), before);

    Interruption atOnce;
    atOnce.request();
    QCOMPARE(m_cli->run({command, file()}, &atOnce), 4);
}

void TestInstrumentCommands::progressIsDrawnOnATerminalAlone()
{
    QCOMPARE(m_cli->run({"receive", file()}), 0);
    QVERIFY(m_cli->err.isEmpty());
    m_cli->isWatched = true;
    QCOMPARE(m_cli->run({"receive", file()}), 0);
    QVERIFY(m_cli->err.contains("Receiving: 100 of 100 templates"));
    QVERIFY(m_cli->out.isEmpty());
    QCOMPARE(m_cli->run({"send", file()}), 0);
    QVERIFY(m_cli->err.contains("Sending: 100 of 100 templates"));
}

void TestInstrumentCommands::receiveIntoAnImpossiblePlaceAsksNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a folder given as a file") << QStringLiteral(".");
    QTest::newRow("a folder that is not there") << QStringLiteral("none/a.Q7V");
}

void TestInstrumentCommands::receiveIntoAnImpossiblePlaceAsksNothing()
{
    QFETCH(QString, name);
    QCOMPARE(m_cli->run({"receive", m_cli->path(name)}), 1);
    QVERIFY(m_cli->err.contains("Failed in the file writing."));
    QCOMPARE(m_loopback->instrument.counters().bulkRequests, 0);
}

void TestInstrumentCommands::monitorTellsWhatPasses()
{
    Interruption interruption;
    m_loopback->instrument.start();
    QTimer::singleShot(50, this, [this] {
        m_loopback->instrument.setCCNumber(
            0, (m_memory.editBuffer[static_cast<std::size_t>(m_memory.currentTemplate)]
                    .knobs[0]
                    .ccNumber +
                1) %
                   128);
        m_loopback->instrument.selectTemplate(12);
        m_loopback->instrument.pressStore();
    });
    QTimer::singleShot(1500, &interruption, [&] { interruption.request(); });
    QCOMPARE(m_cli->run({"monitor"}, &interruption), 0);
    QCOMPARE(m_cli->out.count("active sensing begins"), 1);
    QVERIFY2(m_cli->out.contains("change: knobA1/ccNumber = "), m_cli->out.constData());
    QVERIFY2(m_cli->out.contains("change: current template = 13"), m_cli->out.constData());
    QVERIFY2(m_cli->out.contains("  store\n"), m_cli->out.constData());
    QVERIFY(m_cli->err.contains("times active sensing"));
}

void TestInstrumentCommands::randomMemoriesSurviveTheWayThereAndBack_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 100; seed < 105; ++seed) {
        QTest::addRow("seed %u", seed) << seed;
    }
}

void TestInstrumentCommands::randomMemoriesSurviveTheWayThereAndBack()
{
    QFETCH(quint32, seed);
    QVERIFY(writeFile(QStringLiteral("a.Q7V"), seed));
    QCOMPARE(m_cli->run({"send", file()}), 0);
    QVERIFY(held() == unstored(randomMemory(seed)));
    const QString back = m_cli->path(QStringLiteral("b.Q7V"));
    QCOMPARE(m_cli->run({"receive", back}), 0);
    QCOMPARE(m_cli->run({"diff", file(), back}), 0);
}

QTEST_GUILESS_MAIN(TestInstrumentCommands)
#include "tst_instrumentcommands.moc"
