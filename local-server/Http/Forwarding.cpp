// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Forwarding.h"

#include <QHostAddress>
#include <string_view>

namespace orvane::server {

namespace {

std::string_view stripped(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view unquoted(std::string_view text)
{
    const bool quoted = text.size() >= 2 && text.starts_with('"') && text.ends_with('"');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

/// What the nearest proxy added: the list's last member.
std::string_view lastMember(std::string_view list)
{
    const auto comma = list.rfind(',');
    return stripped(comma == std::string_view::npos ? list : list.substr(comma + 1));
}

/// The value of a parameter of "for=192.0.2.7;host=example.org;proto=https".
std::optional<std::string> parameter(std::string_view hop, const QByteArray &name)
{
    while (!hop.empty()) {
        const auto end = std::min(hop.find(';'), hop.size());
        const std::string_view pair = hop.substr(0, end);
        const auto equals = pair.find('=');
        if (equals != std::string_view::npos) {
            const auto key = stripped(pair.substr(0, equals));
            if (name.compare(QByteArray(key.data(), static_cast<qsizetype>(key.size())),
                             Qt::CaseInsensitive) == 0)
                return std::string(unquoted(stripped(pair.substr(equals + 1))));
        }
        hop.remove_prefix(std::min(end + 1, hop.size()));
    }
    return std::nullopt;
}

/// Without brackets and port: "192.0.2.7:80", "[2001:db8::1]:80", "2001:db8::1".
std::string_view bareAddress(std::string_view text)
{
    if (text.starts_with('['))
        return text.substr(1, std::min(text.find(']'), text.size()) - 1);
    const auto colon = text.find(':');
    return colon == text.rfind(':') ? text.substr(0, colon) : text;
}

std::optional<std::string> fromHeaders(const HttpHeaders &headers, std::string_view own,
                                       const QByteArray &inForwarded)
{
    if (const auto value = headers.find(own))
        return std::string(unquoted(lastMember(*value)));
    const auto forwarded = headers.find("Forwarded");
    return forwarded ? parameter(lastMember(*forwarded), inForwarded) : std::nullopt;
}

} // namespace

std::string addressText(const QHostAddress &address)
{
    bool isIPv4 = false;
    const quint32 number = address.toIPv4Address(&isIPv4);
    return (isIPv4 ? QHostAddress(number) : address).toString().toStdString();
}

std::optional<std::string> forwardedPeer(const HttpHeaders &headers)
{
    const auto named = fromHeaders(headers, "X-Forwarded-For", "for");
    if (!named)
        return std::nullopt;
    const std::string_view bare = bareAddress(*named);
    const QHostAddress address(QString::fromUtf8(bare.data(), static_cast<qsizetype>(bare.size())));
    return address.isNull() ? std::nullopt : std::optional{addressText(address)};
}

std::optional<std::string> forwardedHost(const HttpHeaders &headers)
{
    auto host = fromHeaders(headers, "X-Forwarded-Host", "host");
    return host && host->empty() ? std::nullopt : host;
}

} // namespace orvane::server
