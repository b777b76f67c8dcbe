// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentAccess.h"
#include "Support/Instant.h"
#include "Support/Result.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

/// An agent's installation, as it described itself when it registered. Nothing of it has been checked.
struct AgentClient {
    std::string id;
    std::string name;
    std::optional<std::string> uri;
    /// Where a browser may be sent back to it.
    std::vector<std::string> redirectUris;
    Instant createdAt;
};

/// What a person allowed an agent.
struct AgentGrant {
    std::string id;
    std::string clientId;
    std::string clientName;
    bool mayPropose = false;
    Instant grantedAt;
    std::optional<Instant> lastUsedAt;
    /// Those that the person is in still.
    std::vector<std::string> workspaceIds;
};

/// The only place where their texts exist on this side.
struct AgentTokens {
    std::string userId;
    std::string access;
    std::string refresh;
    bool mayPropose = false;
};

/// Registered agents, what people allowed them, and the codes and tokens that come of it. The tables hold
/// digests of codes and tokens only.
///
/// An agent's tokens are of a kind of their own: random texts that are looked up here, while a session's
/// access token is signed and never kept. So neither opens what the other does.
///
/// Using a refresh token spends it and brings a successor. The one spent last stays good until a successor of
/// it is used, since its answer may have been lost on the way; showing one that was spent before ends the
/// grant. Showing a code twice ends it too.
class AgentGrants {
public:
    static constexpr std::chrono::seconds codeLifetime{60};
    static constexpr std::chrono::hours accessLifetime{1};

    explicit AgentGrants(Database &database) : m_database(database) {}

    /// Takes the client but for its identifier and time. Answers the identifier; nothing when there are too
    /// many that somebody uses.
    std::optional<std::string> addClient(AgentClient client, Instant now);
    std::optional<AgentClient> client(const std::string &id);

    /// A person's yes, and all that the code for it is bound to.
    struct Approval {
        std::string userId;
        std::string clientId;
        std::string redirectUri;
        /// The base64url SHA-256 of the verifier that the exchange will bring.
        std::string challenge;
        bool mayPropose = false;
        std::vector<std::string> workspaceIds;
    };
    /// Answers the code. The grant counts once that has been exchanged.
    std::string approve(const Approval &approval, Instant now);

    /// Whose grant ended for it; empty when none did.
    struct Refused {
        std::string endedOf;
    };
    using Tokens = Result<AgentTokens, Refused>;
    struct CodeExchange {
        std::string code;
        std::string clientId;
        std::string redirectUri;
        std::string verifier;
    };
    /// A code is spent by any attempt on it. What the person allowed the same agent before is over.
    Tokens exchange(const CodeExchange &exchange, Instant now);
    Tokens renew(const std::string &refreshToken, const std::string &clientId, Instant now);
    /// Ends the grant that a token of it, of whichever kind, stands for. Answers whose it was.
    std::optional<std::string> endByToken(const std::string &token, const std::string &clientId);

    struct Admission {
        AgentAccess access;
        /// Whether `touch` is due; the last use is kept to a minute.
        bool isTouchDue = false;
    };
    /// What an access token opens; nothing for any other text.
    std::optional<Admission> admit(const std::string &token, Instant now);
    void touch(const std::string &grantId, Instant now);

    /// What the person's agents can use now, the latest first.
    std::vector<AgentGrant> list(const std::string &userId, Instant now);
    /// False when the person has no such grant.
    bool end(const std::string &grantId, const std::string &userId);
    void endAll(const std::string &userId);

private:
    std::string issue(const std::string &grantId, std::string_view kind, Instant now, Instant expiresAt);
    AgentTokens issueBoth(const std::string &grantId, Instant now);
    std::vector<std::string> workspacesOf(const std::string &grantId, const std::string &userId);
    std::string ownerOf(const std::string &grantId);
    Refused endGrant(const std::string &grantId);
    bool makeRoomForClient(Instant now);
    void tidy(Instant now);

    Database &m_database;
};

} // namespace orvane::server
