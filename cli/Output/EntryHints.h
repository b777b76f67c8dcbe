// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryRules.h"
#include "EntryInput/EntryWarning.h"
#include "Time/UserTime.h"

#include <string>
#include <vector>

/// Sentences about an entry that say what to do next. Pure; any thread.
namespace orvane {

/// "a description and a project".
std::string missingText(const std::vector<RequiredDetail> &missing);
/// A sentence that has them, to be filled in: "what it was @project #tag".
std::string missingSentence(const std::vector<RequiredDetail> &missing);
/// What a timer needs before it may stop, and the command that gives it.
std::string stopNeedsText(const std::vector<RequiredDetail> &missing);
/// As programs know them: "description", "projectId", "taskId", "tagIds".
std::vector<std::string> missingNames(const std::vector<RequiredDetail> &missing);

/// What is unusual about when an entry lies, in a sentence each.
std::vector<std::string> warningTexts(const std::vector<EntryWarning> &warnings, const UserTime &time);

/// The command line that makes the entry anew; empty for one that a line cannot make, as a split one.
std::string makingLine(const TimeEntryResponse &entry, const Catalog &catalog, const UserTime &time);

} // namespace orvane
