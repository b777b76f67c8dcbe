// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

struct PasskeyRecord {
    std::string id;
    std::string userId;
    /// What the passkey calls itself, as base64url.
    std::string credentialId;
    /// As base64url; see PasskeyPoint.
    std::string publicKey;
    std::int64_t counter = 0;
    std::string name;
    Instant createdAt;
    std::optional<Instant> lastUsedAt;
};

/// The public halves of people's passkeys.
class PasskeyRecords {
public:
    explicit PasskeyRecords(Database &database) : m_database(database) {}

    /// The oldest first.
    std::vector<PasskeyRecord> list(const std::string &userId);
    /// As their owner sees them.
    std::vector<PasskeyResponse> described(const std::string &userId);
    std::optional<PasskeyRecord> byCredential(const std::string &credentialId);
    void add(const PasskeyRecord &passkey);
    void use(const std::string &id, std::int64_t counter, Instant now);
    /// False when the user has none of that id.
    bool remove(const std::string &id, const std::string &userId);

private:
    Database &m_database;
};

} // namespace orvane::server
