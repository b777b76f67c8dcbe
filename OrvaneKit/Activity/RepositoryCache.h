// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/ActivityFileStamp.h"
#include "Repositories/ActivityRepositoryResolver.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orvane {

/// The repositories of working folders, resolved once and again when a file behind the answer changed or one
/// that was missing appeared. The loader owns it; its executor only.
class RepositoryCache {
public:
    struct Repository {
        SharedRepository value;
        std::vector<std::pair<std::string, std::optional<ActivityFileStamp>>>
            dependencies; ///< as they were then
        std::vector<std::string> missing;

        /// Whether nothing behind the answer has changed.
        bool isCurrent() const;
    };

    explicit RepositoryCache(const std::string &home) : m_home(home), m_resolver(home) {}

    const std::string &home() const { return m_home; }
    /// Valid until `clear`.
    const Repository &resolve(const std::string &folder);
    void clear() { m_repositories.clear(); }

private:
    std::string m_home;
    ActivityRepositoryResolver m_resolver;
    std::unordered_map<std::string, Repository> m_repositories;
    /// One object for each repository, whatever folders lead to it.
    std::unordered_map<std::string, SharedRepository> m_shared;
};

} // namespace orvane
