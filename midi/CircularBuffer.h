// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Locks.h"

#include <atomic>
#include <memory>

// A byte ring for one writer and one reader.
//
// Thread: any, under the public mutex; the ring's own operations do not take it. The count of
// available bytes alone is atomic, and changes only after the bytes are in place.
class CircularBuffer
{
public:
    // size: capacity in bytes, above 0. recursive: the mutex may be locked again by its holder.
    CircularBuffer(int size, bool recursive);
    ~CircularBuffer();
    CircularBuffer(const CircularBuffer &) = delete;
    CircularBuffer &operator=(const CircularBuffer &) = delete;

    int avail() const; // bytes that can be read
    int size() const;  // capacity
    int space() const; // bytes that can be written

    // Copies in as much as fits and returns how much that was; 0 for a count below 1.
    int write(const void *bytes, int count);
    // Copies out what is there, at most count bytes, and returns how many. A null destination
    // skips them.
    int read(void *bytes, int count);

    // BasicLockable, either kind by the constructor's second argument.
    class AnyMutex
    {
    public:
        explicit AnyMutex(bool recursive)
            : m_isRecursive(recursive)
        {
        }
        void lock() { m_isRecursive ? m_recursive.lock() : m_plain.lock(); }
        void unlock() { m_isRecursive ? m_recursive.unlock() : m_plain.unlock(); }

    private:
        const bool m_isRecursive;
        Mutex m_plain;
        RecursiveMutex m_recursive;
    };
    AnyMutex mutex;

private:
    int m_writeIndex = 0;
    int m_readIndex = 0;
    std::atomic<int> m_available{0};
    std::unique_ptr<unsigned char[]> m_bytes;
    const int m_size;
};
