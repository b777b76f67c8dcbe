// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <optional>
#include <string>

/// What is said over the server's own socket: one JSON object a line, each request with one answer.
namespace orvane::server {

struct SocketRequest {
    /// "hello" or "code".
    std::string command;
    std::optional<std::string> codeChallenge;
    std::optional<std::string> timeZone;
};

struct SocketAnswer {
    std::optional<std::string> address;
    std::optional<std::string> version;
    std::optional<std::int64_t> pid;
    std::optional<std::string> code;
    std::optional<std::string> error;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::SocketRequest> {
    using SocketRequest = server::SocketRequest;
    static constexpr auto list = std::tuple{jsonField<"command">(&SocketRequest::command),
                                            jsonField<"codeChallenge">(&SocketRequest::codeChallenge),
                                            jsonField<"timeZone">(&SocketRequest::timeZone)};
};

template <>
struct JsonFields<server::SocketAnswer> {
    using SocketAnswer = server::SocketAnswer;
    static constexpr auto list =
        std::tuple{jsonField<"address">(&SocketAnswer::address), jsonField<"version">(&SocketAnswer::version),
                   jsonField<"pid">(&SocketAnswer::pid), jsonField<"code">(&SocketAnswer::code),
                   jsonField<"error">(&SocketAnswer::error)};
};

} // namespace orvane
