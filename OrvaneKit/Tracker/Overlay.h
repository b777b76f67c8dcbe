// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

/// How the changes that wait in the outbox show on top of what the server last said. Pure functions of
/// values.
namespace orvane {

/// Entries newest start first, no identifier twice; `running` is one of them, the latest without a stop.
struct ShownEntries {
    std::vector<TimeEntryResponse> entries;
    std::optional<TimeEntryResponse> running;

    bool operator==(const ShownEntries &) const = default;
};

/// Applies the changes in order. A create adds its entry (or, when the server has it already, changes
/// nothing); if it runs, whatever ran before ends at its start, as it will on the server. An update, stop or
/// delete of an entry that is not there changes nothing. An unsent create followed by its delete leaves
/// nothing. Changes of other workspaces are passed over, except that they may concern the running entry,
/// which is the user's in whichever workspace it runs.
ShownEntries overlay(std::vector<TimeEntryResponse> serverEntries,
                     std::optional<TimeEntryResponse> serverRunning, std::span<const EntryChange> changes,
                     const std::string &workspaceId);

/// By start, then identifier, both falling; quick when they are in order already, be it the rising one.
void sortNewestFirst(std::vector<TimeEntryResponse> &entries);

} // namespace orvane
