// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <coroutine>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

class QObject;

namespace orvane {

/// An object that lives on the calling thread, to post to. The thread needs an event loop.
QObject *hereReceiver();

/// Where those who wait for an Eventual go on.
enum class ResumeWaiters {
    /// Inside `finish`. All of it happens on one thread then.
    inPlace,
    /// Each on its own thread and from its event loop, so whoever finishes is never re-entered, and a waiter
    /// never goes on before it has returned to its loop. Any thread may finish.
    fromTheirLoops,
};

/// What an Eventual is but for its value.
class EventualWaiters {
public:
    explicit EventualWaiters(ResumeWaiters resume) : m_resume(resume) {}

    bool isFinished() const;
    bool goesOnAtOnce() const { return m_resume == ResumeWaiters::inPlace && isFinished(); }
    /// True for the first caller alone, who then stores the value and calls `wake`.
    bool claim();
    void wake();
    void add(std::coroutine_handle<> handle);

private:
    struct Waiter {
        std::coroutine_handle<> handle;
        QObject *home = nullptr;

        void resume() const;
    };

    const ResumeWaiters m_resume;
    mutable std::mutex m_mutex;
    bool m_isClaimed = false;
    bool m_isFinished = false;
    std::vector<Waiter> m_waiting;
};

/// A value that arrives once, later. Callbacks finish it, whichever comes first; any number of coroutines
/// await it. Copies of this object share the one state.
///
///     T value = co_await eventual;              // a copy: others may await it too
///     T value = co_await std::move(eventual);   // the value itself: for the only one who does
template <class T>
class Eventual {
    struct State {
        explicit State(ResumeWaiters resume) : waiters(resume) {}
        EventualWaiters waiters;
        std::optional<T> value;
    };

    struct Awaiter {
        std::shared_ptr<State> state;

        bool await_ready() const { return state->waiters.goesOnAtOnce(); }
        void await_suspend(std::coroutine_handle<> handle) const { state->waiters.add(handle); }
    };
    struct CopyAwaiter : Awaiter {
        T await_resume() const { return T(*this->state->value); }
    };
    struct MoveAwaiter : Awaiter {
        T await_resume() const { return std::move(*this->state->value); }
    };

public:
    explicit Eventual(ResumeWaiters resume = ResumeWaiters::inPlace)
        : m_state(std::make_shared<State>(resume))
    {
    }

    bool isFinished() const { return m_state->waiters.isFinished(); }

    /// The first value counts; false for the later ones, which are dropped.
    bool finish(T value) const
    {
        const std::shared_ptr<State> state = m_state;
        if (!state->waiters.claim())
            return false;
        state->value.emplace(std::move(value));
        state->waiters.wake();
        return true;
    }

    CopyAwaiter operator co_await() const & { return CopyAwaiter{{m_state}}; }
    MoveAwaiter operator co_await() && { return MoveAwaiter{{std::move(m_state)}}; }

private:
    std::shared_ptr<State> m_state;
};

} // namespace orvane
