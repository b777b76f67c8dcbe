// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HubWire/HubFrames.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvane::server {

/// What a client's frame may be at its longest, and so a message; in bytes.
inline constexpr std::size_t longestHubMessage = 32UL * 1024;

/// The hub's side of one connection without its socket: reads what the client says and decides what is to be
/// done about it. Any one thread.
class HubDialog {
public:
    /// A record, or several, for the client.
    struct Say {
        std::string text;
        bool operator==(const Say &) const = default;
    };
    /// The client wants to hear of that workspace; with an identifier it awaits whether it may.
    struct Watch {
        std::string workspaceId;
        std::optional<std::string> invocationId;
        bool operator==(const Watch &) const = default;
    };
    struct Unwatch {
        std::string workspaceId;
        bool operator==(const Unwatch &) const = default;
    };
    /// The connection is over, after what was said before this.
    struct End {
        bool operator==(const End &) const = default;
    };
    using Act = std::variant<Say, Watch, Unwatch, End>;

    /// What to do, in this order. After an End nothing is read any more.
    std::vector<Act> hear(std::string_view frame);
    /// Whether the handshake was made, so that messages may be sent.
    bool isOpen() const { return m_isOpen; }

private:
    void shakeHands(const std::string &record, std::vector<Act> &acts);
    void obey(const std::string &record, std::vector<Act> &acts);
    void invoke(const hub::Message &message, std::vector<Act> &acts) const;
    void hangUp(const std::string &why, std::vector<Act> &acts);

    hub::Records m_records{longestHubMessage};
    bool m_isOpen = false;
    bool m_hasEnded = false;
};

} // namespace orvane::server
