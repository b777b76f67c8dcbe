// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LiveSync/LiveSyncError.h"
#include "LiveSync/SyncChange.h"
#include "Support/Result.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

/// What the hub says to a client, and what a client says to it. Values and pure functions, for any thread.
namespace orvane {

/// Bytes of one message from the hub. A change takes some two hundred; the rest is room for members that are
/// not known yet. Without a bound, a server that never ends a message would fill the memory.
inline constexpr std::size_t longestHubMessage = std::size_t{32} * 1024;
/// Bytes of one frame: a burst of changes may come joined.
inline constexpr std::size_t longestHubFrame = 16 * longestHubMessage;

/// How a connection is left: because it is not wanted any more (close code 1000), or for another try (1001).
enum class HubFarewell { done, goingAway };

/// "Changed": something is otherwise at the server.
struct HubChange {
    SyncChange change;
    bool operator==(const HubChange &) const = default;
};
/// The answer to an invocation.
struct HubCompletion {
    std::string invocationId;
    /// Not the result but the reason why there is none; empty when there is one.
    std::string error;
    bool result = false;
    bool operator==(const HubCompletion &) const = default;
};
/// The hub ends the connection.
struct HubClose {
    LiveSyncError error;
    bool operator==(const HubClose &) const = default;
};
/// A ping, or something that a newer hub says: only that it was heard counts.
struct HubSign {
    bool operator==(const HubSign &) const = default;
};
using HubMessage = std::variant<HubSign, HubChange, HubCompletion, HubClose>;

/// The error says that the text is not of the hub's language at all.
Result<HubMessage, LiveSyncError> readHubMessage(std::string_view text);
/// The hub's first message: whether it goes on with the connection.
Result<void, LiveSyncError> readHubHandshake(std::string_view text);

// Messages to the hub, with their separators

std::string hubHandshake();
std::string hubPing();
std::string hubWatch(std::uint64_t invocation, const std::string &workspaceId);
/// No answer comes to it.
std::string hubUnwatch(const std::string &workspaceId);

} // namespace orvane
