// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <cstdint>
#include <map>
#include <string>

namespace orvane {

class Tracker;

/// What the user's own time of this week went to, in seconds; shares of a split entry count as shares, and
/// what runs up to now. A value, made on the tracker's thread.
struct CatalogWeek {
    std::map<std::string, std::int64_t> ofProject;
    std::map<std::string, std::int64_t> ofTask;
    /// On a project, but none of its tasks; by project.
    std::map<std::string, std::int64_t> withoutTask;

    static CatalogWeek of(const Tracker &tracker, Instant now);
    std::int64_t project(const std::string &id) const { return at(ofProject, id); }
    std::int64_t task(const std::string &id) const { return at(ofTask, id); }
    std::int64_t taskless(const std::string &projectId) const { return at(withoutTask, projectId); }
    /// The most that one project has.
    std::int64_t most() const;

private:
    static std::int64_t at(const std::map<std::string, std::int64_t> &seconds, const std::string &id)
    {
        const auto found = seconds.find(id);
        return found == seconds.end() ? 0 : found->second;
    }
};

} // namespace orvane
