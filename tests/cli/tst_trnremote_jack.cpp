// SPDX-License-Identifier: GPL-3.0-or-later
#include "instrument/InstrumentFile.h"
#include "instrument/InstrumentTestTools.h"
#include "tools/JackServer.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <csignal>
#include <memory>

// The programs themselves, over a real JACK server.

namespace
{

constexpr int LimitMs = 90000;
// How soon a run that cannot go on ends, far from any time-out.
constexpr int AtOnceMs = 3000;
constexpr int AfterTimeoutMs = 1000;

QString program(const char *name)
{
    return QStringLiteral(TRN_BIN_DIR "/") + QLatin1String(name);
}

} // namespace

class TestTrnRemoteJack : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void withoutAServerThereIsNoInstrument();
    void withoutAnInstrumentThePortsAreEmpty();
    void aServerThatDoesNotAnswerIsToldFromNone();
    void argumentsThatAreNoTextAreRefused();
    void aLongCheckEndsWithTheFirstSignal();
    void theWholeJob();
    void faults_data();
    void faults();
    void theServerKilledInTheMiddle_data();
    void theServerKilledInTheMiddle();
    void theServerEndedInTheMiddle();
    void theInstrumentGoneInTheMiddle_data();
    void theInstrumentGoneInTheMiddle();
    void whoeverIsStoppedARunEndsSoonAfterItsTimeout_data();
    void whoeverIsStoppedARunEndsSoonAfterItsTimeout();
    void theInstrumentEndsOnAStoppedServer();
    void aSignalEndsARunInOrder_data();
    void aSignalEndsARunInOrder();
    void monitorEndsWithCtrlC();
    void monitorEndsWithTheServer();

private:
    struct Ended
    {
        int code = -1;
        QByteArray out;
        QByteArray err;
    };
    bool startInstrument(const QStringList &faults = {})
    {
        QStringList words{QStringLiteral("--midi"),  QStringLiteral("jack"),
                          QStringLiteral("--state"), path("state.Q7V"),
                          QStringLiteral("--dump"),  path("held.Q7V"),
                          QStringLiteral("--log")};
        for (const QString &fault : faults) {
            words << QStringLiteral("--fault") << fault;
        }
        m_instrument = std::make_unique<QProcess>();
        m_instrument->setStandardErrorFile(path("log"));
        m_instrument->start(program("virtual-instrument"), words);
        while (m_instrument->waitForReadyRead(LimitMs)) {
            if (m_instrument->readAllStandardOutput().contains("ready")) {
                return true;
            }
        }
        return false;
    }
    bool stopInstrument()
    {
        m_instrument->terminate();
        return m_instrument->waitForFinished(LimitMs) && m_instrument->exitCode() == 0;
    }
    Ended run(const QString &line)
    {
        QProcess process;
        QStringList words{QStringLiteral("--midi"), QStringLiteral("jack")};
        words << line.split(QLatin1Char(' '));
        process.setWorkingDirectory(m_folder->path());
        process.start(program("trn-remote"), words);
        if (!process.waitForFinished(LimitMs)) {
            process.kill();
            process.waitForFinished();
            return {};
        }
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2,
                process.readAllStandardOutput(), process.readAllStandardError()};
    }
    std::unique_ptr<QProcess> startRun(const QString &line)
    {
        auto process = std::make_unique<QProcess>();
        process->setWorkingDirectory(m_folder->path());
        QStringList words{QStringLiteral("--midi"), QStringLiteral("jack")};
        words << line.split(QLatin1Char(' '));
        process->start(program("trn-remote"), words);
        return process;
    }
    // Whether the instrument has fallen silent, in the middle of a run.
    bool isSilent() const
    {
        QFile log(path("log"));
        return log.open(QIODevice::ReadOnly) && log.readAll().contains("silent from here on");
    }
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }
    InstrumentMemory contents(const char *name) const
    {
        InstrumentMemory memory;
        QString error;
        return InstrumentFile::load(path(name), &memory, &error) ? memory : InstrumentMemory();
    }

    InstrumentMemory m_memory;
    JackServer m_server;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QProcess> m_instrument;
};

