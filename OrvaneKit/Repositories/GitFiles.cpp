// SPDX-License-Identifier: GPL-3.0-or-later
#include "Repositories/GitFiles.h"

#include "Support/FileDescriptor.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane {

namespace {

constexpr std::size_t longestText = std::size_t(1) << 20;

/// A path with a NUL would be taken for a shorter one.
bool canBePath(std::string_view path)
{
    return !path.empty() && path.size() <= longestPath && !path.contains('\0');
}

std::string_view lastPart(std::string_view path)
{
    return path.substr(path.rfind('/') + 1);
}

std::optional<struct stat> statusOf(const std::string &path)
{
    struct stat status{};
    if (!canBePath(path) || ::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

std::optional<std::string> textOf(int descriptor)
{
    std::string text;
    char buffer[16 * 1024];
    while (text.size() < longestText) {
        const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
        if (count == 0)
            return text;
        if (count > 0)
            text.append(buffer, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return std::nullopt;
    }
    text.resize(longestText);
    text.resize(text.rfind('\n') + 1);
    return text;
}

std::optional<std::string> pathIn(std::string_view text)
{
    constexpr std::string_view spaces = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(spaces);
    if (first == std::string_view::npos)
        return std::nullopt;
    text = text.substr(first, text.find_last_not_of(spaces) - first + 1);
    return canBePath(text) ? std::optional<std::string>(text) : std::nullopt;
}

} // namespace

PathKind kindOfPath(const std::string &path)
{
    const auto status = statusOf(path);
    if (!status)
        return PathKind::missing;
    if (S_ISDIR(status->st_mode))
        return PathKind::folder;
    return S_ISREG(status->st_mode) ? PathKind::file : PathKind::other;
}

bool leadToSamePlace(const std::string &path, const std::string &other)
{
    const auto status = statusOf(path);
    const auto otherStatus = statusOf(other);
    return status && otherStatus && status->st_dev == otherStatus->st_dev &&
           status->st_ino == otherStatus->st_ino;
}

std::optional<std::string> resolvedPath(const std::string &path)
{
    if (!canBePath(path))
        return std::nullopt;
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
    return resolved ? std::optional<std::string>(resolved.get()) : std::nullopt;
}

std::optional<std::string> readGitFile(const std::string &path)
{
    const auto resolved = resolvedPath(path);
    // Opening a device can already do something, so its kind is asked before, and after once more.
    if (!resolved || lastPart(*resolved) != lastPart(path) || kindOfPath(*resolved) != PathKind::file)
        return std::nullopt;
    const FileDescriptor file(
        ::open(resolved->c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY));
    struct stat status{};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return textOf(file.get());
}

std::optional<std::string> linkedGitFolder(std::string_view text)
{
    constexpr std::string_view label = "gitdir:";
    if (!text.starts_with(label))
        return std::nullopt;
    text.remove_prefix(label.size());
    return pathIn(text.substr(0, text.find('\n')));
}

std::optional<std::string> linkedCommonFolder(std::string_view text)
{
    return pathIn(text);
}

} // namespace orvane
