// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/UndoStack.h"

#include "Support/Require.h"
#include "Tracker/Tracker.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr const char *serverIsAway = "That needs the server, which cannot be reached now.";

} // namespace

// The stored history is a convenience for `orvane undo`: what could not be written there is in this stack all
// the same, so nobody waits for it or is told.

UndoStack::UndoStack(Tracker &tracker, OutboxOutcomes &outcomes, EntryHistory history)
    : m_tracker(&tracker), m_history(std::move(history))
{
    connect(&tracker, &Tracker::stepStored, this, &UndoStack::handleStored);
    connect(&outcomes, &OutboxOutcomes::rejected, this, &UndoStack::handleRejected);
}

QString UndoStack::undoText() const
{
    return m_done.empty() ? QString() : QString::fromStdString(m_done.back().sentence);
}

QString UndoStack::redoText() const
{
    return m_undone.empty() ? QString() : QString::fromStdString(m_undone.back().sentence);
}

std::deque<UndoStack::Step> &UndoStack::stepsFor(Direction direction)
{
    return direction == Direction::undo ? m_done : m_undone;
}

// What was done

void UndoStack::add(std::shared_ptr<UndoableChange> change)
{
    ORVANE_REQUIRE(change != nullptr, "an undo step without a change");
    std::string sentence = change->sentence();
    add(Step{std::move(sentence), {}, {}, std::move(change)});
}

void UndoStack::add(Step step)
{
    m_undone.clear();
    m_done.push_back(std::move(step));
    if (m_done.size() > keptSteps)
        m_done.pop_front();
    Q_EMIT changed();
}

void UndoStack::handleStored(const StoredStep &stored)
{
    if (stored.isTakeBack && m_taking)
        return handleTakenBack(stored);
    m_history.add(stored.step, stored.renamed);
    follow(stored.renamed);
    add(Step{stored.sentence, stored.step, stored.seqs, {}});
}

void UndoStack::handleTakenBack(const StoredStep &stored)
{
    const Taking taken = std::move(*m_taking);
    m_taking.reset();
    if (taken.direction == Direction::undo)
        m_history.forget(taken.step.entries, stored.renamed);
    else
        m_history.add(stored.step, stored.renamed);
    follow(stored.renamed);
    // Taking back what took it back does it again.
    const Direction other = taken.direction == Direction::undo ? Direction::redo : Direction::undo;
    stepsFor(other).push_back(Step{taken.step.sentence, stored.step, stored.seqs, {}});
    Q_EMIT changed();
    taken.ended.finish(true);
}

void UndoStack::follow(const RenamedEntries &renamed)
{
    for (std::deque<Step> *steps : {&m_done, &m_undone}) {
        for (Step &step : *steps)
            orvane::follow(step.entries, renamed);
    }
}

void UndoStack::handleRejected(const QueuedChange &row)
{
    for (std::deque<Step> *steps : {&m_done, &m_undone}) {
        const auto step = std::ranges::find_if(
            *steps, [&](const Step &one) { return std::ranges::find(one.seqs, row.seq) != one.seqs.end(); });
        if (step == steps->end())
            continue;
        const EntryStep before = step->entries;
        const auto at = std::ranges::find(step->seqs, row.seq) - step->seqs.begin();
        step->entries.turns.erase(step->entries.turns.begin() + at);
        step->seqs.erase(step->seqs.begin() + at);
        m_history.replace(before, step->entries);
        if (step->entries.turns.empty())
            steps->erase(step);
        Q_EMIT changed();
        return;
    }
}

// Undoing and doing again

Task<UndoStack::Answer> UndoStack::undo()
{
    return take(Direction::undo);
}

Task<UndoStack::Answer> UndoStack::redo()
{
    return take(Direction::redo);
}

Task<UndoStack::Answer> UndoStack::take(Direction direction)
{
    const bool isUndo = direction == Direction::undo;
    const QPointer<UndoStack> self(this);
    while (m_taking) {
        const Eventual<bool> other = m_taking->ended;
        co_await other;
        if (!self)
            co_return Answer{false, serverIsAway};
    }
    auto &steps = stepsFor(direction);
    if (steps.empty())
        co_return Answer{false, isUndo ? "There is nothing to undo." : "There is nothing to redo."};
    const Eventual<bool> ended;
    m_taking = Taking{direction, std::move(steps.back()), ended};
    steps.pop_back();
    const std::string sentence = m_taking->step.sentence;
    Answer answer = co_await (m_taking->step.change ? takeChange(ended) : takeEntries(ended));
    if (answer.isDone && answer.sentence.empty())
        answer.sentence = (isUndo ? "Undone: " : "Done again: ") + sentence;
    co_return answer;
}

bool UndoStack::isTaking(const Eventual<bool> &ended) const
{
    return m_taking && !ended.isFinished();
}

/// What is not put back is given up.
void UndoStack::endTaking(bool putsBack)
{
    const Taking taken = std::move(*m_taking);
    m_taking.reset();
    if (putsBack)
        stepsFor(taken.direction).push_back(taken.step);
    Q_EMIT changed();
    taken.ended.finish(putsBack);
}

Task<UndoStack::Answer> UndoStack::takeEntries(Eventual<bool> ended)
{
    const QPointer<UndoStack> self(this);
    const EntryStep step = m_taking->step.entries;
    if (!m_tracker)
        co_return Answer{false, serverIsAway};
    const auto loaded = co_await m_tracker->loadDaysOf(step);
    if (!self || !m_tracker)
        co_return Answer{false, serverIsAway};
    if (!loaded) {
        endTaking(true);
        co_return Answer{false, serverIsAway};
    }
    const bool waitsForTimer = m_tracker->wouldRunBeside(step);
    const SaveResult result = co_await m_tracker->takeBack(step);
    if (self && isTaking(ended)) {
        const bool isTransient = waitsForTimer || result.outcome == SaveOutcome::failed;
        if (!isTransient)
            m_history.forget(step, {});
        endTaking(isTransient);
    }
    const bool isDone = !result.turns.empty() && !result.error;
    co_return Answer{isDone, result.message};
}

Task<UndoStack::Answer> UndoStack::takeChange(Eventual<bool> ended)
{
    using Ending = UndoableChange::Ending;
    const QPointer<UndoStack> self(this);
    const std::shared_ptr<UndoableChange> change = m_taking->step.change;
    const bool isUndo = m_taking->direction == Direction::undo;
    const auto outcome = co_await (isUndo ? change->undo() : change->redo());
    const bool isDone = outcome.ending == Ending::done;
    if (self && isTaking(ended)) {
        if (isDone)
            stepsFor(isUndo ? Direction::redo : Direction::undo).push_back(m_taking->step);
        endTaking(outcome.ending == Ending::away);
    }
    co_return Answer{isDone, outcome.message};
}

} // namespace orvane
