// SPDX-License-Identifier: GPL-3.0-or-later
#include "InstrumentTestTools.h"
#include "JackPeer.h"
#include "instrument/InstrumentFile.h"
#include "tools/JackServer.h"

#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QScopeGuard>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

using namespace EditorSide;

namespace
{

constexpr int TimeoutMs = 30000;
const QByteArray Device = QByteArrayLiteral("Corvan TARN/TERN");
const QByteArray Ack = hex("F0 43 60 02 F7");

// The program under test.
class Program
{
public:
    ~Program()
    {
        if (process.state() != QProcess::NotRunning) {
            process.kill();
            process.waitForFinished(TimeoutMs);
        }
    }
    void start(const QStringList &arguments)
    {
        process.start(QStringLiteral(TRN_BIN_DIR "/virtual-instrument"), arguments);
    }
    // The next line of standard output; empty if none comes.
    QByteArray line()
    {
        while (!process.canReadLine() && process.waitForReadyRead(TimeoutMs)) {
        }
        return process.readLine();
    }
    bool sendSignal(int signal) const
    {
        return ::kill(static_cast<pid_t>(process.processId()), signal) == 0;
    }
    // The exit code, -1 for a crash or no end in time.
    int exitCode()
    {
        const bool ended =
            process.state() == QProcess::NotRunning || process.waitForFinished(TimeoutMs);
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    QProcess process;
};

InstrumentMemory loaded(const QString &path)
{
    InstrumentMemory memory;
    QString error;
    if (!InstrumentFile::load(path, &memory, &error)) {
        memory.currentTemplate = -1;
    }
    return memory;
}

} // namespace

// The program on a real JACK server with the dummy driver.
class TestInstrumentProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { m_server.stop(); }

