// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/PreferenceChanges.h"

#include <tuple>

namespace orvane {

namespace {

/// The members, in one order for all three types.
template <class T>
constexpr auto members = std::tuple{
    &T::weekStart,       &T::dateFormat,      &T::timeFormat,           &T::durationFormat,
    &T::pomodoroEnabled, &T::pomodoroMinutes, &T::pomodoroBreakMinutes, &T::pomodoroAutoStop,
};

/// Calls `with(changeMember, otherMember)` for each member.
template <class Other, class Visitor>
void forEachMember(Visitor with)
{
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (with(std::get<I>(members<PreferenceChanges>), std::get<I>(members<Other>)), ...);
    }(std::make_index_sequence<std::tuple_size_v<decltype(members<Other>)>>());
}

} // namespace

PreferenceChanges PreferenceChanges::between(const PreferencesResponse &before,
                                             const PreferencesResponse &after)
{
    PreferenceChanges changes;
    forEachMember<PreferencesResponse>([&](auto change, auto preference) {
        if (before.*preference != after.*preference)
            changes.*change = after.*preference;
    });
    return changes;
}

PreferencesResponse PreferenceChanges::appliedTo(PreferencesResponse preferences) const
{
    forEachMember<PreferencesResponse>([&](auto change, auto preference) {
        if (this->*change)
            preferences.*preference = *(this->*change);
    });
    return preferences;
}

PreferencesRequest PreferenceChanges::request() const
{
    PreferencesRequest request;
    forEachMember<PreferencesRequest>([&](auto change, auto member) { request.*member = this->*change; });
    return request;
}

} // namespace orvane
