// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever an agent that the user let in posts: no entry changes, what only reads writes nothing, and every
// answer is a message of the protocol. The first byte says whether the agent speaks the version with batches,
// and whether it may propose; "{w}" in the rest stands for its workspace, "{v}" for the entry's version.
#include "Agents/McpEndpoint.h"
#include "Entries/EntryRecords.h"
#include "Support/Require.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdint>

using namespace orvane;
using namespace orvane::server;

namespace {

const Instant now = instantFromMilliseconds(1'772'355'600'000); // 2026-03-01T09:00:00Z

class Place {
public:
    Place() : m_services{.tokens = AccessTokens("key")}, m_database(Database::open(":memory:").value())
    {
        m_database->begin();
        AccountRecord account;
        account.timeZone = "Europe/Paris";
        m_access.userId = Accounts(*m_database).create(account, now);
        m_access.agentName = "Agent";
        m_access.workspaceIds = {Workspaces(*m_database).of(m_access.userId).front().id};
        EntryRecord tracked;
        tracked.userId = m_access.userId;
        tracked.entry.id = "tracked";
        tracked.entry.workspaceId = m_access.workspaceIds.front();
        tracked.entry.start = now - std::chrono::hours(2);
        tracked.entry.stop = now - std::chrono::hours(1);
        EntryRecords(*m_database).add(tracked);
        m_version = tracked.entry.version;
        ORVANE_REQUIRE(m_database->commit(), "the database is of no use");
    }

    void post(std::string body, bool mayPropose, bool hasBatches)
    {
        replace(body, "{w}", m_access.workspaceIds.front());
        replace(body, "{v}", m_version);
        RequestParts parts;
        parts.body = std::move(body);
        parts.headers.set("MCP-Protocol-Version", hasBatches ? "2025-03-26" : "2025-06-18");
        const auto visit = readMcpVisit(parts);
        ORVANE_REQUIRE(visit, "a body alone decides about no header");
        m_access.mayPropose = mayPropose;
        m_database->begin();
        const std::int64_t written = number("SELECT total_changes()");
        Call call{.services = m_services, .database = *m_database, .now = now, .peer = {}, .address = {}};
        call.caller.userId = m_access.userId;
        AgentCall agent{call, m_access};
        isMessage(answerMcp(agent, *visit));
        ORVANE_REQUIRE((visit->mayWrite() && mayPropose) || number("SELECT total_changes()") == written,
                       "reading wrote something");
        ORVANE_REQUIRE(!m_database->hasFailed(), "a statement failed");
        ORVANE_REQUIRE(number("SELECT count(*) FROM time_entries") == 1 &&
                           EntryRecords(*m_database).find("tracked")->entry.version == m_version,
                       "an agent changed an entry");
        m_database->rollback();
    }

private:
    static void replace(std::string &text, std::string_view mark, const std::string &value)
    {
        if (const std::size_t at = text.find(mark); at != std::string::npos)
            text.replace(at, mark.size(), value);
    }
    std::int64_t number(const char *sql)
    {
        return m_database->row(sql, [](const SqlRow &row) { return row.integer(0); }).value_or(-1);
    }
    /// Our own answers are, to the same reader, messages that want no answer.
    static void isMessage(const HttpResponse &response)
    {
        ORVANE_REQUIRE(response.body.empty() == (response.status == 202), "an answer to what wants none");
        if (response.status == 202)
            return;
        ORVANE_REQUIRE(response.status == 200 || response.status == 400, "another status");
        const auto answers = readMcpPost(response.body);
        ORVANE_REQUIRE(answers && std::ranges::all_of(answers->messages,
                                                      [](const McpMessage &message) {
                                                          return std::holds_alternative<McpNotice>(message);
                                                      }),
                       "the answer is no message of the protocol");
    }

    Services m_services;
    std::unique_ptr<Database> m_database;
    AgentAccess m_access;
    std::string m_version;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    static Place place;
    if (size == 0)
        return 0;
    place.post({reinterpret_cast<const char *>(data + 1), size - 1}, (data[0] & 1U) != 0,
               (data[0] & 2U) != 0);
    return 0;
}
