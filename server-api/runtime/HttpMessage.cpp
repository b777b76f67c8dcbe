// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/HttpMessage.h"

#include <algorithm>

namespace orvane {

namespace {

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameName(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, lowered, lowered);
}

} // namespace

std::string_view text(HttpMethod method)
{
    switch (method) {
    case HttpMethod::get:
        return "GET";
    case HttpMethod::post:
        return "POST";
    case HttpMethod::put:
        return "PUT";
    case HttpMethod::delete_:
        return "DELETE";
    }
    return "GET";
}

std::optional<std::string> HttpHeaders::find(std::string_view name) const
{
    const auto found =
        std::ranges::find_if(m_fields, [&](const HttpHeader &field) { return sameName(field.name, name); });
    return found == m_fields.end() ? std::nullopt : std::optional{found->value};
}

void HttpHeaders::set(std::string_view name, std::string value)
{
    const auto found =
        std::ranges::find_if(m_fields, [&](const HttpHeader &field) { return sameName(field.name, name); });
    if (found != m_fields.end())
        found->value = std::move(value);
    else
        m_fields.push_back({std::string(name), std::move(value)});
}

} // namespace orvane
