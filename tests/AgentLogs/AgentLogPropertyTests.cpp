// SPDX-License-Identifier: GPL-3.0-or-later
// What holds for any log: reading quickly tells what reading in full tells, and reading on from a saved state
// tells what reading through tells.
#include "AgentLogs/AgentLogState.h"
#include "AgentLogs/LogLines.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testlogs::LineMaker;
using testlogs::told;

class AnyLog : public testing::TestWithParam<AgentSource> {};

TEST_P(AnyLog, TellsTheSameReadQuicklyAndInFull)
{
    std::size_t events = 0;
    for (unsigned seed = 0; seed < 30; ++seed) {
        LineMaker maker(seed);
        AgentLogParser quick(GetParam());
        AgentLogParser full(GetParam(), false);
        for (int i = 0; i < 120; ++i) {
            const std::string line = maker.line(GetParam());
            quick.read(line);
            full.read(line);
            ASSERT_TRUE(quick.state() == full.state()) << "seed " << seed << ": " << line << '\n'
                                                       << encodedParserState(quick.state()) << '\n'
                                                       << encodedParserState(full.state());
        }
        for (const AgentSession &session : quick.sessions())
            events += session.events.size();
    }
    EXPECT_GT(events, 200U) << "the lines made tell hardly anything";
}

TEST_P(AnyLog, TellsTheSameResumedBehindAnyLine)
{
    for (unsigned seed = 100; seed < 115; ++seed) {
        LineMaker maker(seed);
        AgentLogParser through(GetParam());
        AgentLogParser resumed(GetParam());
        for (int i = 0; i < 100; ++i) {
            std::string line = maker.line(GetParam());
            // Broken ones too: what they tell must not depend on where reading began.
            if (maker.below(4) == 0)
                line[static_cast<std::size_t>(maker.below(static_cast<int>(line.size())))] =
                    "\"\\{},\xFF"[maker.below(6)];
            through.read(line);
            const std::string encoded = encodedParserState(resumed.state());
            auto state = decodedParserState(encoded);
            ASSERT_TRUE(state) << state.error().path << " " << state.error().message << ": " << encoded;
            resumed = AgentLogParser(std::move(*state));
            resumed.read(line);
            ASSERT_TRUE(resumed.state() == through.state()) << "seed " << seed << ": " << line << '\n'
                                                            << told(resumed.sessions()) << '\n'
                                                            << told(through.sessions());
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Agents, AnyLog, testing::ValuesIn(allAgentSources),
                         [](const auto &info) { return std::string(jsonText(info.param)); });

} // namespace
} // namespace orvane
