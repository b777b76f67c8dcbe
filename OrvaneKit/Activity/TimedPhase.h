// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <string_view>

namespace orvane {

/// Writes to the log "orvane.performance" how long a phase took, from here to the end of its scope. Any
/// thread.
class TimedPhase {
public:
    /// The name is one of the program's own and outlives this.
    explicit TimedPhase(std::string_view name,
                        std::chrono::steady_clock::time_point began = std::chrono::steady_clock::now())
        : m_name(name), m_began(began)
    {
    }
    TimedPhase(const TimedPhase &) = delete;
    TimedPhase &operator=(const TimedPhase &) = delete;
    ~TimedPhase();

private:
    std::string_view m_name;
    std::chrono::steady_clock::time_point m_began;
};

} // namespace orvane
