// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QProcess>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>

#ifdef TRN_THREAD_SANITIZER
// Starting a process is no fork that goes on as this program, as the sanitizer would have it.
extern "C" __attribute__((used)) inline const char *__tsan_default_options()
{
    return "die_after_fork=0";
}
#endif

// A JACK server of a test's own, on the dummy driver. Always of one name, since a killed server
// keeps a slot until one of its name starts again, and never two at a time: the tests that use it
// carry LOCK jackd. It runs synchronously, because otherwise it loses events between slow clients.
//
// The environment of the test, and so of every program that it starts, is made to mean this server.
class JackServer
{
public:
    static constexpr const char *Name = "trn-test";
    static constexpr int TimeoutMs = 20000;
    // Frames at 48 kHz: a whole transfer takes a second and not ten.
    static constexpr int ShortPeriod = 128;

    JackServer()
    {
        qputenv("JACK_DEFAULT_SERVER", Name);
        qputenv("JACK_NO_START_SERVER", "1");
        qputenv("JACK_NO_AUDIO_RESERVATION", "1");
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        // A test that crashes leaves no server behind for the next one to find.
        m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    }
    ~JackServer() { stop(); }
    JackServer(const JackServer &) = delete;
    JackServer &operator=(const JackServer &) = delete;

    // True once a client could be opened, as seen by a program of its own. periodFrames: the period
    // at 48 kHz.
    bool start(int periodFrames = 1024)
    {
        if (isRunning()) {
            return true;
        }
        m_process.start(QStringLiteral("jackd"),
                        {QStringLiteral("-n"), QLatin1String(Name), QStringLiteral("-S"),
                         QStringLiteral("-r"), QStringLiteral("-d"), QStringLiteral("dummy"),
                         QStringLiteral("-p"), QString::number(periodFrames)});
        const QDeadlineTimer deadline(TimeoutMs);
        while (m_process.waitForStarted() && !deadline.hasExpired()) {
            QProcess client;
            client.setStandardOutputFile(QProcess::nullDevice());
            client.setStandardErrorFile(QProcess::nullDevice());
            client.start(QStringLiteral("jack_lsp"), {});
            const bool isAnswered = client.waitForFinished(TimeoutMs) &&
                                    client.exitStatus() == QProcess::NormalExit &&
                                    client.exitCode() == 0;
            // The answer may have been another server's of the name, for which ours gave up.
            if (m_process.waitForFinished(20)) {
                return false;
            }
            if (isAnswered) {
                return true;
            }
        }
        return false;
    }

    // As a user ends it: clients are told.
    void stop()
    {
        if (isRunning()) {
            m_process.terminate();
            if (!m_process.waitForFinished(TimeoutMs)) {
                kill();
            }
        }
    }

    // As a crash ends it.
    void kill()
    {
        if (isRunning()) {
            m_process.kill();
            m_process.waitForFinished(TimeoutMs);
        }
    }

    // Stops it where it is, as a debugger does: connected, and answering nobody. Until thaw().
    void freeze()
    {
        const auto id = static_cast<pid_t>(processId());
        ::kill(id, SIGSTOP);
        siginfo_t info;
        waitid(P_PID, static_cast<id_t>(id), &info, WSTOPPED | WNOWAIT);
    }
    void thaw() { ::kill(static_cast<pid_t>(processId()), SIGCONT); }

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    qint64 processId() const { return m_process.processId(); }

private:
    QProcess m_process;
};
