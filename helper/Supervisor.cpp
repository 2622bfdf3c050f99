// SPDX-License-Identifier: GPL-3.0-or-later
#include "helper/Supervisor.h"

#include "helper/PluginAnswer.h"
#include "helper/PluginFile.h"
#include "helper/PluginSession.h"
#include "helper/ProcessLimits.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <vector>

#ifdef TRN_COVERAGE
extern "C" {
#include <gcov.h>
}
#endif

namespace
{

using Clock = std::chrono::steady_clock;

constexpr Clock::time_point Never = Clock::time_point::max();

// For a plug-in whose answer is given already; what it takes longer than that is not worth waiting
// for in a scan of hundreds.
constexpr std::chrono::seconds TearDownTime{5};
// A plug-in whose children have children as fast as they are ended.
constexpr int MaximumRoundsOfEnding = 100000;

// The only word from the child to this process: its exit code as one byte.
struct VerdictPipe
{
    int readEnd = -1;
    int writeEnd = -1;

    bool open()
    {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
            return false;
        }
        readEnd = ends[0];
        writeEnd = ends[1];
        return true;
    }
};

// Nothing also if the pipe has come to its end, as when a plug-in closes what isn't its own.
std::optional<HelperExit> readVerdict(int readEnd, bool *atEnd)
{
    std::uint8_t byte = 0;
    ssize_t length = 0;
    do {
        length = read(readEnd, &byte, 1);
    } while (length < 0 && errno == EINTR);
    *atEnd = length == 0;
    if (length != 1) {
        return {};
    }
    return static_cast<HelperExit>(byte);
}

void writeVerdict(int writeEnd, HelperExit code)
{
    const auto byte = static_cast<std::uint8_t>(code);
    ssize_t length = 0;
    do {
        length = write(writeEnd, &byte, 1);
    } while (length < 0 && errno == EINTR);
}

// --- The child -----------------------------------------------------------------------------------

HelperExit questionHere(PluginSession *session, const std::string &resultPath)
{
    PluginAnswer answer;
    const HelperExit code = session->question(&answer);
    if (hasResult(code) && !answer.write(resultPath)) {
        return HelperExit::ResultNotWritten;
    }
    return code;
}

[[noreturn]] void runChild(const std::string &pluginPath, const std::string &resultPath,
                           int verdictEnd)
{
    silenceOutput();
    leaveTerminal();
    limitResources();
    std::unique_ptr<PluginSession> session;
    HelperExit code = HelperExit::Internal;
    try {
        session = PluginSession::open(pluginFileOf(pluginPath));
        code = questionHere(session.get(), resultPath);
    } catch (...) {
        // The memory was not enough for the answer, or the plug-in threw while it was loaded.
        code = session == nullptr ? HelperExit::Internal : HelperExit::WouldNotInitialise;
    }
    writeVerdict(verdictEnd, code);
    try {
        if (session != nullptr) {
            session->tearDown();
        }
    } catch (...) {
    }
#ifdef TRN_COVERAGE
    __gcov_dump();
#endif
    // Neither the destructors of a plug-in that is still loaded nor those that it has registered.
    _exit(0);
}

// --- The watching process ------------------------------------------------------------------------

// Children of this process, which has one thread. As the reaper of its descendants it has all of
// them sooner or later, also those that have turned away from their parent.
std::vector<pid_t> children()
{
    const std::string own = std::to_string(getpid());
    std::ifstream file("/proc/" + own + "/task/" + own + "/children");
    return {std::istream_iterator<pid_t>(file), std::istream_iterator<pid_t>()};
}

void endDescendants()
{
    for (int round = 0; round < MaximumRoundsOfEnding; ++round) {
        bool anyEnded = false;
        for (const pid_t child : children()) {
            // One that has become another user's can't be ended, and must not be waited for.
            if (kill(child, SIGKILL) != 0) {
                continue;
            }
            anyEnded = true;
            while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
            }
        }
        if (!anyEnded) {
            return;
        }
    }
}

[[noreturn]] void dieOf(int signalNumber)
{
    std::signal(signalNumber, SIG_DFL);
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_UNBLOCK, &all, nullptr);
    std::raise(signalNumber);
    // A signal that doesn't end a process.
    std::abort();
}

