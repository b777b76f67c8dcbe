// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ProcessSetup.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/syscall.h>
#endif

namespace orvane::server {

namespace {

void closeInheritedFiles()
{
    constexpr unsigned int first = 3;
#ifdef SYS_close_range
    if (::syscall(SYS_close_range, first, ~0U, 0U) == 0)
        return;
#endif
    struct rlimit limit{};
    const bool known = ::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    const int end = known ? static_cast<int>(std::min<rlim_t>(limit.rlim_cur, 65536)) : 65536;
    for (int descriptor = first; descriptor < end; ++descriptor)
        ::close(descriptor);
}

void setAction(int signal, void (*handler)(int))
{
    struct sigaction action{};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

/// A closed standard stream's number would go to the next file opened, and be written to as a stream.
void openStandardStreams()
{
    int descriptor = 0;
    while (descriptor >= 0 && descriptor < 3)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor >= 3)
        ::close(descriptor);
}

bool isFolder(const std::string &path)
{
    struct stat info{};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

} // namespace

void leaveParentBehind(bool foreground)
{
    closeInheritedFiles();
    openStandardStreams();
    ::unsetenv("ORVANE_NOW");
    ::umask(0077);
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    // A write that cannot be made is an error where it is made, not the end of the process.
    setAction(SIGPIPE, SIG_IGN);
    setAction(SIGXFSZ, SIG_IGN);
    if (foreground)
        return;
    setAction(SIGHUP, SIG_IGN);
    // Fails for who leads a group already, which then has no terminal to lose or was asked for by hand.
    ::setsid();
}

void releaseStandardStreams()
{
    const int null = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int descriptor = 0; null >= 0 && descriptor < 3; ++descriptor)
        ::dup2(null, descriptor);
    if (null > 2)
        ::close(null);
}

void raiseDescriptorLimit()
{
    struct rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    // Where there is no bound the system may still take no such number.
    constexpr rlim_t plenty = 65536;
    limit.rlim_cur = limit.rlim_max == RLIM_INFINITY ? std::max(limit.rlim_cur, plenty) : limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

std::string makePrivateFolder(const std::string &path)
{
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string part = path.substr(0, end);
        if (::mkdir(part.c_str(), 0700) != 0 && !isFolder(part))
            return std::strerror(errno);
        if (end == std::string::npos)
            return {};
    }
}

} // namespace orvane::server
