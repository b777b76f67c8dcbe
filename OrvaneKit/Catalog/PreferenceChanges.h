// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <cstdint>
#include <optional>
#include <string>

namespace orvane {

/// A partial update of the user's preferences: a member without a value stays as it is. The texts are those
/// of the server ("24h", "hms"). Plain data; any thread.
struct PreferenceChanges {
    std::optional<std::int64_t> weekStart; ///< 0 for Sunday to 6 for Saturday
    std::optional<std::string> dateFormat;
    std::optional<std::string> timeFormat;
    std::optional<std::string> durationFormat;
    std::optional<bool> pomodoroEnabled;
    std::optional<std::int64_t> pomodoroMinutes;
    std::optional<std::int64_t> pomodoroBreakMinutes;
    std::optional<bool> pomodoroAutoStop;

    bool operator==(const PreferenceChanges &) const = default;

    bool isEmpty() const { return *this == PreferenceChanges{}; }

    /// What has to change to get from one set of preferences to another.
    static PreferenceChanges between(const PreferencesResponse &before, const PreferencesResponse &after);
    /// These preferences with the changes made: what to show before the server answers.
    PreferencesResponse appliedTo(PreferencesResponse preferences) const;
    PreferencesRequest request() const;
};

} // namespace orvane
