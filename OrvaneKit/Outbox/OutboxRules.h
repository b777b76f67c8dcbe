// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "Client/CallError.h"
#include "OrvaneAPI/Schemas.h"

#include <chrono>
#include <optional>

/// The outbox's decisions as pure functions.
namespace orvane {

enum class FailureKind { Conflict, Transient, Refusal };

/// Conflict: the entry was changed elsewhere, and the server says what it is now. Transient: nothing is known
/// of the change's fate, or the server asks for another try. Everything else is a refusal for good.
FailureKind classify(const CallError &error);

/// The wait before the next pass after that many transient failures in a row (at least 1): 2, 5, 15, 30, then
/// 60 seconds.
std::chrono::milliseconds retryDelay(int failures);

/// What a failure means when it is only the echo of a first try whose answer was lost: the entry was changed
/// in exactly the way this change asks for, or is already gone. Then the change counts as accepted.
struct LostAnswer {
    std::optional<TimeEntryResponse> entry;
};
std::optional<LostAnswer> lostFirstAnswer(const EntryChange &change, const CallError &error);

} // namespace orvane
