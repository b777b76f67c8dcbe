// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Text as a terminal shows it. Widths are columns: most characters take one, East Asian wide ones and emoji
/// two, combining marks none. Everything takes UTF-8; broken bytes count as U+FFFD. Any thread.
namespace orvane {

/// The columns that the text takes.
int displayWidth(std::string_view text);

/// The text, or when it is wider its beginning and "…", together at most `width` columns. Never cuts through
/// a character and its marks.
std::string truncatedToWidth(std::string_view text, int width);

/// The text's words on lines of at most `width` columns; a word that is wider has "…" for its end.
std::vector<std::string> wordLines(std::string_view text, int width);

/// The text with line breaks put in between words, so that no line is wider than `width`, as far as words
/// allow; 0: as it is. What a line breaks into keeps its margin. Codes for colours take no room. A command
/// behind a colon ("To sign in: orvane login.") stays on one line to be copied; one that is wider than the
/// terminal is broken as a shell reads it, with a backslash.
std::string wrapped(std::string_view text, int width);

/// The text without what would drive the terminal or disguise other text: control characters and line breaks
/// become spaces, marks that turn the writing direction go. Texts of entries and names come from servers and
/// other people.
std::string printable(std::string_view text);

} // namespace orvane
