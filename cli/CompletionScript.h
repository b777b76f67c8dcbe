// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace CLI {
class App;
} // namespace CLI

namespace orvane {

/// The script that teaches a shell ("bash", "zsh" or "fish") the commands, verbs and options of the tree;
/// nothing for another shell. Made from the tree that parses, so the two agree.
std::optional<std::string> completionScript(const CLI::App &root, std::string_view shell);

} // namespace orvane
