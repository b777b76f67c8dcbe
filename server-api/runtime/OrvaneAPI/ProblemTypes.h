// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

/// The `type` of those problem bodies that a program tells apart, which the API's document leaves to prose.
namespace orvane {

/// Somebody else changed the entry meanwhile; see TimeEntryChangedProblem.
inline constexpr std::string_view entryChangedProblemType = "urn:orvane:problem:entry-changed";
/// The workspace no longer allows changes to that time.
inline constexpr std::string_view timeLockedProblemType = "urn:orvane:problem:time-locked";
/// Finished entries would lose a detail that the workspace requires.
inline constexpr std::string_view detailRequiredProblemType = "urn:orvane:problem:detail-required";

} // namespace orvane
