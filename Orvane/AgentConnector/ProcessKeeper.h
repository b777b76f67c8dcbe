// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

/// What a keeper is told; all of it is made before the fork.
struct KeeperOrder {
    const char *program = nullptr;
    char *const *arguments = nullptr;
    char *const *environment = nullptr;
    /// To read from: nothing comes, but once its other end is closed (or dies) the program is given up.
    int control = -1;
    /// To write to: the program's status as `waitpid` tells it, once nothing of it runs any more. Closed
    /// without it when the program was given up.
    int status = -1;
    /// Takes what the program prints.
    int output = -1;
    /// What has gone over to a session of its own, like a browser, outlives a program that ended by itself.
    bool sparesDetached = false;
};

/// The life of a process between this one and a program that is not to leave anything behind: it starts the
/// program in a session of its own without input, adopts what loses its parent, and ends all of that when the
/// program is over or given up, also when the process that gave the order is killed. It stands between so
/// that only a process of its own adopts orphans.
///
/// To be called in a fork, also of a process with threads: it does only what a signal handler may.
[[noreturn]] void keepProcess(KeeperOrder order);

} // namespace orvane
