// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

/// How a text becomes a session's title. Any thread.
namespace orvane::sessiontitle {

/// Code points of a title, at most.
inline constexpr int longest = 80;

/// The text on one line, without terminal control sequences and other control characters, cut to 80 code
/// points. Bytes that are no UTF-8 become U+FFFD.
std::string of(std::string_view text);

/// A prompt's first 80 code points as `of` gives them. A slash command reads as it was typed ("/review
/// main").
std::string ofPrompt(std::string_view prompt);

/// Whether the prompt says what the session is about. A slash command or a shell line does not, and gives way
/// to a later prompt.
bool isTelling(std::string_view prompt);

} // namespace orvane::sessiontitle
