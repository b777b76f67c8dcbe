// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvane::server {

class Database;

struct SessionRecord {
    std::string id;
    std::string userId;
    std::optional<std::string> deviceName;
    /// Of the account on this computer.
    bool isLocal = false;
    /// Its tokens are good on proved requests only.
    bool isBound = false;
    Instant createdAt;
    Instant lastUsedAt;
    Instant expiresAt;
};

/// A refresh token as handed out: the only place where its text exists on this side.
struct IssuedRefresh {
    std::string sessionId;
    std::string userId;
    std::string token;
    Instant expiresAt;
};

/// Sessions and their refresh tokens. The table holds digests only.
///
/// Using a token spends it and brings a successor. The token spent last stays good until a successor of it is
/// used, since its answer may have been lost on the way; a token spent before that one, or superseded by many
/// later successors, is a stolen copy (or the theft of one), so showing it ends the session. Digests are kept
/// until their token expires or the session ends, so that each is recognised.
class Sessions {
public:
    explicit Sessions(Database &database) : m_database(database) {}

    /// A session of the account on this computer lives for a day, others for sixty since their last use.
    enum class Kind { lasting, local };
    /// A bound session's tokens are good on proved requests only.
    IssuedRefresh start(const std::string &userId, const std::optional<std::string> &deviceName, Kind kind,
                        bool isBound, Instant now);

    struct Unknown {};
    struct Ended {
        std::string userId;
    };
    using Renewal = std::variant<IssuedRefresh, Unknown, Ended>;
    /// A token of a bound session that comes without a proof is as good as unknown, and changes nothing.
    Renewal renew(const std::string &token, bool isProved, Instant now);

    /// Ends the session that a token of it, fresh or spent, stands for. Answers whose it was.
    std::optional<std::string> endByToken(const std::string &token, bool isProved);

    /// When a session that goes on was used last; kept to a minute, so `touch` is due when that is over.
    std::optional<Instant> lastUse(const std::string &sessionId, const std::string &userId, bool isProved,
                                   Instant now);
    static bool isTouchDue(Instant lastUse, Instant now);
    void touch(const std::string &sessionId, Instant now);
    std::vector<SessionRecord> list(const std::string &userId, Instant now);
    /// False when the user has no such session.
    bool end(const std::string &sessionId, const std::string &userId);
    void endOthers(const std::string &keptSessionId, const std::string &userId);

private:
    IssuedRefresh issue(const std::string &sessionId, const std::string &userId, Kind kind, Instant now);
    void spend(const std::string &digest, const std::string &sessionId);
    void boundSuccessors(const std::string &sessionId);

    Database &m_database;
};

} // namespace orvane::server
