// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// Why other users of this computer could plant files in a folder (or put another in its place) before its
/// owner writes there; empty for one that is its owner's alone to change, and for one that does not exist. A
/// sentence for people, without the folder's name. Any thread.
std::string folderFault(const std::string &path);

} // namespace orvane
