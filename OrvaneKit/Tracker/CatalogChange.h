// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Tracker/CatalogEditor.h"
#include "Tracker/UndoableChange.h"

#include <memory>

/// Changes of what entries point into, as steps to undo: each puts back what `before` says where it differs
/// from `after` (names, fields, archived or not), if the thing still is as `after` says. `before` and `after`
/// are of one thing, as the server gave them. What the editor needs outlives the step. Main thread.
namespace orvane {

class Tracker;

std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, ProjectResponse before,
                                               ProjectResponse after);
std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, ClientResponse before,
                                               ClientResponse after);
std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, TaskResponse before,
                                               TaskResponse after);
std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, TagResponse before,
                                               TagResponse after);

} // namespace orvane
