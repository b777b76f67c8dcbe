// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/Forms.h"

#include "Names/NameText.h"

#include <algorithm>

namespace orvane::server {

std::optional<QueryPairs> readForm(std::string_view text)
{
    std::string spaced(text);
    for (std::size_t at = spaced.find('+'); at != std::string::npos; at = spaced.find('+', at))
        spaced.replace(at, 1, "%20");
    return parseQuery(spaced);
}

std::optional<QueryPairs> formIn(const RequestParts &parts)
{
    const std::string type = parts.headers.find("Content-Type").value_or("");
    if (trimmed(type.substr(0, type.find(';'))) != "application/x-www-form-urlencoded")
        return std::nullopt;
    return readForm(parts.body);
}

std::string fieldOf(const QueryPairs &form, std::string_view name)
{
    const auto found = std::ranges::find(form, name, &QueryPairs::value_type::first);
    return found == form.end() ? std::string() : found->second;
}

bool hasTwice(const QueryPairs &form, std::initializer_list<std::string_view> names)
{
    return std::ranges::any_of(names, [&](std::string_view name) {
        return std::ranges::count(form, name, &QueryPairs::value_type::first) > 1;
    });
}

} // namespace orvane::server
