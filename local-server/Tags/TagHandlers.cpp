// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryReferences.h"
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Requests/Router.h"
#include "Security/RandomText.h"
#include "Tags/TagRecords.h"

namespace orvane::server {

namespace {

struct ChangeTags {
    static bool isHeldBy(const WorkspaceAccess &workspace)
    {
        return workspace.isAdmin() || !workspace.settings().onlyAdminsCreateTags;
    }
    static constexpr std::string_view refusal = "Only the workspace's administrators change its tags.";
};
using TagEditor = WorkspaceRight<ChangeTags>;

TagRecords tags(Call &call)
{
    return TagRecords(call.database);
}

std::optional<HttpResponse> refusedTag(Call &call, const TagResponse &tag)
{
    if (auto fault = nameFault(tag.name); !fault.empty())
        return invalid("name", std::move(fault));
    if (tags(call).isNameTaken(tag))
        return nameTaken("tag");
    return std::nullopt;
}

HttpResponse listTags(Call &call, const WorkspaceAccess &workspace, const operations::ListTags::Input &)
{
    return jsonAnswer(200, tags(call).list(workspace.id()));
}

HttpResponse createTag(Call &call, const TagEditor &workspace, const operations::CreateTag::Input &input)
{
    const TagResponse tag{newIdentifier(), workspace.id(), trimmed(input.body.name)};
    if (auto refusal = refusedTag(call, tag))
        return std::move(*refusal);
    tags(call).add(tag);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(201, tag);
}

HttpResponse updateTag(Call &call, const TagEditor &workspace, const operations::UpdateTag::Input &input)
{
    auto tag = tags(call).find(workspace.id(), input.tagId);
    if (!tag)
        return noSuch("tag");
    tag->name = trimmed(input.body.name);
    if (auto refusal = refusedTag(call, *tag))
        return std::move(*refusal);
    tags(call).update(*tag);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return jsonAnswer(200, *tag);
}

HttpResponse deleteTag(Call &call, const TagEditor &workspace, const operations::DeleteTag::Input &input)
{
    if (!tags(call).find(workspace.id(), input.tagId))
        return noSuch("tag");
    if (auto refusal = releaseReferences(call, workspace, EntryReference::tag, input.tagId))
        return std::move(*refusal);
    tags(call).remove(input.tagId);
    call.changedInWorkspace(ChangeTopic::catalog, workspace.id());
    return noBody(204);
}

} // namespace

void addTagHandlers(Router &router)
{
    router.add<operations::ListTags>(listTags);
    router.add<operations::CreateTag>(createTag);
    router.add<operations::UpdateTag>(updateTag);
    router.add<operations::DeleteTag>(deleteTag);
}

} // namespace orvane::server
