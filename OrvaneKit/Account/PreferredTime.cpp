// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/PreferredTime.h"

#include "Account/ProfileDocument.h"
#include "Account/StoredAccount.h"
#include "LocalStore/LocalStore.h"
#include "Time/SystemZone.h"
#include "Time/ZoneRules.h"

#include <utility>

namespace orvane {

namespace {

struct ZoneChoice {
    std::string identifier;
    std::string notice = {};
};

std::string noticeOf(const std::string &problem, const std::string &used)
{
    return problem + " Times are in " + used + ". Another zone: --zone ZONE";
}

/// The system's own, in place of `unknown` where that is not empty.
ZoneChoice systemChoice(const std::string &unknown)
{
    const auto system = systemZone();
    const std::string used = system.value_or("UTC");
    if (!unknown.empty())
        return {used, noticeOf("The time zone \"" + unknown + "\" is not known on this computer.", used)};
    if (system)
        return {used};
    if (system.error().empty())
        return {used, noticeOf("This computer does not say which time zone it is in.", used)};
    return {used, noticeOf("This computer's time zone \"" + system.error() + "\" is not known.", used)};
}

ZoneChoice choice(const std::string &asked, const std::string &ofAccount)
{
    const std::string &wanted = asked.empty() ? ofAccount : asked;
    if (!ZoneRules::find(wanted))
        return systemChoice(wanted);
    // An account made where the computer's zone is not known has this one; nobody may have chosen it.
    if (asked.empty() && wanted == "UTC") {
        if (auto system = systemChoice({}); !system.notice.empty())
            return system;
    }
    return {wanted};
}

PreferredTime timeOf(const ZoneChoice &zone, int weekStart, bool hour12, Durations::Format format)
{
    const auto time = UserTime::make(zone.identifier, weekStart, hour12, format);
    return {time.value_or(UserTime::utc()), zone.notice};
}

Task<PreferredTime> timeFromStore(std::string path, std::optional<std::string> zone)
{
    if (!path.empty()) {
        if (const auto store = co_await LocalStore::open(path)) {
            const auto profile = co_await (*store)->load<ProfileDocument>(ProfileDocument::key);
            if (profile)
                co_return preferredTime(profile->me, zone);
        }
    }
    constexpr int monday = 1;
    co_return timeOf(choice(zone.value_or(""), {}), monday, false, Durations::Format::hms);
}

} // namespace

PreferredTime preferredTime(const MeResponse &me, const std::optional<std::string> &zone)
{
    const auto format =
        Durations::formatFromText(me.preferences.durationFormat).value_or(Durations::Format::hm);
    return timeOf(choice(zone.value_or(""), me.timeZone), static_cast<int>(me.preferences.weekStart),
                  me.preferences.timeFormat == "12h", format);
}

Task<PreferredTime> storedTime(const Installation &installation, const std::optional<std::string> &server,
                               std::optional<std::string> zone)
{
    const auto account = StoredAccount::find(installation, server);
    return timeFromStore(account ? account->storePath : std::string(), std::move(zone));
}

std::optional<std::string> differingSystemZone(const MeResponse &me, Instant now)
{
    constexpr std::chrono::days halfYear{182};
    const auto system = systemZone();
    const auto here = system ? UserTime::make(*system) : std::nullopt;
    const auto account = UserTime::make(me.timeZone);
    if (!here || !account)
        return std::nullopt;
    const bool isSame = here->offset(now) == account->offset(now) &&
                        here->offset(now + halfYear) == account->offset(now + halfYear);
    return isSame ? std::nullopt : std::optional(*system);
}

} // namespace orvane
