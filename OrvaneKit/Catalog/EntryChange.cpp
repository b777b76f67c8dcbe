// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryChange.h"

#include "Support/JsonImpl.h"

namespace orvane {

template <>
struct JsonFields<EntryChange::Create> {
    static constexpr auto list = std::tuple{
        jsonField<"_0">(&EntryChange::Create::request),
        jsonField<"id">(&EntryChange::Create::id),
        jsonField<"workspaceId">(&EntryChange::Create::workspaceId),
    };
};

template <>
struct JsonFields<EntryChange::Update> {
    static constexpr auto list = std::tuple{
        jsonField<"_0">(&EntryChange::Update::request),
        jsonField<"id">(&EntryChange::Update::id),
        jsonField<"workspaceId">(&EntryChange::Update::workspaceId),
        jsonField<"version">(&EntryChange::Update::version),
    };
};

template <>
struct JsonFields<EntryChange::Stop> {
    static constexpr auto list = std::tuple{
        jsonField<"at">(&EntryChange::Stop::at),
        jsonField<"id">(&EntryChange::Stop::id),
        jsonField<"workspaceId">(&EntryChange::Stop::workspaceId),
        jsonField<"version">(&EntryChange::Stop::version),
    };
};

template <>
struct JsonFields<EntryChange::Delete> {
    static constexpr auto list = std::tuple{
        jsonField<"id">(&EntryChange::Delete::id),
        jsonField<"workspaceId">(&EntryChange::Delete::workspaceId),
        jsonField<"version">(&EntryChange::Delete::version),
    };
};

template <>
struct JsonCases<EntryChange::Action> {
    static constexpr std::array<std::string_view, 4> names = {"create", "update", "stop", "delete"};
};

ORVANE_JSON(SplitPart)
ORVANE_JSON(EntryDetails)
ORVANE_JSON(EntryRequest)

namespace {

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};

} // namespace

const std::string &EntryChange::entryId() const
{
    return std::visit([](const auto &change) -> const std::string & { return change.id; }, action);
}

const std::string &EntryChange::workspaceId() const
{
    return std::visit([](const auto &change) -> const std::string & { return change.workspaceId; }, action);
}

std::optional<std::string> EntryChange::version() const
{
    return std::visit(Overloaded{
                          [](const Create &) { return std::optional<std::string>(); },
                          [](const auto &change) { return change.version; },
                      },
                      action);
}

EntryChange EntryChange::withVersion(std::string version) const
{
    EntryChange copy = *this;
    std::visit(Overloaded{
                   [](Create &) {},
                   [&](auto &change) { change.version = std::move(version); },
               },
               copy.action);
    return copy;
}

const EntryRequest *EntryChange::request() const
{
    return std::visit(Overloaded{
                          [](const Create &change) { return &change.request; },
                          [](const Update &change) { return &change.request; },
                          [](const auto &) { return static_cast<const EntryRequest *>(nullptr); },
                      },
                      action);
}

// The action alone is what is written: a member around it would only be noise.

template <>
Result<EntryChange, JsonError> decodeJson<EntryChange>(std::string_view text, JsonReading reading)
{
    return decodeJson<EntryChange::Action>(text, reading).map([](EntryChange::Action &&action) {
        return EntryChange{std::move(action)};
    });
}

template <>
std::string encodeJson<EntryChange>(const EntryChange &change, JsonStyle style)
{
    return encodeJson(change.action, style);
}

} // namespace orvane
