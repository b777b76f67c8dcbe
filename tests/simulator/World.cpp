// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/World.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdio>

namespace orvane::simulator {

namespace {

/// A Wednesday morning, so that hours and clocks that are off by some of them stay inside one week.
constexpr Instant dawn{std::chrono::sys_days{std::chrono::year{2026} / std::chrono::March / 4} +
                       std::chrono::hours{9}};

} // namespace

void runPosted()
{
    // What goes may wake somebody who posts again.
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

World::World(std::uint64_t seed) : m_random(seed), m_began(dawn), m_now(dawn) {}

World::~World() = default;

void World::post(LaneId lane, Millis delay, std::function<void()> job)
{
    m_lanes[lane].push_back({m_now + delay, std::move(job)});
}

void World::finish(LaneId lane)
{
    for (auto found = m_lanes.find(lane); found != m_lanes.end(); found = m_lanes.find(lane)) {
        if (found->second.empty()) {
            m_lanes.erase(found);
            return;
        }
        Job job = std::move(found->second.front());
        found->second.pop_front();
        job.run();
    }
}

std::vector<World::LaneId> World::dueLanes() const
{
    std::vector<LaneId> due;
    for (const auto &[lane, jobs] : m_lanes) {
        if (!jobs.empty() && jobs.front().due <= m_now)
            due.push_back(lane);
    }
    return due;
}

bool World::step()
{
    std::erase_if(m_lanes, [](const auto &lane) { return lane.second.empty(); });
    if (m_lanes.empty())
        return false;
    std::vector<LaneId> due = dueLanes();
    if (due.empty()) {
        const auto first =
            std::ranges::min_element(m_lanes, {}, [](const auto &lane) { return lane.second.front().due; });
        m_now = first->second.front().due;
        due = dueLanes();
    }
    const auto chosen = m_lanes.find(due[m_random.below(due.size())]);
    Job job = std::move(chosen->second.front());
    chosen->second.pop_front();
    job.run();
    runPosted();
    if (afterStep)
        afterStep();
    return true;
}

void World::runFor(Millis limit)
{
    const Instant end = m_now + limit;
    while (m_now <= end && step()) {
    }
}

void World::runUntil(Instant moment)
{
    const auto isDue = [&](const auto &lane) {
        return !lane.second.empty() && lane.second.front().due <= moment;
    };
    while (std::ranges::any_of(m_lanes, isDue))
        step();
    m_now = std::max(m_now, moment);
}

void World::note(const std::string &who, const std::string &what)
{
    const auto passed = std::chrono::duration_cast<Millis>(m_now - m_began).count();
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "%9.3f  ", static_cast<double>(passed) / 1000);
    m_history.push_back(stamp + who + "  " + what);
}

} // namespace orvane::simulator
