// SPDX-License-Identifier: GPL-3.0-or-later
#include "HubWire/HubFrames.h"

#include "Support/JsonImpl.h"

#include <algorithm>
#include <utility>

ORVANE_JSON(orvane::hub::Handshake)
ORVANE_JSON(orvane::hub::HandshakeAnswer)
ORVANE_JSON(orvane::hub::Message)
ORVANE_JSON(orvane::hub::Change)

namespace orvane::hub {

std::optional<std::vector<std::string>> Records::take(std::string_view frame)
{
    std::vector<std::string> complete;
    while (!frame.empty()) {
        const std::size_t end = std::min(frame.find(recordEnd), frame.size());
        if (m_begun.size() + end > m_longest)
            return std::nullopt;
        m_begun += frame.substr(0, end);
        if (end == frame.size())
            break;
        complete.push_back(std::exchange(m_begun, {}));
        frame.remove_prefix(end + 1);
    }
    return complete;
}

Message Message::invocation(std::string target, std::vector<RawJson> arguments,
                            std::optional<std::string> invocationId)
{
    return {.type = type::invocation,
            .invocationId = std::move(invocationId),
            .target = std::move(target),
            .arguments = std::move(arguments)};
}

Message Message::completion(std::string invocationId, std::string result)
{
    return {.type = type::completion,
            .invocationId = std::move(invocationId),
            .result = RawJson{std::move(result)}};
}

Message Message::failedCompletion(std::string invocationId, std::string error)
{
    return {.type = type::completion, .invocationId = std::move(invocationId), .error = std::move(error)};
}

Message Message::close(std::string error, bool allowReconnect)
{
    return {.type = type::close, .error = std::move(error), .allowReconnect = allowReconnect};
}

std::string record(const Handshake &handshake)
{
    return encodeJson(handshake) + recordEnd;
}

std::string record(const HandshakeAnswer &answer)
{
    return encodeJson(answer) + recordEnd;
}

std::string record(const Message &message)
{
    return encodeJson(message) + recordEnd;
}

std::optional<std::string> textArgument(const Message &message, std::size_t index)
{
    if (!message.arguments || index >= message.arguments->size())
        return std::nullopt;
    auto text = decodeJson<std::string>((*message.arguments)[index].text);
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

} // namespace orvane::hub
