// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/ProcessLimits.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>

namespace
{

constexpr rlim_t GiB = 1024UL * 1024 * 1024;
// What can be written to, which is what takes memory from everyone else.
constexpr rlim_t DataAllowance = 2 * GiB;
// Everything, which counts reservations and files that are only looked at, as sample libraries are.
constexpr rlim_t AddressAllowance = 16 * GiB;
constexpr rlim_t LargestFile = 1 * GiB;

void lower(__rlimit_resource resource, rlim_t value)
{
    rlimit limit = {};
    if (getrlimit(resource, &limit) != 0) {
        return;
    }
    limit.rlim_max = std::min(limit.rlim_max, value);
    limit.rlim_cur = std::min(limit.rlim_cur, limit.rlim_max);
    setrlimit(resource, &limit);
}

// In pages: all of the address space, and data with stack.
struct MemoryTaken
{
    rlim_t all = 0;
    rlim_t data = 0;
};

// Allowances count from here. A sanitizer has reserved terabytes by now, which are not the
// plug-in's.
bool memoryTaken(MemoryTaken *taken)
{
    std::ifstream file("/proc/self/statm");
    rlim_t resident = 0;
    rlim_t shared = 0;
    rlim_t text = 0;
    rlim_t library = 0;
    return static_cast<bool>(file >> taken->all >> resident >> shared >> text >> library >>
                             taken->data);
}

} // namespace

void silenceOutput()
{
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (nowhere < 0) {
            close(standard);
        } else if (nowhere != standard) {
            dup2(nowhere, standard);
        }
    }
    if (nowhere > STDERR_FILENO) {
        close(nowhere);
    }
}

void leaveTerminal()
{
    const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (terminal >= 0) {
        ioctl(terminal, TIOCNOTTY);
        close(terminal);
    }
}

void limitResources()
{
    // One byte is too little for a dump in a file, and to the kernel it means that a service which
    // collects dumps gets none either; such services disregard a limit of 0.
    lower(RLIMIT_CORE, 1);
    lower(RLIMIT_FSIZE, LargestFile);
    MemoryTaken taken;
    if (memoryTaken(&taken)) {
        const auto page = static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
        lower(RLIMIT_AS, taken.all * page + AddressAllowance);
        lower(RLIMIT_DATA, taken.data * page + DataAllowance);
    }
}
