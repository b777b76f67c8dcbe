// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Work that was recorded before and whose description fits what is typed, offered to be taken over. Each
/// description stands in it once, but neither what is typed nor what the entry says already. A value; any
/// thread.
class EarlierWork {
public:
    /// At most `limit` are held. `said` is the description that the entry has.
    EarlierWork(std::string_view typed, std::string said, std::size_t limit);

    /// Adds from entries, the latest first, with what the first of a description says of its work. A
    /// description fits that holds what is typed, without regard to case and accents.
    void add(const std::vector<TimeEntryResponse> &entries);
    /// Adds descriptions that the server found to fit, of which no more is known.
    void add(const std::vector<std::string> &descriptions);

    const std::vector<TimeEntrySuggestion> &found() const { return m_found; }

private:
    void addOne(TimeEntrySuggestion suggestion);
    bool isFull() const { return m_found.size() >= m_limit; }

    std::string m_typed;
    std::string m_said;
    std::string m_folded;
    std::size_t m_limit;
    std::vector<TimeEntrySuggestion> m_found;
};

} // namespace orvane
