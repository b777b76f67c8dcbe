// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Executor.h"
#include "Support/Instant.h"
#include "Support/RetryTimer.h"
#include "Time/WallTimer.h"
#include "simulator/Random.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orvane::simulator {

/// Time, chance and the order of things: whatever would run on another thread, wait for a clock or come over
/// a wire is a job in one of the world's lanes. Jobs of one lane run in order; which lane goes next is the
/// seed's choice. One thread.
class World {
public:
    using Millis = std::chrono::milliseconds;
    using LaneId = std::uint64_t;

    explicit World(std::uint64_t seed);
    World(const World &) = delete;
    World &operator=(const World &) = delete;
    ~World();

    Random &random() { return m_random; }
    /// The true time; devices' clocks may stand elsewhere.
    Instant now() const { return m_now; }

    LaneId newLane() { return m_nextLane++; }
    /// Runs `job` in its lane, `delay` from now at the earliest.
    void post(LaneId lane, Millis delay, std::function<void()> job);
    /// Forgets what has not run yet.
    void clear(LaneId lane) { m_lanes.erase(lane); }
    /// Runs the lane's jobs at once, those that they post there too.
    void finish(LaneId lane);

    /// Runs one job and all that follows from it directly; false when there is none left.
    bool step();
    /// Steps until there is nothing to do or `limit` has passed.
    void runFor(Millis limit);
    /// Runs all that is due until then.
    void runUntil(Instant moment);
    /// The computer sleeps: nothing runs, and afterwards it is later.
    void sleepFor(Millis length) { m_now += length; }

    /// Called after each job, for what is to happen between two of them.
    std::function<void()> afterStep;

    /// What happened, one line each, with the time in front.
    void note(const std::string &who, const std::string &what);
    const std::vector<std::string> &history() const { return m_history; }

private:
    struct Job {
        Instant due;
        std::function<void()> run;
    };
    std::vector<LaneId> dueLanes() const;

    Random m_random;
    Instant m_began;
    Instant m_now;
    LaneId m_nextLane = 1;
    std::map<LaneId, std::deque<Job>> m_lanes;
    std::vector<std::string> m_history;
};

/// A store's executor in the world.
class LaneExecutor final : public Executor {
public:
    explicit LaneExecutor(World &world) : m_world(world), m_lane(world.newLane()) {}

    void post(std::function<void()> job) override
    {
        m_world.post(m_lane, World::Millis(m_world.random().between(0, 3)), std::move(job));
    }
    void finish() override { m_world.finish(m_lane); }

private:
    World &m_world;
    World::LaneId m_lane;
};

/// A timer in the world.
class LaneTimer final : public RetryTimer {
public:
    explicit LaneTimer(World &world) : m_world(world), m_lane(world.newLane()) {}
    ~LaneTimer() override { m_world.clear(m_lane); }

    void schedule(std::chrono::milliseconds delay, std::function<void()> action) override
    {
        m_world.clear(m_lane);
        m_world.post(m_lane, delay, std::move(action));
    }
    void cancel() override { m_world.clear(m_lane); }

private:
    World &m_world;
    World::LaneId m_lane;
};

/// A timer of the wall clock in the world.
class LaneWallTimer final : public WallTimer {
public:
    explicit LaneWallTimer(World &world) : m_timer(world), m_world(world) {}

    void schedule(Instant at, std::function<void()> action) override
    {
        const auto left = std::chrono::ceil<World::Millis>(at - m_world.now());
        m_timer.schedule(std::max(left, World::Millis{0}), std::move(action));
    }

private:
    LaneTimer m_timer;
    World &m_world;
};

/// Runs everything that coroutines have posted to this thread.
void runPosted();

} // namespace orvane::simulator
