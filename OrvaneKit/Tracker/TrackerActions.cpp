// SPDX-License-Identifier: GPL-3.0-or-later
// What the user does: each action checks the rules that need no server, and hands its changes to the outbox.
#include "Tracker/Tracker.h"

#include "Catalog/EntryConversions.h"
#include "Outbox/EntryMerge.h"
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
            .turns = {}};
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

Task<SaveResult> Tracker::submit(std::vector<Submission> changes, std::string id, SaveOutcome whenDone)
{
    const QPointer<Tracker> self(this);
    std::vector<EntryTurn> turns;
    std::ranges::transform(changes, std::back_inserter(turns), turnOf);
    auto outcomes = co_await m_parts.outbox->submit(std::move(changes));
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
                      .turns = {}};
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
            result.message =
                "This entry was changed on another device. Your change waits until you choose which to keep.";
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
    if (auto refused = checkRules(request))
        co_return std::move(*refused);
    std::vector<Submission> changes;
    if (!request.stop && running()) {
        const TimeEntryResponse running = *this->running();
        if (running.start > request.start)
            co_return refusedHere(SaveOutcome::rejected,
                                  "Another timer runs since " + m_parts.time.timeLabel(running.start) +
                                      ", which is later than that. Stop or change it first.");
        if (auto missing = missingTo(running); !missing.empty())
            co_return lacking(std::move(missing), stopNeedsDetails);
        changes.push_back(made(stopChange(running, request.start), running));
    }
    const std::string id = nextIdentifier();
    changes.push_back({EntryChange{EntryChange::Create{std::move(request), id, m_parts.workspace.id}}, {}});
    co_return co_await submit(std::move(changes), id, SaveOutcome::saved);
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
    const auto known = entry(id);
    if (!known)
        co_return refusedHere(SaveOutcome::failed, "There is no such entry.");
    if (auto refused = checkRules(request))
        co_return std::move(*refused);
    if (m_settings && rules().isLocked(known->start))
        co_return refusedHere(SaveOutcome::rejected, "This entry lies in a locked period of the workspace.");
    std::vector<Submission> changes;
    changes.push_back(
        made(EntryChange{EntryChange::Update{std::move(request), id, known->workspaceId, versionOf(*known)}},
             *known));
    co_return co_await submit(std::move(changes), id, SaveOutcome::saved);
}

Task<SaveResult> Tracker::duplicate(std::string id)
{
    const auto known = entry(id);
    if (!known)
        co_return refusedHere(SaveOutcome::failed, "There is no such entry.");
    EntryRequest request = entryRequest(*known);
    if (!request.stop)
        request.stop = std::max(millisecondsFloor(AppClock::now()), request.start);
    co_return co_await create(std::move(request));
}

Task<SaveResult> Tracker::split(std::string id, std::vector<SplitPart> shares)
{
    const auto known = entry(id);
    if (!known)
        co_return refusedHere(SaveOutcome::failed, "There is no such entry.");
    EntryRequest request = entryRequest(*known);
    request.describeParts =
        std::ranges::any_of(shares, [](const SplitPart &part) { return !part.description.empty(); });
    request.details.shares = std::move(shares);
    co_return co_await update(std::move(id), std::move(request));
}

Task<SaveResult> Tracker::remove(std::string id)
{
    const auto known = entry(id);
    if (!known)
        co_return refusedHere(SaveOutcome::failed, "There is no such entry.");
    if (m_settings && rules().isLocked(known->start))
        co_return refusedHere(SaveOutcome::rejected, "This entry lies in a locked period of the workspace.");
    std::vector<Submission> changes;
    changes.push_back(
        made(EntryChange{EntryChange::Delete{id, known->workspaceId, versionOf(*known)}}, *known));
    SaveResult result = co_await submit(std::move(changes), id, SaveOutcome::saved);
    if (result.outcome != SaveOutcome::rejected)
        result.entry.reset();
    co_return result;
}

/// The changes that make the entries what they were, the last change first.
Result<std::vector<Submission>, SaveResult> Tracker::takenBack(const EntryStep &step)
{
    std::vector<Submission> changes;
    for (auto turn = step.turns.rbegin(); turn != step.turns.rend(); ++turn) {
        const auto known = entry(turn->id());
        const bool isAsMade = turn->after ? known && saysTheSame(*known, *turn->after) : !known;
        if (!isAsMade)
            return failure(refusedHere(SaveOutcome::rejected,
                                       "That cannot be taken back: the entry was changed since then."));
        if (!turn->before) {
            changes.push_back(made(
                EntryChange{EntryChange::Delete{known->id, known->workspaceId, versionOf(*known)}}, *known));
            continue;
        }
        EntryRequest request = entryRequest(*turn->before);
        if (auto refused = checkRules(request))
            return failure(std::move(*refused));
        if (known)
            changes.push_back(made(EntryChange{EntryChange::Update{std::move(request), known->id,
                                                                   known->workspaceId, versionOf(*known)}},
                                   *known));
        else
            changes.push_back(
                {EntryChange{EntryChange::Create{std::move(request), nextIdentifier(), m_parts.workspace.id}},
                 {}});
    }
    return changes;
}

Task<SaveResult> Tracker::takeBack(EntryStep step)
{
    const auto startsAgain = [](const EntryTurn &turn) {
        return turn.before && !turn.before->stop && (!turn.after || turn.after->stop);
    };
    const auto isOfStep = [&](const std::string &id) {
        return std::ranges::any_of(step.turns, [&](const EntryTurn &turn) { return turn.id() == id; });
    };
    if (std::ranges::any_of(step.turns, startsAgain) && running() && !isOfStep(running()->id))
        co_return refusedHere(SaveOutcome::rejected,
                              "That cannot be taken back: another timer runs by now. Stop it first.");
    auto changes = takenBack(step);
    if (!changes)
        co_return changes.error();
    const std::string shown = changes->back().change.entryId();
    co_return co_await submit(std::move(*changes), shown, SaveOutcome::saved);
}

} // namespace orvane
