// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/DateFormatters.h"

#include "Support/Require.h"
#include "Time/UserTime.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <unicode/dtptngen.h>
#include <unicode/gregocal.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>
#include <unordered_map>

namespace orvane {

namespace {

constexpr const char *localeIdentifier = "en_GB";
constexpr const char *calendarIdentifier = "gregorian";

const icu::Locale &fixedLocale()
{
    static const icu::Locale locale(localeIdentifier);
    return locale;
}

icu::UnicodeString unicode(std::string_view text)
{
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())));
}

struct Key {
    std::string format;
    bool isTemplate = false;
    std::string timeZone;
    std::string calendar;
    std::string locale;

    bool operator==(const Key &) const = default;
};

struct KeyHash {
    std::size_t operator()(const Key &key) const
    {
        std::size_t hash = key.isTemplate ? 1 : 0;
        for (const std::string *text : {&key.format, &key.timeZone, &key.calendar, &key.locale})
            hash = hash * 31 + std::hash<std::string>{}(*text);
        return hash;
    }
};

/// Whether a letter outside quotes stands for the zone or its offset.
bool tellsZone(std::string_view format)
{
    bool isQuoted = false;
    return std::ranges::any_of(format, [&](char c) {
        isQuoted ^= c == '\'';
        return !isQuoted && std::string_view("zZOvVxX").contains(c);
    });
}

/// Formats instants that come shifted by the zone's offset: ICU's own zones are as old as the library, often
/// years older than the system's.
std::unique_ptr<const icu::SimpleDateFormat> makeFormatter(const Key &key)
{
    ORVANE_REQUIRE(!tellsZone(key.format), "a date format that tells the zone");
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::SimpleDateFormat>(unicode(key.format), fixedLocale(), status);
    auto calendar = std::make_unique<icu::GregorianCalendar>(
        new icu::SimpleTimeZone(0, unicode(key.timeZone)), fixedLocale(), status);
    // No change from the Julian calendar: the days before 1582 count as day arithmetic counts them.
    calendar->setGregorianChange(-8.64e15, status);
    formatter->adoptCalendar(calendar.release());
    ORVANE_REQUIRE(U_SUCCESS(status) != 0, "no date formatter");
    return formatter;
}

/// A place in the cache. It is claimed under the cache's lock and filled outside it, by the first to come.
struct Slot {
    std::once_flag once;
    std::unique_ptr<const icu::SimpleDateFormat> formatter;
};

const icu::SimpleDateFormat &sharedFormatter(const Key &key)
{
    static std::mutex lock;
    // Never destroyed, since another thread may still format while the process ends.
    static auto &slots = *new std::unordered_map<Key, Slot, KeyHash>;
    Slot *slot = nullptr;
    {
        const std::lock_guard guard(lock);
        slot = &slots[key]; // stays where it is when the map grows
    }
    std::call_once(slot->once, [&] { slot->formatter = makeFormatter(key); });
    return *slot->formatter;
}

} // namespace

std::string DateFormatters::string(Instant instant, std::string_view format, const UserTime &userTime)
{
    const icu::SimpleDateFormat &formatter = sharedFormatter(
        {std::string(format), false, userTime.timeZone(), calendarIdentifier, localeIdentifier});
    icu::UnicodeString text;
    icu::FieldPositionIterator *const noPositions = nullptr;
    UErrorCode status = U_ZERO_ERROR;
    const Instant shifted = instant + userTime.offset(instant);
    formatter.format(static_cast<UDate>(millisecondsSinceEpoch(shifted)), text, noPositions, status);
    ORVANE_REQUIRE(U_SUCCESS(status) != 0, "a date format that means nothing");
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

std::optional<std::string> DateFormatters::patternFor(std::string_view fields)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(fixedLocale(), status));
    if (U_FAILURE(status) != 0)
        return std::nullopt;
    std::string pattern;
    generator->getBestPattern(unicode(fields), status).toUTF8String(pattern);
    return U_SUCCESS(status) != 0 && !pattern.empty() ? std::optional{pattern} : std::nullopt;
}

} // namespace orvane
