// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>

namespace orvane {

/// Keeps values by key as long as they fit: while there are too many or they weigh too much, the one that was
/// used longest ago goes. Not for several threads at once.
template <class Value>
class ActivityCache {
public:
    struct Entry {
        Value value;
        std::int64_t cost = 0;  ///< bytes
        std::uint64_t used = 0; ///< the clock at the last access
    };

    ActivityCache(std::int64_t byteLimit, std::size_t countLimit)
        : m_byteLimit(byteLimit), m_countLimit(countLimit)
    {
    }

    /// Null when it is not there; valid until the next insert.
    Value *find(const std::string &key)
    {
        const auto found = m_entries.find(key);
        if (found == m_entries.end())
            return nullptr;
        touch(found);
        return &found->second.value;
    }
    /// Takes the place of an older value. A value that alone is too heavy is not kept.
    void insert(const std::string &key, Value value, std::int64_t cost)
    {
        erase(key);
        if (cost > m_byteLimit)
            return;
        const auto entry = m_entries.try_emplace(key, Entry{std::move(value), cost, 0}).first;
        m_bytes += cost;
        touch(entry);
        while (!m_entries.empty() && (m_bytes > m_byteLimit || m_entries.size() > m_countLimit))
            remove(m_entries.find(*m_byUse.begin()->second));
    }
    void erase(const std::string &key)
    {
        if (const auto found = m_entries.find(key); found != m_entries.end())
            remove(found);
    }
    void clear()
    {
        m_entries.clear();
        m_byUse.clear();
        m_bytes = 0;
    }

    std::int64_t bytes() const { return m_bytes; }
    std::size_t count() const { return m_entries.size(); }

private:
    using Place = typename std::unordered_map<std::string, Entry>::iterator;

    void remove(Place entry)
    {
        m_byUse.erase(entry->second.used);
        m_bytes -= entry->second.cost;
        m_entries.erase(entry);
    }
    void touch(Place entry)
    {
        m_byUse.erase(entry->second.used);
        entry->second.used = ++m_clock;
        m_byUse.emplace(m_clock, &entry->first);
    }

    std::int64_t m_byteLimit;
    std::size_t m_countLimit;
    std::int64_t m_bytes = 0;
    std::uint64_t m_clock = 0;
    std::unordered_map<std::string, Entry> m_entries;
    std::map<std::uint64_t, const std::string *> m_byUse;
};

} // namespace orvane
