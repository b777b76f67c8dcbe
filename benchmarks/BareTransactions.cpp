// SPDX-License-Identifier: GPL-3.0-or-later
// The measure for the server's load: the same statements on the same rows, without a server. Lists a day and
// changes an entry of it, over and over, in turn, one durable transaction each: BareTransactions DATABASE
// SECONDS, on a copy of a database that ServerLoad has filled.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sqlite3.h>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Values = std::vector<std::string>;

class Bare {
public:
    explicit Bare(const char *path)
    {
        if (sqlite3_open(path, &m_database) != SQLITE_OK)
            giveUp();
        for (const char *setting : {"PRAGMA journal_mode = WAL", "PRAGMA synchronous = FULL"})
            read(setting, {});
    }
    Bare(const Bare &) = delete;
    Bare &operator=(const Bare &) = delete;
    ~Bare()
    {
        for (const auto &[sql, statement] : m_statements)
            sqlite3_finalize(statement);
        sqlite3_close(m_database);
    }

    /// All values of the answer's rows, one after the other.
    Values read(const char *sql, const Values &values)
    {
        sqlite3_stmt *statement = prepared(sql);
        for (std::size_t i = 0; i < values.size(); ++i)
            sqlite3_bind_text(statement, static_cast<int>(i) + 1, values[i].c_str(), -1, SQLITE_STATIC);
        Values found;
        int step = sqlite3_step(statement);
        for (; step == SQLITE_ROW; step = sqlite3_step(statement)) {
            for (int column = 0; column < sqlite3_column_count(statement); ++column) {
                const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
                found.emplace_back(text ? text : "");
            }
        }
        if (step != SQLITE_DONE)
            giveUp();
        sqlite3_reset(statement);
        return found;
    }

private:
    [[noreturn]] void giveUp() const
    {
        std::fprintf(stderr, "%s\n", sqlite3_errmsg(m_database));
        std::exit(1);
    }
    sqlite3_stmt *prepared(const char *sql)
    {
        for (const auto &[known, statement] : m_statements) {
            if (known == sql)
                return statement;
        }
        sqlite3_stmt *statement = nullptr;
        if (sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr) != SQLITE_OK)
            giveUp();
        m_statements.emplace_back(sql, statement);
        return statement;
    }

    sqlite3 *m_database = nullptr;
    std::vector<std::pair<const char *, sqlite3_stmt *>> m_statements;
};

struct Account {
    std::string user, workspace, session;
};

void enter(Bare &bare, const Account &account)
{
    bare.read("SELECT last_used_at FROM sessions WHERE id = ? AND user_id = ?",
              {account.session, account.user});
    bare.read("SELECT role FROM workspace_members WHERE workspace_id = ? AND user_id = ?",
              {account.workspace, account.user});
    bare.read("SELECT * FROM workspaces WHERE id = ?", {account.workspace});
}

#define ORVANE_RANGE                                                                                         \
    "WHERE user_id = ? AND workspace_id = ? AND ends_at >= CAST(? AS INTEGER) AND "                          \
    "+start_at < CAST(? AS INTEGER)"

void list(Bare &bare, const Account &account, long long start)
{
    constexpr long long day = 86'400'000;
    const long long midnight = start - start % day;
    const Values range{account.user, account.workspace, std::to_string(midnight),
                       std::to_string(midnight + day)};
    bare.read("BEGIN", {});
    enter(bare, account);
    bare.read("SELECT * FROM time_entries " ORVANE_RANGE " ORDER BY start_at, id", range);
    bare.read("SELECT * FROM entry_tags WHERE entry_id IN (SELECT id FROM time_entries " ORVANE_RANGE
              ") ORDER BY entry_id, position",
              range);
    bare.read("SELECT * FROM entry_shares WHERE entry_id IN (SELECT id FROM time_entries " ORVANE_RANGE
              ") ORDER BY entry_id, position",
              range);
    bare.read("COMMIT", {});
}

void change(Bare &bare, const Account &account, const std::string &id, long turn)
{
    bare.read("BEGIN IMMEDIATE", {});
    enter(bare, account);
    bare.read("SELECT * FROM time_entries WHERE id = ?", {id});
    bare.read("SELECT * FROM entry_tags WHERE entry_id = ? ORDER BY position", {id});
    bare.read("SELECT * FROM entry_shares WHERE entry_id = ? ORDER BY position", {id});
    bare.read("UPDATE time_entries SET description = ?, version = ? WHERE id = ?",
              {"Bare number " + std::to_string(turn), std::to_string(turn), id});
    bare.read("DELETE FROM entry_tags WHERE entry_id = ?", {id});
    bare.read("DELETE FROM entry_shares WHERE entry_id = ?", {id});
    bare.read("COMMIT", {});
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    Bare bare(argv[1]);
    const Values ids = bare.read("SELECT id FROM time_entries ORDER BY id", {});
    const Values starts = bare.read("SELECT start_at FROM time_entries ORDER BY id", {});
    const Values who = bare.read("SELECT e.user_id, e.workspace_id, s.id FROM time_entries e "
                                 "JOIN sessions s ON s.user_id = e.user_id LIMIT 1",
                                 {});
    if (ids.empty() || who.size() != 3)
        return 1;
    const Account account{who[0], who[1], who[2]};
    std::vector<double> milliseconds;
    const auto start = Clock::now();
    const auto end = start + std::chrono::seconds(std::atoi(argv[2]));
    for (long turn = 0; Clock::now() < end; ++turn) {
        const std::size_t entry = static_cast<std::size_t>(turn / 2 * 7) % ids.size();
        const auto began = Clock::now();
        if (turn % 2 == 0)
            list(bare, account, std::stoll(starts[entry]));
        else
            change(bare, account, ids[entry], turn);
        milliseconds.push_back(std::chrono::duration<double, std::milli>(Clock::now() - began).count());
    }
    const double used = static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    std::ranges::sort(milliseconds);
    std::printf("{\"transactions\":%zu,\"seconds\":%f,\"used\":%f,\"p99\":%f}\n", milliseconds.size(),
                seconds, used, milliseconds[milliseconds.size() * 99 / 100]);
    return 0;
}
