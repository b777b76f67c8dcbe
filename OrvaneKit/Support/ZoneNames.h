// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The time zones that this computer has files for. All functions here may be called from any thread; they
/// read folders and keep nothing, so a zone that an update brings is known at once.
namespace orvane {

/// The folder of zone files: the one that TZDIR names, else the system's.
std::string zoneFolder();

/// The file of the zone with this IANA identifier ("Europe/Paris", letter for letter); nothing for any other
/// text. A path is only ever put together from names that the folders list: whatever the text holds, nothing
/// outside the zone folder is touched.
std::optional<std::string> zoneFile(std::string_view identifier, const std::string &folder = zoneFolder());

/// Whether it is "UTC" or "Etc/UTC", which every computer knows, one without zone files too.
bool isUtc(std::string_view identifier);

/// Whether an identifier names a time zone here.
bool isZone(std::string_view identifier, const std::string &folder = zoneFolder());

/// All identifiers that have a file, sorted.
std::vector<std::string> zoneNames(const std::string &folder = zoneFolder());

} // namespace orvane
