// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ZoneHistory.h"

#include <algorithm>
#include <cstdint>

namespace orvane {

namespace {

using namespace std::chrono;

/// The years in which a rule is followed.
constexpr int firstRuleYear = 2;
constexpr int lastRuleYear = 10'000;

int ruleYear(Instant instant)
{
    constexpr sys_days first{year{firstRuleYear} / January / 1};
    constexpr sys_days last{year{lastRuleYear} / January / 1};
    const auto day = std::clamp(floor<days>(instant), first, last);
    return static_cast<int>(year_month_day{day}.year());
}

/// Big-endian numbers, one after the other.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : m_rest(bytes) {}

    std::size_t size() const { return m_rest.size(); }
    /// At most as many as there are.
    std::string_view take(std::size_t count)
    {
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(taken.size());
        return taken;
    }
    /// Of `Int`'s size; zero at the end.
    template <class Int>
    Int number()
    {
        std::uint64_t value = 0;
        for (const char c : take(sizeof(Int)))
            value = value << 8 | static_cast<unsigned char>(c);
        return static_cast<Int>(value);
    }

private:
    std::string_view m_rest;
};

/// How much of each thing a block holds, in the file's order.
struct Counts {
    std::uint32_t utcFlags = 0;
    std::uint32_t standardFlags = 0;
    std::uint32_t leaps = 0;
    std::uint32_t changes = 0;
    std::uint32_t types = 0;
    std::uint32_t letters = 0;

    /// In bytes, with instants of 4 or 8 bytes.
    std::uint64_t blockSize(std::uint64_t instantSize) const
    {
        return changes * (instantSize + 1) + types * std::uint64_t{6} + letters + leaps * (instantSize + 4) +
               standardFlags + utcFlags;
    }
};

struct Header {
    char version = 0;
    Counts counts;
};

std::optional<Header> takeHeader(Bytes &bytes)
{
    constexpr std::size_t headerSize = 44;
    constexpr std::size_t unused = 15;
    if (bytes.size() < headerSize || bytes.take(4) != "TZif")
        return std::nullopt;
    Header header;
    header.version = bytes.take(1).front();
    bytes.take(unused);
    Counts &counts = header.counts;
    for (std::uint32_t *count : {&counts.utcFlags, &counts.standardFlags, &counts.leaps, &counts.changes,
                                 &counts.types, &counts.letters})
        *count = bytes.number<std::uint32_t>();
    return header;
}

/// What an instant of ours can hold; a table may begin at the big bang.
Instant instantOf(std::int64_t secondsSince1970)
{
    constexpr std::int64_t most = floor<seconds>(Instant::max()).time_since_epoch().count() - 1;
    return Instant{seconds{std::clamp(secondsSince1970, -most, most)}};
}

} // namespace

class ZoneHistory::Reader {
public:
    explicit Reader(std::string_view bytes) : m_bytes(bytes) {}

    std::optional<ZoneHistory> read()
    {
        // The first block is for programs of the time before 2038: its instants have 32 bits.
        const auto old = takeHeader(m_bytes);
        if (!old || old->version < '2' || old->counts.blockSize(4) > m_bytes.size())
            return std::nullopt;
        m_bytes.take(old->counts.blockSize(4));
        const auto header = takeHeader(m_bytes);
        if (!header || header->counts.blockSize(8) > m_bytes.size() || header->counts.types == 0 ||
            header->counts.leaps != 0)
            return std::nullopt;
        ZoneHistory history;
        const bool isSound = takeTable(history, header->counts) && takeFooter(history, header->counts);
        return isSound ? std::optional(std::move(history)) : std::nullopt;
    }

private:
    bool takeTable(ZoneHistory &history, const Counts &counts)
    {
        Bytes instants(m_bytes.take(counts.changes * std::size_t{8}));
        Bytes types(m_bytes.take(counts.changes));
        if (!takeOffsets(counts.types))
            return false;
        history.m_firstOffset = m_offsets.front();
        std::int64_t before = 0;
        for (std::uint32_t i = 0; i < counts.changes; ++i) {
            const auto at = instants.number<std::int64_t>();
            const auto type = types.number<std::uint8_t>();
            if (type >= m_offsets.size() || (i > 0 && at <= before))
                return false;
            before = at;
            add(history, {instantOf(at), m_offsets[type]});
        }
        return true;
    }

    /// A change of the name alone is no change to us.
    static void add(ZoneHistory &history, ZoneChange change)
    {
        auto &table = history.m_table;
        if (change.offset != (table.empty() ? history.m_firstOffset : table.back().offset))
            table.push_back(change);
    }

    bool takeOffsets(std::uint32_t count)
    {
        constexpr hours most{26};
        for (std::uint32_t i = 0; i < count; ++i) {
            const seconds offset{m_bytes.number<std::int32_t>()};
            m_bytes.take(2); // whether it is daylight-saving time, and its name
            if (abs(offset) >= most)
                return false;
            m_offsets.push_back(offset);
        }
        return true;
    }

    bool takeFooter(ZoneHistory &history, const Counts &counts)
    {
        m_bytes.take(counts.letters + std::size_t{counts.standardFlags} + counts.utcFlags);
        const std::string_view rest = m_bytes.take(m_bytes.size());
        const std::size_t end = rest.find('\n', 1);
        if (!rest.starts_with('\n') || end == std::string_view::npos)
            return false;
        const std::string_view rule = rest.substr(1, end - 1);
        if (rule.empty()) // nobody knows what comes after the table
            return true;
        history.m_afterwards = YearlyChanges::parse(rule);
        return history.m_afterwards.has_value();
    }

    Bytes m_bytes;
    std::vector<seconds> m_offsets;
};

std::optional<ZoneHistory> ZoneHistory::parse(std::string_view bytes)
{
    return Reader(bytes).read();
}

ZoneSpan ZoneHistory::spanAt(Instant instant) const
{
    const bool isInTable = !m_table.empty() && instant < m_table.back().at;
    return isInTable ? spanInTable(instant) : spanAfterTable(instant);
}

ZoneSpan ZoneHistory::spanInTable(Instant instant) const
{
    ZoneSpan span;
    const auto next = std::ranges::upper_bound(m_table, instant, {}, &ZoneChange::at);
    span.to = next->at;
    if (next == m_table.begin()) {
        span.offset = m_firstOffset;
    } else {
        span.from = std::prev(next)->at;
        span.offset = std::prev(next)->offset;
    }
    return span;
}

ZoneSpan ZoneHistory::spanAfterTable(Instant instant) const
{
    ZoneSpan span{.offset = m_firstOffset};
    if (!m_table.empty()) {
        span.from = m_table.back().at;
        span.offset = m_table.back().offset;
    }
    if (!m_afterwards || m_afterwards->keepsOneOffset())
        return span;
    const int year = ruleYear(instant);
    for (int y = year - 1; y <= year + 1; ++y) {
        for (const ZoneChange &change : m_afterwards->inYear(y)) {
            if (change.at > instant) {
                span.to = change.at;
                return span;
            }
            if (change.at > span.from) {
                span.from = change.at;
                span.offset = change.offset;
            }
        }
    }
    return span;
}

} // namespace orvane
