// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Accounts/Accounts.h"
#include "Agents/AgentAccess.h"
#include "Database/Database.h"
#include "Requests/Changes.h"
#include "Requests/Services.h"
#include "Sessions/Sessions.h"
#include "Workspaces/Workspaces.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

/// Who sent a request, once its access token has been accepted.
struct Caller {
    std::string userId;
    std::string sessionId;
};

/// One request being handled, inside one transaction of the database, on one thread. The transaction is kept
/// when the answer is a success, undone otherwise.
struct Call {
    Services &services;
    Database &database;
    /// The server's time, in whole milliseconds.
    Instant now;
    /// The address of the other side: of the one that a trusted proxy speaks for.
    std::string peer;
    /// The address under which the server was asked, without a slash at the end: "http://127.0.0.1:4711".
    std::string address;
    /// Whether it came from one of this user's own programs; see ProofGate.
    bool isProved = false;
    /// Empty for operations that need no signing in.
    Caller caller{};
    /// Where the caller is an agent that asks on a user's behalf; the user is `caller` then, without a
    /// session.
    std::optional<AgentAccess> agent{};
    /// Set by a handler whose changes are to stay although it refuses.
    bool keepsChanges = false;
    /// What is to be told once the transaction is kept; see the functions below.
    std::vector<Change> changes{};

    Accounts accounts{database};
    Sessions sessions{database};
    Workspaces workspaces{database};

    // What a handler changes it says once, where it changes it.

    /// For everybody in the workspace.
    void changedInWorkspace(ChangeTopic topic, const std::string &workspaceId)
    {
        add({topic, workspaceId, {}});
    }
    /// What the caller has in the workspace.
    void changedForCaller(ChangeTopic topic, const std::string &workspaceId)
    {
        add({topic, workspaceId, caller.userId});
    }
    /// The caller's own account and preferences.
    void changedMe() { changedAccount(caller.userId); }
    /// An account's own, or one of its sessions.
    void changedAccount(const std::string &userId) { add({ChangeTopic::me, {}, userId}); }

private:
    void add(Change change)
    {
        if (std::ranges::find(changes, change) == changes.end())
            changes.push_back(std::move(change));
    }
};

} // namespace orvane::server
