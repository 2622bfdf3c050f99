// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

#include <functional>

// One editor at a time scans and writes the database of a home: two would take each other's answers
// of the helper away, and lose each other's instruments. Held as a lock of the system's on a file,
// which is empty and stays; the system gives the lock back when the program ends, however it does.
//
// Threads: any, one at a time. The lock is the object's and not a thread's.
class DatabaseLock
{
public:
    DatabaseLock() = default;
    ~DatabaseLock() { release(); }
    DatabaseLock(const DatabaseLock &) = delete;
    DatabaseLock &operator=(const DatabaseLock &) = delete;

    // Waits for as long as another editor holds the lock of that file, and asks isAbandoned() ten
    // times a second whether to go on with that. Nothing is done if it is held already. Where the
    // file can't be made, as in a folder that is read-only, nothing is held and nobody waits: what
    // can't be written can't be lost.
    void take(const QString &path, const std::function<bool()> &isAbandoned);
    void release();
    bool isHeld() const { return m_file >= 0; }

private:
    int m_file = -1;
};
