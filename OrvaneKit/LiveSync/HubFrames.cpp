// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/HubFrames.h"

#include "LiveSync/HubRecords.h"

namespace orvane {

namespace {

LiveSyncError senseless()
{
    return {"The server said something that makes no sense."};
}

HubMessage changeFrom(const HubRecord &record)
{
    if (record.target != "Changed" || !record.arguments || record.arguments->empty())
        return HubSign{};
    // One that a newer hub words otherwise is no reason to end a connection that works.
    auto change = decodeJson<SyncChange>(record.arguments->front().text);
    return change ? HubMessage(HubChange{std::move(*change)}) : HubMessage(HubSign{});
}

} // namespace

Result<std::vector<std::string>, LiveSyncError> HubSplitter::take(std::string_view frame)
{
    const LiveSyncError tooLong{"The server sent a message that is too long."};
    std::vector<std::string> messages;
    while (!frame.empty()) {
        const std::size_t end = frame.find(hubSeparator);
        const std::string_view piece = frame.substr(0, end);
        if (m_begun.size() + piece.size() > longestHubMessage)
            return failure(tooLong);
        m_begun += piece;
        if (end == std::string_view::npos)
            break;
        if (!m_begun.empty())
            messages.push_back(std::exchange(m_begun, {}));
        frame.remove_prefix(end + 1);
    }
    return messages;
}

Result<HubMessage, LiveSyncError> readHubMessage(std::string_view text)
{
    enum Type : std::int64_t { invocation = 1, completion = 3, close = 7 };
    auto record = decodeJson<HubRecord>(text);
    if (!record)
        return failure(senseless());
    switch (record->type.value_or(0)) {
    case invocation:
        return changeFrom(*record);
    case completion:
        return HubCompletion{record->invocationId.value_or(""), record->error.value_or(""),
                             record->result && record->result->text == "true"};
    case close:
        return HubClose{{"The server closed the connection: " + record->error.value_or("no reason given")}};
    default:
        return HubSign{};
    }
}

Result<void, LiveSyncError> readHubHandshake(std::string_view text)
{
    const auto record = decodeJson<HubRecord>(text);
    if (!record)
        return failure(senseless());
    if (record->error)
        return failure(LiveSyncError{"The server turned the connection down: " + *record->error});
    return {};
}

std::string hubHandshake()
{
    return std::string(R"({"protocol":"json","version":1})") + hubSeparator;
}

std::string hubPing()
{
    return std::string(R"({"type":6})") + hubSeparator;
}

std::string hubWatch(std::uint64_t invocation, const std::string &workspaceId)
{
    return encodeJson(HubInvocation{1, std::to_string(invocation), "Watch", {workspaceId}}) + hubSeparator;
}

std::string hubUnwatch(const std::string &workspaceId)
{
    return encodeJson(HubInvocation{1, std::nullopt, "Unwatch", {workspaceId}}) + hubSeparator;
}

} // namespace orvane
