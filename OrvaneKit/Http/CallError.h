// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/ProblemTypes.h"
#include "OrvaneAPI/Responses.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Result.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// How a call to the server fails. The three kinds are told apart once, at the HTTP boundary, and everybody
/// above decides by the kind alone: an APIError is the server's refusal, a ConnectionError says that nobody
/// knows whether the server got the request, a DecodingError that its answer made no sense. Plain values,
/// free of threads.
namespace orvane {

/// The server answered 400 or above.
struct APIError {
    /// The HTTP status.
    std::int64_t status = 0;
    std::optional<std::string> title = {};
    std::optional<std::string> detail = {};
    /// Field name to messages; empty when the body had none.
    std::map<std::string, std::vector<std::string>> fieldErrors = {};
    /// The problem's type URI.
    std::optional<std::string> type = {};
    /// The entry as the server holds it now; only with `entryChangedProblemType`.
    std::optional<TimeEntryResponse> current = {};

    bool operator==(const APIError &) const = default;

    /// The text for people: the first field's message, else title and detail, else a general sentence.
    std::string errorDescription() const;
};

/// No network, a time-out, a TLS or DNS failure, a connection that broke.
struct ConnectionError {
    /// What the transport said: for diagnosis, not shown.
    std::string underlying;

    bool operator==(const ConnectionError &) const = default;

    std::string errorDescription() const;
};

using CallError = std::variant<APIError, ConnectionError, DecodingError>;

template <class T>
using CallResult = Result<T, CallError>;

/// The text for people.
std::string describe(const CallError &error);

/// The refusal that stands for a session that is over, whether or not the server was asked.
APIError sessionEndedError();

} // namespace orvane
