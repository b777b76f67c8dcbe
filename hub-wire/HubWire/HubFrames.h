// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The JSON hub protocol as it goes over a WebSocket: JSON objects, each followed by a record separator. The
/// first one of each side is the handshake, the others are messages. Any thread.
namespace orvane::hub {

inline constexpr char recordEnd = '\x1e';

/// Puts records together out of frames, which may hold several of them, or a piece of one.
class Records {
public:
    /// In bytes, without its separator.
    explicit Records(std::size_t longest) : m_longest(longest) {}

    /// The records that the frame completes, without their separators. Nothing when one is too long; what
    /// comes after that is not to be read.
    std::optional<std::vector<std::string>> take(std::string_view frame);

private:
    std::size_t m_longest;
    std::string m_begun;
};

/// The first record of a client.
struct Handshake {
    std::string protocol = "json";
    std::int64_t version = 1;

    bool operator==(const Handshake &) const = default;
};

/// What it is answered: an object without members when it is good.
struct HandshakeAnswer {
    std::optional<std::string> error = {};

    bool operator==(const HandshakeAnswer &) const = default;
};

/// The numbers that stand for kinds of messages; there are others, which nobody here has a use for.
namespace type {
inline constexpr std::int64_t invocation = 1;
inline constexpr std::int64_t completion = 3;
inline constexpr std::int64_t streamInvocation = 4;
inline constexpr std::int64_t ping = 6;
inline constexpr std::int64_t close = 7;
} // namespace type

/// Any message: which members it has depends on its type.
struct Message {
    std::int64_t type = 0;
    /// Of an invocation that wants a completion, and of that.
    std::optional<std::string> invocationId = {};
    std::optional<std::string> target = {};
    std::optional<std::vector<RawJson>> arguments = {};
    std::optional<RawJson> result = {};
    std::optional<std::string> error = {};
    /// Of a close message: whether coming back is of use.
    std::optional<bool> allowReconnect = {};

    bool operator==(const Message &) const = default;

    /// `arguments` are JSON texts.
    static Message invocation(std::string target, std::vector<RawJson> arguments,
                              std::optional<std::string> invocationId = {});
    /// `result` is a JSON text.
    static Message completion(std::string invocationId, std::string result);
    static Message failedCompletion(std::string invocationId, std::string error);
    static Message ping() { return {.type = type::ping}; }
    static Message close(std::string error, bool allowReconnect);
};

/// The argument of "Changed".
struct Change {
    /// "time-entries", "catalog", "settings", "agent-activity", "proposals" or "me".
    std::string topic;
    /// Empty for what a user has beside all workspaces.
    std::string workspaceId;
    /// Whose it is; empty for what everybody in the workspace sees.
    std::string userId;

    bool operator==(const Change &) const = default;
};

/// As one record, its separator included.
std::string record(const Handshake &handshake);
std::string record(const HandshakeAnswer &answer);
std::string record(const Message &message);

/// The argument at that place when it is a text.
std::optional<std::string> textArgument(const Message &message, std::size_t index);

} // namespace orvane::hub

namespace orvane {

template <>
struct JsonFields<hub::Handshake> {
    static constexpr auto list = JsonFieldList{jsonField<"protocol">(&hub::Handshake::protocol),
                                               jsonField<"version">(&hub::Handshake::version)};
};

template <>
struct JsonFields<hub::HandshakeAnswer> {
    static constexpr auto list = JsonFieldList{jsonField<"error">(&hub::HandshakeAnswer::error)};
};

template <>
struct JsonFields<hub::Message> {
    static constexpr auto list = JsonFieldList{jsonField<"type">(&hub::Message::type),
                                               jsonField<"invocationId">(&hub::Message::invocationId),
                                               jsonField<"target">(&hub::Message::target),
                                               jsonField<"arguments">(&hub::Message::arguments),
                                               jsonField<"result">(&hub::Message::result),
                                               jsonField<"error">(&hub::Message::error),
                                               jsonField<"allowReconnect">(&hub::Message::allowReconnect)};
};

template <>
struct JsonFields<hub::Change> {
    static constexpr auto list = JsonFieldList{jsonField<"topic">(&hub::Change::topic),
                                               jsonField<"workspaceId">(&hub::Change::workspaceId),
                                               jsonField<"userId">(&hub::Change::userId)};
};

} // namespace orvane
