// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/AgentLogParser.h"

#include <random>
#include <string>
#include <string_view>
#include <vector>

/// Lines of the shapes that the agents write, and what reading them tells.
namespace orvane::testlogs {

/// So many seconds after one day's ten o'clock.
Instant moment(int second);

std::string claude(std::string_view type, int second, std::string_view content, std::string_view more = {});
std::string claudeCall(int second, std::string_view tool);
std::string codex(std::string_view type, int second, std::string_view payload);
std::string codexStart(std::string_view id, std::string_view more = {}, int second = 0);
std::string copilot(std::string_view type, int second, std::string_view data, std::string_view more = {});
std::string with(std::string line, std::string_view from, std::string_view to);

/// A line for each session: id, folder, branches, title, parent (each when there is one), then its prompts
/// and its work as "P10 W12", by second.
std::string told(const std::vector<AgentSession> &sessions);
/// Of all lines, read quickly and in full, which must agree.
std::string told(AgentSource source, const std::vector<std::string> &lines);
/// Only the events of that, all sessions' on one line.
std::string events(AgentSource source, const std::vector<std::string> &lines);

/// Makes lines without end: real shapes with members in any order, missing or of a wrong kind, and texts and
/// spaces written in any of the ways that JSON has.
class LineMaker {
public:
    explicit LineMaker(unsigned seed) : m_random(seed) {}
    std::string line(AgentSource source);
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(m_random); }

private:
    using Members = std::vector<std::pair<std::string_view, std::string>>;

    std::string claudeLine();
    std::string codexLine();
    std::string copilotLine();
    std::string block();
    std::string source();
    std::string object(Members members);
    std::string list(const std::vector<std::string> &items);
    std::string text(std::string_view plain);
    std::string anyText(const std::vector<std::string_view> &choices);
    std::string timestamp();
    std::string wrongValue();
    std::string space();
    bool isOneIn(int many) { return below(many) == 0; }

    std::mt19937 m_random;
    int m_second = 0;
};

} // namespace orvane::testlogs
