// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "memory/ParamAddress.h"

class MemChangeObserver;

// An observer and the address that it hears. The pair points at the very address object of the
// observer's controller, so that when the controller moves, the pair follows without being
// registered again. Neither is owned. Thread: under memoryMutex once it is registered.
class PairAdrObs
{
public:
    PairAdrObs(ParamAddress *address, MemChangeObserver *memObserver)
        : paramAddress(address)
        , observer(memObserver)
    {
    }
    PairAdrObs(const PairAdrObs &) = default;
    PairAdrObs &operator=(const PairAdrObs &) = default;
    virtual ~PairAdrObs() = default;

    ParamAddress getParamAddress() const { return *paramAddress; }
    void setParamAddress(const ParamAddress &address) { *paramAddress = address; }
    MemChangeObserver *getObserver() const { return observer; }
    void setObserver(MemChangeObserver *memObserver) { observer = memObserver; }

    const ParamAddress &address() const { return *paramAddress; } // no copy, for matching

private:
    ParamAddress *paramAddress;
    MemChangeObserver *observer;
};
