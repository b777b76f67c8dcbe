// SPDX-License-Identifier: GPL-3.0-or-later
// Who gets in where: every operation that this server has, asked by those who may and those who may not.
#include "OrvaneAPI/Routes.h"
#include "ServerFixture.h"
#include "server-api/Samples.h"

#include <QTemporaryDir>
#include <set>

namespace orvane::server {

using namespace operations;

namespace {

constexpr std::string_view workspacePath = "/api/workspaces/";

bool isInWorkspace(const OperationInfo &operation)
{
    return operation.pathTemplate.starts_with(workspacePath);
}

template <class Operation, class... Arguments>
concept CanHandle = requires(
    Router router, HttpResponse (*handler)(Call &, Arguments..., const typename Operation::Input &)) {
    router.add<Operation>(handler);
};

// What happens in a workspace cannot be handled without the access to it, and nothing else with one.
static_assert(CanHandle<ListTags, const WorkspaceAccess &>);
static_assert(!CanHandle<ListTags>);
static_assert(!CanHandle<ListTags, const std::string &>);
static_assert(CanHandle<GetMe> && !CanHandle<GetMe, const WorkspaceAccess &>);
// There is no access but what entering gives.
static_assert(!std::is_default_constructible_v<WorkspaceAccess>);

} // namespace

class AccessToOperations : public ServerFixture {
protected:
    AccessToOperations()
    {
        openServer({}, {}, folder.filePath(QStringLiteral("server.sqlite")).toStdString());
        signInLocally();
        ownersToken = accessToken;
        for (const OperationInfo &operation : allOperations()) {
            if (askFor(operation, ownersToken).status != 501)
                offered.push_back(&operation);
        }
        EXPECT_GE(offered.size(), 45U);
        signInLocally(); // the round has signed out
        ownersToken = accessToken;
    }

    /// A request that the document allows, about the workspace.
    HttpRequest requestFor(const OperationInfo &operation) const
    {
        const auto &sample = samples::operationSamples()[static_cast<std::size_t>(operation.order - 1)];
        HttpRequest request = sample.request();
        if (isInWorkspace(operation)) {
            const std::size_t end = request.path.find('/', workspacePath.size());
            request.path.replace(workspacePath.size(), end - workspacePath.size(), workspaceId);
        }
        return request;
    }
    HttpResponse askFor(const OperationInfo &operation, const std::string &token)
    {
        return send(requestFor(operation), token);
    }
    std::string newAccount(const std::string &email)
    {
        const std::string token = registerAccount(email).accessToken;
        accessToken = ownersToken;
        return token;
    }
    /// No operation of this server does it yet.
    void join(const std::string &email)
    {
        const auto database = Database::connect(databasePath).value();
        database->begin();
        database->run("INSERT INTO workspace_members (workspace_id, user_id, role) "
                      "SELECT ?, id, 'member' FROM users WHERE email = ?",
                      workspaceId, email);
        ASSERT_TRUE(database->commit());
    }
    void letAdministratorsAloneChangeTheCatalog()
    {
        WorkspaceSettingsRequest settings;
        settings.name = "Team";
        settings.currency = "EUR";
        settings.onlyAdminsCreateProjects = true;
        settings.onlyAdminsCreateTags = true;
        expect<UpdateWorkspaceSettings, Ok<WorkspaceSettingsResponse>>({workspaceId, settings});
    }

    QTemporaryDir folder;
    std::string ownersToken;
    std::vector<const OperationInfo *> offered;
};

TEST_F(AccessToOperations, WhatTheDocumentSecuresWantsAGoodToken)
{
    int open = 0;
    for (const OperationInfo *operation : offered) {
        if (!operation->wantsSignIn) {
            ++open;
            continue;
        }
        EXPECT_EQ(askFor(*operation, {}).status, 401) << operation->name;
        EXPECT_EQ(askFor(*operation, ownersToken + "x").status, 401) << operation->name;
    }
    EXPECT_EQ(open, 9) << "register, login, refresh, logout, the browser sign-in's start and exchange, a "
                          "passkey's options and login, the server";
}

TEST_F(AccessToOperations, AStrangersWorkspaceIsNotThere)
{
    const std::string token = newAccount("stranger@example.org");
    for (const OperationInfo *operation : offered) {
        if (!isInWorkspace(*operation))
            continue;
        const HttpResponse answer = askFor(*operation, token);
        EXPECT_EQ(answer.status, 404) << operation->name;
        EXPECT_TRUE(answer.body.contains("There is no such workspace.")) << operation->name << answer.body;
    }
}

TEST_F(AccessToOperations, WhatTakesAnAdministratorIsForbiddenToAMember)
{
    const std::set<std::string_view> forAdministrators{"UpdateWorkspaceSettings",
                                                       "CreateProject",
                                                       "UpdateProject",
                                                       "DeleteProject",
                                                       "ArchiveProject",
                                                       "RestoreProject",
                                                       "CreateTask",
                                                       "UpdateTask",
                                                       "DeleteTask",
                                                       "CreateClient",
                                                       "UpdateClient",
                                                       "DeleteClient",
                                                       "ArchiveClient",
                                                       "RestoreClient",
                                                       "CreateTag",
                                                       "UpdateTag",
                                                       "DeleteTag"};
    const std::string token = newAccount("member@example.org");
    join("member@example.org");
    letAdministratorsAloneChangeTheCatalog();
    std::size_t forbidden = 0;
    for (const OperationInfo *operation : offered) {
        if (!isInWorkspace(*operation))
            continue;
        const HttpResponse answer = askFor(*operation, token);
        const bool isForAdministrators = forAdministrators.contains(operation->name);
        forbidden += isForAdministrators ? 1 : 0;
        EXPECT_EQ(answer.status == 403, isForAdministrators) << operation->name << answer.body;
        EXPECT_FALSE(answer.body.contains("no such workspace")) << operation->name;
    }
    EXPECT_EQ(forbidden, forAdministrators.size()) << "all of them are offered";
}

} // namespace orvane::server
