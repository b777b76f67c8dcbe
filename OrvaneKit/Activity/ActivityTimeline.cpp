// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/ActivityTimeline.h"

#include "Activity/ParallelRuns.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace orvane {

namespace {

using std::chrono::microseconds;

/// A repository that had something near the day.
struct Place {
    SharedRepository repository;
    bool isIgnored = false;
    microseconds attention{0};
    microseconds agent{0};
    std::int64_t sessions = 0; ///< those with something in the day
    std::size_t block = 0;     ///< the focus block that it was seen in last, counted from 1
    std::size_t share = 0;     ///< its place among the shares of that block
};

/// A session that had something near the day.
struct Candidate {
    const AgentSession *session;
    std::size_t place;
    bool isInDay = false;
    std::size_t block = 0; ///< the focus block that names it, counted from 1
};

struct Prompt {
    Instant date;
    std::size_t candidate;
};

/// Attention that was opened by `count` prompts of one instant, from `first` on.
struct Segment {
    InstantInterval range;
    std::size_t place;
    std::size_t first;
    std::size_t count;
};

struct Run {
    InstantInterval range;
    std::size_t candidate;
};

double seconds(microseconds length)
{
    return std::chrono::duration<double>(length).count();
}

/// Collects what lies near one day, session by session, and puts the day together at the end.
class DayBuilder {
public:
    DayBuilder(DayKey day, InstantInterval interval, const std::set<std::string> &ignoring)
        : m_interval(interval), m_ignoring(ignoring)
    {
        m_day.day = day;
    }

    void add(const PlacedSession &placed);
    ActivityDay build(std::span<const PlacedSession> all);

private:
    std::size_t placeOf(const SharedRepository &repository);
    Place &placeOf(const Candidate &candidate) { return m_places[candidate.place]; }
    void addRuns(std::size_t candidate, std::span<const AgentEvent> events);
    void closeRun(std::size_t candidate, InstantInterval range);
    void sortPrompts();
    void makeSegments();
    void addSegment(std::size_t first, std::size_t count, Instant end);
    void makeAttention();
    std::vector<std::string> branchesOf(std::span<const Prompt> prompts) const;
    void makeRuns(std::span<const PlacedSession> all);
    void makeBlocks();
    FocusShare &shareOf(std::size_t place);
    void makeSessions();
    void makeTotals();
    InstantInterval clipped(InstantInterval range) const
    {
        return {std::max(range.from, m_interval.from), std::min(range.to, m_interval.to)};
    }

