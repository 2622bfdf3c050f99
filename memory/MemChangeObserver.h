// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class RemoteMemAPI;

// Hears of changes of the memory at the addresses that it is registered for.
class MemChangeObserver
{
public:
    // Leaves the list of observers. A class that may be notified from another thread while it dies
    // must leave it in its own destructor already, before its part of the object is gone.
    virtual ~MemChangeObserver();

    // Thread: the writer's, with memoryMutex held. It may write to the memory, register and
    // unregister observers; it must not touch a widget unless it runs on the GUI thread.
    virtual void paramUpdate() = 0;

    // Not owned, and outlives the observer; null stands for none.
    void setMemAPI(RemoteMemAPI *api) { memAPI = api; }

protected:
    RemoteMemAPI *memAPI = nullptr;
};
