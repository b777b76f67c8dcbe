// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

class Database;

struct AccountRecord {
    std::string id;
    std::string email;
    bool emailConfirmed = false;
    /// The account on this computer has none.
    std::optional<std::string> passwordHash;
    std::string fullName;
    std::string timeZone;
    std::optional<std::string> defaultWorkspaceId;
    bool isLocal = false;
    Instant createdAt;
};

/// People and what belongs to each of them alone.
class Accounts {
public:
    explicit Accounts(Database &database) : m_database(database) {}

    std::optional<AccountRecord> byId(const std::string &userId);
    std::optional<AccountRecord> byEmail(const std::string &email);
    /// The account that the owner of this server's process has without a password.
    std::optional<AccountRecord> local();
    /// Takes the record but for its identifier, workspace and time; makes the account's first workspace, its
    /// default one. Answers the identifier.
    std::string create(AccountRecord account, Instant now);

    /// With all that is the account's alone; its entries too, wherever they are.
    void remove(const std::string &userId);
    void setPassword(const std::string &userId, const std::string &hash);
    void setProfile(const std::string &userId, const std::string &fullName, const std::string &timeZone);
    void setDefaultWorkspace(const std::string &userId, const std::string &workspaceId);
    PreferencesResponse preferences(const std::string &userId);
    void setPreferences(const std::string &userId, const PreferencesResponse &preferences);
    std::vector<std::string> firstSteps(const std::string &userId);
    void setFirstSteps(const std::string &userId, const std::vector<std::string> &steps);

private:
    Database &m_database;
};

struct Call;
/// Who the caller is, to themselves; nothing when the account is gone.
std::optional<MeResponse> describeCaller(Call &call);

} // namespace orvane::server