    InstantInterval m_interval;
    const std::set<std::string> &m_ignoring;
    ActivityDay m_day;
    std::vector<Place> m_places;
    std::unordered_map<std::string_view, std::size_t> m_placeOfKey;
    std::vector<Candidate> m_candidates;
    std::vector<Prompt> m_prompts;
    std::vector<Segment> m_segments;
    std::vector<Run> m_runs;
};

std::size_t DayBuilder::placeOf(const SharedRepository &repository)
{
    const auto [found, isNew] = m_placeOfKey.try_emplace(repository->key, m_places.size());
    if (isNew)
        m_places.push_back(
            {.repository = repository, .isIgnored = m_ignoring.contains(repository->identity)});
    return found->second;
}

void DayBuilder::add(const PlacedSession &placed)
{
    // Nothing before can hold the attention in the day, nothing after can belong to a run of the day.
    const auto &events = placed.session->events;
    const auto first = std::ranges::lower_bound(events, m_interval.from - ActivityTimeline::attentionSpan, {},
                                                &AgentEvent::date);
    const auto last =
        std::upper_bound(first, events.end(), m_interval.to + ActivityTimeline::longestPause,
                         [](Instant date, const AgentEvent &event) { return date < event.date; });
    if (first == last)
        return;
    const std::size_t candidate = m_candidates.size();
    m_candidates.push_back({placed.session, placeOf(placed.repository)});
    for (const AgentEvent &event : std::span(first, last)) {
        if (!event.isTouch && event.date < m_interval.to)
            m_prompts.push_back({event.date, candidate});
    }
    addRuns(candidate, std::span(first, last));
}

void DayBuilder::addRuns(std::size_t candidate, std::span<const AgentEvent> events)
{
    std::optional<InstantInterval> run;
    for (const AgentEvent &event : events) {
        if (!event.isTouch)
            continue;
        if (run && event.date - run->to <= ActivityTimeline::longestPause) {
            run->to = event.date;
            continue;
        }
        if (run)
            closeRun(candidate, *run);
        run = {event.date, event.date};
    }
    if (run)
        closeRun(candidate, *run);
}

void DayBuilder::closeRun(std::size_t candidate, InstantInterval range)
{
    range = clipped(range);
    if (range.from > range.to || (range.from == range.to && !m_interval.contains(range.from)))
        return;
    m_candidates[candidate].isInDay = true;
    if (!placeOf(m_candidates[candidate]).isIgnored)
        m_runs.push_back({range, candidate});
}

void DayBuilder::sortPrompts()
{
    // Of one instant the ignored come first: what is shown takes the attention.
    const auto order = [this](const Prompt &prompt) {
        const Candidate &candidate = m_candidates[prompt.candidate];
        const Place &place = m_places[candidate.place];
        return std::tuple(!place.isIgnored, std::string_view(place.repository->key),
                          std::string_view(candidate.session->id));
    };
    std::ranges::sort(m_prompts, [&](const Prompt &one, const Prompt &other) {
        return one.date != other.date ? one.date < other.date : order(one) < order(other);
    });
}

void DayBuilder::makeSegments()
{
    sortPrompts();
    const auto place = [this](std::size_t i) { return m_candidates[m_prompts[i].candidate].place; };
    for (std::size_t first = 0; first < m_prompts.size();) {
        const Instant date = m_prompts[first].date;
        std::size_t next = first + 1;
        while (next < m_prompts.size() && m_prompts[next].date == date && place(next) == place(first))
            ++next;
        Instant end = date + ActivityTimeline::attentionSpan;
        if (next < m_prompts.size())
            end = std::min(end, m_prompts[next].date);
        addSegment(first, next - first, end);
        first = next;
    }
}

void DayBuilder::addSegment(std::size_t first, std::size_t count, Instant end)
{
    const Instant date = m_prompts[first].date;
    const InstantInterval range = clipped({date, end});
    if (range.from >= range.to && !m_interval.contains(date))
        return;
    const std::size_t place = m_candidates[m_prompts[first].candidate].place;
    for (std::size_t i = first; i < first + count; ++i)
        m_candidates[m_prompts[i].candidate].isInDay = true;
    if (m_places[place].isIgnored)
        return;
    m_places[place].attention += range.to - range.from;
    m_segments.push_back({range, place, first, count});
}

void DayBuilder::makeAttention()
{
    m_day.attention.reserve(m_segments.size());
    for (const Segment &made : m_segments) {
        const auto prompts = std::span(m_prompts).subspan(made.first, made.count);
        AttentionSegment &segment = m_day.attention.emplace_back();
        segment.repository = m_places[made.place].repository;
        segment.range = made.range;
        segment.prompts.assign(made.count, prompts.front().date);
        for (const Prompt &prompt : prompts)
            segment.sessionIDs.push_back(m_candidates[prompt.candidate].session->id);
        segment.branches = branchesOf(prompts);
    }
}

std::vector<std::string> DayBuilder::branchesOf(std::span<const Prompt> prompts) const
{
    std::vector<std::string> branches = m_candidates[prompts.front().candidate].session->branches;
    for (const Prompt &prompt : prompts.subspan(1)) {
        for (const std::string &branch : m_candidates[prompt.candidate].session->branches) {
            if (std::ranges::find(branches, branch) == branches.end())
                branches.push_back(branch);
        }
    }
    return branches;
}

/// Joins each session with the one that it works for; who is joined, over any number of others, is a family.
class Families {
public:
    explicit Families(std::span<const PlacedSession> all)
    {
        for (const PlacedSession &placed : all) {
            if (!placed.session->parentID.empty())
                m_above[of(placed.session->id)] = of(placed.session->parentID);
        }
    }

