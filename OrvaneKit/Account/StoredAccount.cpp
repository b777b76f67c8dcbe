// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/StoredAccount.h"

#include "Account/Installation.h"
#include "LocalStore/LocalStore.h"

#include <algorithm>
#include <filesystem>

namespace orvane {

std::optional<StoredAccount> StoredAccount::find(const Installation &installation,
                                                 const std::optional<std::string> &server)
{
    std::optional<std::string> address = server ? server : installation.currentServer();
    if (!address)
        address = installation.localServer();
    const auto account = address ? installation.account(*address) : std::nullopt;
    if (!account)
        return std::nullopt;
    std::string path = LocalStore::filePath(installation.root(), *address, *account);
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    return StoredAccount{*std::move(address), *account, std::move(path)};
}

const WorkspaceSummary *workspaceInUse(const MeResponse &me, const std::optional<std::string> &asked,
                                       const std::optional<std::string> &usedLast)
{
    const auto named = [&me](const std::optional<std::string> &id) -> const WorkspaceSummary * {
        const auto found = std::ranges::find(me.workspaces, id.value_or(""), &WorkspaceSummary::id);
        return found == me.workspaces.end() ? nullptr : &*found;
    };
    if (asked)
        return named(asked);
    if (const auto *last = named(usedLast))
        return last;
    if (const auto *usual = named(me.defaultWorkspaceId))
        return usual;
    return me.workspaces.empty() ? nullptr : &me.workspaces.front();
}

} // namespace orvane
