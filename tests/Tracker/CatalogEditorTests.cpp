// SPDX-License-Identifier: GPL-3.0-or-later
// Over the real server on this computer.
#include "Tracker/CatalogEditor.h"

#include "Account/Account.h"
#include "Catalog/ProjectColor.h"
#include "Client/OrvaneClient.h"
#include "support/AccountStack.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class CatalogEditorTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        auto opened = await(openAccount(installation, true));
        ASSERT_TRUE(opened) << opened.error().message;
        account = std::move(*opened);
    }
    void TearDown() override
    {
        if (account)
            await(account->close());
    }

    /// What a change answers, which is what the catalog then has.
    template <class T>
    T done(Task<CallResult<T>> change)
    {
        CallResult<T> result = await(std::move(change));
        EXPECT_TRUE(result) << describe(result.error());
        return result.value_or(T{});
    }
    void done(Task<CallResult<void>> change)
    {
        const CallResult<void> result = await(std::move(change));
        EXPECT_TRUE(result) << describe(result.error());
    }

    CatalogEditor editor() { return {account->client(), account->tracker()}; }
    const Catalog &catalog() const { return account->tracker().catalog(); }

    TestInstallation folder;
    Installation installation{folder.folder()};
    std::unique_ptr<Account> account;
};

TEST_F(CatalogEditorTest, ChangesClientsAndTags)
{
    const ClientResponse client = done(editor().createClient("Acme"));
    ASSERT_TRUE(catalog().client(client.id));
    EXPECT_EQ(*catalog().client(client.id), client);
    done(editor().renameClient(client.id, "Acme & Sons"));
    EXPECT_EQ(catalog().client(client.id)->name, "Acme & Sons");
    EXPECT_TRUE(done(editor().archiveClient(client.id)).isArchived);
    EXPECT_TRUE(catalog().client(client.id)->isArchived);
    done(editor().restoreClient(client.id));
    EXPECT_FALSE(catalog().client(client.id)->isArchived);
    done(editor().deleteClient(client.id));
    EXPECT_THAT(catalog().clients(), IsEmpty());

    const TagResponse tag = done(editor().createTag("reviw"));
    EXPECT_EQ(done(editor().renameTag(tag.id, "review")).name, "review");
    EXPECT_EQ(catalog().tag(tag.id)->name, "review");
    done(editor().deleteTag(tag.id));
    EXPECT_THAT(catalog().tags(), IsEmpty());
}

TEST_F(CatalogEditorTest, ChangesProjectsAndTheirTasks)
{
    ProjectFields fields;
    fields.name = "Website";
    fields.color = newProjectColor(0);
    fields.isBillable = true;
    const std::string id = done(editor().createProject(fields)).id;
    ASSERT_TRUE(catalog().project(id));
    EXPECT_EQ(ProjectFields::of(*catalog().project(id)), fields);
    fields.name = "Web";
    fields.color = newProjectColor(1);
    done(editor().updateProject(id, fields));
    EXPECT_EQ(ProjectFields::of(*catalog().project(id)), fields);

    TaskResponse task = done(editor().createTask(id, "Design"));
    EXPECT_TRUE(catalog().task(task.id)->isActive);
    task.name = "Draw";
    task.isActive = false;
    EXPECT_EQ(done(editor().updateTask(task)), task);
    EXPECT_EQ(*catalog().task(task.id), task);
    done(editor().deleteTask(id, task.id));
    EXPECT_FALSE(catalog().task(task.id));

    done(editor().archiveProject(id));
    EXPECT_TRUE(catalog().project(id)->isArchived);
    done(editor().restoreProject(id));
    EXPECT_FALSE(catalog().project(id)->isArchived);
    done(editor().deleteProject(id));
    EXPECT_THAT(catalog().projects(), IsEmpty());
}

TEST_F(CatalogEditorTest, AnswersARefusalAndLeavesTheCatalogAlone)
{
    done(editor().createTag("docs"));
    TagRequest elsewhere;
    elsewhere.name = "review";
    ASSERT_TRUE(await(account->client().createTag(account->tracker().workspace().id, elsewhere)));
    const auto twice = await(editor().createTag("docs"));
    ASSERT_FALSE(twice);
    EXPECT_EQ(std::get<APIError>(twice.error()).status, 409);
    EXPECT_FALSE(await(editor().deleteProject("0a11c0de-0000-4000-8000-000000000001")));
    EXPECT_THAT(catalog().tags(), SizeIs(1)) << "nothing was loaded again";
}

TEST_F(CatalogEditorTest, AChangeIsMadeThoughItsTrackerGoesAway)
{
    const std::string workspace = account->tracker().workspace().id;
    Task<CallResult<TagResponse>> made = editor().createTag("docs");
    ASSERT_TRUE(account->useWorkspace(workspace)) << "which has another tracker";
    EXPECT_EQ(done(std::move(made)).name, "docs");
    EXPECT_THAT(catalog().tags(), IsEmpty()) << "that one was not asked to reload";
    EXPECT_THAT(await(account->client().listTags(workspace)).value(), SizeIs(1));
}

} // namespace
} // namespace orvane
