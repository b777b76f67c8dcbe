// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryChange.h"

#include "Support/JsonImpl.h"

namespace orvane {

ORVANE_JSON(SplitPart)
ORVANE_JSON(EntryDetails)
ORVANE_JSON(EntryRequest)
ORVANE_JSON(EntryChange)

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

} // namespace orvane
