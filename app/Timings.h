// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The waits of the engine, in one place so that a test can shorten them before it builds the
// objects that read them. Thread: set only while no route and no run exists.
struct Timings
{
    // A device is lost when this long passes without an event on the active sensing port.
    int connectionWatcherPeriodMs = 5000;
    // Limits of a whole synchronisation run, from its start.
    int receiveRunTimeoutMs = 60000;
    int sendRunTimeoutMs = 100000;
    // How long a receive whose requests count as answered waits for each dump still on its way.
    int lastDumpsTimeoutMs = 2000;
};

inline Timings &timings()
{
    static Timings instance;
    return instance;
}