// Everything about the child that happens before it ends.
class Watch
{
public:
    Watch(pid_t child, int verdictEnd, int signalEnd)
        : m_child(child)
        , m_verdictEnd(verdictEnd)
        , m_signalEnd(signalEnd)
    {
    }

    // Until the child has ended. Returns a signal that was sent to this process, or 0.
    int run()
    {
        while (!m_hasEnded) {
            pollfd ends[2] = {{m_signalEnd, POLLIN, 0},
                              {isAwaiting() ? m_verdictEnd : -1, POLLIN, 0}};
            poll(ends, 2, timeoutMs());
            if (Clock::now() >= m_deadline) {
                m_deadline = Never;
                kill(m_child, SIGKILL);
            }
            takeVerdict();
            if (const int signalNumber = takeSignals(); signalNumber != 0) {
                return signalNumber;
            }
        }
        takeVerdict();
        return 0;
    }

    [[nodiscard]] const std::optional<HelperExit> &verdict() const { return m_verdict; }
    [[nodiscard]] int endStatus() const { return m_status; }

private:
    [[nodiscard]] bool isAwaiting() const { return !m_verdict && !m_atEnd; }

    [[nodiscard]] int timeoutMs() const
    {
        if (m_deadline == Never) {
            return -1;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - Clock::now());
        return left.count() > 0 ? static_cast<int>(left.count()) + 1 : 0;
    }

    void takeVerdict()
    {
        if (!isAwaiting()) {
            return;
        }
        m_verdict = readVerdict(m_verdictEnd, &m_atEnd);
        if (m_verdict) {
            m_deadline = Clock::now() + TearDownTime;
        }
    }

    int takeSignals()
    {
        signalfd_siginfo info = {};
        while (read(m_signalEnd, &info, sizeof(info)) == sizeof(info)) {
            if (info.ssi_signo != SIGCHLD) {
                return static_cast<int>(info.ssi_signo);
            }
        }
        // Orphans of the plug-in's end here too.
        int status = 0;
        pid_t ended = 0;
        while ((ended = waitpid(-1, &status, WNOHANG)) > 0) {
            if (ended == m_child) {
                m_hasEnded = true;
                m_status = status;
            }
        }
        return 0;
    }

    pid_t m_child;
    int m_verdictEnd;
    int m_signalEnd;
    bool m_hasEnded = false;
    int m_status = 0;
    std::optional<HelperExit> m_verdict;
    bool m_atEnd = false;
    Clock::time_point m_deadline = Never;
};

} // namespace

HelperExit questionSupervised(const std::string &pluginPath, const std::string &resultPath)
{
    sigset_t watched;
    sigset_t before;
    sigemptyset(&watched);
    for (const int signalNumber : {SIGCHLD, SIGTERM, SIGINT, SIGHUP}) {
        sigaddset(&watched, signalNumber);
    }
    sigprocmask(SIG_BLOCK, &watched, &before);
    VerdictPipe pipe;
    const int signalEnd = signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
    if (signalEnd < 0 || !pipe.open() || prctl(PR_SET_CHILD_SUBREAPER, 1) != 0) {
        return HelperExit::Internal;
    }
    // Before the child is there, since it inherits them, and this process needs as little.
    const pid_t self = getpid();
    const pid_t child = fork();
    if (child < 0) {
        return HelperExit::Internal;
    }
    if (child == 0) {
        // Whoever ends the watching process from outside ends the plug-in as well.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != self) {
            _exit(0);
        }
        close(pipe.readEnd);
        close(signalEnd);
        sigprocmask(SIG_SETMASK, &before, nullptr);
        runChild(pluginPath, resultPath, pipe.writeEnd);
    }
    close(pipe.writeEnd);

    Watch watch(child, pipe.readEnd, signalEnd);
    const int signalNumber = watch.run();
    endDescendants();
    if (signalNumber == 0 && watch.verdict()) {
        return *watch.verdict();
    }
    unlink(unfinishedPath(resultPath).c_str());
    if (signalNumber != 0) {
        dieOf(signalNumber);
    }
    dieOf(WIFSIGNALED(watch.endStatus()) ? WTERMSIG(watch.endStatus()) : SIGABRT);
}
