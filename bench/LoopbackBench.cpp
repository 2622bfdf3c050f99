// SPDX-License-Identifier: GPL-3.0-or-later
// The transfers and the way of a single change over the loopback, against a device whose every
// answer is made beforehand, so that its own work is the same for the engine and for the bare
// baseline.

#include "bench/BareTransfer.h"
#include "bench/EngineRig.h"
#include "instrument/InstrumentMemory.h"
#include "instrument/VirtualInstrument.h"
#include "memory/MemChangeObserver.h"
#include "midi/loopback/LoopbackHub.h"

#include <QtCore/QHash>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

// Answers by table: what a VirtualInstrument with the rig's content said once.
class CannedDevice
{
public:
    CannedDevice()
    {
        m_handle = LoopbackHub::instance().plug(
            QStringLiteral("Corvan TARN/TERN"), 5,
            [this](int port, const QByteArray &bytes) { receive(port, bytes); });
    }
    ~CannedDevice() { LoopbackHub::instance().unplug(m_handle); }

    // Called before the table is used by any other thread.
    void learn(VirtualInstrument *instrument)
    {
        for (const int type : {0x60, 0x6F}) {
            for (int number = 0; number < 50; ++number) {
                m_table.insert(request(type, number), ask(instrument, request(type, number)));
            }
        }
        for (const char middle : {'\x20', '\x23'}) {
            const QByteArray parameter =
                QByteArray::fromHex("f043307f1401") + middle + QByteArray::fromHex("00f7");
            m_table.insert(parameter, ask(instrument, parameter));
        }
        m_acknowledge = {QByteArray::fromHex("f0436002f7")};
    }

    QList<QByteArray> dump(int type, int number) const
    {
        return m_table.value(request(type, number));
    }

    std::atomic<qint64> firstByteAt{0};

    void send(const QByteArray &bytes) { LoopbackHub::instance().send(m_handle, 5, bytes); }

private:
    static QByteArray request(int type, int number)
    {
        return QByteArray::fromHex("f043207f140e") + static_cast<char>(type) +
               static_cast<char>(number) + '\xf7';
    }
    static QList<QByteArray> ask(VirtualInstrument *instrument, const QByteArray &question)
    {
        QList<QByteArray> answers;
        instrument->setOutput([&](int, const QByteArray &bytes) { answers.append(bytes); });
        instrument->receive(VirtualInstrument::MessagePort, question);
        instrument->setOutput({});
        return answers;
    }
    void receive(int, const QByteArray &bytes)
    {
        // A clock that is read for every message would be part of what the baseline costs, too.
        if (firstByteAt == 0) {
            firstByteAt = Clock::now().time_since_epoch().count();
        }
        const bool isFooter = bytes.size() == 12 && bytes.at(2) == '\x00' && bytes.at(7) == '\x0f';
        if (isFooter) {
            reply(m_acknowledge);
            return;
        }
        const auto found = m_table.constFind(bytes);
        if (found != m_table.constEnd()) {
            reply(*found);
        }
    }
    void reply(const QList<QByteArray> &messages)
    {
        for (const QByteArray &message : messages) {
            send(message);
        }
    }

    int m_handle = 0;
    QHash<QByteArray, QList<QByteArray>> m_table;
    QList<QByteArray> m_acknowledge;
};

// An instrument that holds what the rig holds, by having been sent it.
void fill(VirtualInstrument *instrument)
{
    EngineRig rig;
    const int handle = LoopbackHub::instance().plug(
        QStringLiteral("Corvan TARN/TERN"), 5,
        [instrument](int port, const QByteArray &bytes) { instrument->receive(port, bytes); });
    instrument->setOutput([handle](int port, const QByteArray &bytes) {
        LoopbackHub::instance().send(handle, port, bytes);
    });
    if (!rig.openRoute() || !rig.sendAll()) {
        qFatal("the instrument could not be filled");
    }
    rig.api.deleteMIDIComunicationRoute();
    instrument->setOutput({});
    LoopbackHub::instance().unplug(handle);
}

struct LoopbackRig
{
    LoopbackRig()
    {
        fill(&instrument);
        device = std::make_unique<CannedDevice>();
        device->learn(&instrument);
        if (!engine.openRoute()) {
            qFatal("no route over the loopback");
        }
    }
    VirtualInstrument instrument;
    std::unique_ptr<CannedDevice> device;
    EngineRig engine;
};

