// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ActivityShapes.h"

#include "Output/JsonShapes.h"
#include "Support/JsonImpl.h"

#include <algorithm>

namespace orvane::shapes::activity {

namespace {

struct Repository {
    std::string key;
    std::string name;
    std::optional<std::string> origin;
    bool isRepository = false;
    std::string identity;
};

struct Attention {
    Repository repository;
    Instant start;
    Instant end;
    std::vector<std::string> sessionIDs;
    std::vector<Instant> prompts;
    std::vector<std::string> branches;
};

struct Run {
    std::string sessionID;
    AgentSource source = AgentSource::claude;
    Repository repository;
    Instant start;
    Instant end;
};

struct Share {
    Repository repository;
    double seconds = 0;
    std::vector<std::string> sessionIDs;
};

struct Block {
    Instant start;
    Instant end;
    std::int64_t switches = 0;
    std::vector<Share> shares;
};

struct Session {
    std::string id;
    AgentSource source = AgentSource::claude;
    std::optional<std::string> parentID;
    std::optional<std::string> cwd;
    std::optional<std::string> title;
    std::vector<std::string> branches;
    std::int64_t prompts = 0;
    std::int64_t touches = 0;
};

struct Stretch {
    Instant start;
    Instant end;
};

struct Day {
    std::chrono::year_month_day day{};
    std::vector<Attention> attention;
    std::vector<Run> runs;
    std::vector<Block> blocks;
    std::vector<Session> sessions;
    ActivityTotals totals;
    std::vector<Stretch> parallel;
    std::vector<IgnoredActivity> ignored;
};

struct Week {
    std::vector<Day> days;
    AgentActivityLoader::Cost cost;
};

std::optional<std::string> known(const std::string &text)
{
    return text.empty() ? std::nullopt : std::optional(text);
}

Repository repositoryOf(const SharedRepository &repository)
{
    return {repository->key, repository->name, known(repository->origin), repository->isRepository,
            repository->identity};
}

Session sessionOf(const AgentSession &session)
{
    const auto touches = std::ranges::count_if(session.events, &AgentEvent::isTouch);
    return {session.id,
            session.source,
            known(session.parentID),
            known(session.cwd),
            known(session.title),
            session.branches,
            static_cast<std::int64_t>(session.events.size()) - touches,
            touches};
}

Block blockOf(const FocusBlock &block)
{
    Block shape{block.range.from, block.range.to, block.switches, {}};
    for (const FocusShare &share : block.shares)
        shape.shares.push_back({repositoryOf(share.repository), share.duration, share.sessionIDs});
    return shape;
}

Day dayOf(const ActivityDay &day)
{
    Day shape;
    shape.day = day.day.civil();
    shape.totals = day.totals;
    shape.ignored = day.ignored;
    for (const AttentionSegment &segment : day.attention)
        shape.attention.push_back({repositoryOf(segment.repository), segment.range.from, segment.range.to,
                                   segment.sessionIDs, segment.prompts, segment.branches});
    for (const AgentRun &run : day.runs)
        shape.runs.push_back(
            {run.sessionID, run.source, repositoryOf(run.repository), run.range.from, run.range.to});
    for (const FocusBlock &block : day.blocks)
        shape.blocks.push_back(blockOf(block));
    for (const AgentSession &session : day.sessions)
        shape.sessions.push_back(sessionOf(session));
    for (const InstantInterval range : day.parallel)
        shape.parallel.push_back({range.from, range.to});
    return shape;
}

} // namespace

} // namespace orvane::shapes::activity

