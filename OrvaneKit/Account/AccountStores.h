// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/LocalStore.h"
#include "Support/Task.h"

#include <cstdint>
#include <string>
#include <vector>

/// The stores that an installation keeps for the accounts of one server. Accounts come and go (the server's
/// folder is put elsewhere and back, somebody signs in as somebody else); the changes queued for one of them
/// stay in its own store and go to nobody else.
namespace orvane {

/// The accounts that have a store, or what a move that was cut short left of it, as the files' names write
/// them.
std::vector<std::string> accountsWithStore(const std::string &root, const std::string &server);

/// Moves every account's store from one address of the server to another. A store that the new address has
/// already stays, and so does the one at the old address. Blocks; nobody may have the stores open.
StoreStatus moveStores(const std::string &root, const std::string &from, const std::string &to);

/// Takes an account's store away, with what waits in it. Blocks; nobody may have it open.
StoreStatus removeStore(const std::string &root, const std::string &server, const std::string &account);

/// The queue of an account that is not the one in use.
struct WaitingStore {
    std::string file;
    /// How many changes wait in it, or why that cannot be told.
    Result<std::int64_t, StoreError> changes;
};

/// The stores of the server's other accounts that hold changes, or cannot be read.
Task<std::vector<WaitingStore>> waitingBeside(std::string root, std::string server, std::string account);

/// How many rows a store's queue has, readable or not. Tells when the store cannot be read, where
/// `LocalStore::pending` reads as empty.
Task<Result<std::int64_t, StoreError>> queuedRows(LocalStore &store);

/// Why the store's documents or its queue cannot be read, where loading them answers that there are none.
Task<StoreStatus> readThrough(LocalStore &store);

/// The numbers of the rows that hold no change that can be read; they stay where they are and are never sent.
Task<Result<std::vector<std::int64_t>, StoreError>> unreadableRows(LocalStore &store);

} // namespace orvane
