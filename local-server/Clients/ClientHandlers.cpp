// SPDX-License-Identifier: GPL-3.0-or-later
#include "Clients/ClientRecords.h"
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Requests/Router.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

/// Whoever may change projects may change these.
struct ChangeClients {
    static bool isHeldBy(const WorkspaceAccess &workspace)
    {
        return workspace.isAdmin() || !workspace.settings().onlyAdminsCreateProjects;
    }
    static constexpr std::string_view refusal = "Only the workspace's administrators change its clients.";
};
using ClientEditor = WorkspaceRight<ChangeClients>;

ClientRecords clients(Call &call)
{
    return ClientRecords(call.database);
}

std::optional<HttpResponse> refusedClient(Call &call, const ClientResponse &client)
{
    if (auto fault = nameFault(client.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (clients(call).isNameTaken(client))
        return nameTaken("client");
    return std::nullopt;
}

HttpResponse listClients(Call &call, const WorkspaceAccess &workspace,
                         const operations::ListClients::Input &input)
{
    return jsonAnswer(200, clients(call).list(workspace.id(), input.includeArchived.value_or(false)));
}

HttpResponse createClient(Call &call, const ClientEditor &workspace,
                          const operations::CreateClient::Input &input)
{
    const ClientResponse client{newIdentifier(), workspace.id(), trimmed(input.body.name), false};
    if (auto refusal = refusedClient(call, client))
        return std::move(*refusal);
    clients(call).add(client);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(201, client);
}

template <class Change>
HttpResponse changeClient(Call &call, const ClientEditor &workspace, const std::string &clientId,
                          Change change)
{
    auto client = clients(call).find(workspace.id(), clientId);
    if (!client)
        return noSuch("client");
    change(*client);
    if (auto refusal = refusedClient(call, *client))
        return std::move(*refusal);
    clients(call).update(*client);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(200, *client);
}

HttpResponse updateClient(Call &call, const ClientEditor &workspace,
                          const operations::UpdateClient::Input &input)
{
    return changeClient(call, workspace, input.clientId,
                        [&](ClientResponse &client) { client.name = trimmed(input.body.name); });
}

HttpResponse archiveClient(Call &call, const ClientEditor &workspace,
                           const operations::ArchiveClient::Input &input)
{
    return changeClient(call, workspace, input.clientId,
                        [](ClientResponse &client) { client.isArchived = true; });
}

HttpResponse restoreClient(Call &call, const ClientEditor &workspace,
                           const operations::RestoreClient::Input &input)
{
    return changeClient(call, workspace, input.clientId,
                        [](ClientResponse &client) { client.isArchived = false; });
}

HttpResponse deleteClient(Call &call, const ClientEditor &workspace,
                          const operations::DeleteClient::Input &input)
{
    if (!clients(call).find(workspace.id(), input.clientId))
        return noSuch("client");
    clients(call).remove(input.clientId);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return noBody(204);
}

} // namespace

void addClientHandlers(Router &router)
{
    router.add<operations::ListClients>(listClients);
    router.add<operations::CreateClient>(createClient);
    router.add<operations::UpdateClient>(updateClient);
    router.add<operations::ArchiveClient>(archiveClient);
    router.add<operations::RestoreClient>(restoreClient);
    router.add<operations::DeleteClient>(deleteClient);
}

} // namespace orvane::server
