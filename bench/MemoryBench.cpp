// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/MemChangeObserver.h"
#include "memory/RemoteMemAPI.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace
{

class Listener : public MemChangeObserver
{
public:
    Listener(RemoteMemAPI *api, const ParamAddress &address)
        : m_address(address)
    {
        setMemAPI(api);
        api->registObserver(&m_address, this);
    }
    ~Listener() override { memAPI->unregistObserver(this); }
    void paramUpdate() override { ++updates; }

    int updates = 0;

private:
    ParamAddress m_address;
};

// One observer of many hears; the rest stand at other addresses.
void notifyObserver(benchmark::State &state)
{
    RemoteMemAPI api;
    std::vector<std::unique_ptr<Listener>> listeners;
    for (int i = 0; i < state.range(0); ++i) {
        const ParamAddress address(i % 6, (i / 6) % 50, (i / 300) % 12, (i / 3600) % 4);
        listeners.push_back(std::make_unique<Listener>(&api, address));
    }
    const ParamAddress heard(0, 0, 0, 0);
    for ([[maybe_unused]] auto step : state) {
        api.notifyObserver(heard);
    }
    if (listeners.front()->updates == 0) {
        state.SkipWithError("the observer heard nothing");
    }
    // Last first, as a tree of widgets would not: removal from the end is not what is measured.
    while (!listeners.empty()) {
        listeners.pop_back();
    }
}
BENCHMARK(notifyObserver)->RangeMultiplier(10)->Range(10, 10000)->Unit(benchmark::kMicrosecond);

} // namespace
