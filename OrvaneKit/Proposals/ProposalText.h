// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

class Catalog;
class UserTime;

/// One thing of an entry that a proposal changes, in words: "Project", "No project", "Website › Docs".
struct ProposedField {
    std::string name;
    std::string before;
    std::string after;

    bool operator==(const ProposedField &) const = default;
};

/// A proposal in words, for whoever draws it. Texts that an agent or a user wrote are as they wrote them.
/// Plain data, made on the main thread, like the catalog.
struct ProposalText {
    /// "Codex proposes “Dependency updates”", "… to change “Stand-up”", "… to delete “Stand-up”"
    std::string title;
    /// "New entry", "Change" or "Delete"
    std::string action;
    /// The entry, as it would be made or as it stood when the change was proposed.
    std::string description; ///< empty when it has none
    std::string day;         ///< "Yesterday"
    std::string times;       ///< "08:10 – 08:46", "08:10 – now"
    std::string length;      ///< "36m"; empty while it runs
    std::string place;       ///< "Website › Docs", "Website 60%, Maintenance 40%", "No project"
    std::string tags;        ///< "#chores #deps"; empty without any
    std::string billing;     ///< "Billable" or "Not billable"
    /// What would be otherwise about it; empty for a new entry and one to delete.
    std::vector<ProposedField> fields;
    /// Why, in the agent's words; may be empty.
    std::string note;

    bool operator==(const ProposalText &) const = default;

    static ProposalText of(const AgentProposalResponse &proposal, const Catalog &catalog,
                           const UserTime &time);
};

/// The entry that a proposal changes or deletes, as it stood when that was proposed; nothing for a new one.
std::optional<TimeEntryResponse> entryBefore(const AgentProposalResponse &proposal);

/// The entry that a proposal is about, by its description: "“Stand-up”", "an entry without a description".
std::string proposedEntry(const AgentProposalResponse &proposal);

} // namespace orvane
