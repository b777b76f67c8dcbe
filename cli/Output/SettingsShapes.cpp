// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/SettingsShapes.h"

#include "OrvaneAPI/SchemaFields.h"
#include "Output/JsonShapes.h"
#include "Support/JsonImpl.h"

namespace orvane {

template <>
struct JsonFields<AccountSettings::Profile> {
    static constexpr auto list = JsonFieldList{jsonField<"email">(&AccountSettings::Profile::email),
                                               jsonField<"fullName">(&AccountSettings::Profile::fullName),
                                               jsonField<"timeZone">(&AccountSettings::Profile::timeZone)};
};
template <>
struct JsonFields<AccountSettings> {
    static constexpr auto list = JsonFieldList{jsonField<"preferences">(&AccountSettings::preferences),
                                               jsonField<"profile">(&AccountSettings::profile),
                                               jsonField<"workspace">(&AccountSettings::workspace)};
};

ORVANE_JSON(AccountSettings)

} // namespace orvane

namespace orvane::shapes {

std::string settingsText(const AccountSettings &settings)
{
    return text(settings);
}

} // namespace orvane::shapes
