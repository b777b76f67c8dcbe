// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Problems.h"
#include "Hub/HubTickets.h"

#include <optional>
#include <string>
#include <vector>

/// Who may be at the hub, as the database has it.
namespace orvane::server {

class Database;
struct Call;

/// Where the hub is, and where a connection to it is negotiated.
inline constexpr char hubPath[] = "/api/hubs/sync";
inline constexpr char hubNegotiatePath[] = "/api/hubs/sync/negotiate";

/// About one connection: does its session go on, and which of these workspaces is its user in?
struct HubQuestion {
    HubGuest guest;
    std::vector<std::string> workspaceIds;
};

struct HubStanding {
    bool isSignedIn = false;
    /// Those of the asked ones; none without a session.
    std::vector<std::string> workspaceIds;
};

/// A standing for each question, in one transaction that reads. Nothing when the database failed.
std::optional<std::vector<HubStanding>> hubStandings(Database &database,
                                                     const std::vector<HubQuestion> &questions, Instant now);

/// What a client is answered that asks for a connection.
HttpResponse negotiateHub(Call &call, const std::string &version);

} // namespace orvane::server
