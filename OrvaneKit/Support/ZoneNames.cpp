// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/ZoneNames.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace orvane {

namespace {

namespace fs = std::filesystem;

/// The folder holds more than zones: tables, copies of all zones with and without leap seconds, links to the
/// system's own. The names of zones and their regions begin with a capital and have no dot.
bool couldBeZonePart(std::string_view name)
{
    const auto isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
    const auto isAllowed = [isUpper](char c) {
        return isUpper(c) || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
               c == '+';
    };
    // "Factory" is what a computer has whose zone was never set.
    return !name.empty() && isUpper(name.front()) && std::ranges::all_of(name, isAllowed) &&
           name != "Factory";
}

bool isZoneFile(const fs::path &path)
{
    constexpr std::string_view magic = "TZif";
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        return false;
    std::string start(magic.size(), '\0');
    std::ifstream file(path, std::ios::binary);
    return file.read(start.data(), static_cast<std::streamsize>(start.size())) && start == magic;
}

/// The last part, without the copies that a path's own parts are.
std::string_view nameOf(const fs::directory_entry &entry)
{
    const std::string_view path = entry.path().native();
    return path.substr(path.rfind('/') + 1);
}

/// The entry of a folder that has this name, as the folder lists it.
std::optional<fs::path> listedEntry(const fs::path &folder, std::string_view name)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (nameOf(*entry) == name)
            return entry->path();
    }
    return std::nullopt;
}

void addZones(const fs::path &folder, const std::string &prefix, std::vector<std::string> &zones)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name(nameOf(*entry));
        if (!couldBeZonePart(name))
            continue;
        std::error_code unreadable;
        // A folder behind a link could lead in a circle.
        if (entry->is_directory(unreadable) && !entry->is_symlink(unreadable))
            addZones(entry->path(), prefix + name + "/", zones);
        else if (isZoneFile(entry->path()))
            zones.push_back(prefix + name);
    }
}

} // namespace

std::string zoneFolder()
{
    const char *named = std::getenv("TZDIR");
    if (named != nullptr && *named == '/')
        return named;
    std::error_code error;
    for (const char *folder : {"/usr/share/zoneinfo", "/usr/lib/zoneinfo", "/usr/share/lib/zoneinfo"}) {
        if (fs::is_directory(folder, error))
            return folder;
    }
    return "/usr/share/zoneinfo";
}

std::optional<std::string> zoneFile(std::string_view identifier, const std::string &folder)
{
    fs::path path = folder;
    for (std::string_view rest = identifier;;) {
        const std::size_t slash = rest.find('/');
        const std::string_view part = rest.substr(0, slash);
        const auto entry = couldBeZonePart(part) ? listedEntry(path, part) : std::nullopt;
        if (!entry)
            return std::nullopt;
        path = *entry;
        if (slash == std::string_view::npos)
            break;
        std::error_code error;
        if (fs::is_symlink(path, error))
            return std::nullopt;
        rest.remove_prefix(slash + 1);
    }
    return isZoneFile(path) ? std::optional(path.string()) : std::nullopt;
}

bool isUtc(std::string_view identifier)
{
    return identifier == "UTC" || identifier == "Etc/UTC";
}

bool isZone(std::string_view identifier, const std::string &folder)
{
    return isUtc(identifier) || zoneFile(identifier, folder);
}

std::vector<std::string> zoneNames(const std::string &folder)
{
    std::vector<std::string> zones;
    addZones(folder, {}, zones);
    std::ranges::sort(zones);
    return zones;
}

} // namespace orvane
