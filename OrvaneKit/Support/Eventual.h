// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/AsyncHop.h"

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace orvane {

/// A value that arrives once, later, on the same thread. One coroutine may await it; it resumes from the
/// event loop, never from inside `set`, so whoever sets the value is not re-entered.
template <class T>
class Eventual {
    struct State {
        std::optional<T> value;
        std::coroutine_handle<> waiting;
    };

public:
    /// The first value stands; later ones are passed over.
    void set(T value) const
    {
        if (m_state->value)
            return;
        m_state->value.emplace(std::move(value));
        if (m_state->waiting)
            QMetaObject::invokeMethod(
                hop::hereReceiver(), [state = m_state] { state->waiting.resume(); }, Qt::QueuedConnection);
    }
    bool isSet() const { return m_state->value.has_value(); }

    struct Awaiter {
        std::shared_ptr<State> state;
        bool await_ready() const noexcept { return state->value.has_value(); }
        void await_suspend(std::coroutine_handle<> handle) { state->waiting = handle; }
        T await_resume() { return std::move(*state->value); }
    };
    Awaiter wait() const { return Awaiter{m_state}; }

private:
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace orvane
