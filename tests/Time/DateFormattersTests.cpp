// SPDX-License-Identifier: GPL-3.0-or-later
#include "ClockOffset.h"
#include "Time/DateFormatters.h"
#include "Time/UserTime.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

namespace orvane {
namespace {

TEST(DateFormatters, WriteBritishEnglishInTheUsersZone)
{
    const Instant instant = *instantFromIso8601("2025-12-31T23:30:00Z");
    const auto paris = *UserTime::make("Europe/Paris");
    EXPECT_EQ(DateFormatters::string(instant, "EEEE d MMMM yyyy, HH:mm", paris),
              "Thursday 1 January 2026, 00:30");
    EXPECT_EQ(DateFormatters::string(instant, "EEE, d MMM yyyy", UserTime::utc()), "Wed, 31 Dec 2025");
    EXPECT_EQ(DateFormatters::string(instant, "h:mm a", UserTime::utc()), "11:30 pm");
    EXPECT_EQ(DateFormatters::string(instant, "'at' H 'h'", UserTime::utc()), "at 23 h");
    EXPECT_EQ(DateFormatters::patternFor("yMd"), "dd/MM/y");
}

TEST(DateFormatters, GiveTheSameTextsOnManyThreads)
{
    const std::array zones = {"Europe/Paris", "Asia/Tokyo", "America/New_York", "Australia/Perth"};
    const std::array formats = {"EEE, d MMM", "d MMMM yyyy", "yyyy-MM-dd HH:mm:ss"};
    const Instant from = *instantFromIso8601("2024-01-01T00:00:00Z");
    const auto texts = [&] {
        std::vector<std::string> all;
        for (int hour = 0; hour < 400; ++hour) {
            for (const char *name : zones) {
                const auto time = *UserTime::make(name);
                for (const char *format : formats)
                    all.push_back(DateFormatters::string(from + std::chrono::hours{hour * 7}, format, time));
            }
        }
        return all;
    };
    // The threads come first, so that they also race to make the formatters.
    std::vector<std::vector<std::string>> results(4);
    std::atomic<std::size_t> waiting = results.size();
    std::vector<std::jthread> threads;
    for (auto &result : results) {
        threads.emplace_back([&] {
            --waiting;
            while (waiting > 0)
                std::this_thread::yield();
            result = texts();
        });
    }
    threads.clear();
    const auto expected = texts();
    EXPECT_EQ(expected.front(), "Mon, 1 Jan");
    for (const auto &result : results)
        EXPECT_EQ(result, expected);
}

TEST(DateFormattersDeathTest, AFormatThatMeansNothingStops)
{
    EXPECT_DEATH(DateFormatters::string(Instant{}, "yyyy bbb nonsense", UserTime::utc()), "format");
    EXPECT_DEATH(DateFormatters::string(Instant{}, "HH:mm zzzz", UserTime::utc()), "tells the zone");
}

} // namespace
} // namespace orvane
