// SPDX-License-Identifier: GPL-3.0-or-later
#include "Handlers/CatalogAccess.h"
#include "Handlers/Router.h"
#include "Http/Problems.h"
#include "Records/NameText.h"
#include "Security/RandomText.h"

namespace orvane::server {

namespace {

CatalogRecords catalog(Call &call)
{
    return CatalogRecords(call.services.database);
}

// Clients: whoever may change projects may change these.

Result<WorkspaceAccess, HttpResponse> enterToChangeClients(Call &call, const std::string &workspaceId)
{
    auto workspace = enterWorkspace(call, workspaceId);
    if (workspace && workspace->settings.onlyAdminsCreateProjects && !workspace->isAdmin())
        return failure(forbidden("Only the workspace's administrators change its clients."));
    return workspace;
}

std::optional<HttpResponse> refusedClient(Call &call, const ClientResponse &client)
{
    if (auto fault = nameFault(client.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (!client.isArchived && catalog(call).isClientNameTaken(client.workspaceId, client.name, client.id))
        return nameTaken("client");
    return std::nullopt;
}

HttpResponse listClients(Call &call, const operations::ListClients::Input &input)
{
    if (const auto workspace = enterWorkspace(call, input.workspaceId); !workspace)
        return workspace.error();
    const auto archived = input.includeArchived.value_or(false) ? CatalogRecords::Archived::Included
                                                                : CatalogRecords::Archived::Excluded;
    return jsonAnswer(200, catalog(call).clients(input.workspaceId, archived));
}

HttpResponse createClient(Call &call, const operations::CreateClient::Input &input)
{
    if (const auto workspace = enterToChangeClients(call, input.workspaceId); !workspace)
        return workspace.error();
    const ClientResponse client{newIdentifier(), input.workspaceId, trimmed(input.body.name), false};
    if (auto refusal = refusedClient(call, client))
        return std::move(*refusal);
    catalog(call).addClient(client);
    return jsonAnswer(201, client);
}

template <class Change>
HttpResponse changeClient(Call &call, const std::string &workspaceId, const std::string &clientId,
                          Change change)
{
    if (const auto workspace = enterToChangeClients(call, workspaceId); !workspace)
        return workspace.error();
    auto client = catalog(call).client(workspaceId, clientId);
    if (!client)
        return noSuch("client");
    change(*client);
    if (auto refusal = refusedClient(call, *client))
        return std::move(*refusal);
    catalog(call).updateClient(*client);
    return jsonAnswer(200, *client);
}

HttpResponse updateClient(Call &call, const operations::UpdateClient::Input &input)
{
    return changeClient(call, input.workspaceId, input.clientId,
                        [&](ClientResponse &client) { client.name = trimmed(input.body.name); });
}

HttpResponse archiveClient(Call &call, const operations::ArchiveClient::Input &input)
{
    return changeClient(call, input.workspaceId, input.clientId,
                        [](ClientResponse &client) { client.isArchived = true; });
}

HttpResponse restoreClient(Call &call, const operations::RestoreClient::Input &input)
{
    return changeClient(call, input.workspaceId, input.clientId,
                        [](ClientResponse &client) { client.isArchived = false; });
}

HttpResponse deleteClient(Call &call, const operations::DeleteClient::Input &input)
{
    if (const auto workspace = enterToChangeClients(call, input.workspaceId); !workspace)
        return workspace.error();
    if (!catalog(call).client(input.workspaceId, input.clientId))
        return noSuch("client");
    catalog(call).removeClient(input.clientId);
    return noBody(204);
}

// Tags.

Result<WorkspaceAccess, HttpResponse> enterToChangeTags(Call &call, const std::string &workspaceId)
{
    auto workspace = enterWorkspace(call, workspaceId);
    if (workspace && workspace->settings.onlyAdminsCreateTags && !workspace->isAdmin())
        return failure(forbidden("Only the workspace's administrators change its tags."));
    return workspace;
}

std::optional<HttpResponse> refusedTag(Call &call, const TagResponse &tag)
{
    if (auto fault = nameFault(tag.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (catalog(call).isTagNameTaken(tag.workspaceId, tag.name, tag.id))
        return nameTaken("tag");
    return std::nullopt;
}

HttpResponse listTags(Call &call, const operations::ListTags::Input &input)
{
    if (const auto workspace = enterWorkspace(call, input.workspaceId); !workspace)
        return workspace.error();
    return jsonAnswer(200, catalog(call).tags(input.workspaceId));
}

HttpResponse createTag(Call &call, const operations::CreateTag::Input &input)
{
    if (const auto workspace = enterToChangeTags(call, input.workspaceId); !workspace)
        return workspace.error();
    const TagResponse tag{newIdentifier(), input.workspaceId, trimmed(input.body.name)};
    if (auto refusal = refusedTag(call, tag))
        return std::move(*refusal);
    catalog(call).addTag(tag);
    return jsonAnswer(201, tag);
}

HttpResponse updateTag(Call &call, const operations::UpdateTag::Input &input)
{
    if (const auto workspace = enterToChangeTags(call, input.workspaceId); !workspace)
        return workspace.error();
    auto tag = catalog(call).tag(input.workspaceId, input.tagId);
    if (!tag)
        return noSuch("tag");
    tag->name = trimmed(input.body.name);
    if (auto refusal = refusedTag(call, *tag))
        return std::move(*refusal);
    catalog(call).updateTag(*tag);
    return jsonAnswer(200, *tag);
}

HttpResponse deleteTag(Call &call, const operations::DeleteTag::Input &input)
{
    const auto workspace = enterToChangeTags(call, input.workspaceId);
    if (!workspace)
        return workspace.error();
    if (!catalog(call).tag(input.workspaceId, input.tagId))
        return noSuch("tag");
    constexpr auto kind = EntryRecords::Reference::Tag;
    if (auto refusal = refusedRelease(call, *workspace, kind, input.tagId))
        return std::move(*refusal);
    EntryRecords(call.services.database).release(kind, input.tagId);
    catalog(call).removeTag(input.tagId);
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

void addTagHandlers(Router &router)
{
    router.add<operations::ListTags>(listTags);
    router.add<operations::CreateTag>(createTag);
    router.add<operations::UpdateTag>(updateTag);
    router.add<operations::DeleteTag>(deleteTag);
}

} // namespace orvane::server
