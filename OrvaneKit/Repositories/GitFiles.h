// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// What stands at a path, links followed.
enum class PathKind { missing, file, folder, other };

/// No longer path exists on the systems that we run on; in bytes.
inline constexpr std::size_t longestPath = 4096;

PathKind kindOfPath(const std::string &path);

/// Whether both paths lead to one and the same folder or file.
bool leadToSamePlace(const std::string &path, const std::string &other);

/// The path with all links resolved; none when it leads nowhere.
std::optional<std::string> resolvedPath(const std::string &path);

/// The whole lines in the first MiB of a regular file, none for everything else. A link is followed only to a
/// file of the same name: a folder of links made by somebody else does not get other kinds of files read.
std::optional<std::string> readGitFile(const std::string &path);

/// The folder that the text of a ".git" file names ("gitdir: FOLDER"), as it stands there; none when it names
/// none that could exist.
std::optional<std::string> linkedGitFolder(std::string_view text);

/// The folder that the text of a "commondir" file names, as it stands there.
std::optional<std::string> linkedCommonFolder(std::string_view text);

} // namespace orvane
