// SPDX-License-Identifier: GPL-3.0-or-later
// For programs under the thread sanitizer that start others by Qt, which does so with clone() and
// the memory shared until the other one runs. The sanitizer's own clone() takes that child for one
// with memory of its own, and has it switch off the watching "in the child"; which is then off in
// the thread that started it, for good: its unlocks count no more, and races are reported that are
// none. The plain clone() leaves the sanitizer's state alone.
#include <sched.h>
#include <sys/types.h>

#include <cstdarg>

extern "C" int __clone(int (*function)(void *), void *stack, int flags, void *argument, ...);

extern "C" __attribute__((visibility("default"), no_sanitize("thread"))) int
clone(int (*function)(void *), void *stack, int flags, void *argument, ...) noexcept
{
    va_list rest;
    va_start(rest, argument);
    auto *parent = va_arg(rest, pid_t *);
    void *storage = va_arg(rest, void *);
    auto *child = va_arg(rest, pid_t *);
    va_end(rest);
    return __clone(function, stack, flags, argument, parent, storage, child);
}
