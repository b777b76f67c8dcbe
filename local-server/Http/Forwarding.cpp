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

/// The last hop as both headers tell it: a proxy sets one of them and hands on the other as a client wrote
/// it.
struct Told {
    std::optional<std::string> byOwnHeader;
    std::optional<std::string> byForwarded;
};

Told told(const HttpHeaders &headers, std::string_view own, const QByteArray &inForwarded)
{
    Told out;
    if (const auto value = headers.find(own))
        out.byOwnHeader = std::string(unquoted(lastMember(*value)));
    if (const auto forwarded = headers.find("Forwarded"))
        out.byForwarded = parameter(lastMember(*forwarded), inForwarded);
    return out;
}

std::optional<std::string> agreed(Told hop)
{
    auto one = hop.byOwnHeader ? hop.byOwnHeader : hop.byForwarded;
    const bool disagree = hop.byOwnHeader && hop.byForwarded && *hop.byOwnHeader != *hop.byForwarded;
    return disagree || (one && one->empty()) ? std::nullopt : one;
}

/// Empty for what is no address.
std::string addressIn(const std::string &hop)
{
    const std::string_view bare = bareAddress(hop);
    const QHostAddress address(QString::fromUtf8(bare.data(), static_cast<qsizetype>(bare.size())));
    return address.isNull() ? std::string() : addressText(address);
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
    const Told hop = told(headers, "X-Forwarded-For", "for");
    const bool both = headers.find("X-Forwarded-For") && headers.find("Forwarded");
    const std::string one = addressIn(hop.byOwnHeader.value_or(hop.byForwarded.value_or("")));
    if (one.empty() || (both && one != addressIn(hop.byForwarded.value_or(""))))
        return std::nullopt;
    return one;
}

std::optional<std::string> forwardedHost(const HttpHeaders &headers)
{
    return agreed(told(headers, "X-Forwarded-Host", "host"));
}

std::optional<std::string> forwardedScheme(const HttpHeaders &headers)
{
    return agreed(told(headers, "X-Forwarded-Proto", "proto"));
}

} // namespace orvane::server
