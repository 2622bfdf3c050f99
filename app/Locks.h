// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <condition_variable>
#include <mutex>

// The lock types of the whole program. They are the standard library's and not Qt's because the
// distributions' Qt is not built for the thread sanitizer, which cannot see the ordering that
// Qt's own mutexes, conditions and thread waits give and would report races that are none.
//
// Lock order, outermost first: TAppMIDIIn's mutex, RemoteMemAPI's memoryMutex, the encoder's
// queue mutex, an output port's mutex, ComuController's map mutex. docs/ARCHITECTURE.md tells why.

using Mutex = std::mutex;
using RecursiveMutex = std::recursive_mutex;
using WaitCondition = std::condition_variable_any;
using MutexLocker = std::lock_guard<Mutex>;
using RecursiveMutexLocker = std::lock_guard<RecursiveMutex>;

#if defined(__SANITIZE_THREAD__)
#define TRN_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define TRN_THREAD_SANITIZER 1
#endif
#endif

#ifdef TRN_THREAD_SANITIZER
extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);
#endif

// Called last on a thread that ends: everything it did happens before joinedThread(token).
inline void endingThread([[maybe_unused]] void *token)
{
#ifdef TRN_THREAD_SANITIZER
    __tsan_release(token);
#endif
}

// Called after QThread::wait() returned for the thread that called endingThread(token).
inline void joinedThread([[maybe_unused]] void *token)
{
#ifdef TRN_THREAD_SANITIZER
    __tsan_acquire(token);
#endif
}