void TestTrnRemoteJack::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_memory = randomMemory(41);
    QString error;
    QVERIFY(InstrumentFile::save(path("state.Q7V"), m_memory, &error));
    QVERIFY(InstrumentFile::save(path("other.Q7V"), randomMemory(42), &error));
}

void TestTrnRemoteJack::cleanup()
{
    if (m_instrument != nullptr && m_instrument->state() != QProcess::NotRunning) {
        m_instrument->terminate();
        if (!m_instrument->waitForFinished(LimitMs)) {
            m_instrument->kill();
            m_instrument->waitForFinished();
        }
    }
    m_instrument.reset();
}

void TestTrnRemoteJack::withoutAServerThereIsNoInstrument()
{
    m_server.stop();
    Ended ended = run(QStringLiteral("ports --json"));
    QCOMPARE(ended.code, 0);
    QVERIFY(ended.err.isEmpty());
    QVERIFY(ended.out.contains("\"instruments\""));
    ended = run(QStringLiteral("receive a.Q7V"));
    QCOMPARE(ended.code, 3);
    QCOMPARE(ended.err, QByteArray("trn-remote: No instrument was found: there are no MIDI ports. "
                                   "Is the instrument connected, or a MIDI service running?\n"));
    QVERIFY(!QFile::exists(path("a.Q7V")));
}

void TestTrnRemoteJack::withoutAnInstrumentThePortsAreEmpty()
{
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QCOMPARE(run(QStringLiteral("send other.Q7V")).code, 3);
}

void TestTrnRemoteJack::aServerThatDoesNotAnswerIsToldFromNone()
{
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    m_server.freeze();
    const Ended ports = run(QStringLiteral("ports"));
    const Ended receive = run(QStringLiteral("receive a.Q7V"));
    m_server.thaw();
    for (const Ended &ended : {ports, receive}) {
        QCOMPARE(ended.code, 4);
        QVERIFY(ended.out.isEmpty());
        QCOMPARE(ended.err, QByteArray("trn-remote: No instrument was found: the MIDI service does "
                                       "not answer.\n"));
    }
}

void TestTrnRemoteJack::argumentsThatAreNoTextAreRefused()
{
    // The framework's own way of starting programs has no such arguments.
    const auto runShell = [this](const QByteArray &command) {
        QProcess shell;
        shell.setWorkingDirectory(m_folder->path());
        shell.start(QStringLiteral("/bin/sh"),
                    {QStringLiteral("-c"), QString::fromLatin1(command)});
        shell.waitForFinished(LimitMs);
        return Ended{shell.exitCode(), shell.readAllStandardOutput(), shell.readAllStandardError()};
    };
    const QByteArray remote = '"' + QFile::encodeName(program("trn-remote")) + '"';
    const QByteArray instrument = '"' + QFile::encodeName(program("virtual-instrument")) + '"';
    for (const QByteArray &command :
         {remote + " export other.Q7V \"$(printf 'a\\377.syx')\"",
          remote + " check \"$(printf 'a\\377.Q7V')\"",
          remote + " set other.Q7V edit/1/templateName \"$(printf 'a\\377')\"",
          instrument + " --dump \"$(printf 'a\\377.Q7V')\""}) {
        const Ended ended = runShell(command);
        QVERIFY2(ended.code == 2, command.constData());
        QVERIFY2(ended.err.contains("holds bytes that are no text."), ended.err.constData());
    }
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files),
             QStringList({QStringLiteral("other.Q7V"), QStringLiteral("state.Q7V")}));
}

