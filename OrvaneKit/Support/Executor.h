// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QThreadPool>
#include <functional>

namespace orvane {

/// Where an actor's work runs: one job at a time, in the order in which they came. The seam through which a
/// simulator runs everything on its own thread, in an order of its choosing.
class Executor {
public:
    Executor() = default;
    Executor(const Executor &) = delete;
    Executor &operator=(const Executor &) = delete;
    virtual ~Executor() = default;

    /// From any thread.
    virtual void post(std::function<void()> job) = 0;
    /// Returns when every job posted so far has run.
    virtual void finish() = 0;
};

/// The real one: a thread of its own, started with the first job.
class ThreadExecutor final : public Executor {
public:
    ThreadExecutor();
    ~ThreadExecutor() override;

    void post(std::function<void()> job) override;
    void finish() override;

private:
    QThreadPool m_pool;
};

} // namespace orvane
