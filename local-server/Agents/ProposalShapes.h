// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/UserZone.h"
#include "OrvaneAPI/Schemas.h"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What agents say and hear about proposals. Entries to propose are said as the API has them; changes are
/// said in fewer words: what is given is set, and everything else stays.
namespace orvane::server {

struct EntriesToPropose {
    std::optional<std::string> workspaceId;
    std::vector<ProposedEntryRequest> entries;
    std::optional<std::string> note;
};

struct ChangeToPropose {
    std::optional<std::string> reference;
    std::string entryId;
    std::string version;
    std::optional<bool> remove;
    std::optional<std::string> description;
    std::optional<ProjectChoice> project;
    std::optional<std::vector<std::string>> tagIds;
    std::optional<bool> isBillable;
    std::optional<Instant> start;
    std::optional<Instant> stop;
    std::optional<std::vector<ProposedPartRequest>> parts;
    std::optional<std::string> reason;
};

struct ChangesToPropose {
    std::optional<std::string> workspaceId;
    std::vector<ChangeToPropose> changes;
    std::optional<std::string> note;
};

/// What became of one item: it waits under `proposalId`, or was refused.
struct ToolOutcome {
    std::int64_t index = 0;
    std::optional<std::string> reference;
    std::optional<std::string> proposalId;
    std::optional<ProposalRefusalResponse> refusal;
};

struct ToolOutcomes {
    std::vector<ToolOutcome> outcomes;
    std::int64_t waiting = 0;
    std::int64_t refused = 0;
};

struct ProposalsToWithdraw {
    std::optional<std::string> workspaceId;
    std::vector<std::string> ids;
};

struct WithdrawnProposals {
    std::vector<std::string> withdrawnIds;
    std::optional<std::string> notice;
};

enum class ProposalStatus { pending, applied, dismissed, handled, withdrawn };

struct ProposalQuestion {
    std::optional<std::string> workspaceId;
    std::optional<ProposalStatus> status;
};

struct OwnProposal {
    std::string id;
    std::string action;
    std::string status;
    ZonedTime proposedAt;
    std::optional<ZonedTime> answeredAt;
    std::optional<std::string> entryId;
    std::optional<std::string> description;
    std::optional<ZonedTime> start;
    std::optional<ZonedTime> stop;
    std::optional<std::string> note;
};

struct OwnProposals {
    std::vector<OwnProposal> proposals;
    std::optional<std::string> notice;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::EntriesToPropose> {
    static constexpr auto list =
        JsonFieldList{jsonField<"workspaceId">(&server::EntriesToPropose::workspaceId),
                      jsonField<"entries">(&server::EntriesToPropose::entries),
                      jsonField<"note">(&server::EntriesToPropose::note)};
};

template <>
struct JsonFields<server::ChangeToPropose> {
    static constexpr auto list =
        JsonFieldList{jsonField<"reference">(&server::ChangeToPropose::reference),
                      jsonField<"entryId">(&server::ChangeToPropose::entryId),
                      jsonField<"version">(&server::ChangeToPropose::version),
                      jsonField<"remove">(&server::ChangeToPropose::remove),
                      jsonField<"description">(&server::ChangeToPropose::description),
                      jsonField<"project">(&server::ChangeToPropose::project),
                      jsonField<"tagIds">(&server::ChangeToPropose::tagIds),
                      jsonField<"isBillable">(&server::ChangeToPropose::isBillable),
                      jsonField<"start">(&server::ChangeToPropose::start),
                      jsonField<"stop">(&server::ChangeToPropose::stop),
                      jsonField<"parts">(&server::ChangeToPropose::parts),
                      jsonField<"reason">(&server::ChangeToPropose::reason)};
};

template <>
struct JsonFields<server::ChangesToPropose> {
    static constexpr auto list =
        JsonFieldList{jsonField<"workspaceId">(&server::ChangesToPropose::workspaceId),
                      jsonField<"changes">(&server::ChangesToPropose::changes),
                      jsonField<"note">(&server::ChangesToPropose::note)};
};

template <>
struct JsonFields<server::ToolOutcome> {
    static constexpr auto list = JsonFieldList{jsonField<"index">(&server::ToolOutcome::index),
                                               jsonField<"reference">(&server::ToolOutcome::reference),
                                               jsonField<"proposalId">(&server::ToolOutcome::proposalId),
                                               jsonField<"refusal">(&server::ToolOutcome::refusal)};
};

template <>
struct JsonFields<server::ToolOutcomes> {
    static constexpr auto list = JsonFieldList{jsonField<"outcomes">(&server::ToolOutcomes::outcomes),
                                               jsonField<"waiting">(&server::ToolOutcomes::waiting),
                                               jsonField<"refused">(&server::ToolOutcomes::refused)};
};

template <>
struct JsonFields<server::ProposalsToWithdraw> {
    static constexpr auto list =
        JsonFieldList{jsonField<"workspaceId">(&server::ProposalsToWithdraw::workspaceId),
                      jsonField<"ids">(&server::ProposalsToWithdraw::ids)};
};

template <>
struct JsonFields<server::WithdrawnProposals> {
    static constexpr auto list =
        JsonFieldList{jsonField<"withdrawnIds">(&server::WithdrawnProposals::withdrawnIds),
                      jsonField<"notice">(&server::WithdrawnProposals::notice)};
};

template <>
struct JsonEnum<server::ProposalStatus> {
    static constexpr std::array<std::pair<server::ProposalStatus, std::string_view>, 5> list{
        {{server::ProposalStatus::pending, "pending"},
         {server::ProposalStatus::applied, "applied"},
         {server::ProposalStatus::dismissed, "dismissed"},
         {server::ProposalStatus::handled, "handled"},
         {server::ProposalStatus::withdrawn, "withdrawn"}}};
};

template <>
struct JsonFields<server::ProposalQuestion> {
    static constexpr auto list =
        JsonFieldList{jsonField<"workspaceId">(&server::ProposalQuestion::workspaceId),
                      jsonField<"status">(&server::ProposalQuestion::status)};
};

template <>
struct JsonFields<server::OwnProposal> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&server::OwnProposal::id),
                                               jsonField<"action">(&server::OwnProposal::action),
                                               jsonField<"status">(&server::OwnProposal::status),
                                               jsonField<"proposedAt">(&server::OwnProposal::proposedAt),
                                               jsonField<"answeredAt">(&server::OwnProposal::answeredAt),
                                               jsonField<"entryId">(&server::OwnProposal::entryId),
                                               jsonField<"description">(&server::OwnProposal::description),
                                               jsonField<"start">(&server::OwnProposal::start),
                                               jsonField<"stop">(&server::OwnProposal::stop),
                                               jsonField<"note">(&server::OwnProposal::note)};
};

template <>
struct JsonFields<server::OwnProposals> {
    static constexpr auto list = JsonFieldList{jsonField<"proposals">(&server::OwnProposals::proposals),
                                               jsonField<"notice">(&server::OwnProposals::notice)};
};

} // namespace orvane
