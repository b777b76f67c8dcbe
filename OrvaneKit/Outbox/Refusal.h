// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "Support/Instant.h"
#include "Support/Json.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orvane {

/// A change that the server refused for good while nobody waited for it. It is kept, whole, until it has been
/// shown.
struct Refusal {
    std::int64_t seq = 0;
    EntryChange change;
    /// The server's reason, ready to show.
    std::string message;
    std::int64_t status = 0;
    /// It is kept on for a while: a process that still waits for its change has to learn what became of it.
    bool isShown = false;
    /// A window keeps it before its user until they have answered it, whoever else has shown it.
    bool isSetAside = false;

    bool operator==(const Refusal &) const = default;
};

/// The store's document of refusals not yet shown.
struct RefusalDocument {
    static constexpr const char *key = "refusals";
    std::vector<Refusal> refusals;
};

template <>
struct JsonFields<Refusal> {
    static constexpr auto list =
        std::tuple{jsonField<"seq">(&Refusal::seq),
                   jsonField<"change">(&Refusal::change),
                   jsonField<"message">(&Refusal::message),
                   jsonField<"status">(&Refusal::status),
                   jsonField<"isShown">(&Refusal::isShown, JsonPresence::defaulted),
                   jsonField<"isSetAside">(&Refusal::isSetAside, JsonPresence::defaulted)};
};

template <>
struct JsonFields<RefusalDocument> {
    static constexpr auto list = std::tuple{jsonField<"refusals">(&RefusalDocument::refusals)};
};

} // namespace orvane
