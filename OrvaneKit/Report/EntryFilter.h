// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryParts.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvane {

/// Which time is looked at: what is of this client, this project and has this tag. What is not named plays no
/// part; an empty identifier means what has none. Of a split entry only the shares that fit are looked at.
/// Plain data; the functions belong to the catalog's thread.
struct EntryFilter {
    std::optional<std::string> clientId = {};
    std::optional<std::string> projectId = {};
    std::optional<std::string> tagId = {};

    bool operator==(const EntryFilter &) const = default;
    bool isEmpty() const { return *this == EntryFilter{}; }

    /// Whether time of this project, or of none, is looked at.
    bool takesProject(const std::optional<std::string> &id, const Catalog &catalog) const;
    /// The parts of an entry that are looked at.
    std::vector<EntryPart> partsOf(const TimeEntryResponse &entry, const Catalog &catalog, Instant now) const;
    /// The entries something of which is looked at, in their order.
    std::vector<TimeEntryResponse> entriesOf(std::vector<TimeEntryResponse> entries,
                                             const Catalog &catalog) const;
    /// How long what is looked at lasts, in whole seconds, as `entrySeconds` adds it up.
    std::int64_t seconds(std::span<const TimeEntryResponse> entries, const Catalog &catalog,
                         Instant now) const;

private:
    bool takesTags(const TimeEntryResponse &entry) const;
};

} // namespace orvane