void TestTrnRemoteJack::aLongCheckEndsWithTheFirstSignal()
{
    QProcess process;
    process.setWorkingDirectory(m_folder->path());
    QStringList words{QStringLiteral("check")};
    // Longer than a person would wait, shorter than a command line may be.
    for (int i = 0; i < 20000; ++i) {
        words.append(QStringLiteral("other.Q7V"));
    }
    process.start(program("trn-remote"), words);
    QVERIFY(process.waitForReadyRead(LimitMs));
    QCOMPARE(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(LimitMs));
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
    QVERIFY(process.readAllStandardOutput().count('\n') < 20000);
}

void TestTrnRemoteJack::theWholeJob()
{
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument());
    QVERIFY(run(QStringLiteral("ports --json")).out.contains("Corvan TARN/TERN"));
    Ended ended = run(QStringLiteral("receive a.Q7V"));
    QVERIFY2(ended.code == 0, ended.err.constData());
    QVERIFY(ended.err.isEmpty());
    QVERIFY(contents("a.Q7V") == m_memory);
    QCOMPARE(run(QStringLiteral("set other.Q7V edit/13/knobA1/ccNumber 74")).code, 0);
    ended = run(QStringLiteral("send other.Q7V --backup before.Q7V --verify"));
    QVERIFY2(ended.code == 0, ended.err.constData());
    QVERIFY(contents("before.Q7V") == m_memory);
    ended = run(QStringLiteral("verify other.Q7V"));
    QVERIFY2(ended.code == 0, ended.err.constData());
    QVERIFY(run(QStringLiteral("verify a.Q7V")).code == 1);
    ended = run(QStringLiteral("send a.Q7V --edit-buffer-only --store"));
    QVERIFY2(ended.code == 0, ended.err.constData());
    QVERIFY(stopInstrument());
    QVERIFY(contents("held.Q7V").editBuffer == m_memory.editBuffer);
    QVERIFY(contents("held.Q7V").stored == m_memory.editBuffer);
}

void TestTrnRemoteJack::faults_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("code");
    const auto row = [](const char *name, const char *fault, const char *line, int code) {
        QTest::newRow(name) << QString::fromLatin1(fault) << QString::fromLatin1(line) << code;
    };
    row("receive, delay", "delay=200:block3:7", "receive a.Q7V", 0);
    row("receive, duplicate", "duplicate:footer:stored:7", "receive a.Q7V", 0);
    row("receive, drop", "drop:block3:stored:7", "receive a.Q7V", 4);
    row("receive, drop a footer", "drop:footer:stored:7", "receive a.Q7V --timeout 5", 4);
    row("receive, corrupt", "corrupt:block3:edit:7", "receive a.Q7V", 4);
    row("receive, truncate", "truncate:block3:stored:7", "receive a.Q7V", 4);
    row("receive, shorten", "shorten:block3:stored:7", "receive a.Q7V", 4);
    row("receive, silent", "silent:after:200", "receive a.Q7V --timeout 5", 4);
    row("send, delay", "delay=200:ack:edit:7", "send other.Q7V --verify", 0);
    row("send, duplicate", "duplicate:ack:#5", "send other.Q7V --verify", 0);
    row("send, drop", "drop:ack:#5", "send other.Q7V --timeout 5", 4);
    row("send, corrupt at the instrument", "in:corrupt:block3:#5", "send other.Q7V --verify", 1);
    row("send, truncate", "truncate:ack:#5", "send other.Q7V --timeout 5", 4);
    row("send, silent", "silent:after:5", "send other.Q7V --timeout 5", 4);
}

void TestTrnRemoteJack::faults()
{
    QFETCH(QString, fault);
    QFETCH(QString, line);
    QFETCH(int, code);
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    // It comes back, and must then serve the next run as if nothing had been.
    QVERIFY(startInstrument({fault, QStringLiteral("comeback=1000")}));
    const Ended ended = run(line);
    QVERIFY2(ended.code == code, ended.err.constData());
    QCOMPARE(QFile::exists(path("a.Q7V")), code == 0 && line.startsWith(QStringLiteral("receive")));
    QVERIFY(ended.code == 0 || !ended.err.isEmpty());
    if (fault.startsWith(QStringLiteral("silent"))) {
        const Ended again = run(QStringLiteral("send other.Q7V --verify"));
        QVERIFY2(again.code == 0, again.err.constData());
    }
    QVERIFY(stopInstrument());
}

