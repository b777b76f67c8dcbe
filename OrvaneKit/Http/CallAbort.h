// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <utility>

namespace orvane {

/// Gives a request up while a transport works on it. Whoever made the request aborts; the transport says what
/// that takes. All of it happens on the network thread.
class CallAbort {
public:
    bool isAborted() const { return m_isAborted; }
    void abort()
    {
        m_isAborted = true;
        if (const auto end = std::exchange(m_end, nullptr))
            end();
    }

    /// `end` is called by `abort`, unless the request is done before.
    void whileUnderWay(std::function<void()> end) { m_end = std::move(end); }
    void done() { m_end = nullptr; }

private:
    bool m_isAborted = false;
    std::function<void()> m_end;
};

} // namespace orvane
