// SPDX-License-Identifier: GPL-3.0-or-later
#include "Hub/HubDialog.h"

#include <fstream>
#include <gtest/gtest.h>

namespace orvane::server {

namespace {

using Act = HubDialog::Act;
using Acts = std::vector<Act>;

const std::string greeting = hub::record(hub::Handshake{});

HubDialog opened()
{
    HubDialog dialog;
    dialog.hear(greeting);
    return dialog;
}

Acts said(const hub::Message &message)
{
    return {HubDialog::Say{hub::record(message)}};
}

Acts hungUp(const std::string &why)
{
    return {HubDialog::Say{hub::record(hub::Message::close(why, false))}, HubDialog::End{}};
}

} // namespace

TEST(HubDialog, ShakesHandsWithWhoSpeaksJson)
{
    HubDialog dialog;
    EXPECT_EQ(dialog.hear(greeting.substr(0, 5)), Acts{});
    EXPECT_FALSE(dialog.isOpen());
    EXPECT_EQ(dialog.hear(greeting.substr(5) + "{\"type\":6}\x1e"), Acts{HubDialog::Say{"{}\x1e"}});
    EXPECT_TRUE(dialog.isOpen());
    for (const std::string &other :
         {R"({"protocol":"messagepack","version":1})", R"({"protocol":"json","version":2})", R"({"type":6})",
          "", "GET / HTTP/1.1"}) {
        HubDialog strict;
        const Acts acts = strict.hear(other + hub::recordEnd + greeting);
        ASSERT_EQ(acts.size(), 2U) << other;
        EXPECT_TRUE(std::get<HubDialog::Say>(acts[0]).text.starts_with("{\"error\":\"")) << other;
        EXPECT_EQ(acts[1], Act(HubDialog::End{}));
        EXPECT_FALSE(strict.isOpen());
    }
}

TEST(HubDialog, ReadsWhatIsAskedHoweverItIsCut)
{
    const std::string frames = hub::record(hub::Message::invocation("Watch", {{"\"w\\u00e9\""}}, "7")) +
                               hub::record(hub::Message::ping()) +
                               hub::record(hub::Message::invocation("Unwatch", {{"\"v\""}}));
    const Acts wanted{HubDialog::Watch{"wé", "7"}, HubDialog::Unwatch{"v"}};
    EXPECT_EQ(opened().hear(frames), wanted);
    for (std::size_t cut = 1; cut < frames.size(); ++cut) {
        HubDialog dialog = opened();
        Acts acts = dialog.hear(frames.substr(0, cut));
        const Acts rest = dialog.hear(frames.substr(cut));
        acts.insert(acts.end(), rest.begin(), rest.end());
        EXPECT_EQ(acts, wanted) << cut;
    }
    EXPECT_EQ(opened().hear(hub::record(hub::Message::invocation("Unwatch", {{"\"v\""}}, "8"))),
              (Acts{HubDialog::Unwatch{"v"},
                    HubDialog::Say{"{\"type\":3,\"invocationId\":\"8\",\"result\":null}\x1e"}}));
}

TEST(HubDialog, WhatItDoesNotKnowIsAnsweredWhereAnAnswerIsAwaited)
{
    const auto hears = [](const std::string &record) { return opened().hear(record + hub::recordEnd); };
    const std::string unknown = "There is no method 'Publish' here.";
    EXPECT_EQ(hears(R"({"type":1,"target":"Publish","arguments":[],"invocationId":"a"})"),
              said(hub::Message::failedCompletion("a", unknown)));
    EXPECT_EQ(hears(R"({"type":4,"target":"Publish","arguments":[],"invocationId":"a","more":{"x":[1]}})"),
              said(hub::Message::failedCompletion("a", unknown)));
    EXPECT_EQ(hears(R"({"type":1,"target":"Publish","arguments":[]})"), Acts{});
    for (const char *arguments : {"[]", "[1]", R"(["a","b"])", "[null]"})
        EXPECT_EQ(hears(R"({"type":1,"target":"Watch","invocationId":"a","arguments":)" +
                        std::string(arguments) + "}"),
                  said(hub::Message::failedCompletion("a", "Its one argument is a workspace's identifier.")))
            << arguments;
    for (const char *other : {R"({"type":3,"invocationId":"a"})", R"({"type":5,"invocationId":"a"})",
                              R"({"type":8,"sequenceId":1})", R"({"type":99})"})
        EXPECT_EQ(hears(other), Acts{}) << other;
    EXPECT_EQ(hears(R"({"type":7})"), Acts{HubDialog::End{}});
}

TEST(HubDialog, WhatIsNoMessageIsTheEnd)
{
    for (const std::string &record :
         {std::string("hello"), std::string("[]"), std::string("{}"), std::string(R"({"type":"1"})"),
          std::string(), std::string("{\"type\":1,\"target\":\"\xff\"}"), std::string("{\"type\":6}\0", 11),
          R"({"type":1,"target":"Watch","arguments":["w"],"invocationId":")" + std::string(300, 'x') +
              "\"}"}) {
        HubDialog dialog = opened();
        EXPECT_EQ(dialog.hear(record + hub::recordEnd + greeting), hungUp("The message is not understood."))
            << record;
        EXPECT_EQ(dialog.hear(hub::record(hub::Message::ping())), Acts{}) << "nothing is read any more";
    }
    HubDialog dialog = opened();
    const std::string half(longestHubMessage / 2, ' ');
    EXPECT_EQ(dialog.hear(half), Acts{});
    EXPECT_EQ(dialog.hear(half), Acts{});
    EXPECT_EQ(dialog.hear(" "), hungUp("The message is too long."));
}

/// The frames between the protocol's official client and this server, as a test of that client keeps them.
TEST(HubDialog, UnderstandsTheOfficialClientAndIsUnderstood)
{
    std::ifstream kept(ORVANE_SOURCE_DIR "/tests/npm/hub-frames.txt");
    int compared = 0;
    for (std::string line; std::getline(kept, line);) {
        const auto mark = line.find("␞");
        if (line.starts_with('#') || mark == std::string::npos)
            continue;
        const std::string record = line.substr(2, mark - 2);
        SCOPED_TRACE(record);
        ++compared;
        if (line[0] == '>' && record.find("protocol") == std::string::npos) {
            const Acts acts = opened().hear(record + hub::recordEnd);
            EXPECT_TRUE(acts.empty() || !std::holds_alternative<HubDialog::End>(acts.back()));
        } else if (line[0] == '>') {
            EXPECT_EQ(record + hub::recordEnd, greeting);
        } else if (record != "{}") {
            const auto message = decodeJson<hub::Message>(record);
            ASSERT_TRUE(message);
            EXPECT_EQ(encodeJson(*message), record);
        }
    }
    EXPECT_GT(compared, 15);
}

} // namespace orvane::server
