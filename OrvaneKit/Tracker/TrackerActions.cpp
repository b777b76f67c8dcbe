// SPDX-License-Identifier: GPL-3.0-or-later
// What the user does: each action checks the rules that need no server, and hands its changes to the outbox.
#include "Tracker/Tracker.h"

#include "Catalog/EntryConversions.h"
#include "Outbox/EntryMerge.h"
#include "Support/Require.h"
#include "Time/AppClock.h"
#include "Tracker/Overlay.h"

#include <QPointer>
#include <QUuid>
#include <algorithm>
#include <numeric>

namespace orvane {

namespace {

/// How far back "continue" looks for an entry.
constexpr int weeksSearched = 8;

std::string newIdentifier()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

/// Without a version (an entry that another process sent, not fetched since) a change is made
/// unconditionally.
std::optional<std::string> versionOf(const TimeEntryResponse &entry)
{
    return entry.version.empty() ? std::nullopt : std::optional{entry.version};
}

EntryChange stopChange(const TimeEntryResponse &running, Instant at)
{
    return EntryChange{EntryChange::Stop{at, running.id, running.workspaceId, versionOf(running)}};
}

/// What a change makes of its entry, as far as it is known here.
EntryTurn turnOf(const Submission &submission)
{
    if (const auto *create = std::get_if<EntryChange::Create>(&submission.change.action))
        return {{}, entryResponse(create->request, create->id, create->workspaceId)};
    return {submission.base, submission.base ? applied(submission.change, *submission.base) : std::nullopt};
}

constexpr const char *stopNeedsDetails = "Add the details this workspace requires to stop the timer.";
constexpr const char *changeWaits =
    "This entry was changed on another device. Your change waits until you choose which to keep.";
constexpr const char *noSuchEntry = "There is no such entry.";

/// The details of a part of an entry that is divided in time, as a request.
EntryRequest requestFor(EntryDetails details, Instant start, std::optional<Instant> stop)
{
    const bool describeParts = std::ranges::any_of(details.shares, [&](const SplitPart &part) {
        return !part.description.empty() && part.description != details.description;
    });
    return {std::move(details), start, stop, describeParts};
}

} // namespace

/// A change with what its user sees of the entry, and with what the server last said of it.
Submission Tracker::made(EntryChange change, const TimeEntryResponse &shown) const
{
    Submission submission{std::move(change), shown, {}};
    if (const TimeEntryResponse *known = m_known.find(shown.id))
        submission.server = *known;
    return submission;
}

SaveResult Tracker::refusedHere(SaveOutcome outcome, std::string message) const
{
    return {.outcome = outcome,
            .isQueued = false,
            .entry = {},
            .message = std::move(message),
            .error = {},
            .seqs = {},
            .missing = {},
            .turns = {},
            .renamed = {}};
}

SaveResult Tracker::lacking(std::vector<RequiredDetail> missing, std::string message) const
{
    SaveResult result = refusedHere(SaveOutcome::needsDetails, std::move(message));
    result.missing = std::move(missing);
    return result;
}

std::string Tracker::nextIdentifier() const
{
    return m_parts.newIdentifier ? m_parts.newIdentifier() : newIdentifier();
}

/// The refusal that the server would give as well, where that can be known here.
std::optional<SaveResult> Tracker::checkRules(const EntryRequest &request) const
{
    if (!isAcceptable(request.start) || (request.stop && !isAcceptable(*request.stop)))
        return refusedHere(SaveOutcome::rejected, "That time is out of range.");
    if (request.stop && *request.stop < request.start)
        return refusedHere(SaveOutcome::rejected, "The end must not be before the start.");
    const auto &shares = request.details.shares;
    const auto sum =
        std::accumulate(shares.begin(), shares.end(), std::int64_t{0},
                        [](std::int64_t total, const SplitPart &part) { return total + part.percent; });
    if (!shares.empty() && sum != 100)
        return refusedHere(SaveOutcome::rejected, "The shares of a split entry must add up to 100 percent.");
    if (!m_settings)
        return std::nullopt;
    const EntryRules rules = this->rules();
    if (rules.isLocked(request.start))
        return refusedHere(SaveOutcome::rejected,
                           "Time before " +
                               m_parts.time.dayTitle(m_parts.time.dayKey(*m_settings->lockedBefore)) +
                               " is locked in this workspace.");
    if (auto missing = rules.missing(request.details); request.stop && !missing.empty())
        return lacking(std::move(missing), "Add the details this workspace requires.");
    return std::nullopt;
}

/// `step` says what there is to say beyond the changes: a sentence of its own, or that it takes back.
Task<SaveResult> Tracker::submit(std::vector<Submission> changes, std::string id, SaveOutcome whenDone,
                                 StoredStep step)
{
    const QPointer<Tracker> self(this);
    std::vector<EntryTurn> turns;
    std::ranges::transform(changes, std::back_inserter(turns), turnOf);
    step.step.turns = turns;
    if (step.sentence.empty())
        step.sentence = sentenceOf(step.step);
    const auto tell = [self, step = std::move(step)](const std::vector<std::int64_t> &seqs) mutable {
        step.seqs = seqs;
        if (self)
            Q_EMIT self->stepStored(step);
    };
    auto outcomes = co_await m_parts.outbox->submit(std::move(changes), tell);
    if (!outcomes)
        co_return refusedHere(SaveOutcome::failed, describe(outcomes.error()));
    if (!self)
        co_return refusedHere(SaveOutcome::waiting, {});
    SaveResult result{.outcome = whenDone,
                      .isQueued = false,
                      .entry = entry(id),
                      .message = {},
                      .error = {},
                      .seqs = {},
                      .missing = {},
                      .turns = {},
                      .renamed = {}};
    for (std::size_t i = 0; i < outcomes->size(); ++i) {
        const Outbox::Outcome &outcome = (*outcomes)[i];
        result.seqs.push_back(std::visit([](const auto &one) { return one.seq; }, outcome));
        if (const auto *rejected = std::get_if<Outbox::Rejected>(&outcome)) {
            result.error = rejected->error;
            result.message = describe(rejected->error);
        } else {
            result.turns.push_back(std::move(turns[i]));
        }
    }
    if (std::holds_alternative<Outbox::Rejected>(outcomes->back())) {
        result.outcome = SaveOutcome::rejected;
    } else if (std::holds_alternative<Outbox::Queued>(outcomes->back())) {
        result.isQueued = true;
        if (whenDone == SaveOutcome::saved)
            result.outcome = SaveOutcome::waiting;
        const auto conflicts = m_parts.outbox->conflicts();
        const bool isInConflict = std::ranges::any_of(
            conflicts, [&](const Outbox::Pending &row) { return row.change.entryId() == id; });
        if (isInConflict)
            result.message = changeWaits;
    }
    co_return result;
}

Task<SaveResult> Tracker::start(EntryDetails details, Instant at)
{
    EntryRequest request{
        .details = std::move(details), .start = millisecondsFloor(at), .stop = {}, .describeParts = false};
    co_return co_await create(std::move(request));
}

Task<SaveResult> Tracker::create(EntryRequest request)
{
    if (auto refused = refusalOf(request))
        co_return std::move(*refused);
    std::vector<Submission> changes;
    if (!request.stop && running()) {
        const TimeEntryResponse running = *this->running();
        changes.push_back(made(stopChange(running, request.start), running));
    }
    const std::string id = nextIdentifier();
    changes.push_back({EntryChange{EntryChange::Create{std::move(request), id, m_parts.workspace.id}}, {}});
    co_return co_await submit(std::move(changes), id, SaveOutcome::saved);
}

std::optional<SaveResult> Tracker::refusalOf(const EntryRequest &request) const
{
    if (auto refused = checkRules(request))
        return refused;
    if (request.stop || !running())
        return std::nullopt;
    const TimeEntryResponse &running = *this->running();
    if (running.start > request.start)
        return refusedHere(SaveOutcome::rejected, "Another timer runs since " +
                                                      m_parts.time.timeLabel(running.start) +
                                                      ", which is later than that. Stop or change it first.");
    if (auto missing = missingTo(running); !missing.empty())
        return lacking(std::move(missing), stopNeedsDetails);
    return std::nullopt;
}

std::vector<RequiredDetail> Tracker::missingTo(const TimeEntryResponse &running) const
{
    // The rules of another workspace, where the timer may run as well, are not known here.
    if (running.workspaceId != m_parts.workspace.id || !m_settings)
        return {};
    return rules().missing(entryDetails(running));
}

Task<SaveResult> Tracker::stop(Instant at)
{
    if (!running())
        co_return refusedHere(SaveOutcome::failed, "No timer is running.");
    const TimeEntryResponse running = *this->running();
    const Instant end = millisecondsFloor(at);
    if (end < running.start || !isAcceptable(end))
        co_return refusedHere(SaveOutcome::rejected, "The end must not be before the start.");
    if (auto missing = missingTo(running); !missing.empty())
        co_return lacking(std::move(missing), stopNeedsDetails);
    std::vector<Submission> changes;
    changes.push_back(made(stopChange(running, end), running));
    SaveResult result = co_await submit(std::move(changes), running.id, SaveOutcome::stopped);
    if (!result.entry)
        result.entry = applied(stopChange(running, end), running);
    co_return result;
}

Task<SaveResult> Tracker::stop(Instant at, EntryDetails details, bool describeParts)
{
    if (!running())
        co_return refusedHere(SaveOutcome::failed, "No timer is running.");
    const TimeEntryResponse running = *this->running();
    EntryRequest request{std::move(details), running.start, millisecondsFloor(at), describeParts};
    SaveResult result = co_await update(running.id, std::move(request));
    if (result.outcome == SaveOutcome::needsDetails)
        result.message = stopNeedsDetails;
    else if (result.outcome == SaveOutcome::saved || result.outcome == SaveOutcome::waiting)
        result.outcome = SaveOutcome::stopped;
    co_return result;
}

Task<Result<TimeEntryResponse, SaveResult>> Tracker::lastStopped()
{
    const QPointer<Tracker> self(this);
    const auto find = [this]() {
        const auto found = std::ranges::find_if(
            entries(), [](const TimeEntryResponse &entry) { return entry.stop.has_value(); });
        return found == entries().end() ? std::nullopt : std::optional{*found};
    };
    auto last = find();
    bool isLoaded = true;
    while (!last && isLoaded && m_weeksLoaded < weeksSearched) {
        isLoaded = (co_await loadWeekBefore()).has_value();
        if (!self)
            co_return failure(SaveResult{});
        last = find();
    }
    if (!last && !isLoaded)
        co_return failure(
            refusedHere(SaveOutcome::failed,
                        "No earlier entry is known on this computer, and the server cannot be asked now."));
    if (!last)
        co_return failure(refusedHere(SaveOutcome::failed, "There is no entry to continue yet."));
    co_return TimeEntryResponse(*last);
}

Task<SaveResult> Tracker::continueLast(Instant at)
{
    const QPointer<Tracker> self(this);
    const auto last = co_await lastStopped();
    if (!self || !last)
        co_return last ? SaveResult{} : last.error();
    // As it was, its parts' own descriptions included.
    EntryRequest request = entryRequest(*last);
    request.start = millisecondsFloor(at);
    request.stop.reset();
    co_return co_await create(std::move(request));
}

Task<SaveResult> Tracker::update(std::string id, EntryRequest request)
{
    auto change = updated(id, std::move(request));
    if (!change)
        co_return std::move(change.error());
    std::vector<Submission> changes;
    changes.push_back(std::move(*change));
    co_return co_await submit(std::move(changes), id, SaveOutcome::saved);
}

/// The change, unless it can be refused here.
Result<Submission, SaveResult> Tracker::updated(const std::string &id, EntryRequest request) const
{
    const auto known = entry(id);
    if (!known)
        return failure(refusedHere(SaveOutcome::failed, noSuchEntry));
    if (auto refused = checkRules(request))
        return failure(std::move(*refused));
    if (m_settings && rules().isLocked(known->start))
        return failure(
            refusedHere(SaveOutcome::rejected, "This entry lies in a locked period of the workspace."));
    return made(
        EntryChange{EntryChange::Update{std::move(request), id, known->workspaceId, versionOf(*known)}},
        *known);
}

Task<SaveResult> Tracker::duplicate(std::string id)
{
    const auto known = entry(id);
    if (!known)
        co_return refusedHere(SaveOutcome::failed, noSuchEntry);
    EntryRequest request = entryRequest(*known);
    if (!request.stop)
        request.stop = std::max(millisecondsFloor(AppClock::now()), request.start);
    co_return co_await create(std::move(request));
}

Task<SaveResult> Tracker::splitAt(std::string id, Instant at, EntryDetails second,
                                  std::optional<EntryDetails> first)
{
    const auto known = entry(id);
    if (!known)
        co_return refusedHere(SaveOutcome::failed, noSuchEntry);
    auto changes = dividedAt(*known, millisecondsFloor(at), std::move(second), std::move(first));
    if (!changes)
        co_return std::move(changes.error());
    StoredStep step;
    step.sentence = "Split " + quotedEntry(*known) + " at " + m_parts.time.timeLabel(at);
    const std::string rest = changes->back().change.entryId();
    co_return co_await submit(std::move(*changes), rest, SaveOutcome::saved, std::move(step));
}

Result<std::vector<Submission>, SaveResult> Tracker::dividedAt(const TimeEntryResponse &entry, Instant at,
                                                               EntryDetails second,
                                                               std::optional<EntryDetails> first) const
{
    if (at <= entry.start || at >= entry.stop.value_or(AppClock::now()))
        return failure(refusedHere(SaveOutcome::rejected, "An entry can only be split at a time within it."));
    std::vector<Submission> changes;
    auto ended = endedAt(entry, at, std::move(first));
    if (!ended)
        return failure(std::move(ended.error()));
    changes.push_back(std::move(*ended));
    EntryRequest rest = requestFor(std::move(second), at, entry.stop);
    if (auto refused = checkRules(rest))
        return failure(std::move(*refused));
    changes.push_back(
        {EntryChange{EntryChange::Create{std::move(rest), nextIdentifier(), entry.workspaceId}}, {}});
    return changes;
}

/// The change that ends an entry before its time, with other details where there are any; a running one that
/// keeps its details is stopped.
Result<Submission, SaveResult> Tracker::endedAt(const TimeEntryResponse &entry, Instant at,
                                                std::optional<EntryDetails> details) const
{
    if (entry.stop || details) {
        EntryRequest request =
            details ? requestFor(std::move(*details), entry.start, at) : entryRequest(entry);
        request.stop = at;
        return updated(entry.id, std::move(request));
    }
    if (auto missing = missingTo(entry); !missing.empty())
        return failure(lacking(std::move(missing), stopNeedsDetails));
    if (m_settings && rules().isLocked(entry.start))
        return failure(
            refusedHere(SaveOutcome::rejected, "This entry lies in a locked period of the workspace."));
    return made(stopChange(entry, at), entry);
}

Task<SaveResult> Tracker::split(std::string id, std::vector<SplitPart> shares)
{
    const auto known = entry(id);
    if (!known)
        co_return refusedHere(SaveOutcome::failed, noSuchEntry);
    EntryRequest request = entryRequest(*known);
    request.describeParts =
        std::ranges::any_of(shares, [](const SplitPart &part) { return !part.description.empty(); });
    request.details.shares = std::move(shares);
    co_return co_await update(std::move(id), std::move(request));
}

/// The removal, unless it can be refused here.
Result<Submission, SaveResult> Tracker::removed(const std::string &id) const
{
    const auto known = entry(id);
    if (!known)
        return failure(refusedHere(SaveOutcome::failed, noSuchEntry));
    if (m_settings && rules().isLocked(known->start))
        return failure(
            refusedHere(SaveOutcome::rejected, "This entry lies in a locked period of the workspace."));
    return made(EntryChange{EntryChange::Delete{id, known->workspaceId, versionOf(*known)}}, *known);
}

Task<SaveResult> Tracker::remove(std::string id)
{
    auto change = removed(id);
    if (!change)
        co_return std::move(change.error());
    std::vector<Submission> changes;
    changes.push_back(std::move(*change));
    SaveResult result = co_await submit(std::move(changes), id, SaveOutcome::saved);
    if (result.outcome != SaveOutcome::rejected)
        result.entry.reset();
    co_return result;
}

Task<SaveResult> Tracker::updateAll(std::vector<std::pair<std::string, EntryRequest>> requests)
{
    std::vector<Submission> changes;
    for (auto &[id, request] : requests) {
        auto change = updated(id, std::move(request));
        if (!change)
            co_return std::move(change.error());
        changes.push_back(std::move(*change));
    }
    co_return co_await submitAll(std::move(changes));
}

Task<SaveResult> Tracker::removeAll(std::vector<std::string> ids)
{
    std::vector<Submission> changes;
    for (const std::string &id : ids) {
        auto change = removed(id);
        if (!change)
            co_return std::move(change.error());
        changes.push_back(std::move(*change));
    }
    co_return co_await submitAll(std::move(changes));
}

/// Changes of different entries, none of which stands on another.
Task<SaveResult> Tracker::submitAll(std::vector<Submission> changes)
{
    if (changes.empty())
        co_return refusedHere(SaveOutcome::failed, "There is nothing to change.");
    std::set<std::string> ids;
    for (const Submission &submission : changes)
        ids.insert(submission.change.entryId());
    ORVANE_REQUIRE(ids.size() == changes.size(), "an entry is changed twice in one action");
    const QPointer<Tracker> self(this);
    const std::size_t count = changes.size();
    const std::string shown = changes.back().change.entryId();
    SaveResult result = co_await submit(std::move(changes), shown, SaveOutcome::saved);
    if (!self)
        co_return result;
    const auto isWaiting = [&](const Outbox::Pending &row) { return ids.contains(row.change.entryId()); };
    const auto conflicts = m_parts.outbox->conflicts();
    result.isQueued = std::ranges::any_of(m_parts.outbox->pending(), isWaiting);
    if (result.error) {
        const std::size_t refused = count - result.turns.size();
        result.outcome = SaveOutcome::rejected;
        if (count > 1)
            result.message = std::to_string(refused) + " of " + std::to_string(count) +
                             " entries were not changed: " + describe(*result.error);
    } else if (result.isQueued) {
        result.outcome = SaveOutcome::waiting;
        if (std::ranges::any_of(conflicts, isWaiting))
            result.message = changeWaits;
    }
    co_return result;
}

/// The changes that make the entries what they were, the last change first.
Result<Tracker::TakenBack, SaveResult> Tracker::takenBack(const EntryStep &step) const
{
    TakenBack back;
    for (auto turn = step.turns.rbegin(); turn != step.turns.rend(); ++turn) {
        const auto known = entry(turn->id());
        const bool isAsMade = turn->after ? known && saysTheSame(*known, *turn->after) : !known;
        if (!isAsMade)
            return failure(refusedHere(SaveOutcome::rejected,
                                       "That cannot be taken back: the entry was changed since then."));
        if (!turn->before) {
            back.changes.push_back(made(
                EntryChange{EntryChange::Delete{known->id, known->workspaceId, versionOf(*known)}}, *known));
            continue;
        }
        EntryRequest request = entryRequest(*turn->before);
        if (auto refused = checkRules(request))
            return failure(std::move(*refused));
        if (known) {
            back.changes.push_back(
                made(EntryChange{EntryChange::Update{std::move(request), known->id, known->workspaceId,
                                                     versionOf(*known)}},
                     *known));
            continue;
        }
        const std::string id = nextIdentifier();
        back.renamed.emplace_back(turn->id(), id);
        back.changes.push_back(
            {EntryChange{EntryChange::Create{std::move(request), id, m_parts.workspace.id}}, {}});
    }
    return back;
}

bool Tracker::wouldRunBeside(const EntryStep &step) const
{
    const auto startsAgain = [](const EntryTurn &turn) {
        return turn.before && !turn.before->stop && (!turn.after || turn.after->stop);
    };
    const auto isOfStep = [&](const std::string &id) {
        return std::ranges::any_of(step.turns, [&](const EntryTurn &turn) { return turn.id() == id; });
    };
    return std::ranges::any_of(step.turns, startsAgain) && running() && !isOfStep(running()->id);
}

Task<SaveResult> Tracker::takeBack(EntryStep step)
{
    if (wouldRunBeside(step))
        co_return refusedHere(SaveOutcome::rejected,
                              "That cannot be taken back: another timer runs by now. Stop it first.");
    auto back = takenBack(step);
    if (!back)
        co_return std::move(back.error());
    const std::string shown = back->changes.back().change.entryId();
    const RenamedEntries renamed = back->renamed;
    StoredStep stored;
    stored.isTakeBack = true;
    stored.renamed = renamed;
    SaveResult result =
        co_await submit(std::move(back->changes), shown, SaveOutcome::saved, std::move(stored));
    result.renamed = renamed;
    co_return result;
}

Task<Result<std::optional<EntryStep>, StoreError>> Tracker::settle(std::int64_t seq, Settlement settlement,
                                                                   TimeEntryResponse theirs)
{
    const QPointer<Tracker> self(this);
    const auto step = std::make_shared<EntryStep>();
    const bool keepsMine = std::holds_alternative<KeepMine>(settlement);
    const auto onStored = [self, step, seq, theirs, keepsMine, mine = entry(theirs.id)] {
        if (!self || theirs.workspaceId != self->m_parts.workspace.id)
            return;
        // Beside the loaded days an entry is shown only while a change of it waits.
        auto settled = self->entry(theirs.id);
        if (!settled && !keepsMine)
            settled = theirs;
        const bool isTheirs = settled && saysTheSame(*settled, theirs);
        *step = self->noteSettled(seq, {isTheirs ? mine : theirs, settled});
    };
    Outbox &outbox = *m_parts.outbox;
    auto *merged = std::get_if<KeepMerged>(&settlement);
    const auto settled = co_await (
        merged != nullptr ? outbox.keepMerged(seq, std::move(merged->request), std::move(theirs), onStored)
        : keepsMine       ? outbox.keepMine(seq, onStored)
                          : outbox.keepTheirs(seq, onStored));
    if (!settled)
        co_return failure(settled.error());
    co_return *settled ? std::optional(*step) : std::nullopt;
}

EntryStep Tracker::noteSettled(std::int64_t seq, EntryTurn turn)
{
    if (!turn.before && !turn.after)
        return {};
    const std::string sentence = "Settled " + quotedEntry(turn.after ? *turn.after : *turn.before);
    const EntryStep step{{std::move(turn)}};
    Q_EMIT stepStored({step, {seq}, sentence});
    return step;
}

Task<CallResult<void>> Tracker::loadDaysOf(EntryStep step)
{
    const QPointer<Tracker> self(this);
    for (const EntryTurn &turn : step.turns) {
        if (!self || !turn.after || entry(turn.id()))
            continue;
        const auto loaded = co_await loadDays(m_parts.time.dayKey(turn.after->start), 1);
        if (!loaded)
            co_return failure(loaded.error());
    }
    co_return CallResult<void>{};
}

} // namespace orvane
