// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"

#include <cstdint>
#include <set>
#include <span>
#include <string>

namespace orvane {

/// A thing of the catalog that entries refer to. A value.
struct CatalogItem {
    enum class Kind { project, task, tag };

    Kind kind = Kind::project;
    std::string id;

    bool operator==(const CatalogItem &) const = default;
};

/// How much of the user's own time hangs on a thing of the catalog: what to know before it is deleted. The
/// entries of others in the workspace are not counted, since only the server knows them. A value; any thread.
struct CatalogUse {
    std::int64_t entries = 0;
    /// What is on it: of a split entry the shares that are, of a running one the time up to now. A tag has
    /// the whole of its entries.
    std::int64_t seconds = 0;
    /// Those of the entries that the server does not have as they are shown.
    std::int64_t unsent = 0;

    bool operator==(const CatalogUse &) const = default;

    /// Out of all the entries as they are shown. `waiting` are those with a change in the outbox.
    static CatalogUse of(const CatalogItem &item, std::span<const TimeEntryResponse> entries,
                         const std::set<std::string> &waiting, Instant now);
};

} // namespace orvane
