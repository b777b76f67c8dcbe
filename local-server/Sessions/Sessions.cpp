// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sessions/Sessions.h"

#include "Database/SqlTable.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

constexpr std::chrono::days lastingLifetime{60};
constexpr std::chrono::days localLifetime{1};
constexpr std::chrono::minutes touchInterval{1};
/// Lost answers make siblings; nobody loses that many in a row. Those beyond it are known still: that one of
/// them is shown says that somebody else renewed meanwhile.
constexpr std::size_t mostSuccessors = 8;

// The states of a refresh token: not used yet, used last, used before that.
constexpr std::string_view fresh = "fresh";
constexpr std::string_view spent = "spent";
constexpr std::string_view dead = "dead";

const auto sessions = sqlTable<SessionRecord>(
    "sessions", fixedColumn("id", &SessionRecord::id), fixedColumn("user_id", &SessionRecord::userId),
    column("device_name", &SessionRecord::deviceName), fixedColumn("is_local", &SessionRecord::isLocal),
    fixedColumn("is_bound", &SessionRecord::isBound), fixedColumn("created_at", &SessionRecord::createdAt),
    column("last_used_at", &SessionRecord::lastUsedAt), column("expires_at", &SessionRecord::expiresAt));

} // namespace

IssuedRefresh Sessions::start(const std::string &userId, const std::optional<std::string> &deviceName,
                              Kind kind, bool isBound, Instant now)
{
    // Every run of the command signs in to the account on this computer, so what has expired goes as others
    // come.
    m_database.run("DELETE FROM sessions WHERE expires_at <= ?", now);
    const std::string id = newIdentifier();
    sessions.insert(m_database, {id, userId, deviceName, kind == Kind::local, isBound, now, now, now});
    return issue(id, userId, kind, now);
}

IssuedRefresh Sessions::issue(const std::string &sessionId, const std::string &userId, Kind kind, Instant now)
{
    const Instant expiresAt = now + (kind == Kind::local ? localLifetime : lastingLifetime);
    IssuedRefresh issued{sessionId, userId, randomText(32), millisecondsFloor(expiresAt)};
    m_database.run("INSERT INTO refresh_tokens (digest, session_id, state, issued_at, expires_at) "
                   "VALUES (?, ?, ?, ?, ?)",
                   digestText(issued.token), sessionId, fresh, now, issued.expiresAt);
    m_database.run("UPDATE sessions SET last_used_at = ?, expires_at = ? WHERE id = ?", now, issued.expiresAt,
                   sessionId);
    return issued;
}

Sessions::Renewal Sessions::renew(const std::string &token, bool isProved, Instant now)
{
    struct Found {
        std::string sessionId, userId, state;
        bool isLocal, isExpired;
    };
    const std::string digest = digestText(token);
    const auto found = m_database.row(
        "SELECT t.session_id, s.user_id, t.state, s.is_local, t.expires_at FROM refresh_tokens t "
        "JOIN sessions s ON s.id = t.session_id WHERE t.digest = ? AND (s.is_bound = 0 OR ? = 1)",
        [&](const SqlRow &row) {
            return Found{row.text(0), row.text(1), row.text(2), row.boolean(3), row.instant(4) <= now};
        },
        digest, isProved);
    if (!found || found->isExpired)
        return Unknown{};
    if (found->state == dead) {
        m_database.run("DELETE FROM sessions WHERE id = ?", found->sessionId);
        return Ended{found->userId};
    }
    if (found->state == fresh)
        spend(digest, found->sessionId);
    else
        boundSuccessors(found->sessionId);
    m_database.run("DELETE FROM refresh_tokens WHERE session_id = ? AND expires_at <= ?", found->sessionId,
                   now);
    return issue(found->sessionId, found->userId, found->isLocal ? Kind::local : Kind::lasting, now);
}

void Sessions::spend(const std::string &digest, const std::string &sessionId)
{
    m_database.run("UPDATE refresh_tokens SET state = ? WHERE session_id = ? AND state <> ?", dead, sessionId,
                   dead);
    m_database.run("UPDATE refresh_tokens SET state = ? WHERE digest = ?", spent, digest);
}

void Sessions::boundSuccessors(const std::string &sessionId)
{
    const auto successors = m_database.rows(
        "SELECT digest FROM refresh_tokens WHERE session_id = ? AND state = ? ORDER BY issued_at DESC",
        [](const SqlRow &row) { return row.text(0); }, sessionId, fresh);
    for (std::size_t i = mostSuccessors - 1; i < successors.size(); ++i)
        m_database.run("UPDATE refresh_tokens SET state = ? WHERE digest = ?", dead, successors[i]);
}

std::optional<std::string> Sessions::endByToken(const std::string &token, bool isProved)
{
    struct Found {
        std::string sessionId, userId;
    };
    auto found = m_database.row(
        "SELECT s.id, s.user_id FROM refresh_tokens t JOIN sessions s ON s.id = t.session_id "
        "WHERE t.digest = ? AND (s.is_bound = 0 OR ? = 1)",
        [](const SqlRow &row) { return Found{row.text(0), row.text(1)}; }, digestText(token), isProved);
    if (!found)
        return std::nullopt;
    m_database.run("DELETE FROM sessions WHERE id = ?", found->sessionId);
    return std::move(found->userId);
}

std::optional<Instant> Sessions::lastUse(const std::string &sessionId, const std::string &userId,
                                         bool isProved, Instant now)
{
    return m_database.row(
        "SELECT last_used_at FROM sessions WHERE id = ? AND user_id = ? AND expires_at > ? "
        "AND (is_bound = 0 OR ? = 1)",
        [](const SqlRow &row) { return row.instant(0); }, sessionId, userId, now, isProved);
}

bool Sessions::isTouchDue(Instant lastUse, Instant now)
{
    return now - lastUse > touchInterval;
}

void Sessions::touch(const std::string &sessionId, Instant now)
{
    m_database.run("UPDATE sessions SET last_used_at = ? WHERE id = ?", now, sessionId);
}

std::vector<SessionRecord> Sessions::list(const std::string &userId, Instant now)
{
    return sessions.all(m_database, "WHERE user_id = ? AND expires_at > ? ORDER BY last_used_at DESC, id",
                        userId, now);
}

bool Sessions::end(const std::string &sessionId, const std::string &userId)
{
    return m_database.run("DELETE FROM sessions WHERE id = ? AND user_id = ?", sessionId, userId) > 0;
}

void Sessions::endOthers(const std::string &keptSessionId, const std::string &userId)
{
    m_database.run("DELETE FROM sessions WHERE user_id = ? AND id <> ?", userId, keptSessionId);
}

} // namespace orvane::server
