// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace orvane {

/// The calls to the server that one owner makes, who has this as a member and makes them through
/// `client->within(scope)`. Closing the scope, or destroying it, gives up those that are under way: each
/// resumes from the event loop with a ConnectionError, by when a QPointer to the owner tells that it is gone,
/// and its request is aborted. Whether the server got it nobody knows, as with any connection that broke.
///
/// Lives on the thread of its calls.
class CallScope {
public:
    CallScope() = default;
    CallScope(const CallScope &) = delete;
    CallScope &operator=(const CallScope &) = delete;
    ~CallScope() { close(); }

    /// Later calls fail at once.
    void close();

private:
    friend class CallChannel;

    struct State {
        bool isClosed = false;
        std::uint64_t lastCall = 0;
        std::map<std::uint64_t, std::function<void()>> giveUp;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace orvane
