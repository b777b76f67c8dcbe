// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Repositories/ActivityRepository.h"

#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Tells in which repository a folder lies that an agent's log names.
///
/// Values only, so one resolver serves any number of threads. It looks at the disk at every call (its answers
/// are cached by who knows when to ask again), reads ".git" files, "commondir" and "config" and nothing else,
/// each to 1 MiB at most, and runs no program. It never fails: what cannot be read or makes no sense leads to
/// a weaker answer, a tree without an origin or the bare folder.
class ActivityRepositoryResolver {
public:
    /// `home` is the user's home folder.
    explicit ActivityRepositoryResolver(std::string_view home);

    struct Resolution {
        SharedRepository repository;
        std::vector<std::string> dependencies; ///< what was read: ".git" files and folders, commondir, config
        std::vector<std::string> missing;      ///< what was looked for and does not exist
    };

    /// The working tree that holds `folder`, which need not exist; one that is not absolute lies in the home
    /// folder. "." and ".." in it are resolved as text, links are not.
    ///
    /// - All worktrees of a repository give its main working tree. Those of a bare repository give the folder
    /// of
    ///   that repository, or the one that holds it when its name begins with a dot (".bare").
    /// - A submodule, and a tree whose git folder was put elsewhere, gives its own folder.
    /// - The agent's scratch folders in the home folder are one place, named "Scratch", and no repository.
    Resolution resolve(std::string_view folder) const;

private:
    std::string standardFolder(std::string_view folder) const;

    std::string m_home;
};

} // namespace orvane
