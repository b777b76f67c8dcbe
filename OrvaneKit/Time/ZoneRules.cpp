// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/ZoneRules.h"

#include "Support/ZoneNames.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>

namespace orvane {

namespace {

/// The stretches that a thread asked for last: a screen or a report asks for thousands of instants that lie
/// in two or three of them.
struct RecentSpans {
    struct Known {
        const ZoneRules *rules = nullptr;
        ZoneSpan span;
    };
    std::array<Known, 8> known;
    std::size_t oldest = 0;
};

thread_local RecentSpans recentSpans;

std::optional<ZoneHistory> readHistory(std::string_view identifier)
{
    if (isUtc(identifier))
        return ZoneHistory();
    const auto path = zoneFile(identifier);
    if (!path)
        return std::nullopt;
    constexpr std::uintmax_t longest = 1 << 20;
    std::error_code error;
    const auto size = std::filesystem::file_size(*path, error);
    if (error || size > longest)
        return std::nullopt;
    std::string bytes(size, '\0');
    std::ifstream file(*path, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return ZoneHistory::parse(bytes);
}

} // namespace

ZoneRules::ZoneRules(std::string identifier, ZoneHistory history)
    : m_identifier(std::move(identifier)), m_history(std::move(history))
{
}

std::shared_ptr<const ZoneRules> ZoneRules::find(std::string_view identifier)
{
    static std::mutex lock;
    // Only real zones are kept, so the map stays as small as the list of zones. It is never destroyed, since
    // another thread may still ask while the process ends.
    static auto &known = *new std::map<std::string, std::shared_ptr<const ZoneRules>, std::less<>>;
    const std::lock_guard guard(lock);
    if (const auto found = known.find(identifier); found != known.end())
        return found->second;
    auto history = readHistory(identifier);
    if (!history)
        return nullptr;
    const std::shared_ptr<const ZoneRules> rules(new ZoneRules(std::string(identifier), std::move(*history)));
    return known.emplace(identifier, rules).first->second;
}

const ZoneSpan &ZoneRules::spanAt(Instant instant) const
{
    // Rules live as long as the process, so their address stands for them.
    for (const auto &[rules, span] : recentSpans.known) {
        if (rules == this && span.contains(instant))
            return span;
    }
    auto &place = recentSpans.known[recentSpans.oldest];
    recentSpans.oldest = (recentSpans.oldest + 1) % recentSpans.known.size();
    place = {this, m_history.spanAt(instant)};
    return place.span;
}

LocalTime ZoneRules::localTime(Instant instant) const
{
    return LocalTime{instant.time_since_epoch() + spanAt(instant).offset};
}

ZoneRules::Place ZoneRules::find(LocalTime local) const
{
    // No clock is further from UTC, so the search begins at or before the stretch that is looked for.
    constexpr std::chrono::hours most{26};
    ZoneSpan span = spanAt(Instant{local.time_since_epoch()} - most);
    for (;;) {
        const Instant candidate{local.time_since_epoch() - span.offset};
        if (candidate < span.to)
            return {candidate, std::nullopt};
        const ZoneSpan next = spanAt(span.to);
        if (Instant{local.time_since_epoch() - next.offset} < next.from)
            return {candidate, next.from};
        span = next;
    }
}

Instant ZoneRules::instant(LocalTime local) const
{
    return find(local).instant;
}

Instant ZoneRules::firstInstant(LocalTime local) const
{
    const Place place = find(local);
    return place.gap.value_or(place.instant);
}

} // namespace orvane
