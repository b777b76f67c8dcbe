// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ZoneRules.h"

#include "Support/Require.h"

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <unicode/basictz.h>
#include <unicode/tztrans.h>

namespace orvane {

namespace {

using std::chrono::milliseconds;

// ICU counts milliseconds in doubles, exactly so for every instant that a microsecond count can hold.
UDate icuDate(std::chrono::microseconds sinceEpoch)
{
    return static_cast<UDate>(std::chrono::floor<milliseconds>(sinceEpoch).count());
}

/// A stretch of time with one offset.
struct Span {
    Instant from = Instant::min();
    Instant to = Instant::max();
    milliseconds offset{0};

    bool contains(Instant instant) const { return instant >= from && instant < to; }
};

/// The stretches that a thread asked for last. ICU works an offset out anew each time, and a screen or a
/// report asks for thousands that lie in two or three stretches.
struct RecentSpans {
    struct Known {
        const ZoneRules *rules = nullptr;
        Span span;
    };
    std::array<Known, 8> known;
    std::size_t oldest = 0;
};

thread_local RecentSpans recentSpans;

/// ICU stops reading at a zero byte, and would know "UTC" in what is no identifier.
bool couldBeIdentifier(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' ||
               c == '_' || c == '-' || c == '+';
    });
}

Instant instantOf(const icu::TimeZoneTransition &transition)
{
    return Instant{milliseconds{static_cast<std::int64_t>(transition.getTime())}};
}

std::unique_ptr<icu::BasicTimeZone> makeZone(std::string_view identifier)
{
    if (!couldBeIdentifier(identifier))
        return nullptr;
    const auto name = icu::UnicodeString::fromUTF8(
        icu::StringPiece(identifier.data(), static_cast<int32_t>(identifier.size())));
    UErrorCode status = U_ZERO_ERROR;
    UBool isSystemZone = 0;
    icu::UnicodeString canonical;
    icu::TimeZone::getCanonicalID(name, canonical, isSystemZone, status);
    // ICU also makes a zone of "GMT+5", which is no name that another program would know.
    if (U_FAILURE(status) != 0 || isSystemZone == 0 || name == icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID))
        return nullptr;
    // Every zone of the data is a basic one; the type of the call is only wider.
    std::unique_ptr<icu::BasicTimeZone> zone(
        dynamic_cast<icu::BasicTimeZone *>(icu::TimeZone::createTimeZone(name)));
    ORVANE_REQUIRE(zone, "a time zone without rules");
    return zone;
}

} // namespace

struct ZoneRules::Zone {
    std::unique_ptr<const icu::BasicTimeZone> icu;

    milliseconds offsetAtLocal(LocalTime local) const
    {
        int32_t raw = 0;
        int32_t saving = 0;
        UErrorCode status = U_ZERO_ERROR;
        icu->getOffsetFromLocal(icuDate(local.time_since_epoch()), UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER,
                                raw, saving, status);
        ORVANE_REQUIRE(U_SUCCESS(status) != 0, "no time zone offset");
        return milliseconds{raw + saving};
    }

    Span spanAt(Instant instant) const
    {
        const UDate date = icuDate(instant.time_since_epoch());
        int32_t raw = 0;
        int32_t saving = 0;
        UErrorCode status = U_ZERO_ERROR;
        icu->getOffset(date, 0, raw, saving, status);
        ORVANE_REQUIRE(U_SUCCESS(status) != 0, "no time zone offset");
        Span span{.offset = milliseconds{raw + saving}};
        icu::TimeZoneTransition transition;
        if (icu->getPreviousTransition(date, 1, transition) != 0)
            span.from = instantOf(transition);
        if (icu->getNextTransition(date, 0, transition) != 0)
            span.to = instantOf(transition);
        return span;
    }
};

ZoneRules::ZoneRules(std::string identifier, std::unique_ptr<const Zone> zone)
    : m_identifier(std::move(identifier)), m_zone(std::move(zone))
{
}

ZoneRules::~ZoneRules() = default;

std::shared_ptr<const ZoneRules> ZoneRules::find(std::string_view identifier)
{
    static std::mutex lock;
    // Only real zones are kept, so the map stays as small as the list of zones. It is never destroyed, since
    // another thread may still ask while the process ends.
    static auto &known = *new std::map<std::string, std::shared_ptr<const ZoneRules>, std::less<>>;
    const std::lock_guard guard(lock);
    if (const auto found = known.find(identifier); found != known.end())
        return found->second;
    auto zone = makeZone(identifier);
    if (!zone)
        return nullptr;
    const std::shared_ptr<const ZoneRules> rules(
        new ZoneRules(std::string(identifier), std::make_unique<const Zone>(std::move(zone))));
    return known.emplace(identifier, rules).first->second;
}

LocalTime ZoneRules::localTime(Instant instant) const
{
    // Rules live as long as the process, so their address stands for them.
    for (const auto &[rules, span] : recentSpans.known) {
        if (rules == this && span.contains(instant))
            return LocalTime{instant.time_since_epoch() + span.offset};
    }
    const Span span = m_zone->spanAt(instant);
    recentSpans.known[recentSpans.oldest] = {this, span};
    recentSpans.oldest = (recentSpans.oldest + 1) % recentSpans.known.size();
    return LocalTime{instant.time_since_epoch() + span.offset};
}

Instant ZoneRules::instant(LocalTime local) const
{
    // Well inside a stretch no other offset can show this time as well.
    constexpr std::chrono::days margin{2};
    for (const auto &[rules, span] : recentSpans.known) {
        const Instant candidate{local.time_since_epoch() - span.offset};
        if (rules == this && span.contains(candidate - margin) && span.contains(candidate + margin))
            return candidate;
    }
    return Instant{local.time_since_epoch() - m_zone->offsetAtLocal(local)};
}

Instant ZoneRules::firstInstant(LocalTime local) const
{
    const Instant found = instant(local);
    if (localTime(found) == local)
        return found;
    icu::TimeZoneTransition transition;
    const bool known =
        m_zone->icu->getPreviousTransition(icuDate(found.time_since_epoch()), 1, transition) != 0;
    ORVANE_REQUIRE(known, "a gap of the wall clock without a change of offset");
    return instantOf(transition);
}

} // namespace orvane
