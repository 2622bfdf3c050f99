// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/tools/ResidentMemory.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtWidgets/QWidget>

#include <cstdio>
#include <ctime>
#include <functional>
#include <utility>

// What started-editor and started-bare-window tell trn-bench-window, which starts them with two
// numbers in the environment: TRN_BENCH_START, its monotonic clock in nanoseconds, and
// TRN_BENCH_IDLE, in seconds.
//
// On one line how long it took to the first painted window (nanoseconds) and what memory is
// resident then (KiB). With an idle time above 0 the program then waits until it is ready, says
// "idle", stays for that time, and says the processor time that it has taken (nanoseconds).

inline long long nanoseconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

inline void say(const QByteArray &line)
{
    std::puts(line.constData());
    std::fflush(stdout);
}

// Tells of the first paint of the window, and then of the idle time.
class StartWatch : public QObject
{
public:
    StartWatch(QWidget *window, std::function<bool()> isReady)
        : m_isReady(std::move(isReady))
    {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && !m_painted) {
            m_painted = true;
            // Behind the paint of the children and the hand-over to the screen.
            QTimer::singleShot(0, this, [this] { painted(); });
        }
        return false;
    }

private:
    void painted()
    {
        say(QByteArray::number(nanoseconds(CLOCK_MONOTONIC) - m_start) + ' ' +
            QByteArray::number(residentKiB()));
        if (m_idleSeconds == 0) {
            leave();
            return;
        }
        waitForReady();
    }

    void waitForReady()
    {
        if (!m_isReady()) {
            QTimer::singleShot(OnlinePollMs, this, [this] { waitForReady(); });
            return;
        }
        say("idle");
        const long long before = nanoseconds(CLOCK_PROCESS_CPUTIME_ID);
        QTimer::singleShot(m_idleSeconds * 1000, this, [before] {
            say(QByteArray::number(nanoseconds(CLOCK_PROCESS_CPUTIME_ID) - before));
            leave();
        });
    }

    // Not quit(), which would ask about the unsaved bank.
    static void leave() { QCoreApplication::exit(); }

    static constexpr int OnlinePollMs = 100;

    const long long m_start = qEnvironmentVariable("TRN_BENCH_START").toLongLong();
    const int m_idleSeconds = qEnvironmentVariableIntValue("TRN_BENCH_IDLE");
    std::function<bool()> m_isReady;
    bool m_painted = false;
};
