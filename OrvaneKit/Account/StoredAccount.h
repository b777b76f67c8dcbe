// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>

namespace orvane {

class Installation;

/// The account in use as far as this computer knows it without asking anybody. A value.
struct StoredAccount {
    std::string server;
    std::string id;
    /// Of its store, which is there.
    std::string storePath;

    /// `server`: another one than the one signed in to. Nothing when there is no account, or it has no store
    /// yet. Reads the installation's settings; starts nothing and makes no file. Main thread.
    static std::optional<StoredAccount> find(const Installation &installation,
                                             const std::optional<std::string> &server);
};

/// The workspace that is worked in: the one asked for, or else the one used last, the account's usual one,
/// the first. Null when the one asked for is not the account's, or it has none. Valid as long as `me`. Any
/// thread.
const WorkspaceSummary *workspaceInUse(const MeResponse &me, const std::optional<std::string> &asked,
                                       const std::optional<std::string> &usedLast);

} // namespace orvane
