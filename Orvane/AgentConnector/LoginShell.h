// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <map>
#include <string>
#include <vector>

namespace orvane {

/// Names and values, as a process is given them.
using ProcessEnvironment = std::map<std::string, std::string>;

/// This process's own, without what is meant for this program alone.
ProcessEnvironment currentEnvironment();

/// The user's shell by its environment: SHELL, else zsh.
std::string loginShell(const ProcessEnvironment &environment);

/// Where agents' commands are often installed, below the user's home folder and beside.
std::vector<std::string> toolFolders(const ProcessEnvironment &environment);

/// PATH with the folders for tools behind it, none twice.
std::string searchPath(const ProcessEnvironment &environment);

/// What appends those folders to PATH in the shell's own language, none twice, with a space or a line break
/// behind it: the start-up files of a login shell often begin PATH anew. Empty for a shell whose language is
/// not known.
std::string pathAssignment(const std::string &shell, const std::vector<std::string> &folders);

/// What sets a variable for whatever the shell starts, likewise.
std::string variableAssignment(const std::string &shell, const std::string &name, const std::string &value);

} // namespace orvane
