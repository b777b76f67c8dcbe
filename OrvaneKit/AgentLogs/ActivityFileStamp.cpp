// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityFileStamp.h"

#include "Support/JsonImpl.h"

#include <sys/stat.h>

ORVANE_JSON(orvane::ActivityFileStamp)

namespace orvane {

namespace {

#ifdef __APPLE__
const timespec &modified(const struct stat &status)
{
    return status.st_mtimespec;
}
const timespec &changed(const struct stat &status)
{
    return status.st_ctimespec;
}
#else
const timespec &modified(const struct stat &status)
{
    return status.st_mtim;
}
const timespec &changed(const struct stat &status)
{
    return status.st_ctim;
}
#endif

} // namespace

std::optional<ActivityFileStamp> ActivityFileStamp::of(const std::string &path)
{
    struct stat status{};
    return ::stat(path.c_str(), &status) == 0 ? std::optional(of(status)) : std::nullopt;
}

ActivityFileStamp ActivityFileStamp::of(const struct stat &status)
{
    return {.device = static_cast<std::int64_t>(status.st_dev),
            .inode = static_cast<std::int64_t>(status.st_ino),
            .size = status.st_size,
            .seconds = modified(status).tv_sec,
            .nanoseconds = modified(status).tv_nsec,
            .changeSeconds = changed(status).tv_sec,
            .changeNanoseconds = changed(status).tv_nsec,
            .mode = status.st_mode,
            .isDirectory = S_ISDIR(status.st_mode),
            .isRegularFile = S_ISREG(status.st_mode)};
}

} // namespace orvane