void TestTrnRemoteJack::theServerKilledInTheMiddle_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("receive") << QStringLiteral("receive a.Q7V");
    QTest::newRow("send") << QStringLiteral("send other.Q7V");
}

void TestTrnRemoteJack::theServerKilledInTheMiddle()
{
    QFETCH(QString, line);
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument({QStringLiteral("silent:after:20")}));
    const std::unique_ptr<QProcess> process = startRun(line);
    QVERIFY(process->waitForStarted(LimitMs));
    QTRY_VERIFY_WITH_TIMEOUT(isSilent(), LimitMs);
    QElapsedTimer clock;
    clock.start();
    m_server.kill();
    QVERIFY(process->waitForFinished(30000));
    QVERIFY2(clock.elapsed() < AtOnceMs, QByteArray::number(clock.elapsed()).constData());
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 4);
    const QByteArray err = process->readAllStandardError();
    QVERIFY2(err.contains("was lost, since the MIDI service has gone"), err.constData());
    QVERIFY(!QFile::exists(path("a.Q7V")));
}

void TestTrnRemoteJack::theServerEndedInTheMiddle()
{
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument({QStringLiteral("silent:after:20")}));
    const std::unique_ptr<QProcess> process = startRun(QStringLiteral("verify other.Q7V"));
    QVERIFY(process->waitForStarted(LimitMs));
    QTRY_VERIFY_WITH_TIMEOUT(isSilent(), LimitMs);
    QElapsedTimer clock;
    clock.start();
    m_server.stop();
    QVERIFY(process->waitForFinished(30000));
    QVERIFY2(clock.elapsed() < AtOnceMs, QByteArray::number(clock.elapsed()).constData());
    QCOMPARE(process->exitCode(), 4);
    QVERIFY(process->readAllStandardError().contains("was lost"));
}

void TestTrnRemoteJack::theInstrumentGoneInTheMiddle_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("receive") << QStringLiteral("receive a.Q7V");
    QTest::newRow("send") << QStringLiteral("send other.Q7V");
}

void TestTrnRemoteJack::theInstrumentGoneInTheMiddle()
{
    QFETCH(QString, line);
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument({QStringLiteral("silent:after:20")}));
    const std::unique_ptr<QProcess> process = startRun(line);
    QVERIFY(process->waitForStarted(LimitMs));
    QTRY_VERIFY_WITH_TIMEOUT(isSilent(), LimitMs);
    QVERIFY(stopInstrument());
    QVERIFY(process->waitForFinished(30000));
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 4);
    const QByteArray err = process->readAllStandardError();
    QVERIFY2(err.contains("was lost, since its ports have gone"), err.constData());
    QVERIFY(!QFile::exists(path("a.Q7V")));
}

void TestTrnRemoteJack::whoeverIsStoppedARunEndsSoonAfterItsTimeout_data()
{
    QTest::addColumn<bool>("isServer");
    QTest::addColumn<QString>("line");
    for (const bool isServer : {true, false}) {
        for (const char *line : {"receive a.Q7V --timeout 3", "send other.Q7V --timeout 3"}) {
            QTest::addRow("%s, %s", isServer ? "server" : "instrument", line)
                << isServer << QString::fromLatin1(line);
        }
    }
}

