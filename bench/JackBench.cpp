// SPDX-License-Identifier: GPL-3.0-or-later
// The transfers over the machine's MIDI service against the program virtual-instrument, which the
// script around this has started. Without one the benchmarks say so.

#include "bench/BareTransfer.h"
#include "bench/EngineRig.h"

#include <benchmark/benchmark.h>

#include <chrono>

namespace
{

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

enum class Direction { Receive, Send };

QByteArray bulkMessage(const QByteArray &start, QByteArray data)
{
    QByteArray message = start + data;
    int sum = 0;
    for (qsizetype i = 4; i < message.size(); ++i) {
        sum += static_cast<unsigned char>(message.at(i));
    }
    message.append(static_cast<char>(-sum & 0x7F));
    return message + '\xf7';
}

// A template of blanks: only the bytes' number matters on the wire.
QList<QByteArray> blankDump(int type, int number)
{
    const QByteArray block = QByteArray::fromHex("43007f14");
    const auto framing = [&](char high) {
        return bulkMessage(block + QByteArray(2, '\0') + high + static_cast<char>(type) +
                               static_cast<char>(number),
                           {});
    };
    QList<QByteArray> messages{framing('\x0e')};
    messages.append(bulkMessage(block + QByteArray::fromHex("001b010000"),
                                QByteArray(25, ' ') + QByteArray(2, '\0')));
    for (char knob = 0; knob < 12; ++knob) {
        messages.append(bulkMessage(block + QByteArray::fromHex("001a01") +
                                        static_cast<char>(0x10 + knob) + '\0',
                                    QByteArray(24, ' ') + QByteArray(2, '\0')));
    }
    messages.append(framing('\x0f'));
    return messages;
}

void transferOverService(benchmark::State &state, Direction direction)
{
    EngineRig engine;
    if (!engine.openRoute()) {
        state.SkipWithError("no instrument among the ports");
        return;
    }
    const QList<BareTransfer::Step> steps = direction == Direction::Receive
                                                ? BareTransfer::receiveRun()
                                                : BareTransfer::sendRun(blankDump);
    BareTransfer bare;
    Clock::duration engineTime{0};
    Clock::duration bareTime{0};
    for ([[maybe_unused]] auto step : state) {
        const Clock::time_point start = Clock::now();
        const bool engineDone =
            direction == Direction::Receive ? engine.receiveAll() : engine.sendAll();
        const Clock::time_point middle = Clock::now();
        engine.api.deleteMIDIComunicationRoute();
        bare.open(engine.inPort(), engine.outPort());
        const Clock::time_point bareStart = Clock::now();
        const bool bareDone = bare.run(steps);
        const Clock::time_point end = Clock::now();
        bare.close();
        if (!engineDone || !bareDone || !engine.openRoute()) {
            state.SkipWithError("a run did not end");
            return;
        }
        engineTime += middle - start;
        bareTime += end - bareStart;
        state.SetIterationTime(seconds(middle - start));
    }
    state.counters["bare_ms"] = seconds(bareTime) * 1000 / static_cast<double>(state.iterations());
    state.counters["ratio_to_bare"] = seconds(engineTime) / seconds(bareTime);
}

void receiveOverService(benchmark::State &state)
{
    transferOverService(state, Direction::Receive);
}
BENCHMARK(receiveOverService)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void sendOverService(benchmark::State &state)
{
    transferOverService(state, Direction::Send);
}
BENCHMARK(sendOverService)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
