// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

// A thing beside the bare form of itself. They take turns, so that both meet the same state of the
// machine. The reported time is the first's, the counter "ratio" how much longer it takes than the
// second.

using Clock = std::chrono::steady_clock;

inline double seconds(Clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

// Both say how long they took, for what has to be cleared away unmeasured.
template <class Own, class Bare>
void compareTimes(benchmark::State &state, Own own, Bare bare)
{
    Clock::duration ownTime{0};
    Clock::duration bareTime{0};
    own();
    bare();
    for ([[maybe_unused]] auto step : state) {
        const Clock::duration time = own();
        bareTime += bare();
        ownTime += time;
        state.SetIterationTime(seconds(time));
    }
    state.counters["ratio"] = seconds(ownTime) / seconds(bareTime);
}

template <class Own, class Bare>
void compare(benchmark::State &state, Own own, Bare bare)
{
    const auto timed = [](auto &run) {
        const Clock::time_point start = Clock::now();
        run();
        return Clock::now() - start;
    };
    compareTimes(
        state, [&] { return timed(own); }, [&] { return timed(bare); });
}
