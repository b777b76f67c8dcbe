// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/AgentLogState.h"
#include "AgentLogs/LogLines.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testlogs::with;

/// In the middle of a fork's history, with all that a state can hold.
const std::string kept =
    R"({"source":"codex","sessions":{"codex:0b":{"id":"codex:0b","source":"codex","parentID":"codex:0a",)"
    R"("cwd":"/w","title":"Roof","branches":["main","fix"],"dates":["2026-04-30T10:00:03.000Z"],)"
    R"("touches":["2026-04-30T10:00:01.000Z"]}},"currentID":"codex:0b","customTitles":{"codex:0b":"Roof"},)"
    R"("turns":{"codex:0b":{"touch":"2026-04-30T10:00:05.000Z","callsOnlyOwn":true,"title":"Roof",)"
    R"("touches":["2026-04-30T10:00:05.000Z"],"awaitsPrompt":false}},"titleFinished":true,"queued":[1,2],)"
    R"("isSubagent":true,"forkedAt":"2026-04-30T10:00:00.000Z"})";

TEST(AgentLogStateTest, IsWrittenAsItWasRead)
{
    const auto state = decodedParserState(kept);
    ASSERT_TRUE(state);
    EXPECT_EQ(encodedParserState(*state), kept);
    AgentLogParser parser(*state);
    EXPECT_EQ(testlogs::told(parser.sessions()), "codex:0b | /w | Roof | codex:0a #main #fix | W1 P3\n");
    parser.read(testlogs::codex("response_item", 1, R"("role":"assistant")"));
    EXPECT_EQ(parser.state(), *state) << "still the parent's history";
    parser.read(testlogs::codex("response_item", 8, R"("type":"function_call","name":"shell")"));
    EXPECT_EQ(testlogs::told(parser.sessions()),
              "codex:0b | /w | Roof | codex:0a #main #fix | W1 P3 W5 W8\n");
}

TEST(AgentLogStateTest, RefusesWhatNoParserComesTo)
{
    std::string many = "[0";
    for (std::size_t i = 0; i < AgentLogParser::State::queuedAtMost; ++i)
        many += ",1";
    for (
        const std::string &text : {
            std::string(),
            std::string("{}"),
            kept + kept,
            kept.substr(0, kept.size() - 1),
            with(kept, R"("source":"codex")", R"("source":"claude")"),
            with(kept, R"("source":"codex")", R"("source":"none")"),
            with(kept, R"("id":"codex:0b")", R"("id":"codex:0c")"),
            with(kept, R"("id":"codex:0b","source":"codex")", R"("id":"codex:0b","source":"claude")"),
            with(kept, R"("currentID":"codex:0b")", R"("currentID":"x")"),
            with(kept, R"("currentID":"codex:0b")", R"("currentID":"codex:0c")"),
            with(kept, R"("customTitles":{"codex:0b")", R"("customTitles":{"codex:0c")"),
            with(kept, R"("turns":{"codex:0b")", R"("turns":{"codex:0c")"),
            with(kept, R"("queued":[1,2])", R"("queued":)" + many + "]"),
            with(kept, R"("forkedAt":"2026)", R"("forkedAt":"99999)"),
            with(kept, R"("dates":["2026)", R"("dates":[["2026)"),
            with(kept, R"("titleFinished":true,)", ""),
            std::string(
                R"({"source":"codex","sessions":{"codex:":{"id":"codex:","source":"codex","parentID":"","cwd":"",)"
                R"("title":"","branches":[],"dates":[],"touches":[]}},"currentID":"","customTitles":{},"turns":{},)"
                R"("titleFinished":false,"queued":[],"isSubagent":false})"),
        })
        EXPECT_FALSE(decodedParserState(text)) << text;
}

} // namespace
} // namespace orvane
