// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/ProcessesBelow.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace orvane {

namespace {

/// As the kernel writes it; the C library's own way of reading folders allocates.
struct FolderItem {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
};
constexpr std::size_t nameOffset = offsetof(FolderItem, type) + sizeof(FolderItem::type);

/// Zero when it is no number.
pid_t numberIn(std::string_view text)
{
    pid_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return 0;
        number = number * 10 + (c - '0');
    }
    return number;
}

/// Zero when the process is gone.
pid_t parentOf(int processes, const char *name)
{
    std::array<char, 32> path{};
    const std::size_t length = std::strlen(name);
    constexpr std::string_view suffix = "/stat";
    if (length + suffix.size() >= path.size())
        return 0;
    std::memcpy(path.data(), name, length);
    std::memcpy(path.data() + length, suffix.data(), suffix.size());
    const int file = ::openat(processes, path.data(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return 0;
    std::array<char, 256> text{};
    const ssize_t size = ::read(file, text.data(), text.size());
    ::close(file);
    // "12 (any name) S 1 …": a name may hold anything, also a bracket.
    const std::string_view line(text.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    const std::size_t bracket = line.rfind(')');
    if (bracket == std::string_view::npos || bracket + 4 >= line.size())
        return 0;
    const std::string_view rest = line.substr(bracket + 4);
    return numberIn(rest.substr(0, rest.find(' ')));
}

} // namespace

void adoptOrphans()
{
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
}

std::size_t listProcessesBelow(std::span<pid_t> found)
{
    const int processes = ::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (processes < 0)
        return 0;
    const pid_t self = ::getpid();
    std::size_t count = 0;
    alignas(FolderItem) std::array<char, 4096> items{};
    for (;;) {
        const long size = ::syscall(SYS_getdents64, processes, items.data(), items.size());
        if (size <= 0)
            break;
        for (long at = 0; at < size;) {
            FolderItem item{};
            std::memcpy(&item, items.data() + at, nameOffset);
            const char *name = items.data() + at + nameOffset;
            const pid_t process = numberIn(name);
            if (process > 0 && count < found.size() && parentOf(processes, name) == self)
                found[count++] = process;
            at += item.length;
        }
    }
    ::close(processes);
    return count;
}

} // namespace orvane
