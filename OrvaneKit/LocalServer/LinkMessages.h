// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <optional>
#include <string>

/// What is said over the local server's own socket: one JSON object a line, each request with one answer.
namespace orvane {

struct LinkRequest {
    /// "hello" or "code".
    std::string command;
    std::optional<std::string> codeChallenge = {};
    std::optional<std::string> timeZone = {};
};

struct LinkAnswer {
    std::optional<std::string> address;
    std::optional<std::string> version;
    std::optional<std::int64_t> pid;
    std::optional<std::string> code;
    std::optional<std::string> error;
};

template <>
struct JsonFields<LinkRequest> {
    static constexpr auto list = std::tuple{jsonField<"command">(&LinkRequest::command),
                                            jsonField<"codeChallenge">(&LinkRequest::codeChallenge),
                                            jsonField<"timeZone">(&LinkRequest::timeZone)};
};

template <>
struct JsonFields<LinkAnswer> {
    static constexpr auto list =
        std::tuple{jsonField<"address">(&LinkAnswer::address), jsonField<"version">(&LinkAnswer::version),
                   jsonField<"pid">(&LinkAnswer::pid), jsonField<"code">(&LinkAnswer::code),
                   jsonField<"error">(&LinkAnswer::error)};
};

} // namespace orvane
