// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Activity/ActivityDay.h"

#include <chrono>
#include <set>
#include <span>
#include <string>

namespace orvane {

/// A session and the repository that its working folder lies in. The session is only borrowed.
struct PlacedSession {
    const AgentSession *session = nullptr;
    SharedRepository repository;
};

/// The rules by which sessions become a day. Pure: the same sessions in any order give the same day. Any
/// thread.
///
/// Attention goes to one repository at a time, the one prompted last. A prompt holds it for 15 minutes or
/// until the next prompt, to whatever repository. Prompts of one instant to one repository open one segment
/// together; of those to several repositories the last by key takes the attention, and the others keep
/// segments without length, so that no prompt is lost.
///
/// Days are cut out of this picture: a segment or run that reaches over midnight is in both days, each with
/// its part. The segment's prompt is named in both and can lie before its range.
class ActivityTimeline {
public:
    /// How long a prompt holds the attention when none follows.
    static constexpr std::chrono::seconds attentionSpan{900};
    /// The longest time without a sign of work inside a run.
    static constexpr std::chrono::seconds longestPause{180};
    /// The longest time without attention inside a focus block.
    static constexpr std::chrono::seconds longestBreak{900};

    /// The day that lies in `interval`. Each session comes once, its events in time order. `ignoring` holds
    /// identities: prompts to these repositories end the attention before them and open none of their own.
    static ActivityDay day(DayKey day, InstantInterval interval, std::span<const PlacedSession> sessions,
                           const std::set<std::string> &ignoring);
};

} // namespace orvane
