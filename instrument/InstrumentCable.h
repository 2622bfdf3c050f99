// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

// What joins a virtual instrument to whoever plays the editor's part, as its front panel sees it:
// something that can be pulled out and put back, and that tells when something comes in.
//
// Threads: isPlugged() and setPlugged() on one thread. The activity callback runs on whatever
// thread brings the bytes, with a lock of the cable held: it returns at once and calls nothing of
// the cable.
class InstrumentCable
{
public:
    InstrumentCable() = default;
    InstrumentCable(const InstrumentCable &) = delete;
    InstrumentCable &operator=(const InstrumentCable &) = delete;
    virtual ~InstrumentCable() = default;

    virtual bool isPlugged() const = 0;
    virtual void setPlugged(bool plugged) = 0;
    // Called for all that comes in. May be empty. When this returns the former one is not called
    // any more, nor under way.
    virtual void setActivityCallback(std::function<void()> callback) = 0;
};
