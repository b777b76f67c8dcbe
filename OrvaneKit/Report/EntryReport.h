// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Report/EntryFilter.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane {

/// What tracked time is added up by.
enum class EntryGrouping { project, client, task, tag };

/// Tracked time added up by what it was spent on, and what the billable part of it is worth. A split entry
/// counts by its shares; one with two tags under both, and once in the total; one that still runs nowhere.
///
/// Money is worked out at today's rates: the project's, or the workspace's where the project has none. Each
/// group's amount is rounded once, half up; the total is the sum of the groups, but for tags, where it is
/// worked out of its own.
///
/// Plain data; made on the catalog's thread.
struct EntryReport {
    struct Line {
        /// None for what has no project (client, task, tag).
        std::optional<std::string> id;
        /// None, too, for what is not in the catalog any more.
        std::optional<std::string> name;
        std::optional<std::string> color; ///< a project's, "#rrggbb"
        std::int64_t seconds = 0;
        std::int64_t billableSeconds = 0; ///< of them
        /// In hundredths of the workspace's currency; none when there is billable time but no rate for any.
        std::optional<std::int64_t> amount;

        bool operator==(const Line &) const = default;
    };

    /// The most time first, equals by name, what has none of the kind last.
    std::vector<Line> groups;
    Line total;
    /// Of the workspace; none where its settings are not known.
    std::optional<std::string> currency;
    /// Some billable time has no rate, and the amounts are without it.
    bool lacksRates = false;

    static EntryReport of(std::span<const TimeEntryResponse> entries, EntryGrouping grouping,
                          const EntryFilter &filter, const Catalog &catalog,
                          const std::optional<WorkspaceSettingsResponse> &settings);
};

} // namespace orvane
