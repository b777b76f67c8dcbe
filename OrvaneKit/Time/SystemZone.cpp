// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/SystemZone.h"

#include "Time/ZoneRules.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace orvane {

namespace {

namespace fs = std::filesystem;

Result<std::string, std::string> knownZone(std::string identifier)
{
    if (!ZoneRules::find(identifier))
        return failure(std::move(identifier));
    return identifier;
}

/// What follows the zone folder in the path of a zone's file.
std::optional<std::string> identifierIn(const std::string &path)
{
    constexpr std::string_view folder = "zoneinfo/";
    const std::size_t at = path.rfind(folder);
    return at == std::string::npos ? std::nullopt : std::optional(path.substr(at + folder.size()));
}

/// Follows one link after the other, since the names of old are themselves links to newer ones.
std::optional<std::string> identifierBehind(fs::path link)
{
    constexpr int mostLinks = 8;
    for (int i = 0; i < mostLinks; ++i) {
        std::error_code error;
        const fs::path target = fs::read_symlink(link, error);
        if (error)
            break;
        if (auto identifier = identifierIn(target.string()))
            return identifier;
        link = link.parent_path() / target;
    }
    return std::nullopt;
}

std::string firstWord(const std::string &path)
{
    std::string word;
    std::ifstream(path) >> word;
    return word;
}

} // namespace

ZoneSources ZoneSources::ofThisComputer()
{
    const char *variable = std::getenv("TZ");
    return {.variable = variable == nullptr ? std::nullopt : std::optional<std::string>(variable)};
}

Result<std::string, std::string> systemZone(const ZoneSources &sources)
{
    constexpr const char *utc = "UTC";
    if (sources.variable) {
        const std::string &text = *sources.variable;
        const std::string named = text.starts_with(':') ? text.substr(1) : text;
        if (named.empty()) // as the C library takes it
            return utc;
        if (named != sources.link)
            return knownZone(named.starts_with('/') ? identifierIn(named).value_or(named) : named);
    }
    if (auto identifier = identifierBehind(sources.link))
        return knownZone(std::move(*identifier));
    std::error_code error;
    if (std::string named = firstWord(sources.name); !named.empty())
        return knownZone(std::move(named));
    if (fs::exists(sources.link, error))
        return failure(std::string());
    return utc;
}

} // namespace orvane
