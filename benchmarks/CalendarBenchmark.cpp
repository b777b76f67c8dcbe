// SPDX-License-Identifier: GPL-3.0-or-later
// Laying out a crowded day and a whole year, each beside half as many entries.
#include "Calendar/CalendarLayout.h"
#include "Support/Require.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <functional>
#include <random>

namespace {

using namespace orvane;

/// Entries that start anywhere in so many days, the newest first. On a single one they are so long that most
/// of them overlap, which a search of all lanes would show.
std::vector<TimeEntryResponse> sampleEntries(int count, DayKey first, int days, const UserTime &time)
{
    std::mt19937_64 random(20'260'301);
    const Instant begin = time.startOfDay(first);
    const auto seconds = static_cast<std::uint64_t>(days) * 86'400;
    const std::uint64_t longest = days == 1 ? 1'200 : 300;
    std::vector<TimeEntryResponse> entries;
    for (int number = 0; number < count; ++number) {
        TimeEntryResponse &entry = entries.emplace_back();
        entry.id = "entry " + std::to_string(number);
        entry.description = "Review the change to the totals, number " + std::to_string(number);
        entry.start = begin + std::chrono::seconds{random() % seconds};
        entry.stop = entry.start + std::chrono::minutes{60 + random() % longest};
    }
    // As the tracker holds them.
    std::ranges::sort(entries, std::greater(), &TimeEntryResponse::start);
    return entries;
}

void layOut(benchmark::State &state, int count, int days)
{
    const UserTime time = UserTime::make("Europe/Paris").value();
    const DayKey first{2026, 1, 1};
    const auto entries = sampleEntries(count, first, days, time);
    const DayKey last = first.adding(days - 1);
    for (auto step : state) {
        static_cast<void>(step);
        const auto columns = CalendarLayout::days(entries, first, last, time, entries.front().start);
        ORVANE_REQUIRE(columns.front().segments.front().lanes > 0, "nothing was laid out");
        benchmark::DoNotOptimize(columns.data());
    }
}

void layoutDayHalf(benchmark::State &state)
{
    layOut(state, 250, 1);
}
BENCHMARK(layoutDayHalf)->Unit(benchmark::kMicrosecond);

void layoutDay(benchmark::State &state)
{
    layOut(state, 500, 1);
}
BENCHMARK(layoutDay)->Unit(benchmark::kMicrosecond);

void layoutYearHalf(benchmark::State &state)
{
    layOut(state, 5'000, 365);
}
BENCHMARK(layoutYearHalf)->Unit(benchmark::kMicrosecond);

void layoutYear(benchmark::State &state)
{
    layOut(state, 10'000, 365);
}
BENCHMARK(layoutYear)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
