// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ZoneRules.h"

#include "Support/Require.h"

#include <algorithm>
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

/// ICU stops reading at a zero byte, and would know "UTC" in what is no identifier.
bool couldBeIdentifier(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' ||
               c == '_' || c == '-' || c == '+';
    });
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
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(name));
    auto *const basic = dynamic_cast<icu::BasicTimeZone *>(zone.get());
    if (basic == nullptr)
        return nullptr;
    static_cast<void>(zone.release());
    return std::unique_ptr<icu::BasicTimeZone>(basic);
}

} // namespace

struct ZoneRules::Zone {
    std::unique_ptr<const icu::BasicTimeZone> icu;

    milliseconds offsetAt(Instant instant) const
    {
        int32_t raw = 0;
        int32_t saving = 0;
        UErrorCode status = U_ZERO_ERROR;
        icu->getOffset(icuDate(instant.time_since_epoch()), 0, raw, saving, status);
        ORVANE_REQUIRE(U_SUCCESS(status) != 0, "no time zone offset");
        return milliseconds{raw + saving};
    }

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
    return LocalTime{instant.time_since_epoch() + m_zone->offsetAt(instant)};
}

Instant ZoneRules::instant(LocalTime local) const
{
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
    return Instant{milliseconds{static_cast<std::int64_t>(transition.getTime())}};
}

} // namespace orvane
