// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/StatusLine.h"

#include "Terminal/TextWidth.h"

#include <algorithm>
#include <map>

namespace orvane {

namespace {

using Values = std::map<std::string, std::string, std::less<>>;

/// To tmux "#" begins commands to run and styles; doubling it would show twice elsewhere.
std::string harmless(std::string_view text)
{
    std::string out;
    for (const char character : printable(text)) {
        if (character == '#')
            out += "＃";
        else
            out += character;
    }
    return out;
}

Values valuesOf(const std::optional<StoredStatus> &known)
{
    const StoredStatus status = known.value_or(StoredStatus{});
    const auto length = [&](std::int64_t seconds) {
        return status.time.duration(static_cast<double>(seconds));
    };
    std::string description;
    if (status.running)
        description = status.running->description.empty() ? "(no description)" : status.running->description;
    std::string projects;
    for (const std::string &name : status.projects)
        projects += (projects.empty() ? "" : ", ") + name;
    return {{"running", harmless(description)},
            {"elapsed", status.running ? length(status.elapsed) : std::string()},
            {"today", length(status.today)},
            {"project", harmless(projects)},
            {"waiting", std::to_string(status.waiting)}};
}

/// Where the placeholder ends that begins here; other braces are text.
std::optional<std::size_t> placeholderEnd(std::string_view format, std::size_t begin)
{
    const std::size_t end = format.find('}', begin);
    if (end == std::string_view::npos || end == begin + 1)
        return std::nullopt;
    const std::string_view name = format.substr(begin + 1, end - begin - 1);
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return std::ranges::all_of(name, isLetter) ? std::optional(end) : std::nullopt;
}

} // namespace

Result<std::string, std::string> statusLine(std::string_view format,
                                            const std::optional<StoredStatus> &status)
{
    const Values values = valuesOf(status);
    std::string line;
    for (std::size_t at = 0; at < format.size(); ++at) {
        const auto end = format[at] == '{' ? placeholderEnd(format, at) : std::nullopt;
        if (!end) {
            line += format[at] == '\n' || format[at] == '\r' ? ' ' : format[at];
            continue;
        }
        const std::string_view name = format.substr(at + 1, *end - at - 1);
        const auto value = values.find(name);
        if (value == values.end())
            return failure("There is no {" + std::string(name) +
                           "}. There are {running}, {elapsed}, {today}, {project} and {waiting}.");
        line += value->second;
        at = *end;
    }
    return status ? line : std::string();
}

} // namespace orvane
