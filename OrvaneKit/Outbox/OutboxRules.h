// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"
#include "Http/CallError.h"
#include "OrvaneAPI/Schemas.h"

#include <chrono>
#include <optional>

/// The outbox's decisions as pure functions.
namespace orvane {

enum class FailureKind { conflict, transient, refusal };

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
    /// The entry shows nothing that somebody else did since.
    bool isOursAlone = true;
};
/// `base` is what the change's user saw of the entry.
std::optional<LostAnswer> lostFirstAnswer(const EntryChange &change,
                                          const std::optional<TimeEntryResponse> &base,
                                          const CallError &error);

/// Whether the answer to a creation shows the entry as it was asked for. A creation that arrives again is
/// answered with the entry as it is by then, which may be what somebody else made of it.
bool isAsCreated(const EntryChange::Create &create, const TimeEntryResponse &answer);

} // namespace orvane
