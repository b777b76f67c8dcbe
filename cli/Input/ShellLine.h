// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The line of a shell as far as it was typed, for completions: what the command would get of it, and how to
/// go on writing it. Nothing is ever run or looked up for it but variables of the environment. Any thread.
namespace orvane {

enum class Shell { bash, zsh, fish };
std::optional<Shell> shellNamed(std::string_view name);

/// One word of the line.
struct ShellWord {
    enum class Quote { none, single, dual, escaped }; ///< escaped is $'...'

    std::string raw;  ///< as typed, with its quotes
    std::string text; ///< what the command would get
    /// For each byte of the text where it was typed in `raw`, and in which quotes; then the same for what
    /// would be typed next.
    std::vector<std::size_t> places;
    std::vector<Quote> quotes;
    /// Something in it stands for something else, so that it cannot be written anew from its text.
    bool isExpanded = false;
    /// Only the shell can tell what it is: it holds a command, or a variable that is not in the environment.
    bool isOpaque = false;
};

/// The words of the line; the last is the one being typed, empty when none was begun.
std::vector<ShellWord> shellWords(std::string_view line, Shell shell);

/// The text as it has to be typed inside these quotes so that bash takes it letter by letter. A `!` would be
/// looked up in the history inside double quotes, so it is written outside of them.
std::string typedForBash(std::string_view text, ShellWord::Quote quote);

/// What bash shall put in the place of `replaced`, the end of what was typed of the word, so that the word's
/// text becomes `text`. Nothing when that part does not fit: it begins inside of what has to change.
std::optional<std::string> bashReply(const ShellWord &word, std::string_view replaced, std::string_view text,
                                     std::size_t keptText);

} // namespace orvane
