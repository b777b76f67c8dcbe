// SPDX-License-Identifier: GPL-3.0-or-later
#include "Hub/HubDialog.h"

namespace orvane::server {

namespace {

/// Longer ones are nobody's counter; a failed invocation hands it back.
constexpr std::size_t longestInvocationId = 256;

std::string unknownMethod(const hub::Message &message)
{
    return "There is no method '" + message.target.value_or("").substr(0, 64) + "' here.";
}

} // namespace

std::vector<HubDialog::Act> HubDialog::hear(std::string_view frame)
{
    std::vector<Act> acts;
    if (m_hasEnded)
        return acts;
    const auto records = m_records.take(frame);
    if (!records) {
        hangUp("The message is too long.", acts);
        return acts;
    }
    for (const std::string &record : *records) {
        if (m_isOpen)
            obey(record, acts);
        else
            shakeHands(record, acts);
        if (m_hasEnded)
            break;
    }
    return acts;
}

void HubDialog::shakeHands(const std::string &record, std::vector<Act> &acts)
{
    const auto handshake = decodeJson<hub::Handshake>(record);
    if (handshake == hub::Handshake{}) {
        m_isOpen = true;
        acts.emplace_back(Say{hub::record(hub::HandshakeAnswer{})});
        return;
    }
    hangUp(handshake ? "This hub speaks version 1 of the json protocol alone."
                     : "The handshake is not understood.",
           acts);
}

void HubDialog::obey(const std::string &record, std::vector<Act> &acts)
{
    const auto message = decodeJson<hub::Message>(record);
    if (!message || message->invocationId.value_or("").size() > longestInvocationId)
        return hangUp("The message is not understood.", acts);
    if (message->type == hub::type::invocation) {
        invoke(*message, acts);
    } else if (message->type == hub::type::streamInvocation && message->invocationId) {
        acts.emplace_back(Say{
            hub::record(hub::Message::failedCompletion(*message->invocationId, unknownMethod(*message)))});
    } else if (message->type == hub::type::close) {
        m_hasEnded = true;
        acts.emplace_back(End{});
    }
    // A ping has been heard, and what others there are is for hubs that do more.
}

void HubDialog::invoke(const hub::Message &message, std::vector<Act> &acts) const
{
    const auto answer = [&](const hub::Message &completion) {
        if (message.invocationId)
            acts.emplace_back(Say{hub::record(completion)});
    };
    const std::string id = message.invocationId.value_or("");
    if (message.target != "Watch" && message.target != "Unwatch")
        return answer(hub::Message::failedCompletion(id, unknownMethod(message)));
    auto workspace = hub::textArgument(message, 0);
    if (!workspace || message.arguments->size() != 1)
        return answer(hub::Message::failedCompletion(id, "Its one argument is a workspace's identifier."));
    if (message.target == "Watch") {
        acts.emplace_back(Watch{std::move(*workspace), message.invocationId});
        return;
    }
    acts.emplace_back(Unwatch{std::move(*workspace)});
    answer(hub::Message::completion(id, "null"));
}

/// Before the handshake's answer there are no messages: it is that answer itself which says why not.
void HubDialog::hangUp(const std::string &why, std::vector<Act> &acts)
{
    m_hasEnded = true;
    acts.emplace_back(Say{m_isOpen ? hub::record(hub::Message::close(why, false))
                                   : hub::record(hub::HandshakeAnswer{why})});
    acts.emplace_back(End{});
}

} // namespace orvane::server
