// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/PreferredTime.h"

#include "Account/Installation.h"
#include "Account/ProfileDocument.h"
#include "LocalStore/LocalStore.h"

#include <QTimeZone>
#include <array>
#include <filesystem>
#include <utility>

namespace orvane {

namespace {

UserTime timeOf(const std::array<std::string, 3> &zones, int weekStart, bool hour12, Durations::Format format)
{
    for (const std::string &zone : zones) {
        if (auto time = UserTime::make(zone, weekStart, hour12, format))
            return *time;
    }
    return UserTime::utc();
}

std::string systemZone()
{
    return QTimeZone::systemTimeZoneId().toStdString();
}

/// The file of the account in use; empty when there is none yet.
std::string storePath(const Installation &installation, const std::optional<std::string> &server)
{
    std::optional<std::string> address = server ? server : installation.currentServer();
    if (!address)
        address = installation.localServer();
    const auto account = address ? installation.account(*address) : std::nullopt;
    std::string path;
    if (account)
        path = LocalStore::filePath(installation.root(), *address, *account);
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) ? path : std::string();
}

Task<UserTime> timeFromStore(std::string path, std::optional<std::string> zone)
{
    if (!path.empty()) {
        if (const auto store = co_await LocalStore::open(path)) {
            const auto profile = co_await (*store)->load<ProfileDocument>(ProfileDocument::key);
            if (profile)
                co_return preferredTime(profile->me, zone);
        }
    }
    constexpr int monday = 1;
    co_return timeOf({zone.value_or(""), systemZone(), "UTC"}, monday, false, Durations::Format::hms);
}

} // namespace

UserTime preferredTime(const MeResponse &me, const std::optional<std::string> &zone)
{
    const auto format =
        Durations::formatFromText(me.preferences.durationFormat).value_or(Durations::Format::hm);
    return timeOf({zone.value_or(""), me.timeZone, systemZone()}, static_cast<int>(me.preferences.weekStart),
                  me.preferences.timeFormat == "12h", format);
}

Task<UserTime> storedTime(const Installation &installation, const std::optional<std::string> &server,
                          std::optional<std::string> zone)
{
    return timeFromStore(storePath(installation, server), std::move(zone));
}

} // namespace orvane
