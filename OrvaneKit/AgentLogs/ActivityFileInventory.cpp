// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityFileInventory.h"

#include "Support/FileDescriptor.h"

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane {

namespace {

constexpr int deepest = 100;

/// A file system's clock may stand still for some milliseconds, or whole seconds on older ones.
constexpr std::int64_t clockGrain = 2;

#ifdef O_PATH
constexpr int lookOnly = O_PATH;
#else
constexpr int lookOnly = O_RDONLY;
#endif

} // namespace

struct ActivityFileInventory::Walk {
    const AgentLogFormat &format;
    std::vector<File> files;
    /// The folders on the way down to where we are.
    std::vector<std::pair<std::int64_t, std::int64_t>> way;
    /// Those gone into through links: a few links to each other would make ways without end otherwise.
    std::set<std::pair<std::int64_t, std::int64_t>> linked;
};

std::vector<ActivityFileInventory::File> ActivityFileInventory::files(const AgentLogFormat &format,
                                                                      const std::string &folder)
{
    ++m_walks;
    Walk walk{.format = format, .files = {}, .way = {}, .linked = {}};
    this->walk(walk, folder, 0, false);
    std::erase_if(m_directories, [&](const auto &entry) {
        const std::string &path = entry.first;
        return entry.second.walk != m_walks && path.starts_with(folder) &&
               (path.size() == folder.size() || path[folder.size()] == '/');
    });
    if (!std::ranges::is_sorted(walk.files, {}, &File::url))
        std::ranges::sort(walk.files, {}, &File::url);
    return std::move(walk.files);
}

void ActivityFileInventory::walk(Walk &walk, const std::string &path, int level, bool isLinked)
{
    const auto stamp = ActivityFileStamp::of(path);
    if (!stamp || !stamp->isDirectory)
        return;
    const std::pair place{stamp->device, stamp->inode};
    if (std::ranges::find(walk.way, place) != walk.way.end() ||
        (isLinked && !walk.linked.insert(place).second))
        return;
    walk.way.push_back(place);
    Directory &directory = list(walk.format, path, *stamp);
    directory.walk = m_walks;
    // From inside the folder the way to each file is short.
    const bool isWorthOpening = directory.children.size() > 8;
    const FileDescriptor handle(isWorthOpening ? ::open(path.c_str(), lookOnly | O_DIRECTORY | O_CLOEXEC)
                                               : -1);
    std::string child = path + "/";
    const std::size_t root = child.size();
    for (const Child &entry : directory.children) {
        child.resize(root);
        child += entry.name;
        struct stat status{};
        const auto look = [&] {
            return handle.get() >= 0 ? ::fstatat(handle.get(), entry.name.c_str(), &status, 0)
                                     : ::stat(child.c_str(), &status);
        };
        if (entry.isLog && level >= walk.format.levels.lowest && look() == 0 && S_ISREG(status.st_mode))
            walk.files.push_back({child, ActivityFileStamp::of(status)});
        else if (entry.mayBeDirectory && level < walk.format.levels.highest && level < deepest)
            this->walk(walk, child, level + 1, isLinked || entry.mayBeLink);
    }
    walk.way.pop_back();
}

ActivityFileInventory::Directory &ActivityFileInventory::list(const AgentLogFormat &format,
                                                              const std::string &path,
                                                              const ActivityFileStamp &stamp)
{
    Directory &directory = m_directories[path];
    if (!directory.isFresh && directory.stamp == stamp)
        return directory;
    directory = {.stamp = stamp, .children = {}, .isFresh = m_clock() - stamp.changeSeconds <= clockGrain};
    ++m_listings;
    const std::unique_ptr<DIR, int (*)(DIR *)> entries(::opendir(path.c_str()), &::closedir);
    if (!entries) {
        // It may be for want of something that others use at the moment.
        directory.isFresh = true;
        return directory;
    }
    while (const dirent *entry = ::readdir(entries.get())) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const bool isUnsure = entry->d_type == DT_UNKNOWN || entry->d_type == DT_LNK;
        Child child{.name = std::string(name),
                    .mayBeDirectory = entry->d_type == DT_DIR || isUnsure,
                    .mayBeLink = isUnsure,
                    .isLog = (entry->d_type == DT_REG || isUnsure) && format.isLog(name)};
        if (child.mayBeDirectory || child.isLog)
            directory.children.push_back(std::move(child));
    }
    // As their paths will sort, in which a folder's name ends with a slash.
    std::ranges::sort(directory.children, {}, [](const Child &child) {
        return child.mayBeDirectory ? child.name + "/" : child.name;
    });
    return directory;
}

} // namespace orvane
