// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/AgentLogParser.h"

#include "AgentLogs/SessionTitle.h"
#include "Support/TextDigest.h"

#include <algorithm>

namespace orvane {

namespace {

/// Lines are a little out of order now and then. Keeping the events in order here saves sorting them all
/// whenever one is added; one that belongs far back is left for that.
void addEvent(AgentSession &session, AgentEvent event)
{
    constexpr std::ptrdiff_t looksBack = 256;
    auto &events = session.events;
    const auto from = events.end() - std::min(std::ssize(events), looksBack);
    const auto place = std::ranges::upper_bound(from, events.end(), event);
    events.insert(place == from && from != events.begin() ? events.end() : place, event);
}

} // namespace

AgentLogParser::AgentLogParser(AgentSource source, bool readsQuickly) : m_readsQuickly(readsQuickly)
{
    m_state.source = source;
}

AgentLogParser::AgentLogParser(State state, bool readsQuickly)
    : m_state(std::move(state)), m_readsQuickly(readsQuickly)
{
    current();
}

void AgentLogParser::read(std::string_view line)
{
    switch (m_state.source) {
    case AgentSource::claude:
        return readClaude(line);
    case AgentSource::codex:
        return readCodex(line);
    case AgentSource::copilot:
        return readCopilot(line);
    }
}

std::vector<AgentSession> AgentLogParser::sessions() const
{
    std::vector<AgentSession> sessions;
    for (const auto &[key, known] : m_state.sessions) {
        AgentSession &session = sessions.emplace_back(known);
        const auto turn = m_state.turns.find(key);
        if (turn != m_state.turns.end() && !turn->second.callsOnlyOwn.value_or(false)) {
            for (const Instant touch : turn->second.touches)
                addEvent(session, {touch, true});
        }
        if (!std::ranges::is_sorted(session.events))
            std::ranges::sort(session.events);
        const auto twins = std::ranges::unique(session.events);
        session.events.erase(twins.begin(), twins.end());
        const auto custom = m_state.customTitles.find(key);
        if (custom != m_state.customTitles.end())
            session.title = custom->second;
    }
    return sessions;
}

AgentSession &AgentLogParser::session(std::string_view prefix, std::string_view id)
{
    if (m_last != nullptr && m_last->id.size() == prefix.size() + id.size() &&
        m_last->id.starts_with(prefix) && m_last->id.ends_with(id))
        return *m_last;
    m_state.currentID = std::string(prefix) + std::string(id);
    return session(m_state.currentID);
}

AgentSession *AgentLogParser::current()
{
    return m_state.currentID.empty() ? nullptr : &session(m_state.currentID);
}

AgentSession &AgentLogParser::session(const std::string &key)
{
    if (m_last == nullptr || m_last->id != key) {
        m_last = &m_state.sessions[key];
        m_last->id = key;
        m_last->source = m_state.source;
        m_lastTurn = nullptr;
    }
    return *m_last;
}

AgentLogParser::Turn &AgentLogParser::turn(const AgentSession &session)
{
    if (&session != m_last)
        return m_state.turns[session.id];
    if (m_lastTurn == nullptr)
        m_lastTurn = &m_state.turns[session.id];
    return *m_lastTurn;
}

void AgentLogParser::prompt(AgentSession &session, Instant date, std::string_view text)
{
    Turn &present = turn(session);
    const bool isTelling = sessiontitle::isTelling(text);
    std::string title = sessiontitle::ofPrompt(text);
    if (!m_state.titleFinished && !title.empty() && (isTelling || session.title.empty()))
        session.title = title;
    if (!present.awaitsPrompt || present.callsOnlyOwn.has_value()) {
        endTurn(session, present);
        present = {};
    }
    present.awaitsPrompt = false;
    present.touch = std::max(present.touch, date);
    present.title = isTelling ? std::move(title) : std::string{};
    addEvent(session, {date, false});
}

void AgentLogParser::queuedPrompt(AgentSession &session, Instant date, std::string_view text)
{
    prompt(session, date, text);
    if (m_state.queued.size() >= State::queuedAtMost)
        m_state.queued.erase(m_state.queued.begin());
    m_state.queued.push_back(textDigest(text));
}

bool AgentLogParser::wasQueued(std::string_view text)
{
    const auto found = std::ranges::find(m_state.queued, textDigest(text));
    if (found == m_state.queued.end())
        return false;
    m_state.queued.erase(found);
    return true;
}

void AgentLogParser::beginTask(AgentSession &session, Instant date)
{
    Turn &present = turn(session);
    endTurn(session, present);
    present = {};
    present.awaitsPrompt = true;
    work(session, date);
}

void AgentLogParser::work(AgentSession &session, Instant date, const ToolCalls &calls)
{
    Turn &present = turn(session);
    present.touch = std::max(present.touch, date);
    if (calls.hasOther() && present.callsOnlyOwn != false) {
        present.callsOnlyOwn = false;
        endTurn(session, present);
    } else if (calls.hasOwn() && !present.callsOnlyOwn) {
        present.callsOnlyOwn = true;
    }
    if (present.callsOnlyOwn == false)
        addEvent(session, {date, true});
    else
        present.touches.push_back(date);
}

/// What was held back counts now, or never.
void AgentLogParser::endTurn(AgentSession &session, Turn &turn)
{
    if (!turn.callsOnlyOwn.value_or(false)) {
        for (const Instant touch : turn.touches)
            addEvent(session, {touch, true});
        settleTitle(session, turn);
    }
    turn.touches.clear();
}

void AgentLogParser::settleTitle(AgentSession &session, const Turn &turn)
{
    if (m_state.titleFinished || turn.title.empty())
        return;
    session.title = turn.title;
    m_state.titleFinished = true;
}

void placeSession(AgentSession &session, std::string_view folder, std::string_view branch)
{
    if (!folder.empty() && session.cwd != folder)
        session.cwd = folder;
    if (branch.empty() || (!session.branches.empty() && session.branches.back() == branch))
        return;
    if (std::ranges::find(session.branches, branch) == session.branches.end())
        session.branches.emplace_back(branch);
}

} // namespace orvane
