// SPDX-License-Identifier: GPL-3.0-or-later
// Ten thousand entries through the JSON layer beside a reader and a writer made by hand for them.
#include "HandWrittenEntries.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <random>

namespace {

using namespace orvane;

std::string newId(std::mt19937_64 &random)
{
    char text[37];
    std::snprintf(text, sizeof text, "%08x-%04x-4%03x-a%03x-%012llx", static_cast<unsigned>(random()),
                  static_cast<unsigned>(random() & 0xFFFF), static_cast<unsigned>(random() & 0xFFF),
                  static_cast<unsigned>(random() & 0xFFF),
                  static_cast<unsigned long long>(random() & 0xFFFF'FFFF'FFFF));
    return text;
}

TimeEntryResponse sampleEntry(std::mt19937_64 &random, int number)
{
    TimeEntryResponse entry;
    entry.id = newId(random);
    entry.workspaceId = newId(random);
    entry.description = number % 10 == 0
                            ? "Überprüfung des \"Berichts\" Nr. " + std::to_string(number)
                            : "Review the change to the totals, number " + std::to_string(number);
    if (number % 4 != 0)
        entry.projectId = newId(random);
    if (number % 3 == 0)
        entry.taskId = newId(random);
    for (int tag = 0; tag < number % 3; ++tag)
        entry.tagIds.push_back(newId(random));
    entry.isBillable = number % 2 == 0;
    entry.start = instantFromMilliseconds(1'772'357'400'123) + std::chrono::minutes{number};
    entry.stop = entry.start + std::chrono::minutes{25};
    if (number % 20 == 0) {
        for (const std::int64_t percent : {60, 40}) {
            TimeShareResponse &share = entry.shares.emplace_back();
            share.projectId = newId(random);
            share.percent = percent;
            share.description = "part";
        }
    }
    entry.version = std::to_string(random() % 100'000);
    return entry;
}

const std::vector<TimeEntryResponse> &entries()
{
    static const auto made = [] {
        std::mt19937_64 random(20'260'301);
        std::vector<TimeEntryResponse> list;
        for (int number = 0; number < 10'000; ++number)
            list.push_back(sampleEntry(random, number));
        return list;
    }();
    return made;
}

void decodeLayer(benchmark::State &state)
{
    const std::string text = handwritten::write(entries());
    for (auto step : state) {
        static_cast<void>(step);
        const auto read = decodeJson<std::vector<TimeEntryResponse>>(text);
        benchmark::DoNotOptimize(read->size());
    }
}
BENCHMARK(decodeLayer)->Unit(benchmark::kMillisecond);

void decodeByHand(benchmark::State &state)
{
    const std::string text = handwritten::write(entries());
    for (auto step : state) {
        static_cast<void>(step);
        std::vector<TimeEntryResponse> read;
        benchmark::DoNotOptimize(handwritten::read(text, read));
    }
}
BENCHMARK(decodeByHand)->Unit(benchmark::kMillisecond);

void encodeLayer(benchmark::State &state)
{
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(encodeJson(entries()).size());
    }
}
BENCHMARK(encodeLayer)->Unit(benchmark::kMillisecond);

void encodeByHand(benchmark::State &state)
{
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(handwritten::write(entries()).size());
    }
}
BENCHMARK(encodeByHand)->Unit(benchmark::kMillisecond);

/// What is measured is only worth comparing when both sides do the same.
bool bothSidesAgree()
{
    std::vector<TimeEntryResponse> read;
    const std::string text = encodeJson(entries());
    const auto layered = decodeJson<std::vector<TimeEntryResponse>>(text);
    return text == handwritten::write(entries()) && handwritten::read(text, read) && read == entries() &&
           layered && *layered == entries();
}

} // namespace

int main(int argc, char **argv)
{
    if (!bothSidesAgree()) {
        std::fprintf(stderr, "JsonBenchmark: the layer and the hand-written code differ\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
