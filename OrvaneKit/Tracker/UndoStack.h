// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"
#include "Outbox/OutboxOutcomes.h"
#include "Support/Eventual.h"
#include "Support/Task.h"
#include "Tracker/EntryHistory.h"
#include "Tracker/StoredStep.h"
#include "Tracker/UndoableChange.h"

#include <QObject>
#include <QPointer>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

class Tracker;

/// What the user did in this process, to be undone and done again: every action on entries of one workspace,
/// as the tracker tells of them, and what others add. One action is one step, from the moment it is stored:
/// the server may be away, or not have answered yet.
///
/// A step whose entry is no longer what the step made of it (another device, or `orvane undo` in a terminal)
/// is refused with a sentence and given up, so that it never stands before others. A deleted entry comes back
/// under a new identifier, which all other steps follow. What the server refuses of a step goes from it.
///
/// The steps on entries are kept in the stored history too, for `orvane undo`; what is undone here is
/// forgotten there. What others did, and what was done before this process began, is not in this stack.
///
/// Owner: who owns the tracker, which outlives it, as do the outcomes. Main thread.
class UndoStack final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY changed)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY changed)
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)
    Q_PROPERTY(QString redoText READ redoText NOTIFY changed)

public:
    static constexpr std::size_t keptSteps = 100;

    /// How undoing or doing again went.
    struct Answer {
        bool isDone = false;
        /// For people, never empty: "Undone: Deleted “Stand-up”", or why it was not done.
        std::string sentence;
    };

    UndoStack(Tracker &tracker, OutboxOutcomes &outcomes, EntryHistory history);

    /// A step beside entries. Not null.
    void add(std::shared_ptr<UndoableChange> change);

    bool canUndo() const { return !m_done.empty(); }
    bool canRedo() const { return !m_undone.empty(); }
    /// What the next undo takes back ("Deleted “Stand-up”"); empty when there is nothing.
    QString undoText() const;
    QString redoText() const;

    /// Shows at once; answers when it is with the server, or waits in the outbox. One that is asked for while
    /// another is being stored takes the step after that.
    Task<Answer> undo();
    Task<Answer> redo();

Q_SIGNALS:
    void changed();

private:
    enum class Direction { undo, redo };
    struct Step {
        std::string sentence;
        EntryStep entries;
        /// Of each turn, the number of its change in the outbox.
        std::vector<std::int64_t> seqs;
        /// Instead of entries.
        std::shared_ptr<UndoableChange> change;
    };
    /// The step that is being undone or done again, on neither stack.
    struct Taking {
        Direction direction;
        Step step;
        Eventual<bool> ended;
    };

    std::deque<Step> &stepsFor(Direction direction);
    Task<Answer> take(Direction direction);
    Task<Answer> takeEntries(Eventual<bool> ended);
    Task<Answer> takeChange(Eventual<bool> ended);
    bool isTaking(const Eventual<bool> &ended) const;
    void endTaking(bool putsBack);
    void handleStored(const StoredStep &stored);
    void handleTakenBack(const StoredStep &stored);
    void handleRejected(const QueuedChange &row);
    void add(Step step);
    void follow(const RenamedEntries &renamed);

    QPointer<Tracker> m_tracker;
    EntryHistory m_history;
    std::deque<Step> m_done;
    std::deque<Step> m_undone;
    std::optional<Taking> m_taking;
};

} // namespace orvane
