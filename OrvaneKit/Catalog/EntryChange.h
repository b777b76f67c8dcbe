// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryRequest.h"

#include <variant>

namespace orvane {

/// One change of an entry on its way to the server: what the outbox queues. Plain data; any thread.
///
/// As JSON it is an object of one member named after the action, {"stop":{"at":…,"id":…,"workspaceId":…}},
/// with `version` only where there is one. The local store writes it with dates as seconds since 2001.
struct EntryChange {
    struct Create {
        EntryRequest request;
        std::string id; ///< chosen by the client
        std::string workspaceId;

        bool operator==(const Create &) const = default;
    };
    struct Update {
        EntryRequest request;
        std::string id;
        std::string workspaceId;
        std::optional<std::string>
            version; ///< the entry's version that the change was made against, if known

        bool operator==(const Update &) const = default;
    };
    struct Stop {
        Instant at;
        std::string id;
        std::string workspaceId;
        std::optional<std::string> version;

        bool operator==(const Stop &) const = default;
    };
    struct Delete {
        std::string id;
        std::string workspaceId;
        std::optional<std::string> version;

        bool operator==(const Delete &) const = default;
    };
    using Action = std::variant<Create, Update, Stop, Delete>;

    Action action;

    bool operator==(const EntryChange &) const = default;

    const std::string &entryId() const;
    const std::string &workspaceId() const;
    /// Nothing for a creation, and for a change made before the entry had a version.
    std::optional<std::string> version() const;
    /// The same change made against this version; a creation stays as it is.
    EntryChange withVersion(std::string version) const;
    /// The contents that the change gives the entry; null for a stop or a delete. Valid as long as the
    /// change.
    const EntryRequest *request() const;
};

template <>
Result<EntryChange, JsonError> decodeJson<EntryChange>(std::string_view text, JsonReading reading);
template <>
std::string encodeJson<EntryChange>(const EntryChange &change, JsonStyle style);

} // namespace orvane