enum class Direction { Receive, Send };

// Engine and bare baseline in turn, in every iteration; the ratio is that of the sums.
void transferOverLoopback(benchmark::State &state, Direction direction)
{
    LoopbackRig rig;
    BareTransfer bare;
    if (!bare.open(rig.engine.inPort(), rig.engine.outPort())) {
        state.SkipWithError("the bare transport did not open");
        return;
    }
    const QList<BareTransfer::Step> steps =
        direction == Direction::Receive
            ? BareTransfer::receiveRun()
            : BareTransfer::sendRun([&rig](int type, int number) {
                  QList<QByteArray> messages = rig.device->dump(type, number);
                  for (QByteArray &message : messages) {
                      message.remove(0, 1);
                  }
                  return messages;
              });
    bare.close();
    Clock::duration engineTime{0};
    Clock::duration bareTime{0};
    for ([[maybe_unused]] auto step : state) {
        const Clock::time_point start = Clock::now();
        const bool engineDone =
            direction == Direction::Receive ? rig.engine.receiveAll() : rig.engine.sendAll();
        const Clock::time_point middle = Clock::now();
        rig.engine.api.deleteMIDIComunicationRoute();
        bare.open(rig.engine.inPort(), rig.engine.outPort());
        const Clock::time_point bareStart = Clock::now();
        const bool bareDone = bare.run(steps);
        const Clock::time_point end = Clock::now();
        bare.close();
        if (!engineDone || !bareDone || !rig.engine.openRoute()) {
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

void receiveOverLoopback(benchmark::State &state)
{
    transferOverLoopback(state, Direction::Receive);
}
BENCHMARK(receiveOverLoopback)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3);

void sendOverLoopback(benchmark::State &state)
{
    transferOverLoopback(state, Direction::Send);
}
BENCHMARK(sendOverLoopback)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3);

void reportSpread(benchmark::State &state, std::vector<double> microseconds)
{
    if (microseconds.empty()) {
        return;
    }
    std::sort(microseconds.begin(), microseconds.end());
    state.counters["median_us"] = microseconds[microseconds.size() / 2];
    state.counters["p99_us"] = microseconds[microseconds.size() * 99 / 100];
}

void setParamToFirstByteOut(benchmark::State &state)
{
    LoopbackRig rig;
    rig.engine.api.setONLINEstate(1);
    const ParamAddress address(Bank::EditBuffer, 0, 0, ParamAddress::CCNumber);
    std::vector<double> spread;
    int value = 0;
    for ([[maybe_unused]] auto step : state) {
        rig.device->firstByteAt = 0;
        value = (value + 1) % 128;
        const Clock::time_point start = Clock::now();
        rig.engine.api.setParam(address, value);
        const Clock::time_point out{Clock::duration(rig.device->firstByteAt.load())};
        spread.push_back(seconds(out - start) * 1e6);
        state.SetIterationTime(seconds(out - start));
    }
    reportSpread(state, std::move(spread));
}
BENCHMARK(setParamToFirstByteOut)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Takes the time at which the memory has been written, on the writer's thread.
class TimeOfWrite : public MemChangeObserver
{
public:
    explicit TimeOfWrite(RemoteMemAPI *api)
        : m_address(Bank::EditBuffer, 0, 0, ParamAddress::CCNumber)
    {
        setMemAPI(api);
        api->registObserver(&m_address, this);
    }
    ~TimeOfWrite() override { memAPI->unregistObserver(this); }
    void paramUpdate() override { at = Clock::now().time_since_epoch().count(); }

    std::atomic<qint64> at{0};

private:
    ParamAddress m_address;
};

void byteInToMemoryWritten(benchmark::State &state)
{
    LoopbackRig rig;
    TimeOfWrite observer(&rig.engine.api);
    std::vector<double> spread;
    char value = 0;
    for ([[maybe_unused]] auto step : state) {
        observer.at = 0;
        value = static_cast<char>((value + 1) % 128);
        const Clock::time_point start = Clock::now();
        rig.device->send(QByteArray::fromHex("f043107f15011018") + value + '\xf7');
        while (observer.at == 0) {
            std::this_thread::yield();
        }
        const Clock::time_point written{Clock::duration(observer.at.load())};
        spread.push_back(seconds(written - start) * 1e6);
        state.SetIterationTime(seconds(written - start));
    }
    reportSpread(state, std::move(spread));
}
BENCHMARK(byteInToMemoryWritten)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
