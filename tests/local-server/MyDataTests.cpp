// SPDX-License-Identifier: GPL-3.0-or-later
// What a person takes along, and what is left when they go.
#include "Database/Database.h"
#include "MyData/DataArchive.h"
#include "ServerFixture.h"

#include <QTemporaryDir>
#include <archive.h>
#include <archive_entry.h>
#include <map>

namespace orvane::server {

using namespace operations;

/// The archive's files as another program reads them.
std::map<std::string, std::string> unzipped(const std::string &bytes)
{
    std::map<std::string, std::string> files;
    archive *reader = archive_read_new();
    archive_read_support_format_zip(reader);
    EXPECT_EQ(archive_read_open_memory(reader, bytes.data(), bytes.size()), ARCHIVE_OK);
    archive_entry *entry = nullptr;
    while (archive_read_next_header(reader, &entry) == ARCHIVE_OK) {
        std::string &content = files[archive_entry_pathname_utf8(entry)];
        char part[4096];
        for (la_ssize_t got = 0; (got = archive_read_data(reader, part, sizeof part)) > 0;)
            content.append(part, static_cast<std::size_t>(got));
    }
    archive_read_free(reader);
    return files;
}

class MyData : public ServerFixture {
protected:
    MyData() { openServer({}, {}, folder.filePath(QStringLiteral("server.sqlite")).toStdString()); }

    void record(const std::string &description)
    {
        CreateTimeEntryRequest entry;
        entry.id = newIdentifier();
        entry.description = description;
        entry.start = now;
        entry.stop = now + std::chrono::hours(1);
        (void)expect<CreateTimeEntry, Created<TimeEntryResponse>>({workspace(), entry});
    }
    void proposeWork(const std::string &description)
    {
        ProposeEntriesRequest request;
        request.entries.push_back(
            {.description = description, .start = now - std::chrono::hours(1), .stop = now});
        using Outcomes = std::vector<ProposalOutcomeResponse>;
        const auto made = expect<ProposeEntries, Created<Outcomes>>({workspace(), request}).body;
        ASSERT_TRUE(made.at(0).proposal);
        (void)expect<ResolveAgentProposal, Ok<AgentProposalResponse>>(
            {workspace(), made[0].proposal->id, {"dismissed", {}, "It was lunch"}});
    }
    std::string workspace() { return me().defaultWorkspaceId.value_or(""); }
    HttpResponse remove(const std::string &email, std::optional<std::string> password)
    {
        return call<DeleteAccount>({{email, std::move(password)}});
    }

    QTemporaryDir folder;
};

TEST_F(MyData, GoesAlongAsOneArchive)
{
    registerAccount();
    record("Plan the week “übermorgen”");
    (void)expect<CreateWorkspace, Created<WorkspaceSummary>>({{"../Trials", {}}});
    proposeWork("Fix the login");
    const std::string bytes = expect<ExportMyData, Ok<std::string>>({}).body;
    const auto files = unzipped(bytes);
    EXPECT_NE(files.at("account.json").find("grace@example.org"), std::string::npos);
    EXPECT_EQ(files.at("account.json").find("assword\":\""), std::string::npos);
    EXPECT_EQ(files.at("passkeys.json"), "[]");
    ASSERT_TRUE(files.contains("..-Trials/entries.json"));
    const auto own = std::ranges::find_if(
        files, [](const auto &file) { return file.second.find("übermorgen") != std::string::npos; });
    ASSERT_NE(own, files.end());
    EXPECT_TRUE(own->first.ends_with("/entries.json"));
    const auto entries = decodeJson<std::vector<TimeEntryResponse>>(own->second);
    ASSERT_TRUE(entries && entries->size() == 1);
    EXPECT_EQ(entries->front().description, "Plan the week “übermorgen”");
    const std::string folder = own->first.substr(0, own->first.find('/'));
    EXPECT_NE(files.at(folder + "/proposals.json").find("Fix the login"), std::string::npos);
    EXPECT_NE(files.at(folder + "/proposals.json").find("It was lunch"), std::string::npos);
}

TEST_F(MyData, GoesWithItsAccount)
{
    registerAccount();
    record("Gone for good");
    proposeWork("Gone for good too");
    EXPECT_EQ(remove("someone@example.org", "correct horse battery").status, 400);
    EXPECT_EQ(remove("grace@example.org", {}).status, 400);
    EXPECT_EQ(remove("grace@example.org", "a guess").status, 400);
    EXPECT_EQ(me().email, "grace@example.org");
    EXPECT_EQ(remove("Grace@example.org", "correct horse battery").status, 204);
    EXPECT_EQ(call<GetMe>({}).status, 401);

    registerAccount();
    const auto files = unzipped(expect<ExportMyData, Ok<std::string>>({}).body);
    for (const auto &[name, content] : files)
        EXPECT_EQ(content.find("Gone for good"), std::string::npos) << name;
    const auto database = Database::connect(databasePath);
    ASSERT_TRUE(database);
    for (const char *table : {"users", "organizations", "workspaces", "sessions"}) {
        const auto rows = (*database)->rows("SELECT COUNT(*) FROM " + std::string(table),
                                            [](const SqlRow &row) { return row.integer(0); });
        EXPECT_EQ(rows.front(), 1) << table;
    }
}

TEST_F(MyData, StaysWhileOthersNeedItsOwner)
{
    registerAccount("ada@example.org");
    const std::string other = me().id;
    registerAccount();
    const std::string organization = me().organizations.front().id;
    const auto database = Database::connect(databasePath);
    ASSERT_TRUE(database);
    (*database)->run("INSERT INTO organization_members (organization_id, user_id, role) VALUES (?, ?, ?)",
                     organization, other, std::string("member"));
    EXPECT_EQ(remove("grace@example.org", "correct horse battery").status, 409);
    EXPECT_EQ(me().email, "grace@example.org");
    (*database)->run("UPDATE organization_members SET role = 'owner' WHERE user_id = ?", other);
    EXPECT_EQ(remove("grace@example.org", "correct horse battery").status, 204);
}

TEST_F(MyData, OfTheAccountOnThisComputerNeedsNoPassword)
{
    signInLocally();
    EXPECT_EQ(remove(me().email, {}).status, 204);
    EXPECT_EQ(call<GetMe>({}).status, 401);
    signInLocally();
    EXPECT_FALSE(workspaceId.empty());
}

} // namespace orvane::server
