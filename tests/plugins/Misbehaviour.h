// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

// The test plug-ins do what their own file name says, so that one binary under many names stands
// for many plug-ins. A name of the form DEED-at-STAGE does the deed when the plug-in is at that
// stage.

// The file name of this plug-in up to its first dot.
inline const std::string &behaviour()
{
    static const std::string name = [] {
        Dl_info info = {};
        static const int here = 0;
        if (dladdr(&here, &info) == 0 || info.dli_fname == nullptr) {
            return std::string();
        }
        std::string path = info.dli_fname;
        path.erase(0, path.rfind('/') + 1);
        return path.substr(0, path.find('.'));
    }();
    return name;
}

inline bool behavesAs(const char *name)
{
    return behaviour() == name;
}

// For a test that wants to know of a process of the plug-in's: its id is in this file once the file
// is there.
inline void tellProcessId(pid_t pid)
{
    const char *path = std::getenv("TRN_TEST_PROCESS_ID");
    if (path == nullptr) {
        return;
    }
    const std::string unfinished = std::string(path) + ".part";
    if (std::FILE *file = std::fopen(unfinished.c_str(), "w"); file != nullptr) {
        std::fprintf(file, "%ld\n", static_cast<long>(pid));
        std::fclose(file);
        std::rename(unfinished.c_str(), path);
    }
}

[[noreturn]] inline void waitForEver()
{
    for (;;) {
        pause();
    }
}

inline void writeMegabytes()
{
    const std::string line = std::string(79, '#') + '\n';
    const int terminal = open("/dev/tty", O_WRONLY);
    for (int i = 0; i < 100000; ++i) {
        std::fputs(line.c_str(), stdout);
        std::fputs(line.c_str(), stderr);
        if (terminal >= 0 && write(terminal, line.data(), line.size()) < 0) {
            break;
        }
    }
    std::fflush(nullptr);
}

inline void allocateWithoutEnd()
{
    constexpr std::size_t Megabyte = 1024 * 1024;
    for (;;) {
        // Touched, and never let go of.
        auto *memory = static_cast<volatile char *>(::operator new(64 * Megabyte));
        for (std::size_t i = 0; i < 64 * Megabyte; i += Megabyte) {
            memory[i] = 1;
        }
    }
}

// A process in a session of its own, out of reach of whoever ends the plug-in's process group.
inline void forkAway()
{
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) {
        return;
    }
    char byte = 0;
    if (fork() == 0) {
        setsid();
        if (fork() == 0) {
            tellProcessId(getpid());
            if (write(ends[1], &byte, 1) == 1) {
                waitForEver();
            }
        }
        _exit(0);
    }
    // Until it is there, and the test can know of it.
    if (read(ends[0], &byte, 1) != 1) {
        std::abort();
    }
}

inline void doDeed(const std::string &deed)
{
    if (deed == "crash") {
        // Where nothing is mapped, and no compiler knows of it.
        volatile std::uintptr_t nowhere = 8;
        *reinterpret_cast<volatile int *>(nowhere) = 1;
    } else if (deed == "hang") {
        tellProcessId(getpid());
        waitForEver();
    } else if (deed == "close-and-hang") {
        closefrom(STDERR_FILENO + 1);
        tellProcessId(getpid());
        waitForEver();
    } else if (deed == "exit") {
        // A code that means something else altogether when the helper gives it.
        std::exit(3);
    } else if (deed == "leave") {
        _exit(8);
    } else if (deed == "throw") {
        throw std::runtime_error("no reason given");
    } else if (deed == "fork") {
        forkAway();
    } else if (deed == "fork-and-hang") {
        forkAway();
        waitForEver();
    } else if (deed == "chatter") {
        writeMegabytes();
    } else if (deed == "allocate") {
        allocateWithoutEnd();
    } else if (deed == "thread") {
        std::thread([] { waitForEver(); }).detach();
    }
}

inline void at(std::string_view stage)
{
    constexpr std::string_view Between = "-at-";
    const std::string_view name = behaviour();
    if (name.size() > stage.size() + Between.size() && name.ends_with(stage) &&
        name.substr(0, name.size() - stage.size()).ends_with(Between)) {
        doDeed(std::string(name.substr(0, name.size() - stage.size() - Between.size())));
    }
}

// Its constructor runs when the plug-in is loaded, its destructor when it goes.
struct LoadAndUnload
{
    LoadAndUnload() { at("load"); }
    ~LoadAndUnload() noexcept(false) { at("unload"); }
};