namespace orvane {

namespace activity = shapes::activity;

template <>
struct JsonFields<activity::Repository> {
    static constexpr auto list = JsonFieldList{jsonField<"key">(&activity::Repository::key),
                                               jsonField<"name">(&activity::Repository::name),
                                               jsonField<"origin">(&activity::Repository::origin),
                                               jsonField<"isRepository">(&activity::Repository::isRepository),
                                               jsonField<"identity">(&activity::Repository::identity)};
};
template <>
struct JsonFields<activity::Attention> {
    static constexpr auto list = JsonFieldList{jsonField<"repository">(&activity::Attention::repository),
                                               jsonField<"start">(&activity::Attention::start),
                                               jsonField<"end">(&activity::Attention::end),
                                               jsonField<"sessionIDs">(&activity::Attention::sessionIDs),
                                               jsonField<"prompts">(&activity::Attention::prompts),
                                               jsonField<"branches">(&activity::Attention::branches)};
};
template <>
struct JsonFields<activity::Run> {
    static constexpr auto list = JsonFieldList{
        jsonField<"sessionID">(&activity::Run::sessionID), jsonField<"source">(&activity::Run::source),
        jsonField<"repository">(&activity::Run::repository), jsonField<"start">(&activity::Run::start),
        jsonField<"end">(&activity::Run::end)};
};
template <>
struct JsonFields<activity::Share> {
    static constexpr auto list = JsonFieldList{jsonField<"repository">(&activity::Share::repository),
                                               jsonField<"seconds">(&activity::Share::seconds),
                                               jsonField<"sessionIDs">(&activity::Share::sessionIDs)};
};
template <>
struct JsonFields<activity::Block> {
    static constexpr auto list = JsonFieldList{
        jsonField<"start">(&activity::Block::start), jsonField<"end">(&activity::Block::end),
        jsonField<"switches">(&activity::Block::switches), jsonField<"shares">(&activity::Block::shares)};
};
template <>
struct JsonFields<activity::Session> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&activity::Session::id),
                                               jsonField<"source">(&activity::Session::source),
                                               jsonField<"parentID">(&activity::Session::parentID),
                                               jsonField<"cwd">(&activity::Session::cwd),
                                               jsonField<"title">(&activity::Session::title),
                                               jsonField<"branches">(&activity::Session::branches),
                                               jsonField<"prompts">(&activity::Session::prompts),
                                               jsonField<"touches">(&activity::Session::touches)};
};
template <>
struct JsonFields<ActivityTotals> {
    static constexpr auto list = JsonFieldList{jsonField<"attention">(&ActivityTotals::attention),
                                               jsonField<"agent">(&ActivityTotals::agent)};
};
template <>
struct JsonFields<activity::Stretch> {
    static constexpr auto list = JsonFieldList{jsonField<"start">(&activity::Stretch::start),
                                               jsonField<"end">(&activity::Stretch::end)};
};
template <>
struct JsonFields<IgnoredActivity> {
    static constexpr auto list =
        JsonFieldList{jsonField<"key">(&IgnoredActivity::key), jsonField<"name">(&IgnoredActivity::name),
                      jsonField<"sessions">(&IgnoredActivity::sessions)};
};
template <>
struct JsonFields<AgentActivityLoader::Cost> {
    using Cost = AgentActivityLoader::Cost;
    static constexpr auto list = JsonFieldList{
        jsonField<"files">(&Cost::files), jsonField<"bytesRead">(&Cost::bytesRead),
        jsonField<"peakBufferedBytes">(&Cost::peakBufferedBytes), jsonField<"seconds">(&Cost::seconds)};
};
template <>
struct JsonFields<activity::Day> {
    static constexpr auto list = JsonFieldList{
        jsonField<"day">(&activity::Day::day),           jsonField<"attention">(&activity::Day::attention),
        jsonField<"runs">(&activity::Day::runs),         jsonField<"blocks">(&activity::Day::blocks),
        jsonField<"sessions">(&activity::Day::sessions), jsonField<"totals">(&activity::Day::totals),
        jsonField<"parallel">(&activity::Day::parallel), jsonField<"ignored">(&activity::Day::ignored)};
};
template <>
struct JsonFields<activity::Week> {
    static constexpr auto list =
        JsonFieldList{jsonField<"days">(&activity::Week::days), jsonField<"cost">(&activity::Week::cost)};
};

ORVANE_JSON(AgentActivityLoader::Cost)
ORVANE_JSON(activity::Day)
ORVANE_JSON(activity::Week)

} // namespace orvane

namespace orvane::shapes {

std::string activityDay(const ActivityDay &day, const AgentActivityLoader::Cost &cost)
{
    // One more member at the end of the day's own.
    std::string json = text(activity::dayOf(day));
    json.resize(json.rfind('}'));
    return json + ",\"cost\":" + encodeJson(cost) + "}\n";
}

std::string activityWeek(std::span<const ActivityDay> days, const AgentActivityLoader::Cost &cost)
{
    activity::Week week{{}, cost};
    for (const ActivityDay &day : days)
        week.days.push_back(activity::dayOf(day));
    return text(week);
}

} // namespace orvane::shapes
