// SPDX-License-Identifier: GPL-3.0-or-later
// What the protocol's official client was recorded to send and to get is what ours sends and understands.
#include "LiveSync/HubMessages.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <fstream>
#include <gtest/gtest.h>
#include <set>

namespace orvane {
namespace {

struct RecordedFrames {
    std::vector<std::string> sent;
    std::vector<std::string> received;
};

RecordedFrames recorded()
{
    constexpr std::string_view ends = "␞";
    RecordedFrames frames;
    std::ifstream file(ORVANE_SOURCE_DIR "/tests/npm/hub-frames.txt");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("> ") && !line.starts_with("< "))
            continue;
        EXPECT_TRUE(line.ends_with(ends)) << line;
        (line.front() == '>' ? frames.sent : frames.received)
            .push_back(line.substr(2, line.size() - 2 - ends.size()));
    }
    return frames;
}

QJsonObject objectOf(std::string text)
{
    if (text.ends_with('\x1e'))
        text.pop_back();
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

/// As we say what the official client says.
std::string asWeSay(const QJsonObject &message)
{
    if (message.contains(QLatin1String("protocol")))
        return hubHandshake();
    if (message[QLatin1String("type")] == 6)
        return hubPing();
    const std::string workspace =
        message[QLatin1String("arguments")].toArray().first().toString().toStdString();
    if (message[QLatin1String("target")] == QLatin1String("Watch"))
        return hubWatch(message[QLatin1String("invocationId")].toString().toULongLong(), workspace);
    return message[QLatin1String("target")] == QLatin1String("Unwatch") ? hubUnwatch(workspace)
                                                                        : std::string();
}

TEST(RecordedFrames, AreWhatWeSend)
{
    std::set<std::string> kinds;
    for (const std::string &frame : recorded().sent) {
        const QJsonObject message = objectOf(frame);
        const std::string ours = asWeSay(message);
        // The recording also tries a method that the hub has not.
        if (ours.empty())
            continue;
        EXPECT_EQ(objectOf(ours), message) << frame;
        kinds.insert(message[QLatin1String("target")].toString(QStringLiteral("-")).toStdString() +
                     std::to_string(message[QLatin1String("type")].toInt()));
    }
    EXPECT_EQ(kinds, (std::set<std::string>{"-0", "-6", "Unwatch1", "Watch1"}));
}

TEST(RecordedFrames, AreUnderstood)
{
    std::set<std::size_t> kinds;
    for (const std::string &frame : recorded().received) {
        if (frame == "{}") {
            EXPECT_TRUE(readHubHandshake(frame));
            continue;
        }
        const auto message = readHubMessage(frame);
        ASSERT_TRUE(message) << frame;
        kinds.insert(message->index());
        if (const auto *change = std::get_if<HubChange>(&*message))
            EXPECT_EQ(change->change, (SyncChange{"catalog", "{workspace}", ""}));
        if (const auto *completion = std::get_if<HubCompletion>(&*message))
            EXPECT_FALSE(completion->invocationId.empty()) << frame;
    }
    EXPECT_EQ(kinds.size(), std::variant_size_v<HubMessage>) << "one of each kind";
}

} // namespace
} // namespace orvane
