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
struct JsonFields<EntryChange::Create> {
    static constexpr auto list = JsonFieldList{
        jsonField<"_0">(&EntryChange::Create::request),
        jsonField<"id">(&EntryChange::Create::id),
        jsonField<"workspaceId">(&EntryChange::Create::workspaceId),
    };
};

template <>
struct JsonFields<EntryChange::Update> {
    static constexpr auto list = JsonFieldList{
        jsonField<"_0">(&EntryChange::Update::request),
        jsonField<"id">(&EntryChange::Update::id),
        jsonField<"workspaceId">(&EntryChange::Update::workspaceId),
        jsonField<"version">(&EntryChange::Update::version),
    };
};

template <>
struct JsonFields<EntryChange::Stop> {
    static constexpr auto list = JsonFieldList{
        jsonField<"at">(&EntryChange::Stop::at),
        jsonField<"id">(&EntryChange::Stop::id),
        jsonField<"workspaceId">(&EntryChange::Stop::workspaceId),
        jsonField<"version">(&EntryChange::Stop::version),
    };
};

template <>
struct JsonFields<EntryChange::Delete> {
    static constexpr auto list = JsonFieldList{
        jsonField<"id">(&EntryChange::Delete::id),
        jsonField<"workspaceId">(&EntryChange::Delete::workspaceId),
        jsonField<"version">(&EntryChange::Delete::version),
    };
};

template <>
struct JsonCases<EntryChange::Action> {
    static constexpr std::array<std::string_view, 4> names = {"create", "update", "stop", "delete"};
};

/// The action alone is what is written: a member around it would only be noise.
template <>
struct JsonAlias<EntryChange> {
    static constexpr auto member = &EntryChange::action;
};

} // namespace orvane
