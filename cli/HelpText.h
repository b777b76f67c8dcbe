// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <string>

namespace orvane {

/// The text of `--help`: what the command does, how it is called, its arguments, options and verbs. The
/// options of every command are listed with the program's own help alone.
class HelpText final : public CLI::Formatter {
public:
    std::string make_help(const CLI::App *command, std::string name, CLI::AppFormatMode mode) const override;
};

/// The same for people or, with `json`, for programs: `{name, summary, usage, more, arguments, options,
/// commands}`. An argument is `{name, help, required, repeats}`, an option `{name, short, value, help}` with
/// `short` and `value` null where it has none; `commands` are of the same shape as the whole.
std::string helpOf(const CLI::App *command, bool json);

/// How a command is called: "orvane projects".
std::string callOf(const CLI::App *command);

} // namespace orvane
