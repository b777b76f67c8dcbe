// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Task.h"

#include <string>

namespace orvane {

/// A change beside entries (a project was renamed, a setting chosen) that can be made undone and done again.
/// Unlike a change of an entry it needs the server. Owner: the undo stack. Main thread.
class UndoableChange {
public:
    enum class Ending {
        done,
        changedSince, ///< it is no longer what the change made of it; left as it is
        refused,      ///< the server does not allow it
        away,         ///< the server cannot be asked now
    };
    struct Outcome {
        Ending ending = Ending::done;
        /// Why not, for people; empty when done.
        std::string message = {};
    };

    UndoableChange() = default;
    UndoableChange(const UndoableChange &) = delete;
    UndoableChange &operator=(const UndoableChange &) = delete;
    virtual ~UndoableChange() = default;

    /// What was done, for people: "Archived “Website”".
    virtual std::string sentence() const = 0;
    /// A call under way may outlive this object.
    virtual Task<Outcome> undo() = 0;
    virtual Task<Outcome> redo() = 0;
};

} // namespace orvane
