// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityFileInventory.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace orvane {

namespace {

constexpr int deepest = 100;

/// A file system's clock may stand still for some milliseconds, or whole seconds on older ones.
constexpr std::int64_t clockGrain = 2;

class Handle {
public:
    explicit Handle(int descriptor) : m_descriptor(descriptor) {}
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    ~Handle()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

std::int64_t now()
{
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return time.tv_sec;
}

} // namespace

struct ActivityFileInventory::Walk {
    const AgentLogFormat &format;
    std::vector<File> files;
    /// The folders on the way down to where we are.
    std::vector<std::pair<std::int64_t, std::int64_t>> way;
    std::set<std::string> met;
};

std::vector<ActivityFileInventory::File> ActivityFileInventory::files(const AgentLogFormat &format,
                                                                      const std::string &folder)
{
    Walk walk{.format = format, .files = {}, .way = {}, .met = {}};
    this->walk(walk, AT_FDCWD, folder, 0);
    std::erase_if(m_directories, [&](const auto &entry) {
        const std::string &path = entry.first;
        const bool isBelow = path == folder || (path.starts_with(folder) && path[folder.size()] == '/');
        return isBelow && !walk.met.contains(path);
    });
    std::ranges::sort(walk.files, {}, &File::url);
    return std::move(walk.files);
}

void ActivityFileInventory::walk(Walk &walk, int parent, const std::string &path, int level)
{
    const auto slash = path.rfind('/');
    const char *name =
        parent == AT_FDCWD || slash == std::string::npos ? path.c_str() : path.c_str() + slash + 1;
    const Handle handle(::openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
    struct stat status{};
    if (handle.get() < 0 || ::fstat(handle.get(), &status) != 0)
        return;
    const ActivityFileStamp stamp = ActivityFileStamp::of(status);
    const std::pair place{stamp.device, stamp.inode};
    if (std::ranges::find(walk.way, place) != walk.way.end())
        return;
    walk.way.push_back(place);
    walk.met.insert(path);
    const Directory &directory = list(walk.format, handle.get(), path, stamp);
    std::string child = path + "/";
    const std::size_t root = child.size();
    for (const Child &entry : directory.children) {
        child.resize(root);
        child += entry.name;
        if (entry.isLog && level >= walk.format.levels.lowest &&
            ::fstatat(handle.get(), entry.name.c_str(), &status, 0) == 0 && S_ISREG(status.st_mode))
            walk.files.push_back({child, ActivityFileStamp::of(status)});
        else if (entry.mayBeDirectory && level < walk.format.levels.highest && level < deepest)
            this->walk(walk, handle.get(), child, level + 1);
    }
    walk.way.pop_back();
}

ActivityFileInventory::Directory &ActivityFileInventory::list(const AgentLogFormat &format, int handle,
                                                              const std::string &path,
                                                              const ActivityFileStamp &stamp)
{
    Directory &directory = m_directories[path];
    if (!directory.isFresh && directory.stamp == stamp)
        return directory;
    directory = {.stamp = stamp, .children = {}, .isFresh = now() - stamp.changeSeconds <= clockGrain};
    ++m_listings;
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(::fdopendir(::dup(handle)), &::closedir);
    if (!entries)
        return directory;
    // The walk goes on at the handle's own place otherwise.
    ::rewinddir(entries.get());
    while (const dirent *entry = ::readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const bool isUnsure = entry->d_type == DT_UNKNOWN || entry->d_type == DT_LNK;
        Child child{.name = std::string(name),
                    .mayBeDirectory = entry->d_type == DT_DIR || isUnsure,
                    .isLog = (entry->d_type == DT_REG || isUnsure) && format.isLog(name)};
        if (child.mayBeDirectory || child.isLog)
            directory.children.push_back(std::move(child));
    }
    std::ranges::sort(directory.children, {}, &Child::name);
    return directory;
}

} // namespace orvane
