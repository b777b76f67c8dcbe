// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/ActivityFileStamp.h"
#include "AgentLogs/AgentLogFormat.h"

#include <ctime>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvane {

/// What logs there are. A folder is listed again only when its stamp changed; each file is looked at every
/// time, without opening it. One thread at a time.
///
/// Links are followed, but no folder is gone into twice on one way down nor twice through links, and none
/// below a hundred levels. A folder that cannot be read has nothing in it.
class ActivityFileInventory {
public:
    /// Seconds since 1970.
    using Clock = std::function<std::int64_t()>;

    struct File {
        std::string url; ///< its path
        ActivityFileStamp stamp;

        bool operator==(const File &) const = default;
    };

    ActivityFileInventory() = default;
    explicit ActivityFileInventory(Clock clock) : m_clock(std::move(clock)) {}

    /// The logs below `folder` (the one that holds an agent's logs), by path. Gone ones are forgotten.
    std::vector<File> files(const AgentLogFormat &format, const std::string &folder);
    void clear() { m_directories.clear(); }

    /// How many folders were listed so far, a cost measure.
    std::int64_t listings() const { return m_listings; }

private:
    struct Child {
        std::string name;
        bool mayBeDirectory = false; ///< the listing says so, or does not say
        bool mayBeLink = false;
        bool isLog = false;
    };
    struct Directory {
        ActivityFileStamp stamp;
        std::vector<Child> children; ///< by name
        /// Listed so soon after a change that another could have got the same stamp.
        bool isFresh = true;
        std::uint64_t walk = 0; ///< the last that met it
    };
    struct Walk;

    void walk(Walk &walk, const std::string &path, int level, bool isLinked);
    Directory &list(const AgentLogFormat &format, const std::string &path, const ActivityFileStamp &stamp);

    Clock m_clock = [] { return std::int64_t{std::time(nullptr)}; };
    std::unordered_map<std::string, Directory> m_directories;
    std::uint64_t m_walks = 0;
    std::int64_t m_listings = 0;
};

} // namespace orvane
