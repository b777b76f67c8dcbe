// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/ProcessKeeper.h"

#include "AgentConnector/ProcessesBelow.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

namespace orvane {

namespace {

constexpr int firstKept = 3;

void wakeUp(int) {}

void react(int signal, void (*handler)(int))
{
    struct sigaction action{};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
}

void closeFrom(int first)
{
#ifdef SYS_close_range
    if (::syscall(SYS_close_range, static_cast<unsigned>(first), ~0U, 0U) == 0)
        return;
#endif
    struct rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const int end = static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 65536));
    for (int descriptor = first; descriptor < end; ++descriptor)
        ::close(descriptor);
}

/// Another keeper's ends of pipes among the open files would keep that one from noticing that it is over.
bool keepOnlyOurs(KeeperOrder &order)
{
    const std::array ours{&order.control, &order.status, &order.output};
    for (int *descriptor : ours) {
        *descriptor = ::fcntl(*descriptor, F_DUPFD, firstKept + static_cast<int>(ours.size()));
        if (*descriptor < 0)
            return false;
    }
    int next = firstKept;
    for (int *descriptor : ours) {
        ::dup2(*descriptor, next);
        ::fcntl(next, F_SETFD, FD_CLOEXEC);
        *descriptor = next++;
    }
    closeFrom(next);
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int descriptor = 0; null >= 0 && descriptor < firstKept; ++descriptor)
        ::dup2(null, descriptor);
    ::close(null);
    return null >= 0;
}

/// Hears of ended children only while it waits, and of nothing else.
void setUpSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
        react(signal, SIG_IGN);
    react(SIGCHLD, wakeUp);
    sigset_t children;
    sigemptyset(&children);
    sigaddset(&children, SIGCHLD);
    ::sigprocmask(SIG_SETMASK, &children, nullptr);
}

[[noreturn]] void becomeProgram(const KeeperOrder &order)
{
    ::setsid();
    for (int signal = 1; signal < NSIG; ++signal)
        react(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::dup2(order.output, STDOUT_FILENO);
    ::dup2(order.output, STDERR_FILENO);
    ::execve(order.program, order.arguments, order.environment);
    ::_exit(127);
}

/// Returns early when a child ends, and true once `control` is closed.
bool waitFor(int control, const timespec *time)
{
    sigset_t none;
    sigemptyset(&none);
    fd_set set;
    FD_ZERO(&set);
    if (control >= 0)
        FD_SET(control, &set);
    return ::pselect(control + 1, &set, nullptr, nullptr, time, &none) > 0;
}

/// How the program ended by itself; none when it was given up first.
std::optional<int> watch(pid_t program, int control)
{
    for (;;) {
        int status = 0;
        pid_t ended = 0;
        while ((ended = ::waitpid(-1, &status, WNOHANG)) > 0) {
            if (ended == program)
                return status;
        }
        if (waitFor(control, nullptr))
            return std::nullopt;
    }
}

/// Whether somebody leads the session that the process is in, other than the program that is over.
bool isDetached(pid_t process, pid_t program)
{
    const pid_t session = ::getsid(process);
    return session > 0 && session != program && ::kill(session, 0) == 0;
}

std::int64_t millisecondsNow()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

/// Asks them to end and, after half a second, makes them. What cannot be ended at all (it waits for a disk
/// that does not answer) is left in the end.
void endAll(pid_t program, bool sparesDetached)
{
    constexpr std::int64_t grace = 500;
    constexpr std::int64_t most = 5000;
    const std::int64_t begin = millisecondsNow();
    for (std::int64_t passed = 0; passed < most; passed = millisecondsNow() - begin) {
        while (::waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        std::array<pid_t, 256> below{};
        const std::size_t count = listProcessesBelow(below);
        bool isAnyLeft = false;
        for (const pid_t process : std::span(below).first(count)) {
            if (sparesDetached && isDetached(process, program))
                continue;
            isAnyLeft = true;
            ::kill(process, passed < grace ? SIGTERM : SIGKILL);
        }
        if (!isAnyLeft)
            return;
        const timespec moment{0, 20'000'000};
        waitFor(-1, &moment);
    }
}

} // namespace

void keepProcess(KeeperOrder order)
{
    // Ctrl-C in the terminal is for the process that gave the order; its end is noticed here.
    ::setsid();
    setUpSignals();
    adoptOrphans();
    if (!keepOnlyOurs(order))
        ::_exit(1);
    const pid_t program = ::fork();
    if (program == 0)
        becomeProgram(order);
    ::close(order.output);
    if (program < 0)
        ::_exit(1);
    const std::optional<int> status = watch(program, order.control);
    endAll(program, status && order.sparesDetached);
    if (status) {
        const ssize_t written = ::write(order.status, &*status, sizeof *status);
        ::_exit(written == sizeof *status ? 0 : 1);
    }
    ::_exit(0);
}

} // namespace orvane
