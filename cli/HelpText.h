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

/// How a command is called: "orvane projects".
std::string callOf(const CLI::App *command);

} // namespace orvane
