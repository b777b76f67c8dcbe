// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/RequestGate.h"

#include "Http/Forwarding.h"
#include "Http/Problems.h"

#include <QHostAddress>
#include <QSysInfo>
#include <algorithm>

namespace orvane::server {

namespace {

std::string lowered(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

bool isJson(const std::string &contentType)
{
    std::string media = lowered(contentType.substr(0, contentType.find(';')));
    while (media.ends_with(' ') || media.ends_with('\t'))
        media.pop_back();
    return media == "application/json";
}

/// An address in the form that stands before the port: IPv6 in brackets.
std::string hostForm(const std::string &address)
{
    return address.find(':') == std::string::npos ? address : "[" + address + "]";
}

/// "HOST:PORT" taken apart; without a port it is that of plain HTTP.
struct HostParts {
    std::string host;
    std::string port = "80";
};

HostParts parted(const std::string &text)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || text.ends_with(']'))
        return {text};
    return {text.substr(0, colon), text.substr(colon + 1)};
}

/// Whether it can stand in an address, and in a header's quotes.
bool isHostText(const std::string &text)
{
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
               c == '-' || c == '_' || c == ':' || c == '[' || c == ']';
    });
}

bool isAddressText(const std::string &host)
{
    const bool bracketed = host.starts_with('[') && host.ends_with(']');
    const std::string bare = bracketed ? host.substr(1, host.size() - 2) : host;
    return !QHostAddress(QString::fromStdString(bare)).isNull();
}

} // namespace

HttpResponse bodyTooLarge()
{
    return problem(413, "The request is too large.", "Its body must not be over 1 MiB.");
}

bool ListenPoint::isLoopback() const
{
    return QHostAddress(QString::fromStdString(address)).isLoopback();
}

std::string ListenPoint::url() const
{
    std::string host = address;
    if (isAnyAddress())
        host = address == "::" ? "::1" : "127.0.0.1";
    return "http://" + hostForm(host) + ":" + std::to_string(port);
}

bool RequestGate::isOurHost(const std::string &text) const
{
    const auto [host, port] = parted(lowered(text));
    if (port != std::to_string(m_point.port))
        return false;
    if (host == hostForm(m_point.address) || host == "localhost" || host == "127.0.0.1")
        return true;
    // Of names beyond this computer's loopback only the machine's own will do: a page's name must not.
    if (!m_point.isLoopback() && host == lowered(QSysInfo::machineHostName().toStdString()))
        return true;
    return m_point.isAnyAddress() && isAddressText(host);
}

std::string RequestGate::senderOf(const HttpRequest &request, const std::string &peer) const
{
    return peer == m_trustedProxy ? forwardedPeer(request.headers).value_or(peer) : peer;
}

std::string RequestGate::addressOf(const HttpRequest &request, const std::string &peer) const
{
    const bool isFromProxy = peer == m_trustedProxy;
    const auto forwarded = isFromProxy ? forwardedHost(request.headers) : std::nullopt;
    if (m_publicAddress && (forwarded || (isFromProxy && forwardedPeer(request.headers))))
        return *m_publicAddress;
    // A proxy is there for TLS unless it says that it had none.
    const bool isPlain = !forwarded || forwardedScheme(request.headers) == "http";
    const std::string host = forwarded ? *forwarded : request.headers.find("Host").value_or("");
    return isHostText(host) ? (isPlain ? "http://" : "https://") + lowered(host) : m_point.url();
}

/// The names behind which the trusted proxy puts this server are the proxy's business; a page of one of them
/// may have been fetched over TLS.
std::optional<HttpResponse> RequestGate::refuseName(const HttpRequest &request, const std::string &peer) const
{
    const auto forwarded = peer == m_trustedProxy ? forwardedHost(request.headers) : std::nullopt;
    const auto host = forwarded ? forwarded : request.headers.find("Host");
    if (!host || (!forwarded && !isOurHost(*host)))
        return problem(421, "This server does not go by that name.",
                       "The request's Host is not the address on which this server listens.");
    const auto origin = request.headers.find("Origin");
    if (origin && *origin != "http://" + *host && !(forwarded && *origin == "https://" + *host))
        return forbidden("Web pages of other origins may not use this server.");
    return std::nullopt;
}

std::optional<HttpResponse> RequestGate::refuse(const HttpRequest &request, const std::string &peer,
                                                Body body) const
{
    if (auto refusal = refuseName(request, peer))
        return refusal;
    if (request.body.size() > longestBody)
        return bodyTooLarge();
    if (body == Body::json && !request.body.empty() &&
        !isJson(request.headers.find("Content-Type").value_or("")))
        return problem(415, "The request's body is not JSON.", "Its Content-Type must be application/json.");
    return std::nullopt;
}

} // namespace orvane::server
