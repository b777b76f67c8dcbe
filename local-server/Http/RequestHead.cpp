// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/RequestHead.h"

#include "OrvaneAPI/LinkProof.h"

#include <algorithm>
#include <array>

namespace orvane::server {

namespace {

bool sameName(std::string_view a, std::string_view b)
{
    const auto lowered = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(a, b, {}, lowered, lowered);
}

bool decides(std::string_view name)
{
    constexpr std::array deciding{std::string_view("Host"), std::string_view("Origin"),
                                  std::string_view("Authorization"), linkProofHeader,
                                  std::string_view("Sec-WebSocket-Key")};
    return std::ranges::any_of(deciding, [name](std::string_view one) { return sameName(name, one); });
}

bool isNameCharacter(char c)
{
    constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           marks.find(c) != std::string_view::npos;
}

bool isControl(char c)
{
    return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7f;
}

std::string_view withoutBlanks(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Takes the next line off; nothing when none ends.
std::optional<std::string_view> nextLine(std::string_view &text)
{
    const auto end = text.find("\r\n");
    if (end == std::string_view::npos)
        return std::nullopt;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 2);
    return line;
}

bool addField(std::string_view line, HttpHeaders &headers)
{
    const auto colon = line.find(':');
    if (colon == 0 || colon == std::string_view::npos)
        return false;
    const std::string_view name = line.substr(0, colon);
    std::string value(withoutBlanks(line.substr(colon + 1)));
    if (!std::ranges::all_of(name, isNameCharacter) || std::ranges::any_of(value, isControl))
        return false;
    if (const auto before = headers.find(name)) {
        if (decides(name))
            return false;
        value = *before + (before->empty() || value.empty() ? "" : ", ") + value;
    }
    headers.set(name, std::move(value));
    return true;
}

/// Whether a list such as "keep-alive, Upgrade" has that member.
bool lists(const std::optional<std::string> &list, std::string_view member)
{
    std::string_view rest = list ? std::string_view(*list) : std::string_view();
    while (!rest.empty()) {
        const auto comma = std::min(rest.find(','), rest.size());
        if (sameName(withoutBlanks(rest.substr(0, comma)), member))
            return true;
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return false;
}

bool hasBody(const HttpHeaders &headers)
{
    return headers.find("Transfer-Encoding") || headers.find("Content-Length").value_or("0") != "0";
}

} // namespace

std::optional<HttpRequest> readGetHead(std::string_view head)
{
    constexpr std::string_view method = "GET ";
    constexpr std::string_view version = " HTTP/1.1";
    const auto first = nextLine(head);
    if (!first || !first->starts_with(method) || !first->ends_with(version) ||
        first->size() <= method.size() + version.size())
        return std::nullopt;
    HttpRequest request;
    request.path = first->substr(method.size(), first->size() - method.size() - version.size());
    if (!request.path.starts_with('/') ||
        !std::ranges::all_of(request.path, [](char c) { return c > 0x20 && c < 0x7f && c != '#'; }))
        return std::nullopt;
    while (const auto line = nextLine(head)) {
        if (line->empty())
            return head.empty() && !hasBody(request.headers) ? std::optional(std::move(request))
                                                             : std::nullopt;
        if (!addField(*line, request.headers))
            return std::nullopt;
    }
    return std::nullopt;
}

bool asksForWebSocket(const HttpHeaders &headers)
{
    return lists(headers.find("Upgrade"), "websocket") && lists(headers.find("Connection"), "upgrade");
}

} // namespace orvane::server
