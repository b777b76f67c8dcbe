// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace orvane::server {

inline constexpr std::size_t longestBody = std::size_t{1} << 20U;

/// Where the server listens, as `address` ("127.0.0.1", "::1", "0.0.0.0") and port.
struct ListenPoint {
    std::string address = "127.0.0.1";
    std::uint16_t port = 0;

    bool isLoopback() const;
    bool isAnyAddress() const { return address == "0.0.0.0" || address == "::"; }
    /// The address by which a process of this computer reaches it: "http://127.0.0.1:4711".
    std::string url() const;
};

HttpResponse bodyTooLarge();

/// Turns away what a web page could make a browser send to this server: every page can reach a loopback
/// address, under its own name too, once that name's address is changed to the loopback one.
class RequestGate {
public:
    /// `trustedProxy` is the address of a proxy whose word is taken for who sent a request and to which name.
    /// `publicAddress` is the one by which people reach the server beyond this computer.
    explicit RequestGate(ListenPoint point, std::optional<std::string> trustedProxy = {},
                         std::optional<std::string> publicAddress = {})
        : m_point(std::move(point))
        , m_trustedProxy(std::move(trustedProxy))
        , m_publicAddress(std::move(publicAddress))
    {
    }

    /// The refusal, or nothing when the request may go on. `peer` is the other side of the connection. A
    /// form's body is looked at by who takes it; any other is JSON, which no form of another page can send.
    enum class Body { json, form };
    std::optional<HttpResponse> refuse(const HttpRequest &request, const std::string &peer,
                                       Body body = Body::json) const;
    /// Who sent the request: `peer`, or the one that the trusted proxy names.
    std::string senderOf(const HttpRequest &request, const std::string &peer) const;
    /// The address under which an admitted request was sent, without a slash at the end.
    std::string addressOf(const HttpRequest &request, const std::string &peer) const;

private:
    bool isOurHost(const std::string &host) const;
    std::optional<HttpResponse> refuseName(const HttpRequest &request, const std::string &peer) const;

    ListenPoint m_point;
    std::optional<std::string> m_trustedProxy;
    std::optional<std::string> m_publicAddress;
};

} // namespace orvane::server