void TestTrnRemoteJack::whoeverIsStoppedARunEndsSoonAfterItsTimeout()
{
    QFETCH(bool, isServer);
    QFETCH(QString, line);
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument({QStringLiteral("silent:after:20")}));
    QElapsedTimer clock;
    clock.start();
    const std::unique_ptr<QProcess> process = startRun(line);
    QVERIFY(process->waitForStarted(LimitMs));
    QTRY_VERIFY_WITH_TIMEOUT(isSilent(), LimitMs);
    const qint64 silentAt = clock.elapsed();
    const auto instrument = static_cast<pid_t>(m_instrument->processId());
    if (isServer) {
        m_server.freeze();
    } else {
        QCOMPARE(::kill(instrument, SIGSTOP), 0);
    }
    const bool hasEnded = process->waitForFinished(30000);
    const qint64 endedAt = clock.elapsed();
    if (isServer) {
        m_server.thaw();
    } else {
        ::kill(instrument, SIGCONT);
    }
    QVERIFY(hasEnded);
    // The run began before the instrument fell silent.
    QVERIFY2(endedAt - silentAt < 3000 + AfterTimeoutMs,
             QByteArray::number(endedAt - silentAt).constData());
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 4);
    QVERIFY(!QFile::exists(path("a.Q7V")));
}

void TestTrnRemoteJack::theInstrumentEndsOnAStoppedServer()
{
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument());
    m_server.freeze();
    m_instrument->terminate();
    const bool hasEnded = m_instrument->waitForFinished(30000);
    m_server.thaw();
    QVERIFY(hasEnded);
    QCOMPARE(m_instrument->exitStatus(), QProcess::NormalExit);
    // With what it held on the disk all the same.
    QCOMPARE(m_instrument->exitCode(), 0);
    QVERIFY(contents("held.Q7V") == m_memory);
}

void TestTrnRemoteJack::aSignalEndsARunInOrder_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TestTrnRemoteJack::aSignalEndsARunInOrder()
{
    QFETCH(int, signal);
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument({QStringLiteral("silent:after:20"), QStringLiteral("comeback=1")}));
    const std::unique_ptr<QProcess> process = startRun(QStringLiteral("receive a.Q7V"));
    QVERIFY(process->waitForStarted(LimitMs));
    QTRY_VERIFY_WITH_TIMEOUT(isSilent(), LimitMs);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(::kill(static_cast<pid_t>(process->processId()), signal), 0);
    QVERIFY(process->waitForFinished(LimitMs));
    QVERIFY(clock.elapsed() < 10000);
    QCOMPARE(process->exitStatus(), QProcess::NormalExit);
    QCOMPARE(process->exitCode(), 4);
    QVERIFY(process->readAllStandardError().contains("interrupted"));
    // The server is as good as before.
    const Ended ended = run(QStringLiteral("receive a.Q7V"));
    QVERIFY2(ended.code == 0, ended.err.constData());
}

void TestTrnRemoteJack::monitorEndsWithCtrlC()
{
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument());
    const std::unique_ptr<QProcess> process = startRun(QStringLiteral("monitor"));
    QByteArray out;
    while (!out.contains("active sensing begins") && process->waitForReadyRead(LimitMs)) {
        out += process->readAllStandardOutput();
    }
    QVERIFY(out.contains("active sensing begins"));
    QCOMPARE(::kill(static_cast<pid_t>(process->processId()), SIGINT), 0);
    QVERIFY(process->waitForFinished(LimitMs));
    QCOMPARE(process->exitCode(), 0);
}

void TestTrnRemoteJack::monitorEndsWithTheServer()
{
    QVERIFY(m_server.start(JackServer::ShortPeriod));
    QVERIFY(startInstrument());
    const std::unique_ptr<QProcess> process = startRun(QStringLiteral("monitor"));
    QByteArray out;
    while (!out.contains("active sensing begins") && process->waitForReadyRead(LimitMs)) {
        out += process->readAllStandardOutput();
    }
    QVERIFY(out.contains("active sensing begins"));
    m_server.kill();
    QVERIFY(process->waitForFinished(30000));
    QCOMPARE(process->exitCode(), 4);
    QVERIFY(process->readAllStandardError().contains("was lost, since the MIDI service has gone"));
}

QTEST_GUILESS_MAIN(TestTrnRemoteJack)
#include "tst_trnremote_jack.moc"
