// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <sys/types.h>

/// What a process has to know of those that come from it. Everything here may be called where only a signal
/// handler's calls are allowed, as after a fork of a process with threads.
namespace orvane {

/// Whoever loses its parent below this process becomes this process's child, where the system can do that. It
/// holds for the whole process, so it is for one that does nothing else.
void adoptOrphans();

/// The processes below this one that have to be ended one by one: where it adopts orphans its children, whose
/// own become its children in turn; elsewhere all of them, as far as their parents still live. Fills `found`
/// from its beginning and answers how many it took.
std::size_t listProcessesBelow(std::span<pid_t> found);

} // namespace orvane
