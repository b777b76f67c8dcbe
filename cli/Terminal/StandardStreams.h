// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The process's standard streams, written without buffers of the library in between, so that a failure is
/// known.
namespace orvane {

/// Writes all of it to standard output. False when it could not: the reader went away, the disk is full.
[[nodiscard]] bool writeOutput(std::string_view text);

/// A line for people on standard error, with the line break added. A running progress line is cleared first.
void writeMessage(std::string_view text);
/// From here on `writeMessage` and progress lines say nothing: programs read, and want their one value alone.
void muteMessages();
bool areMessagesMuted();
/// Text for people on standard error as it is.
void writeErrors(std::string_view text);

/// The first line of standard input without its line break, at most 4096 bytes; what follows is not kept.
std::string readInputLine();

/// All lines of standard input without their line breaks, at most a mebibyte.
std::vector<std::string> readInputLines();

/// Whether somebody sits there and can be asked.
bool canAsk();
/// Asks on the terminal; `hidden` shows nothing of what is typed. Empty when nothing was typed.
std::string ask(std::string_view question, bool hidden);

/// Takes over Ctrl-C: it ends the process at once with exit status 130, the terminal as it was found. What
/// was changed is on disk by then, since a change is stored before anything else happens to it. Also makes a
/// closed pipe an error of writing instead of the process's end.
void takeOverSignals();
/// Gives both back, for a program that takes this one's place.
void giveBackSignals();

/// Tells the handler whether a progress line has to be cleared.
void setProgressIsShown(bool isShown);

} // namespace orvane
