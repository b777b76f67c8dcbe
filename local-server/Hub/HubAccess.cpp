// SPDX-License-Identifier: GPL-3.0-or-later
#include "Hub/HubAccess.h"

#include "Requests/Call.h"
#include "Support/JsonImpl.h"

#include <algorithm>

namespace orvane::server {

/// What the hub can be reached by, in the protocol's own words.
struct HubTransport {
    std::string transport = "WebSockets";
    std::vector<std::string> transferFormats{"Text"};
};

struct HubNegotiation {
    std::int64_t negotiateVersion = 1;
    std::string connectionId;
    std::string connectionToken;
    std::vector<HubTransport> availableTransports{HubTransport{}};
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::HubTransport> {
    static constexpr auto list =
        JsonFieldList{jsonField<"transport">(&server::HubTransport::transport),
                      jsonField<"transferFormats">(&server::HubTransport::transferFormats)};
};

template <>
struct JsonFields<server::HubNegotiation> {
    static constexpr auto list =
        JsonFieldList{jsonField<"negotiateVersion">(&server::HubNegotiation::negotiateVersion),
                      jsonField<"connectionId">(&server::HubNegotiation::connectionId),
                      jsonField<"connectionToken">(&server::HubNegotiation::connectionToken),
                      jsonField<"availableTransports">(&server::HubNegotiation::availableTransports)};
};

} // namespace orvane

ORVANE_JSON(orvane::server::HubNegotiation)

namespace orvane::server {

namespace {

HubStanding standingOf(Database &database, const HubQuestion &question, Instant now)
{
    const HubGuest &guest = question.guest;
    HubStanding standing;
    Workspaces workspaces(database);
    standing.isSignedIn =
        Sessions(database).lastUse(guest.sessionId, guest.userId, guest.isProved, now).has_value();
    if (standing.isSignedIn)
        std::ranges::copy_if(
            question.workspaceIds, std::back_inserter(standing.workspaceIds),
            [&](const std::string &id) { return workspaces.role(id, guest.userId).has_value(); });
    return standing;
}

} // namespace

std::optional<std::vector<HubStanding>> hubStandings(Database &database,
                                                     const std::vector<HubQuestion> &questions, Instant now)
{
    std::vector<HubStanding> standings;
    standings.reserve(questions.size());
    database.begin(Lane::reading);
    for (const HubQuestion &question : questions)
        standings.push_back(standingOf(database, question, now));
    return database.commit() ? std::optional(std::move(standings)) : std::nullopt;
}

HttpResponse negotiateHub(Call &call, const std::string &version)
{
    // Before it, one text was both a connection's name and its secret.
    if (version != "1")
        return problem(400, "The request was not understood.", "negotiateVersion must be 1.");
    auto ticket = call.services.hubTickets.issue(call.caller.userId, call.caller.sessionId, call.now);
    HubNegotiation negotiation;
    negotiation.connectionId = std::move(ticket.connectionId);
    negotiation.connectionToken = std::move(ticket.secret);
    return jsonAnswer(200, negotiation);
}

} // namespace orvane::server
