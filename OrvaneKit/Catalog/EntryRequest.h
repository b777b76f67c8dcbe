// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryDetails.h"
#include "Support/Instant.h"

namespace orvane {

/// A complete request to create or rewrite an entry. Plain data; any thread.
struct EntryRequest {
    EntryDetails details;
    Instant start;               ///< whole milliseconds, like `stop`
    std::optional<Instant> stop; ///< none: the running timer
    /// Each share carries its own description rather than the entry's one.
    bool describeParts = false;

    bool operator==(const EntryRequest &) const = default;
};

template <>
struct JsonFields<EntryRequest> {
    static constexpr auto list = JsonFieldList{
        jsonField<"details">(&EntryRequest::details),
        jsonField<"start">(&EntryRequest::start),
        jsonField<"stop">(&EntryRequest::stop),
        jsonField<"describeParts">(&EntryRequest::describeParts),
    };
};

} // namespace orvane
