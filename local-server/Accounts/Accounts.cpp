// SPDX-License-Identifier: GPL-3.0-or-later
#include "Accounts/Accounts.h"

#include "Database/SqlTable.h"
#include "Names/NameText.h"
#include "Security/RandomText.h"
#include "Workspaces/Workspaces.h"

namespace orvane::server {

namespace {

const auto users = sqlTable<AccountRecord>(
    "users", fixedColumn("id", &AccountRecord::id), column("email", &AccountRecord::email),
    derivedColumn("email_key", [](const AccountRecord &account) { return nameKey(account.email); }),
    column("email_confirmed", &AccountRecord::emailConfirmed),
    column("password_hash", &AccountRecord::passwordHash), column("full_name", &AccountRecord::fullName),
    column("time_zone", &AccountRecord::timeZone),
    column("default_workspace_id", &AccountRecord::defaultWorkspaceId),
    fixedColumn("is_local", &AccountRecord::isLocal), fixedColumn("created_at", &AccountRecord::createdAt));

struct KeptPreferences {
    std::string userId;
    PreferencesResponse preferences;
};

template <class T>
constexpr auto preference(T PreferencesResponse::*member)
{
    return [member](auto &kept) -> auto & { return kept.preferences.*member; };
}

using Preferences = PreferencesResponse;
const auto keptPreferences = sqlTable<KeptPreferences>(
    "preferences", fixedColumn("user_id", &KeptPreferences::userId),
    column("week_start", preference(&Preferences::weekStart)),
    column("date_format", preference(&Preferences::dateFormat)),
    column("time_format", preference(&Preferences::timeFormat)),
    column("duration_format", preference(&Preferences::durationFormat)),
    column("pomodoro_enabled", preference(&Preferences::pomodoroEnabled)),
    column("pomodoro_minutes", preference(&Preferences::pomodoroMinutes)),
    column("pomodoro_break_minutes", preference(&Preferences::pomodoroBreakMinutes)),
    column("pomodoro_auto_stop", preference(&Preferences::pomodoroAutoStop)));

PreferencesResponse defaultPreferences()
{
    PreferencesResponse preferences;
    preferences.weekStart = 1;
    preferences.dateFormat = "yyyy-MM-dd";
    preferences.timeFormat = "24h";
    preferences.durationFormat = "hms";
    preferences.pomodoroMinutes = 25;
    preferences.pomodoroBreakMinutes = 5;
    return preferences;
}

} // namespace

std::optional<AccountRecord> Accounts::byId(const std::string &userId)
{
    return users.first(m_database, "WHERE id = ?", userId);
}

std::optional<AccountRecord> Accounts::byEmail(const std::string &email)
{
    return users.first(m_database, "WHERE email_key = ?", nameKey(email));
}

std::optional<AccountRecord> Accounts::local()
{
    return users.first(m_database, "WHERE is_local = 1");
}

std::string Accounts::create(AccountRecord account, Instant now)
{
    account.id = newIdentifier();
    account.createdAt = now;
    users.insert(m_database, account);
    keptPreferences.insert(m_database, {account.id, defaultPreferences()});
    Workspaces workspaces(m_database);
    const std::string name = "My workspace";
    const std::string organization = workspaces.createOrganization(name, account.id);
    setDefaultWorkspace(account.id, workspaces.create(name, organization, account.id, now));
    return account.id;
}

void Accounts::remove(const std::string &userId)
{
    m_database.run("DELETE FROM users WHERE id = ?", userId);
}

void Accounts::setPassword(const std::string &userId, const std::string &hash)
{
    m_database.run("UPDATE users SET password_hash = ? WHERE id = ?", hash, userId);
}

void Accounts::setProfile(const std::string &userId, const std::string &fullName, const std::string &timeZone)
{
    m_database.run("UPDATE users SET full_name = ?, time_zone = ? WHERE id = ?", fullName, timeZone, userId);
}

void Accounts::setDefaultWorkspace(const std::string &userId, const std::string &workspaceId)
{
    m_database.run("UPDATE users SET default_workspace_id = ? WHERE id = ?", workspaceId, userId);
}

PreferencesResponse Accounts::preferences(const std::string &userId)
{
    auto kept = keptPreferences.first(m_database, "WHERE user_id = ?", userId);
    return kept ? std::move(kept->preferences) : defaultPreferences();
}

void Accounts::setPreferences(const std::string &userId, const PreferencesResponse &preferences)
{
    keptPreferences.update(m_database, {userId, preferences});
}

std::vector<std::string> Accounts::firstSteps(const std::string &userId)
{
    return m_database.rows(
        "SELECT step FROM first_steps WHERE user_id = ? ORDER BY position",
        [](const SqlRow &row) { return row.text(0); }, userId);
}

void Accounts::setFirstSteps(const std::string &userId, const std::vector<std::string> &steps)
{
    m_database.run("DELETE FROM first_steps WHERE user_id = ?", userId);
    for (std::size_t i = 0; i < steps.size(); ++i)
        m_database.run("INSERT INTO first_steps (user_id, position, step) VALUES (?, ?, ?)", userId,
                       static_cast<std::int64_t>(i), steps[i]);
}

} // namespace orvane::server
