// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LocalStore/LocalStore.h"
#include "Outbox/Refusal.h"
#include "Support/Task.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The outbox's dealings with its store, each one transaction. Callable from any thread with an event loop.
namespace orvane {

/// Which versions of an entry were replaced by our own accepted changes. A change that another process, or a
/// caller a moment too early, queued against one of them is not in conflict with anybody: it is sent against
/// `current`.
struct VersionSuccession {
    std::string entryId;
    std::vector<std::string> replaced;
    std::string current;
};

struct VersionDocument {
    static constexpr const char *key = "versions";
    /// Oldest first; bounded.
    std::vector<VersionSuccession> entries;
};

template <>
struct JsonFields<VersionSuccession> {
    static constexpr auto list = std::tuple{jsonField<"entryId">(&VersionSuccession::entryId),
                                            jsonField<"replaced">(&VersionSuccession::replaced),
                                            jsonField<"current">(&VersionSuccession::current)};
};

template <>
struct JsonFields<VersionDocument> {
    static constexpr auto list = std::tuple{jsonField<"entries">(&VersionDocument::entries)};
};

/// The version to send for a change made against `version`.
std::string succeedingVersion(const VersionDocument &document, const std::string &entryId,
                              const std::string &version);
/// Notes that an entry's `before` (none: unknown) was replaced by `after` through a change of ours.
void noteSuccession(VersionDocument &document, const std::string &entryId,
                    const std::optional<std::string> &before, const std::string &after);

/// Stores changes that belong together; all or none. Answers their numbers in order.
Task<Result<std::vector<std::int64_t>, StoreError>> enqueueAll(std::shared_ptr<LocalStore> store,
                                                               std::vector<EntryChange> changes);

/// The first readable row above `after`, its version brought up to date; none at the end of the queue.
Task<Result<std::optional<PendingChange>, StoreError>> nextStored(std::shared_ptr<LocalStore> store,
                                                                  std::int64_t after);

/// Takes an accepted change out of the queue; rows still queued for its entry take over the version that the
/// answer brought.
Task<StoreStatus> settleAccepted(std::shared_ptr<LocalStore> store, PendingChange accepted,
                                 std::optional<std::string> version);

/// Takes a refused change out of the queue; with a refusal, keeps that until it has been shown.
Task<StoreStatus> settleRefused(std::shared_ptr<LocalStore> store, std::int64_t seq,
                                std::optional<Refusal> refusal);

/// Removes refusals from the store; answers those that were there.
Task<Result<std::vector<Refusal>, StoreError>> takeRefusals(std::shared_ptr<LocalStore> store,
                                                            std::vector<std::int64_t> seqs);

} // namespace orvane
