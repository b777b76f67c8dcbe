// SPDX-License-Identifier: GPL-3.0-or-later
#include "LiveSync/HubMessages.h"

#include "HubWire/HubFrames.h"
#include "Support/JsonOutput.h"

namespace orvane {

namespace {

LiveSyncError senseless()
{
    return {"The server said something that makes no sense."};
}

RawJson jsonOf(const std::string &text)
{
    JsonOutput output{JsonStyle{}};
    output.value(text);
    return {output.take()};
}

HubMessage changeFrom(const hub::Message &message)
{
    if (message.target != "Changed" || !message.arguments || message.arguments->empty())
        return HubSign{};
    // One that a newer hub words otherwise is no reason to end a connection that works.
    auto change = decodeJson<SyncChange>(message.arguments->front().text);
    return change ? HubMessage(HubChange{std::move(*change)}) : HubMessage(HubSign{});
}

} // namespace

Result<HubMessage, LiveSyncError> readHubMessage(std::string_view text)
{
    auto message = decodeJson<hub::Message>(text);
    if (!message)
        return failure(senseless());
    switch (message->type) {
    case hub::type::invocation:
        return changeFrom(*message);
    case hub::type::completion:
        return HubCompletion{message->invocationId.value_or(""), message->error.value_or(""),
                             message->result == RawJson{"true"}};
    case hub::type::close:
        return HubClose{{"The server closed the connection: " + message->error.value_or("no reason given")}};
    default:
        return HubSign{};
    }
}

Result<void, LiveSyncError> readHubHandshake(std::string_view text)
{
    const auto answer = decodeJson<hub::HandshakeAnswer>(text);
    if (!answer)
        return failure(senseless());
    if (answer->error)
        return failure(LiveSyncError{"The server turned the connection down: " + *answer->error});
    return {};
}

std::string hubHandshake()
{
    return hub::record(hub::Handshake{});
}

std::string hubPing()
{
    return hub::record(hub::Message::ping());
}

std::string hubWatch(std::uint64_t invocation, const std::string &workspaceId)
{
    return hub::record(hub::Message::invocation("Watch", {jsonOf(workspaceId)}, std::to_string(invocation)));
}

std::string hubUnwatch(const std::string &workspaceId)
{
    return hub::record(hub::Message::invocation("Unwatch", {jsonOf(workspaceId)}));
}

} // namespace orvane
