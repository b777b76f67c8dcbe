// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "LocalStore/LocalStore.h"
#include "OrvaneAPI/Schemas.h"
#include "Outbox/Refusal.h"
#include "Support/Task.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// The outbox's dealings with its store, each one transaction. Callable from any thread with an event loop.
///
/// All queued changes of an entry stand on top of each other, whichever process queued them: what was made
/// without having seen an earlier one is put on top of it when it is queued. So the version that the server
/// gives for one goes to the next. A change that contradicts an earlier one cannot be put on top; it gets a
/// version that no entry has, and the server's answer to it lets the user decide.
namespace orvane {

/// A version that no entry has.
inline constexpr const char *unseenVersion = "unseen";

/// A change and what its user saw of the entry; none for a creation.
struct Submission {
    EntryChange change;
    std::optional<TimeEntryResponse> base;
    /// The entry without the changes that were queued as far as its user's process knew; one of them may have
    /// been given up in another process. None: not known apart.
    std::optional<TimeEntryResponse> server = {};
};

/// The entry as the server gave it in answer to the last change of it that this store's queue delivered, and
/// the versions that this replaced in an unbroken line of our own changes. Kept by the entry's identifier.
struct EntryHead {
    TimeEntryResponse entry;
    /// Oldest first; bounded.
    std::vector<std::string> replaced;
    /// One of our changes ended the entry, as against another device or the server.
    bool isStoppedByUs = false;

    static std::string key(const std::string &entryId) { return "head:" + entryId; }
};

/// What a queued change stands on, and what its user saw of the entry when they made it: the same, until the
/// change is put on top of something else. Kept by the row's number.
struct ChangeBase {
    TimeEntryResponse entry;
    TimeEntryResponse seen;

    static std::string key(std::int64_t seq) { return "base:" + std::to_string(seq); }
};

/// In what form a creation was sent for the first time: alone, or together with the stop of that number. It
/// has to be sent in the same form until its answer is known, since the server tells a repeated creation from
/// another one by its contents. Kept by the row's number.
struct CreationTry {
    std::optional<std::int64_t> stop;

    static std::string key(std::int64_t seq) { return "tried:" + std::to_string(seq); }
};

template <>
struct JsonFields<EntryHead> {
    static constexpr auto list =
        std::tuple{jsonField<"entry">(&EntryHead::entry), jsonField<"replaced">(&EntryHead::replaced),
                   jsonField<"isStoppedByUs">(&EntryHead::isStoppedByUs)};
};

template <>
struct JsonFields<ChangeBase> {
    static constexpr auto list =
        std::tuple{jsonField<"entry">(&ChangeBase::entry), jsonField<"seen">(&ChangeBase::seen)};
};

template <>
struct JsonFields<CreationTry> {
    static constexpr auto list = std::tuple{jsonField<"stop">(&CreationTry::stop)};
};

/// The version to send for a change that carries `version`; `head` is what is known of its entry.
std::optional<std::string> currentVersion(const std::optional<EntryHead> &head,
                                          const std::optional<std::string> &version);

/// Stores changes that belong together, each on top of what is queued for its entry; all or none. Answers the
/// rows as they were stored, in order.
Task<Result<std::vector<PendingChange>, StoreError>> enqueueAll(std::shared_ptr<LocalStore> store,
                                                                std::vector<Submission> submissions);

/// A row as it is to be sent.
struct StoredRow {
    PendingChange row;
    /// The version that the stored row has.
    std::optional<std::string> carried;
    std::optional<TimeEntryResponse> base;
    std::optional<CreationTry> tried;
    /// The entry, when the row wants to stop it and it was stopped already by a change of this queue.
    std::optional<TimeEntryResponse> stopped;
};

/// The first readable row above `after`, its version brought up to date; none at the end of the queue.
Task<Result<std::optional<StoredRow>, StoreError>> nextStored(std::shared_ptr<LocalStore> store,
                                                              std::int64_t after);
/// The readable rows above `after`.
Task<Result<std::vector<PendingChange>, StoreError>> storedAbove(std::shared_ptr<LocalStore> store,
                                                                 std::int64_t after);

/// Notes, before a creation is sent for the first time, in which form that happens: with the stop of that
/// number, unless another change of the entry turns out to lie between, or alone.
Task<Result<CreationTry, StoreError>> noteTry(std::shared_ptr<LocalStore> store, PendingChange creation,
                                              std::optional<std::int64_t> stop);

/// What the server's acceptance of a change brought.
struct Acceptance {
    /// What the change's user had seen of the entry.
    std::optional<TimeEntryResponse> base;
    /// The version that the stored row had, and those behind it may have.
    std::optional<std::string> carried;
    /// As the server answered; none for a deletion.
    std::optional<TimeEntryResponse> entry;
    /// The answer shows nothing but what our own changes made of the entry, so those queued behind stand on
    /// top of it.
    bool isOursAlone = true;
};

/// Takes accepted changes of one entry (a creation with its stop, else one) out of the queue. Answers the
/// rows behind them that had to be changed.
Task<Result<std::vector<PendingChange>, StoreError>>
settleAccepted(std::shared_ptr<LocalStore> store, std::vector<PendingChange> accepted, Acceptance acceptance);

/// Takes a refused change out of the queue and out of those that were made on top of it; with a refusal,
/// keeps that until it has been shown. Answers the rows that were changed.
Task<Result<std::vector<PendingChange>, StoreError>>
settleRefused(std::shared_ptr<LocalStore> store, PendingChange refused, std::optional<Refusal> refusal);

/// How its user settles a conflict.
struct KeepMine {};
struct KeepTheirs {};
/// With the entry as they put it together from both sides.
struct KeepMerged {
    EntryRequest request;
};
using Settlement = std::variant<KeepMine, KeepTheirs, KeepMerged>;

/// Settles a conflict with `current`, which the user saw. Answers the rows that were changed, that of the
/// conflict included when it stays; nothing when the row is there no more, since another process settled it.
Task<Result<std::optional<std::vector<PendingChange>>, StoreError>>
settleConflict(std::shared_ptr<LocalStore> store, std::int64_t seq, TimeEntryResponse current,
               Settlement settlement);

/// A queued change as it would be if it were made anew in `theirs`. Read in one go with what it stands on,
/// since another process may be settling it. Nothing when the row is there no more.
Task<Result<std::optional<EntryChange>, StoreError>>
changeMadeAnew(std::shared_ptr<LocalStore> store, std::int64_t seq, TimeEntryResponse theirs);

/// What became of rows that another process settled: the refusals, and the entries as its answers left them.
struct SettledElsewhere {
    std::vector<Refusal> refusals;
    std::vector<TimeEntryResponse> entries;
};
Task<Result<SettledElsewhere, StoreError>> settledElsewhere(std::shared_ptr<LocalStore> store,
                                                            std::vector<PendingChange> rows);

/// Sets aside what has not been shown. Answers all that is set aside, oldest first.
Task<Result<std::vector<Refusal>, StoreError>> setRefusalsAside(std::shared_ptr<LocalStore> store);
/// Notes that its user has answered a refusal that was set aside.
Task<StoreStatus> noteAnswered(std::shared_ptr<LocalStore> store, std::int64_t seq);

/// Notes that refusals have been shown.
Task<StoreStatus> noteShown(std::shared_ptr<LocalStore> store, std::vector<std::int64_t> seqs);

} // namespace orvane
