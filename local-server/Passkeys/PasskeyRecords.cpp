// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyRecords.h"

#include "Database/SqlTable.h"

namespace orvane::server {

namespace {

const auto passkeyTable = sqlTable<PasskeyRecord>(
    "passkeys", fixedColumn("id", &PasskeyRecord::id), fixedColumn("user_id", &PasskeyRecord::userId),
    fixedColumn("credential_id", &PasskeyRecord::credentialId),
    fixedColumn("public_key", &PasskeyRecord::publicKey), column("counter", &PasskeyRecord::counter),
    column("name", &PasskeyRecord::name), fixedColumn("created_at", &PasskeyRecord::createdAt),
    column("last_used_at", &PasskeyRecord::lastUsedAt));

} // namespace

std::vector<PasskeyRecord> PasskeyRecords::list(const std::string &userId)
{
    return passkeyTable.all(m_database, "WHERE user_id = ? ORDER BY created_at, id", userId);
}

std::vector<PasskeyResponse> PasskeyRecords::described(const std::string &userId)
{
    std::vector<PasskeyResponse> passkeys;
    for (PasskeyRecord &record : list(userId))
        passkeys.push_back({.id = std::move(record.id),
                            .name = std::move(record.name),
                            .createdAt = record.createdAt,
                            .lastUsedAt = record.lastUsedAt});
    return passkeys;
}

std::optional<PasskeyRecord> PasskeyRecords::byCredential(const std::string &credentialId)
{
    return passkeyTable.first(m_database, "WHERE credential_id = ?", credentialId);
}

void PasskeyRecords::add(const PasskeyRecord &passkey)
{
    passkeyTable.insert(m_database, passkey);
}

void PasskeyRecords::use(const std::string &id, std::int64_t counter, Instant now)
{
    m_database.run("UPDATE passkeys SET counter = ?, last_used_at = ? WHERE id = ?", counter, now, id);
}

bool PasskeyRecords::remove(const std::string &id, const std::string &userId)
{
    return m_database.run("DELETE FROM passkeys WHERE id = ? AND user_id = ?", id, userId) > 0;
}

} // namespace orvane::server
