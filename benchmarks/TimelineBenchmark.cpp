// SPDX-License-Identifier: GPL-3.0-or-later
// A day built from many events: sessions at work all day long in a few repositories, with sub-agents.
#include "Activity/ActivityTimeline.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <deque>
#include <random>

namespace {

using namespace orvane;

constexpr int repositories = 25;
constexpr int eventsOfASession = 250;
constexpr DayKey day{2026, 3, 3};

struct Logs {
    std::deque<AgentSession> sessions;
    std::vector<PlacedSession> placed;
};

/// Sessions with `prompts` in a hundred of their events; the first and the last reach over midnight.
Logs makeLogs(int events, int prompts)
{
    std::mt19937_64 random(20'260'303);
    const auto number = [&](int least, int most) {
        return std::uniform_int_distribution(least, most)(random);
    };
    std::vector<SharedRepository> places;
    for (int i = 0; i < repositories; ++i) {
        const std::string name = "project-" + std::to_string(i);
        places.push_back(std::make_shared<ActivityRepository>(
            ActivityRepository{"/home/me/work/" + name, name, {}, true, "example.com/me/" + name}));
    }
    Logs logs;
    const Instant midnight = UserTime::utc().startOfDay(day);
    for (int i = 0; i < events / eventsOfASession; ++i) {
        AgentSession session;
        session.id = "claude:019d7e30-52c1-7b07-9d0a-" + std::to_string(100'000'000'000 + i);
        session.title = "Work on number " + std::to_string(i);
        session.branches = {"main", "feature/number-" + std::to_string(i % 40)};
        if (i % 5 == 4)
            session.parentID = logs.sessions.back().id;
        Instant at = midnight + std::chrono::seconds{number(-1800, 80'000)};
        for (int event = 0; event < eventsOfASession; ++event) {
            const bool isPrompt = session.parentID.empty() && number(1, 100) <= prompts;
            session.events.push_back({at, !isPrompt});
            at += std::chrono::milliseconds{number(0, 20) == 0 ? number(0, 300'000) : number(500, 20'000)};
        }
        std::ranges::sort(session.events);
        logs.sessions.push_back(std::move(session));
        logs.placed.push_back({&logs.sessions.back(), places[static_cast<std::size_t>(i % repositories)]});
    }
    return logs;
}

ActivityDay build(const Logs &logs)
{
    return ActivityTimeline::day(day, UserTime::utc().dayInterval(day), logs.placed,
                                 {"example.com/me/project-3"});
}

void run(benchmark::State &state, int events, int prompts)
{
    const Logs logs = makeLogs(events, prompts);
    for (auto step : state) {
        static_cast<void>(step);
        benchmark::DoNotOptimize(build(logs).runs.size());
    }
}

void dayOf50000(benchmark::State &state)
{
    run(state, 50'000, 4);
}
BENCHMARK(dayOf50000)->Unit(benchmark::kMillisecond);

void dayOf100000(benchmark::State &state)
{
    run(state, 100'000, 4);
}
BENCHMARK(dayOf100000)->Unit(benchmark::kMillisecond);

void promptsOf50000(benchmark::State &state)
{
    run(state, 50'000, 100);
}
BENCHMARK(promptsOf50000)->Unit(benchmark::kMillisecond);

/// What is measured has to be a day in which something happened.
bool isFullDay()
{
    const ActivityDay built = build(makeLogs(50'000, 4));
    return built.attention.size() > 1000 && built.runs.size() > 200 && built.sessions.size() > 150 &&
           !built.parallel.empty() && built.ignored.size() == 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (!isFullDay()) {
        std::fprintf(stderr, "TimelineBenchmark: the day is emptier than it should be\n");
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
