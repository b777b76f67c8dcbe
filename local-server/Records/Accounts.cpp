// SPDX-License-Identifier: GPL-3.0-or-later
#include "Records/Accounts.h"

#include "Database/Database.h"
#include "Records/NameText.h"
#include "Records/Workspaces.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

AccountRecord accountFrom(const SqlRow &row)
{
    return {row.text(0), row.text(1), row.boolean(2),      row.optionalText(3),
            row.text(4), row.text(5), row.optionalText(6), row.boolean(7)};
}

#define ORVANE_ACCOUNT_COLUMNS                                                                               \
    "SELECT id, email, email_confirmed, password_hash, full_name, time_zone, default_workspace_id, "         \
    "is_local FROM users "

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
    return m_database.row(ORVANE_ACCOUNT_COLUMNS "WHERE id = ?", accountFrom, userId);
}

std::optional<AccountRecord> Accounts::byEmail(const std::string &email)
{
    return m_database.row(ORVANE_ACCOUNT_COLUMNS "WHERE email_key = ?", accountFrom, nameKey(email));
}

std::optional<AccountRecord> Accounts::local()
{
    return m_database.row(ORVANE_ACCOUNT_COLUMNS "WHERE is_local = 1", accountFrom);
}

std::string Accounts::create(const AccountRecord &account, Instant now)
{
    const std::string id = newIdentifier();
    m_database.run("INSERT INTO users (id, email, email_key, email_confirmed, password_hash, full_name, "
                   "time_zone, is_local, created_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
                   id, account.email, nameKey(account.email), account.emailConfirmed, account.passwordHash,
                   account.fullName, account.timeZone, account.isLocal, millisecondsSinceEpoch(now));
    const PreferencesResponse preferences = defaultPreferences();
    m_database.run("INSERT INTO preferences (user_id, week_start, date_format, time_format, duration_format, "
                   "pomodoro_enabled, pomodoro_minutes, pomodoro_break_minutes, pomodoro_auto_stop) "
                   "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
                   id, preferences.weekStart, preferences.dateFormat, preferences.timeFormat,
                   preferences.durationFormat, preferences.pomodoroEnabled, preferences.pomodoroMinutes,
                   preferences.pomodoroBreakMinutes, preferences.pomodoroAutoStop);
    Workspaces workspaces(m_database);
    const std::string name = "My workspace";
    const std::string organization = workspaces.createOrganization(name, id);
    setDefaultWorkspace(id, workspaces.create(name, organization, id, now));
    return id;
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
    return m_database
        .row(
            "SELECT week_start, date_format, time_format, duration_format, pomodoro_enabled, "
            "pomodoro_minutes, pomodoro_break_minutes, pomodoro_auto_stop FROM preferences WHERE user_id = ?",
            [](const SqlRow &row) {
                PreferencesResponse out;
                out.weekStart = row.integer(0);
                out.dateFormat = row.text(1);
                out.timeFormat = row.text(2);
                out.durationFormat = row.text(3);
                out.pomodoroEnabled = row.boolean(4);
                out.pomodoroMinutes = row.integer(5);
                out.pomodoroBreakMinutes = row.integer(6);
                out.pomodoroAutoStop = row.boolean(7);
                return out;
            },
            userId)
        .value_or(defaultPreferences());
}

void Accounts::setPreferences(const std::string &userId, const PreferencesResponse &preferences)
{
    m_database.run("UPDATE preferences SET week_start = ?, date_format = ?, time_format = ?, "
                   "duration_format = ?, pomodoro_enabled = ?, pomodoro_minutes = ?, "
                   "pomodoro_break_minutes = ?, pomodoro_auto_stop = ? WHERE user_id = ?",
                   preferences.weekStart, preferences.dateFormat, preferences.timeFormat,
                   preferences.durationFormat, preferences.pomodoroEnabled, preferences.pomodoroMinutes,
                   preferences.pomodoroBreakMinutes, preferences.pomodoroAutoStop, userId);
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
