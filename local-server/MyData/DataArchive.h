// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

struct ArchiveFile {
    std::string name; ///< with its folder, as in "Studio/entries.json"
    std::string content;
};

/// The files as one zip archive, all of that time, in memory. Nothing when there is no memory for it.
std::optional<std::string> zipped(const std::vector<ArchiveFile> &files, Instant time);

/// A name as one part of a path: what file systems take for something else is replaced.
std::string fileNameOf(const std::string &name);

} // namespace orvane::server
