// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QThread>

namespace NS_Utilities
{

// Sleeps for that many milliseconds; not at all for a count below 1. Historical spelling.
inline void milisecondDelay(long milliseconds)
{
    if (milliseconds > 0) {
        QThread::msleep(static_cast<unsigned long>(milliseconds));
    }
}

} // namespace NS_Utilities
