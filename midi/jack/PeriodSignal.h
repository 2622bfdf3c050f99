// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <ctime>

// Tells one thread at a time when a period of the JACK server's has ended. The process thread only
// posts, and only while somebody waits.
class PeriodSignal
{
public:
    PeriodSignal() { sem_init(&m_ended, 0, 0); }
    ~PeriodSignal() { sem_destroy(&m_ended); }
    PeriodSignal(const PeriodSignal &) = delete;
    PeriodSignal &operator=(const PeriodSignal &) = delete;

    // Thread: process.
    void periodEnded()
    {
        if (m_isWatched) {
            sem_post(&m_ended);
        }
    }
    // No period is worth waiting for any more: whoever waits goes on. Thread: any.
    void release() { sem_post(&m_ended); }

private:
    friend class PeriodWatch;

    std::atomic<bool> m_isWatched{false};
    sem_t m_ended;
};

// One thread's waiting for periods, all of it within timeoutMs from here on.
class PeriodWatch
{
public:
    PeriodWatch(PeriodSignal &signal, int timeoutMs)
        : m_signal(signal)
    {
        constexpr long NanosecondsPerMs = 1000000;
        clock_gettime(CLOCK_MONOTONIC, &m_deadline);
        m_deadline.tv_sec += timeoutMs / 1000;
        m_deadline.tv_nsec += timeoutMs % 1000 * NanosecondsPerMs;
        if (m_deadline.tv_nsec >= 1000 * NanosecondsPerMs) {
            m_deadline.tv_nsec -= 1000 * NanosecondsPerMs;
            ++m_deadline.tv_sec;
        }
        // What the waiting before this one has left.
        while (sem_trywait(&m_signal.m_ended) == 0) {
        }
        m_signal.m_isWatched = true;
    }
    ~PeriodWatch() { m_signal.m_isWatched = false; }
    PeriodWatch(const PeriodWatch &) = delete;
    PeriodWatch &operator=(const PeriodWatch &) = delete;

    // False when the time is over.
    bool awaitNext()
    {
        int result = 0;
        do {
            result = sem_clockwait(&m_signal.m_ended, CLOCK_MONOTONIC, &m_deadline);
        } while (result != 0 && errno == EINTR);
        return result == 0;
    }

private:
    PeriodSignal &m_signal;
    timespec m_deadline{};
};
