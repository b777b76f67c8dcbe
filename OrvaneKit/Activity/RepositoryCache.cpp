// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/RepositoryCache.h"

#include <algorithm>

namespace orvane {

namespace {

/// A git folder changes with every commit; of a folder only that it is there matters.
std::optional<ActivityFileStamp> dependencyStamp(const std::string &path)
{
    auto stamp = ActivityFileStamp::of(path);
    if (stamp && stamp->isDirectory)
        return ActivityFileStamp{.isDirectory = true};
    return stamp;
}

} // namespace

bool RepositoryCache::Repository::isCurrent() const
{
    return std::ranges::all_of(
               dependencies,
               [](const auto &known) { return dependencyStamp(known.first) == known.second; }) &&
           std::ranges::none_of(
               missing, [](const std::string &path) { return ActivityFileStamp::of(path).has_value(); });
}

const RepositoryCache::Repository &RepositoryCache::resolve(const std::string &folder)
{
    const auto [entry, isNew] = m_repositories.try_emplace(folder);
    if (!isNew && entry->second.isCurrent())
        return entry->second;
    auto resolution = m_resolver.resolve(folder);
    SharedRepository &shared = m_shared[resolution.repository->key];
    if (!shared || *shared != *resolution.repository)
        shared = resolution.repository;
    Repository repository{.value = shared, .dependencies = {}, .missing = std::move(resolution.missing)};
    for (std::string &path : resolution.dependencies) {
        auto stamp = dependencyStamp(path);
        repository.dependencies.emplace_back(std::move(path), stamp);
    }
    return entry->second = std::move(repository);
}

} // namespace orvane
