// SPDX-License-Identifier: GPL-3.0-or-later
#include "Clients/ClientRecords.h"
#include "Entries/EntryRecords.h"
#include "Http/Problems.h"
#include "MyData/DataArchive.h"
#include "Names/NameText.h"
#include "Passkeys/PasskeyRecords.h"
#include "Projects/ProjectRecords.h"
#include "Proposals/ProposalArchive.h"
#include "Requests/Router.h"
#include "Security/PasswordHash.h"
#include "Tags/TagRecords.h"

#include <set>

namespace orvane::server {

namespace {

// Everything about the user, as one archive

constexpr Instant firstInstant = std::chrono::sys_days(std::chrono::year(1) / 1 / 1);
constexpr Instant lastInstant = std::chrono::sys_days(std::chrono::year(9999) / 12 / 31);

template <class T>
ArchiveFile jsonFile(const std::string &folder, const char *name, const T &content)
{
    return {folder + name, encodeJson(content)};
}

/// A folder name for the workspace, which no other one of the archive has.
std::string folderFor(const WorkspaceSummary &workspace, std::set<std::string> &taken)
{
    std::string folder = fileNameOf(workspace.name);
    if (!taken.insert(nameKey(folder)).second)
        folder += " (" + workspace.id + ")";
    return folder + "/";
}

void addWorkspace(Call &call, const WorkspaceSummary &workspace, const std::string &folder,
                  std::vector<ArchiveFile> &files)
{
    const std::string &userId = call.caller.userId;
    files.push_back(
        jsonFile(folder, "entries.json",
                 EntryRecords(call.database).inRange(userId, workspace.id, firstInstant, lastInstant)));
    files.push_back(
        jsonFile(folder, "projects.json", ProjectRecords(call.database).list(workspace.id, true)));
    files.push_back(jsonFile(folder, "clients.json", ClientRecords(call.database).list(workspace.id, true)));
    files.push_back(jsonFile(folder, "tags.json", TagRecords(call.database).list(workspace.id)));
    files.push_back({folder + "proposals.json", proposalArchive(call.database, userId, workspace.id)});
}

HttpResponse exportMyData(Call &call, const operations::ExportMyData::Input &)
{
    const auto me = describeCaller(call);
    if (!me)
        return unauthorized("This account no longer exists.");
    std::vector<ArchiveFile> files{
        jsonFile("", "account.json", *me),
        jsonFile("", "passkeys.json", PasskeyRecords(call.database).described(me->id))};
    std::set<std::string> folders;
    for (const WorkspaceSummary &workspace : me->workspaces)
        addWorkspace(call, workspace, folderFor(workspace, folders), files);
    auto archive = zipped(files, call.now);
    if (!archive)
        return problem(503, "The server is short of memory.", "Try again later.");
    HttpResponse response = noBody(200);
    response.headers.set("Content-Type", "application/octet-stream");
    response.headers.set("Content-Disposition", "attachment; filename=\"orvane-data.zip\"");
    response.body = std::move(*archive);
    return response;
}

// The end of an account

HttpResponse refused(const std::string &field, const std::string &reason)
{
    return invalid(400, {{field, {reason}}});
}

HttpResponse accountDeleted(Call &call)
{
    const std::string &userId = call.caller.userId;
    for (const OrganizationSummary &organization : call.workspaces.organizationsOf(userId)) {
        const auto others = call.workspaces.othersIn(organization.id, userId);
        if (!others.hasMembers)
            call.workspaces.removeOrganization(organization.id);
        else if (organization.role == OrganizationRole::owner && !others.hasOwner)
            return conflict("Others work in “" + organization.name + "”; make one of them its owner first.");
    }
    call.accounts.remove(userId);
    call.changedMe();
    return noBody(204);
}

Step deleteAccount(Call &call, const operations::DeleteAccount::Input &input);

/// `hash` is what the password was checked against.
Step deletionChecked(Call &call, const operations::DeleteAccount::Input &input, const std::string &hash,
                     bool fits)
{
    const auto account = call.accounts.byId(call.caller.userId);
    if (!account || account->passwordHash != hash)
        return deleteAccount(call, input);
    if (const auto wait = call.services.passwordGuesses.settle(account->email, call.peer, fits, call.now))
        return tooMany(*wait);
    if (!fits)
        return refused("password", "This is not your password.");
    return accountDeleted(call);
}

Step deleteAccount(Call &call, const operations::DeleteAccount::Input &input)
{
    const auto account = call.accounts.byId(call.caller.userId);
    if (!account)
        return unauthorized("This account no longer exists.");
    if (nameKey(trimmed(input.body.email)) != nameKey(account->email))
        return refused("email", "This is not your e-mail address.");
    if (!account->passwordHash)
        return accountDeleted(call);
    if (!input.body.password)
        return refused("password", "Enter your password.");
    if (const auto wait = call.services.passwordGuesses.wait(account->email, call.peer, call.now))
        return tooMany(*wait);
    const std::string hash = *account->passwordHash;
    return aside([hash, password = *input.body.password] { return passwordFits(hash, password); },
                 [hash, input](Call &later, bool fits) { return deletionChecked(later, input, hash, fits); });
}

} // namespace

void addMyDataHandlers(Router &router)
{
    router.add<operations::ExportMyData>(exportMyData);
    router.add<operations::DeleteAccount>(deleteAccount);
}

} // namespace orvane::server
