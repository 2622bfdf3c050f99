// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QDeadlineTimer>
#include <QtCore/QProcess>
#include <QtCore/QProcessEnvironment>

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

    JackServer()
    {
        qputenv("JACK_DEFAULT_SERVER", Name);
        qputenv("JACK_NO_START_SERVER", "1");
        qputenv("JACK_NO_AUDIO_RESERVATION", "1");
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
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
            if (client.waitForFinished(TimeoutMs) && client.exitStatus() == QProcess::NormalExit &&
                client.exitCode() == 0) {
                return true;
            }
            if (m_process.waitForFinished(20)) {
                return false;
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

    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    qint64 processId() const { return m_process.processId(); }

private:
    QProcess m_process;
};
