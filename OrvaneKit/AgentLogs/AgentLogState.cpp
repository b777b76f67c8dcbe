// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/AgentLogState.h"

#include "Support/JsonImpl.h"

#include <algorithm>

namespace orvane {

/// The form in which a state is kept.
namespace logstate {

using Turn = AgentLogParser::Turn;

struct StoredSession {
    std::string id;
    AgentSource source = AgentSource::claude;
    std::string parentID;
    std::string cwd;
    std::string title;
    std::vector<std::string> branches;
    std::vector<Instant> dates;
    std::vector<Instant> touches;
};

struct StoredState {
    AgentSource source = AgentSource::claude;
    std::map<std::string, StoredSession> sessions;
    std::string currentID;
    std::map<std::string, std::string> customTitles;
    std::map<std::string, Turn> turns;
    bool titleFinished = false;
    std::vector<std::int64_t> queued;
    bool isSubagent = false;
    std::optional<Instant> forkedAt;
};

} // namespace logstate

using namespace logstate;

template <>
struct JsonFields<Turn> {
    static constexpr auto list =
        JsonFieldList{jsonField<"touch">(&Turn::touch), jsonField<"callsOnlyOwn">(&Turn::callsOnlyOwn),
                      jsonField<"title">(&Turn::title), jsonField<"touches">(&Turn::touches),
                      jsonField<"awaitsPrompt">(&Turn::awaitsPrompt)};
};
template <>
struct JsonFields<StoredSession> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&StoredSession::id),
                                               jsonField<"source">(&StoredSession::source),
                                               jsonField<"parentID">(&StoredSession::parentID),
                                               jsonField<"cwd">(&StoredSession::cwd),
                                               jsonField<"title">(&StoredSession::title),
                                               jsonField<"branches">(&StoredSession::branches),
                                               jsonField<"dates">(&StoredSession::dates),
                                               jsonField<"touches">(&StoredSession::touches)};
};
template <>
struct JsonFields<StoredState> {
    static constexpr auto list = JsonFieldList{jsonField<"source">(&StoredState::source),
                                               jsonField<"sessions">(&StoredState::sessions),
                                               jsonField<"currentID">(&StoredState::currentID),
                                               jsonField<"customTitles">(&StoredState::customTitles),
                                               jsonField<"turns">(&StoredState::turns),
                                               jsonField<"titleFinished">(&StoredState::titleFinished),
                                               jsonField<"queued">(&StoredState::queued),
                                               jsonField<"isSubagent">(&StoredState::isSubagent),
                                               jsonField<"forkedAt">(&StoredState::forkedAt)};
};

} // namespace orvane

ORVANE_JSON(orvane::logstate::StoredState)

namespace orvane {

namespace {

StoredSession stored(const AgentSession &session)
{
    StoredSession stored{.id = session.id,
                         .source = session.source,
                         .parentID = session.parentID,
                         .cwd = session.cwd,
                         .title = session.title,
                         .branches = session.branches,
                         .dates = {},
                         .touches = {}};
    for (const AgentEvent &event : session.events)
        (event.isTouch ? stored.touches : stored.dates).push_back(event.date);
    return stored;
}

AgentSession restored(StoredSession &&stored)
{
    AgentSession session{.id = std::move(stored.id),
                         .source = stored.source,
                         .parentID = std::move(stored.parentID),
                         .cwd = std::move(stored.cwd),
                         .title = std::move(stored.title),
                         .branches = std::move(stored.branches),
                         .events = {}};
    session.events.reserve(stored.dates.size() + stored.touches.size());
    for (const Instant date : stored.dates)
        session.events.push_back({date, false});
    for (const Instant date : stored.touches)
        session.events.push_back({date, true});
    std::ranges::sort(session.events);
    return session;
}

/// What is wrong with a state that was read; nothing when a parser can have come to it. The parser relies on
/// all of this.
std::optional<JsonError> fault(const StoredState &state)
{
    const std::string prefix = std::string(jsonText(state.source)) + ":";
    for (const auto &[key, session] : state.sessions) {
        if (key != session.id || session.source != state.source || !key.starts_with(prefix) ||
            key.size() == prefix.size())
            return JsonError{"sessions", "holds a session under a key that is not its own"};
    }
    const auto isUnknown = [&](const auto &entry) { return !state.sessions.contains(entry.first); };
    if (!state.currentID.empty() && !state.sessions.contains(state.currentID))
        return JsonError{"currentID", "names no session"};
    if (std::ranges::any_of(state.turns, isUnknown))
        return JsonError{"turns", "names no session"};
    if (std::ranges::any_of(state.customTitles, isUnknown))
        return JsonError{"customTitles", "names no session"};
    if (state.queued.size() > AgentLogParser::State::queuedAtMost)
        return JsonError{"queued", "is too long"};
    return {};
}

} // namespace

std::string encodedParserState(const AgentLogParser::State &state)
{
    StoredState out{.source = state.source,
                    .sessions = {},
                    .currentID = state.currentID,
                    .customTitles = state.customTitles,
                    .turns = state.turns,
                    .titleFinished = state.titleFinished,
                    .queued = state.queued,
                    .isSubagent = state.isSubagent,
                    .forkedAt = state.forkedAt};
    for (const auto &[key, session] : state.sessions)
        out.sessions.emplace(key, stored(session));
    return encodeJson(out);
}

Result<AgentLogParser::State, JsonError> decodedParserState(std::string_view text)
{
    auto read = decodeJson<StoredState>(text, {.strict = true});
    if (!read)
        return failure(std::move(read.error()));
    if (auto wrong = fault(*read))
        return failure(std::move(*wrong));
    AgentLogParser::State state{.source = read->source,
                                .sessions = {},
                                .currentID = std::move(read->currentID),
                                .customTitles = std::move(read->customTitles),
                                .turns = std::move(read->turns),
                                .titleFinished = read->titleFinished,
                                .queued = std::move(read->queued),
                                .isSubagent = read->isSubagent,
                                .forkedAt = read->forkedAt};
    for (auto &[key, session] : read->sessions)
        state.sessions.emplace(key, restored(std::move(session)));
    return state;
}

} // namespace orvane
