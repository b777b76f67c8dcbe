// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

/// What is said over the local server's own socket: one JSON object a line, each request with one answer.
namespace orvane {

struct LinkRequest {
    /// "hello", "code", or "request" for one that must not go over a port: it holds a password.
    std::string command;
    std::optional<std::string> codeChallenge = {};
    std::optional<std::string> timeZone = {};
    std::optional<std::string> method = {};
    std::optional<std::string> path = {};
    std::optional<std::map<std::string, std::string>> headers = {};
    std::optional<std::string> body = {};
};

struct LinkAnswer {
    static LinkAnswer refusal(std::string why)
    {
        LinkAnswer answer;
        answer.error = std::move(why);
        return answer;
    }

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

template <>
struct JsonFields<LinkRequest> {
    static constexpr auto list = std::tuple{jsonField<"command">(&LinkRequest::command),
                                            jsonField<"codeChallenge">(&LinkRequest::codeChallenge),
                                            jsonField<"timeZone">(&LinkRequest::timeZone),
                                            jsonField<"method">(&LinkRequest::method),
                                            jsonField<"path">(&LinkRequest::path),
                                            jsonField<"headers">(&LinkRequest::headers),
                                            jsonField<"body">(&LinkRequest::body)};
};

template <>
struct JsonFields<LinkAnswer> {
    static constexpr auto list =
        std::tuple{jsonField<"address">(&LinkAnswer::address), jsonField<"version">(&LinkAnswer::version),
                   jsonField<"pid">(&LinkAnswer::pid),         jsonField<"key">(&LinkAnswer::key),
                   jsonField<"code">(&LinkAnswer::code),       jsonField<"status">(&LinkAnswer::status),
                   jsonField<"headers">(&LinkAnswer::headers), jsonField<"body">(&LinkAnswer::body),
                   jsonField<"error">(&LinkAnswer::error)};
};

} // namespace orvane
