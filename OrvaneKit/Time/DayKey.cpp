// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/DayKey.h"

#include "Support/DateText.h"
#include "Support/Require.h"

#include <cstdio>

namespace orvane {

namespace {

using std::chrono::sys_days;

constexpr std::chrono::year firstYear{1};
constexpr std::chrono::year lastYear = std::chrono::year::max();

sys_days sysDays(DayKey key)
{
    return sys_days{key.civil()};
}

} // namespace

std::optional<DayKey> DayKey::make(int year, int month, int day)
{
    const DayKey key{year, month, day};
    return key.isValid() ? std::optional{key} : std::nullopt;
}

std::optional<DayKey> DayKey::parse(std::string_view text)
{
    const auto civil = dayFromText(text);
    return civil ? std::optional{of(*civil)} : std::nullopt;
}

DayKey DayKey::of(std::chrono::year_month_day civil)
{
    ORVANE_REQUIRE(civil.ok(), "a date that does not exist");
    return {static_cast<int>(civil.year()), static_cast<int>(static_cast<unsigned>(civil.month())),
            static_cast<int>(static_cast<unsigned>(civil.day()))};
}

bool DayKey::isValid() const
{
    if (year < 1900 || year > 9999 || month < 1 || month > 12 || day < 1 || day > 31)
        return false;
    return std::chrono::year_month_day{std::chrono::year{year},
                                       std::chrono::month{static_cast<unsigned>(month)},
                                       std::chrono::day{static_cast<unsigned>(day)}}
        .ok();
}

std::string DayKey::description() const
{
    char text[48];
    const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month, day);
    return {text, static_cast<std::size_t>(length)};
}

std::chrono::year_month_day DayKey::civil() const
{
    // The conversions below keep only a byte or two of each number, so their range is checked before.
    ORVANE_REQUIRE(year >= static_cast<int>(firstYear) && year <= static_cast<int>(lastYear) && month >= 1 &&
                       month <= 12 && day >= 1 && day <= 31,
                   "a day that does not exist");
    const std::chrono::year_month_day civil{std::chrono::year{year},
                                            std::chrono::month{static_cast<unsigned>(month)},
                                            std::chrono::day{static_cast<unsigned>(day)}};
    ORVANE_REQUIRE(civil.ok(), "a day that does not exist");
    return civil;
}

DayKey DayKey::adding(std::int64_t days) const
{
    constexpr sys_days first{firstYear / std::chrono::January / 1};
    constexpr sys_days last{lastYear / std::chrono::December / 31};
    constexpr std::int64_t most = (last - first).count();
    ORVANE_REQUIRE(days >= -most && days <= most, "a day out of range");
    const sys_days result = sysDays(*this) + std::chrono::days{static_cast<int>(days)};
    ORVANE_REQUIRE(result >= first && result <= last, "a day out of range");
    return of(std::chrono::year_month_day{result});
}

int DayKey::weekday() const
{
    return static_cast<int>(std::chrono::weekday{sysDays(*this)}.c_encoding());
}

std::int64_t DayKey::daysUntil(DayKey other) const
{
    return (sysDays(other) - sysDays(*this)).count();
}

} // namespace orvane