    void withoutAServiceItSaysSoAndStartsNone_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("jack") << QStringList{QStringLiteral("--midi"), QStringLiteral("jack")};
        if (!QFile::exists(QStringLiteral("/dev/snd/seq"))) {
            QTest::newRow("whatever there is") << QStringList{};
            QTest::newRow("alsa") << QStringList{QStringLiteral("--midi"), QStringLiteral("alsa")};
        }
    }
    void withoutAServiceItSaysSoAndStartsNone()
    {
        QFETCH(QStringList, arguments);
        Program program;
        program.start(arguments);
        QCOMPARE(program.exitCode(), 3);
        const QByteArray error = program.process.readAllStandardError();
        QVERIFY(error.startsWith("virtual-instrument: "));
        QCOMPARE(error.count('\n'), 1); // and not a word from the service's library
        QCOMPARE(program.process.readAllStandardOutput(), QByteArray());
    }

    void wrongUsage_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("unknown option") << QStringList{QStringLiteral("--nope")};
        QTest::newRow("unknown service")
            << QStringList{QStringLiteral("--midi"), QStringLiteral("oss")};
        QTest::newRow("stray argument") << QStringList{QStringLiteral("file.Q7V")};
        QTest::newRow("no such fault")
            << QStringList{QStringLiteral("--fault"), QStringLiteral("drop:footer:51")};
        QTest::newRow("empty name") << QStringList{QStringLiteral("--name"), QString()};
    }
    void wrongUsage()
    {
        QFETCH(QStringList, arguments);
        Program program;
        program.start(arguments);
        QCOMPARE(program.exitCode(), 2);
        QVERIFY(program.process.readAllStandardError().startsWith("virtual-instrument: "));
    }

    void helpTellsTheFaults()
    {
        Program program;
        program.start({QStringLiteral("--help")});
        QCOMPARE(program.exitCode(), 0);
        const QByteArray help = program.process.readAllStandardOutput();
        QVERIFY(help.contains("--state <FILE.Q7V>"));
        QVERIFY(help.contains("comeback=MS"));
    }

    void aTerminalGetsNoControlsOfAName()
    {
        const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        const auto closeTerminal = qScopeGuard([terminal] { ::close(terminal); });
        QVERIFY(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
        const int programsEnd = ::open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
        const auto closeProgramsEnd = qScopeGuard([programsEnd] { ::close(programsEnd); });
        QVERIFY(programsEnd >= 0);
        Program program;
        program.process.setChildProcessModifier(
            [programsEnd] { ::dup2(programsEnd, STDERR_FILENO); });
        program.start({QStringLiteral("--state"), QStringLiteral("no\x1B[2J.Q7V")});
        QCOMPARE(program.exitCode(), 1);
        // What was written arrives a moment later; nothing arrives if nothing was.
        pollfd arrival{terminal, POLLIN, 0};
        QCOMPARE(::poll(&arrival, 1, TimeoutMs), 1);
        char bytes[512];
        const auto count = ::read(terminal, bytes, sizeof bytes);
        QVERIFY(count > 0);
        const QByteArray shown(bytes, static_cast<qsizetype>(count));
        QVERIFY2(shown.startsWith("virtual-instrument: no\xEF\xBF\xBD[2J.Q7V: "),
                 shown.constData());
    }

    void aDamagedStateIsAnErrorThatSaysWhere()
    {
        const QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("bad.Q7V")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no xml") > 0);
        file.close();
        Program program;
        program.start({QStringLiteral("--state"), file.fileName()});
        QCOMPARE(program.exitCode(), 1);
        QVERIFY(program.process.readAllStandardError().contains("bad.Q7V: Parse error at line 1"));
    }

    void aStateThatIsNoFileIsRefusedAndNotWaitedFor()
    {
        const QTemporaryDir dir;
        const QString pipe = dir.filePath(QStringLiteral("pipe"));
        QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        Program program;
        program.start({QStringLiteral("--state"), pipe});
        QCOMPARE(program.exitCode(), 1);
        QVERIFY(program.process.readAllStandardError().contains("pipe: File could not be opened."));
    }

    void anyNameIsTakenAsItIs()
    {
        QVERIFY(m_server.start(JackServer::ShortPeriod));
        Program program;
        program.start({QStringLiteral("--midi"), QStringLiteral("jack"), QStringLiteral("--name"),
                       QStringLiteral("%3 Corvan TARN/TERN %1 %4")});
        QCOMPARE(program.line(), QByteArray("ready\n"));
        JackPeer peer;
        QVERIFY(peer.open());
        QCOMPARE(peer.portsOfTheInstrument(JackPortIsOutput).value(4),
                 QStringLiteral("a2j:%3 Corvan TARN/TERN %1 %4 [20] (capture): Port5"));
        // Without a place for it there is no dump.
        QVERIFY(program.sendSignal(SIGUSR1));
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += program.process.readAllStandardError()).endsWith('\n'),
                                 TimeoutMs);
        QCOMPARE(said,
                 QByteArray("virtual-instrument: There is nowhere to dump to without --dump.\n"));
        QVERIFY(program.sendSignal(SIGTERM));
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(program.process.readAllStandardOutput(), QByteArray());
    }

    void itsPortsAreNamedAsTheBridgeNamesThem()
    {
        QVERIFY(m_server.start(JackServer::ShortPeriod));
        Program program;
        program.start(
            {QStringLiteral("--midi"), QStringLiteral("jack"), QStringLiteral("--ready")});
        QCOMPARE(program.line(), QByteArray("ready\n"));
        JackPeer peer;
        QVERIFY(peer.open());
        QStringList sources;
        QStringList destinations;
        for (int n = 1; n <= 5; ++n) {
            sources.append(QStringLiteral("a2j:Corvan TARN/TERN [20] (capture): Port%1").arg(n));
            destinations.append(
                QStringLiteral("a2j:Corvan TARN/TERN [20] (playback): Port%1").arg(n));
        }
        QCOMPARE(peer.portsOfTheInstrument(JackPortIsOutput), sources);
        QCOMPARE(peer.portsOfTheInstrument(JackPortIsInput), destinations);

        QVERIFY(program.sendSignal(SIGINT));
        QCOMPARE(program.exitCode(), 0);
        QTRY_COMPARE(peer.portsOfTheInstrument(JackPortIsOutput), QStringList());
        QCOMPARE(program.process.readAllStandardError(), QByteArray());
    }

    void itSensesAndServesItsWholeMemoryInOneBurst()
    {
        const QTemporaryDir dir;
        const QString state = dir.filePath(QStringLiteral("state.Q7V"));
        const QString dumped = dir.filePath(QStringLiteral("dump.Q7V"));
        const InstrumentMemory memory = randomMemory(21);
        QString error;
        QVERIFY2(InstrumentFile::save(state, memory, &error), qPrintable(error));

        QVERIFY(m_server.start(JackServer::ShortPeriod));
        Program program;
        program.start({QStringLiteral("--midi"), QStringLiteral("jack"), QStringLiteral("--state"),
                       state, QStringLiteral("--dump"), dumped});
        QCOMPARE(program.line(), QByteArray("ready\n"));
        JackPeer peer;
        QVERIFY(peer.open());
        QVERIFY(peer.connectTo(Device));
        QTRY_VERIFY_WITH_TIMEOUT(peer.sensing().size() >= 3, TimeoutMs);
        QCOMPARE(peer.sensing(), QByteArray(peer.sensing().size(), '\xFE'));

        QList<QByteArray> expected;
        VirtualInstrument model(memory);
        model.setOutput([&](int, const QByteArray &bytes) { expected.append(bytes); });
        for (int n = 0; n < 50; ++n) {
            for (const char type : {'\x60', '\x6F'}) {
                model.receive(5, bulkRequest(type, n));
                peer.send(bulkRequest(type, n));
            }
        }
        model.receive(5, request(0x20, 0));
        peer.send(request(0x20, 0));
        QTRY_COMPARE_WITH_TIMEOUT(peer.messages().size(), expected.size(), TimeoutMs);
        QCOMPARE(peer.messages(), expected);

        QVERIFY(program.sendSignal(SIGTERM));
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(loaded(dumped), memory);
    }

    void itTakesDumpsBackToBackAndDumpsOnRequest()
    {
        const QTemporaryDir dir;
        const QString dumped = dir.filePath(QStringLiteral("dump.Q7V"));
        QVERIFY(m_server.start(JackServer::ShortPeriod));
        Program program;
        program.start({QStringLiteral("--midi"), QStringLiteral("jack"), QStringLiteral("--dump"),
                       dumped, QStringLiteral("--log"), QStringLiteral("--name"),
                       QStringLiteral("Other CORVAN TARN/TERN")});
        QCOMPARE(program.line(), QByteArray("ready\n"));
        JackPeer peer;
        QVERIFY(peer.open());
        QVERIFY(peer.connectTo("Other CORVAN TARN/TERN"));

        // A twin serves what the program is to take; the model's byte is the direction's.
        InstrumentMemory memory = randomMemory(22);
        VirtualInstrument twin(memory);
        twin.setOutput([&](int, const QByteArray &bytes) {
            QByteArray wire = bytes;
            wire[4] = 0x14;
            peer.send(wire);
        });
        for (int n = 0; n < 50; ++n) {
            twin.receive(5, bulkRequest(0x60, n) + bulkRequest(0x6F, n));
        }
        // And the report that the edit buffer is not what is stored.
        QTRY_COMPARE_WITH_TIMEOUT(peer.messages().size(), 101, TimeoutMs);
        QCOMPARE(peer.messages().count(Ack), 100);
        peer.forget();
        peer.send(change(0x20, 0, QByteArray(1, static_cast<char>(memory.currentTemplate))));
        QTRY_COMPARE_WITH_TIMEOUT(peer.messages().size(), 1, TimeoutMs);

        QVERIFY(program.sendSignal(SIGUSR1));
        QCOMPARE(program.line(), QByteArray("dumped\n"));
        QCOMPARE(loaded(dumped), memory);
        peer.forget();
        peer.send(Store);
        QTRY_COMPARE_WITH_TIMEOUT(
            peer.messages(), QList<QByteArray>{hex("F0 43 10 7F 15 01 23 00 00 F7")}, TimeoutMs);
        QVERIFY(program.sendSignal(SIGHUP));
        QCOMPARE(program.exitCode(), 0);
        memory.stored = memory.editBuffer;
        QCOMPARE(loaded(dumped), memory);
        const QByteArray log = program.process.readAllStandardError();
        QVERIFY(log.contains("received port 5  F0 43 10 7F 14 01 22 00 F7  store\n"));
        QVERIFY(log.contains("sent     port 5  F0 43 60 02 F7  acknowledge\n"));
        QVERIFY(log.contains("sent     port 1  FE  active sensing\n"));
    }

    void faultsOfTheCommandLine()
    {
        QVERIFY(m_server.start(JackServer::ShortPeriod));
        Program program;
        program.start({QStringLiteral("--midi"), QStringLiteral("jack"), QStringLiteral("--fault"),
                       QStringLiteral("drop:footer:12"), QStringLiteral("--fault"),
                       QStringLiteral("truncate:header:13")});
        QCOMPARE(program.line(), QByteArray("ready\n"));
        JackPeer peer;
        QVERIFY(peer.open());
        QVERIFY(peer.connectTo(Device));
        peer.send(bulkRequest(0x60, 11));
        peer.send(bulkRequest(0x60, 12));
        peer.send(bulkRequest(0x60, 13));
        // Fourteen without the footer, fourteen behind the cut header, fifteen whole.
        QTRY_COMPARE_WITH_TIMEOUT(peer.messages().size(), 14 + 14 + 15, TimeoutMs);
        QCOMPARE(peer.messages().at(42), hex("F0 43 00 7F 15 00 00 0F 60 0D 04 F7"));
    }

    void aServerThatDiesEndsItWithItsDumpWritten_data()
    {
        QTest::addColumn<bool>("killed");
        QTest::newRow("killed") << true;
        QTest::newRow("ended") << false;
    }
    void aServerThatDiesEndsItWithItsDumpWritten()
    {
        QFETCH(bool, killed);
        const QTemporaryDir dir;
        const QString dumped = dir.filePath(QStringLiteral("dump.Q7V"));
        QVERIFY(m_server.start(JackServer::ShortPeriod));
        Program program;
        program.start(
            {QStringLiteral("--midi"), QStringLiteral("jack"), QStringLiteral("--dump"), dumped});
        QCOMPARE(program.line(), QByteArray("ready\n"));
        if (killed) {
            m_server.kill();
        } else {
            m_server.stop();
        }
        QCOMPARE(program.exitCode(), 1);
        QCOMPARE(program.process.readAllStandardError(),
                 QByteArray("virtual-instrument: The MIDI service has died.\n"));
        QCOMPARE(loaded(dumped), InstrumentMemory());
    }

    void aDumpThatCannotBeWrittenIsAFailure()
    {
        const QTemporaryDir dir;
        QVERIFY(m_server.start(JackServer::ShortPeriod));
        Program program;
        program.start({QStringLiteral("--midi"), QStringLiteral("jack"), QStringLiteral("--dump"),
                       dir.filePath(QStringLiteral("none/dump.Q7V"))});
        QCOMPARE(program.line(), QByteArray("ready\n"));
        QVERIFY(program.sendSignal(SIGTERM));
        QCOMPARE(program.exitCode(), 1);
        QVERIFY(program.process.readAllStandardError().contains("Failed in the file writing."));
    }

private:
    JackServer m_server;
};

QTEST_GUILESS_MAIN(TestInstrumentProgram)
#include "tst_instrumentprogram.moc"