    /// The family's number.
    std::size_t of(std::string_view session)
    {
        std::size_t number = m_numbers.try_emplace(session, m_above.size()).first->second;
        if (number == m_above.size())
            m_above.push_back(number);
        while (m_above[number] != number)
            number = m_above[number] = m_above[m_above[number]];
        return number;
    }

private:
    std::unordered_map<std::string_view, std::size_t> m_numbers;
    std::vector<std::size_t> m_above; ///< a member nearer to the family's head, which stands above itself
};

void DayBuilder::makeRuns(std::span<const PlacedSession> all)
{
    std::ranges::sort(m_runs, [this](const Run &one, const Run &other) {
        if (one.range.from != other.range.from)
            return one.range.from < other.range.from;
        return m_candidates[one.candidate].session->id < m_candidates[other.candidate].session->id;
    });
    Families families(all);
    std::vector<FamilyRun> familyRuns;
    m_day.runs.reserve(m_runs.size());
    familyRuns.reserve(m_runs.size());
    for (const Run &run : m_runs) {
        const Candidate &candidate = m_candidates[run.candidate];
        Place &place = placeOf(candidate);
        place.agent += run.range.to - run.range.from;
        m_day.runs.push_back({candidate.session->id, candidate.session->source, place.repository, run.range});
        familyRuns.push_back({families.of(candidate.session->id), run.range});
    }
    m_day.parallel = parallelStretches(std::move(familyRuns));
}

void DayBuilder::makeBlocks()
{
    auto &blocks = m_day.blocks;
    std::size_t before = 0;
    for (const Segment &segment : m_segments) {
        // What was prompted in the same instant as something else held no attention.
        if (segment.range.from == segment.range.to)
            continue;
        if (blocks.empty() || segment.range.from - blocks.back().range.to > ActivityTimeline::longestBreak)
            blocks.emplace_back().range = segment.range;
        else if (segment.place != before)
            ++blocks.back().switches;
        before = segment.place;
        blocks.back().range.to = segment.range.to;
        FocusShare &share = shareOf(segment.place);
        share.duration += seconds(segment.range.to - segment.range.from);
        for (const Prompt &prompt : std::span(m_prompts).subspan(segment.first, segment.count)) {
            Candidate &candidate = m_candidates[prompt.candidate];
            if (std::exchange(candidate.block, blocks.size()) != blocks.size())
                share.sessionIDs.push_back(candidate.session->id);
        }
    }
}

/// The repository's share of the last block.
FocusShare &DayBuilder::shareOf(std::size_t number)
{
    Place &place = m_places[number];
    auto &shares = m_day.blocks.back().shares;
    if (std::exchange(place.block, m_day.blocks.size()) != m_day.blocks.size()) {
        place.share = shares.size();
        shares.emplace_back().repository = place.repository;
    }
    return shares[place.share];
}

void DayBuilder::makeSessions()
{
    for (const Candidate &candidate : m_candidates) {
        if (!candidate.isInDay)
            continue;
        Place &place = placeOf(candidate);
        ++place.sessions;
        if (!place.isIgnored)
            m_day.sessions.push_back(*candidate.session);
    }
    std::ranges::sort(m_day.sessions, {}, [](const AgentSession &session) {
        return std::tuple(session.events.front().date, std::string_view(session.id));
    });
}

void DayBuilder::makeTotals()
{
    for (const Place &place : m_places) {
        const std::string &key = place.repository->key;
        if (place.attention > microseconds{0})
            m_day.totals.attention[key] = seconds(place.attention);
        if (place.agent > microseconds{0})
            m_day.totals.agent[key] = seconds(place.agent);
        if (place.isIgnored && place.sessions > 0)
            m_day.ignored.push_back({key, place.repository->name, place.sessions});
    }
    std::ranges::sort(m_day.ignored, {}, [](const IgnoredActivity &ignored) {
        return std::tuple(std::string_view(ignored.name), std::string_view(ignored.key));
    });
}

ActivityDay DayBuilder::build(std::span<const PlacedSession> all)
{
    makeSegments();
    makeAttention();
    makeRuns(all);
    makeBlocks();
    makeSessions();
    makeTotals();
    return std::move(m_day);
}

} // namespace

ActivityDay ActivityTimeline::day(DayKey day, InstantInterval interval,
                                  std::span<const PlacedSession> sessions,
                                  const std::set<std::string> &ignoring)
{
    DayBuilder builder(day, interval, ignoring);
    for (const PlacedSession &session : sessions)
        builder.add(session);
    return builder.build(sessions);
}

} // namespace orvane
