// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

/// What is said over the server's own socket: one JSON object a line, each request with one answer.
namespace orvane::server {

struct SocketRequest {
    /// "hello", "code", or "request" for one that must not go over a port: it holds a password.
    std::string command;
    std::optional<std::string> codeChallenge = {};
    std::optional<std::string> timeZone = {};
    std::optional<std::string> method = {};
    std::optional<std::string> path = {};
    std::optional<std::map<std::string, std::string>> headers = {};
    std::optional<std::string> body = {};
};

struct SocketAnswer {
    std::optional<std::string> address;
    std::optional<std::string> version;
    std::optional<std::int64_t> pid;
    /// What requests and answers are proved with as long as this process lives; see LinkProof.h.
    std::optional<std::string> key;
    std::optional<std::string> code;
    std::optional<std::int64_t> status;
    std::optional<std::map<std::string, std::string>> headers;
    std::optional<std::string> body;
    std::optional<std::string> error;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::SocketRequest> {
    using SocketRequest = server::SocketRequest;
    static constexpr auto list = std::tuple{jsonField<"command">(&SocketRequest::command),
                                            jsonField<"codeChallenge">(&SocketRequest::codeChallenge),
                                            jsonField<"timeZone">(&SocketRequest::timeZone),
                                            jsonField<"method">(&SocketRequest::method),
                                            jsonField<"path">(&SocketRequest::path),
                                            jsonField<"headers">(&SocketRequest::headers),
                                            jsonField<"body">(&SocketRequest::body)};
};

template <>
struct JsonFields<server::SocketAnswer> {
    using SocketAnswer = server::SocketAnswer;
    static constexpr auto list =
        std::tuple{jsonField<"address">(&SocketAnswer::address), jsonField<"version">(&SocketAnswer::version),
                   jsonField<"pid">(&SocketAnswer::pid),         jsonField<"key">(&SocketAnswer::key),
                   jsonField<"code">(&SocketAnswer::code),       jsonField<"status">(&SocketAnswer::status),
                   jsonField<"headers">(&SocketAnswer::headers), jsonField<"body">(&SocketAnswer::body),
                   jsonField<"error">(&SocketAnswer::error)};
};

} // namespace orvane
