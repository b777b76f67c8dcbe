// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace orvane {

/// A result that is on its way. Callbacks finish it, whichever comes first; any number of coroutines await it
/// and each gets a copy. Copies of this object share the one state. All of it happens on one thread; waiting
/// coroutines resume inside `finish`.
template <class T>
class Pending {
public:
    bool isFinished() const { return m_state->value.has_value(); }

    /// The first result counts; false for the later ones, which are dropped.
    bool finish(T value)
    {
        if (isFinished())
            return false;
        const std::shared_ptr<State> state = m_state;
        state->value.emplace(std::move(value));
        for (const auto handle : std::exchange(state->waiting, {}))
            handle.resume();
        return true;
    }

    bool await_ready() const { return isFinished(); }
    void await_suspend(std::coroutine_handle<> handle) const { m_state->waiting.push_back(handle); }
    T await_resume() const { return T(*m_state->value); }

private:
    struct State {
        std::optional<T> value;
        std::vector<std::coroutine_handle<>> waiting;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace orvane
