// SPDX-License-Identifier: GPL-3.0-or-later
#include "memory/MemChangeObserver.h"

#include "memory/RemoteMemAPI.h"

MemChangeObserver::~MemChangeObserver()
{
    if (memAPI != nullptr) {
        memAPI->unregistObserver(this);
    }
}
