// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

namespace orvane {

/// The git working tree that a folder lies in, or the folder itself where there is none.
struct ActivityRepository {
    std::string key;           ///< the tree's root folder, or the folder: what groups work on this computer
    std::string name;          ///< the last part of the key
    std::string origin;        ///< the address of the remote "origin" as configured; empty when there is none
    bool isRepository = false; ///< whether the folder lies in a git working tree
    std::string identity;      ///< names the repository on every computer without telling a path

    bool operator==(const ActivityRepository &) const = default;
};

/// Many segments and runs of a day are of one repository; they share it. Never null.
using SharedRepository = std::shared_ptr<const ActivityRepository>;

} // namespace orvane
