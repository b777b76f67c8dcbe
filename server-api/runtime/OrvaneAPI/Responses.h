// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// What a server may answer, one type for each documented status. An operation's `Output` is a variant of
/// those that its document lists, with `Undocumented` for everything else.
namespace orvane {

/// 200.
template <class Body>
struct Ok {
    Body body;
    bool operator==(const Ok &) const = default;
};

/// 201.
template <class Body>
struct Created {
    Body body;
    bool operator==(const Created &) const = default;
};

/// 202.
struct Accepted {
    bool operator==(const Accepted &) const = default;
};

/// 204.
struct NoContent {
    bool operator==(const NoContent &) const = default;
};

/// 302, with the address of its Location header.
struct Found {
    std::string location;
    bool operator==(const Found &) const = default;
};

/// 400.
template <class Body>
struct BadRequest {
    Body body;
    bool operator==(const BadRequest &) const = default;
};

/// 401.
template <class Body>
struct Unauthorized {
    Body body;
    bool operator==(const Unauthorized &) const = default;
};

/// 403.
template <class Body>
struct Forbidden {
    Body body;
    bool operator==(const Forbidden &) const = default;
};

/// 404.
template <class Body>
struct NotFound {
    Body body;
    bool operator==(const NotFound &) const = default;
};

/// 409.
template <class Body>
struct Conflict {
    Body body;
    bool operator==(const Conflict &) const = default;
};

/// 412.
template <class Body>
struct PreconditionFailed {
    Body body;
    bool operator==(const PreconditionFailed &) const = default;
};

/// 422.
template <class Body>
struct UnprocessableContent {
    Body body;
    bool operator==(const UnprocessableContent &) const = default;
};

/// 429.
template <class Body>
struct TooManyRequests {
    Body body;
    bool operator==(const TooManyRequests &) const = default;
};

/// 502.
template <class Body>
struct BadGateway {
    Body body;
    bool operator==(const BadGateway &) const = default;
};

/// 503.
template <class Body>
struct ServiceUnavailable {
    Body body;
    bool operator==(const ServiceUnavailable &) const = default;
};

/// A status that the operation's document does not list, or a documented failure whose body is not the
/// documented one (a proxy's page, for example).
struct Undocumented {
    int status = 0;
    std::string body;
    bool operator==(const Undocumented &) const = default;
};

/// A success whose body or header could not be read. The message names the place and what is wrong there.
struct DecodingError {
    std::string message;
    bool operator==(const DecodingError &) const = default;
};

} // namespace orvane
