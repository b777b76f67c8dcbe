// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/KnownServer.h"

#include "Account/Installation.h"
#include "Account/ProfileDocument.h"
#include "Account/StoredAccount.h"
#include "LocalStore/StoreSteps.h"

#include <algorithm>

namespace orvane {

namespace {

/// A menu waits for it.
constexpr std::chrono::milliseconds patience{200};

void lookInto(KnownServer &server, const Installation &installation)
{
    const auto account = StoredAccount::find(installation, server.address);
    if (!account)
        return;
    const auto store = Connection::open(account->storePath, {.busyTimeout = patience});
    if (!store)
        return;
    StoreSteps steps(**store);
    std::optional<ProfileDocument> profile;
    steps.read(ProfileDocument::key, profile).countRows(server.waiting);
    if (!steps || !profile)
        return;
    const auto usedLast = installation.workspace(account->server, account->id);
    if (const WorkspaceSummary *workspace = workspaceInUse(profile->me, std::nullopt, usedLast))
        server.workspaceId = workspace->id;
    server.me = std::move(profile->me);
}

} // namespace

std::vector<KnownServer> KnownServer::all(const Installation &installation)
{
    const auto local = installation.localServer();
    std::vector<KnownServer> servers;
    for (std::string &address : installation.servers()) {
        KnownServer &server = servers.emplace_back(KnownServer{.address = std::move(address)});
        server.isLocal = server.address == local;
        server.isAutomatic = server.isLocal && installation.currentServer() != local;
        server.isSignedOut = !server.isAutomatic && installation.isSignedOut(server.address);
        lookInto(server, installation);
    }
    std::ranges::sort(servers, {}, [](const KnownServer &server) {
        return std::pair(server.isLocal, std::string_view(server.address));
    });
    return servers;
}

} // namespace orvane
