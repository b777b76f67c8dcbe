// SPDX-License-Identifier: GPL-3.0-or-later
// What holds for any log: reading quickly tells what reading in full tells, and reading on from a saved state
// tells what reading through tells.
#include "AgentLogs/ActivityLineReader.h"
#include "AgentLogs/AgentLogState.h"
#include "AgentLogs/LogLines.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace orvane {
namespace {

using testlogs::LineMaker;

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

/// What was kept of a log that is read on at times: the reader's and the parser's state.
struct Kept {
    ActivityLineReader::State place;
    std::string parser;
};

Kept readOn(int descriptor, const Kept &kept, std::int64_t size)
{
    auto state = decodedParserState(kept.parser);
    EXPECT_TRUE(state) << state.error().path << " " << state.error().message << ": " << kept.parser;
    AgentLogParser parser(state.value_or(AgentLogParser::State{}));
    const auto read = ActivityLineReader().read(descriptor, kept.place, size,
                                                [&](std::string_view line) { parser.read(line); });
    EXPECT_TRUE(read);
    return {read->state, encodedParserState(parser.state())};
}

TEST_P(AnyLog, TellsTheSameReadInAnyPieces)
{
    for (unsigned seed = 100; seed < 115; ++seed) {
        LineMaker maker(seed);
        std::string text;
        for (int i = 0; i < 80; ++i) {
            std::string line = maker.line(GetParam());
            // Broken ones too: what they tell must not depend on where reading began.
            if (maker.below(4) == 0)
                line[static_cast<std::size_t>(maker.below(static_cast<int>(line.size())))] =
                    "\"\\{},\xFF\n"[maker.below(7)];
            text += line + '\n';
        }
        const std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(std::tmpfile(), &std::fclose);
        ASSERT_EQ(::pwrite(::fileno(file.get()), text.data(), text.size(), 0), std::ssize(text));
        const Kept nothing{.place = {}, .parser = encodedParserState(AgentLogParser(GetParam()).state())};
        Kept kept = nothing;
        for (std::int64_t at = 0; at < std::ssize(text);) {
            at = std::min(at + 1 + maker.below(maker.below(2) == 0 ? 20 : 900), std::ssize(text));
            kept = readOn(::fileno(file.get()), kept, at);
        }
        const Kept once = readOn(::fileno(file.get()), nothing, std::ssize(text));
        EXPECT_EQ(kept.parser, once.parser) << "seed " << seed;
        EXPECT_EQ(kept.place, once.place);
    }
}

INSTANTIATE_TEST_SUITE_P(Agents, AnyLog, testing::ValuesIn(allAgentSources),
                         [](const auto &info) { return std::string(jsonText(info.param)); });

} // namespace
} // namespace orvane
