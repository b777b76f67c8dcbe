// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Tracker/UndoableChange.h"

#include <memory>

namespace orvane {

class AgentProposals;

/// A proposal that the user has just applied or dismissed, for the undo stack: undoing reopens it, and with
/// an applied one takes back what it did; doing it again settles it the same way. Main thread.
std::shared_ptr<UndoableChange> undoableSettling(AgentProposals &proposals, AgentProposalResponse settled);

} // namespace orvane
