// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// One share of a split entry. Plain data; any thread.
struct SplitPart {
    std::optional<std::string> projectId;
    std::optional<std::string> taskId;
    bool isBillable = false;
    std::int64_t percent = 0; ///< whole; those of one entry sum to 100
    std::string description;  ///< says something only in a request with `describeParts`

    bool operator==(const SplitPart &) const = default;
};

/// What the user says about the work of an entry. Plain data; any thread.
struct EntryDetails {
    std::string description;
    std::optional<std::string> projectId;
    std::optional<std::string> taskId;
    std::vector<std::string> tagIds;
    bool isBillable = false;
    std::vector<SplitPart> shares; ///< empty unless the entry's time is split

    bool operator==(const EntryDetails &) const = default;
};

template <>
struct JsonFields<SplitPart> {
    static constexpr auto list = JsonFieldList{
        jsonField<"projectId">(&SplitPart::projectId),     jsonField<"taskId">(&SplitPart::taskId),
        jsonField<"isBillable">(&SplitPart::isBillable),   jsonField<"percent">(&SplitPart::percent),
        jsonField<"description">(&SplitPart::description),
    };
};

template <>
struct JsonFields<EntryDetails> {
    static constexpr auto list = JsonFieldList{
        jsonField<"description">(&EntryDetails::description),
        jsonField<"projectId">(&EntryDetails::projectId),
        jsonField<"taskId">(&EntryDetails::taskId),
        jsonField<"tagIds">(&EntryDetails::tagIds),
        jsonField<"isBillable">(&EntryDetails::isBillable),
        jsonField<"shares">(&EntryDetails::shares),
    };
};

} // namespace orvane
