// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/LocalStore.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Json.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// What one change made of an entry, as it was shown: nothing before is a creation, nothing after a deletion.
struct EntryTurn {
    std::optional<TimeEntryResponse> before;
    std::optional<TimeEntryResponse> after;

    const std::string &id() const { return before ? before->id : after->id; }
    bool operator==(const EntryTurn &) const = default;
};

/// One action of the user, in the order in which its changes were made.
struct EntryStep {
    std::vector<EntryTurn> turns;
    /// The agent's proposal whose applying it was: the server takes that back as a whole.
    std::optional<std::string> proposalId = {};
    bool operator==(const EntryStep &) const = default;
};

/// Entries that were made again under other identifiers: from, to.
using RenamedEntries = std::vector<std::pair<std::string, std::string>>;

/// Lets a step follow entries that were made again.
void follow(EntryStep &step, const RenamedEntries &renamed);

/// The document that keeps the steps of a workspace, the latest last.
struct HistoryDocument {
    std::vector<EntryStep> steps;
    static std::string key(const std::string &workspaceId) { return "history:" + workspaceId; }
};

/// The user's last actions on entries, kept in the store so that another process can take them back. Reading
/// and writing are one transaction each, so processes that act at once lose none. A value; main thread.
class EntryHistory {
public:
    static constexpr std::size_t keptSteps = 20;

    EntryHistory(std::shared_ptr<LocalStore> store, std::string workspaceId);

    /// Adds an action; one without changes is none. Earlier ones follow entries that it made again.
    Task<StoreStatus> add(EntryStep step, RenamedEntries renamed = {});
    /// The last one, if any.
    Task<std::optional<EntryStep>> last() const;
    /// Forgets a step: the last one that is like this. What took it back made entries anew under other
    /// identifiers: the other steps follow them.
    Task<StoreStatus> forget(EntryStep step, RenamedEntries renamed);
    /// Puts another step in the place of the last one that is like this; without turns it is forgotten.
    Task<StoreStatus> replace(EntryStep step, EntryStep with);

private:
    std::shared_ptr<LocalStore> m_store;
    std::string m_key;
};

template <>
struct JsonFields<EntryTurn> {
    static constexpr auto list =
        std::tuple{jsonField<"before">(&EntryTurn::before), jsonField<"after">(&EntryTurn::after)};
};
template <>
struct JsonFields<EntryStep> {
    static constexpr auto list =
        std::tuple{jsonField<"turns">(&EntryStep::turns), jsonField<"proposalId">(&EntryStep::proposalId)};
};
template <>
struct JsonFields<HistoryDocument> {
    static constexpr auto list = std::tuple{jsonField<"steps">(&HistoryDocument::steps)};
};

} // namespace orvane
