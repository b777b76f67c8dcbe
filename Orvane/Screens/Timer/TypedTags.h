// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Result.h"
#include "Time/UserTime.h"

#include <QString>
#include <string>
#include <vector>

namespace orvane {

/// Tags as a field shows them, so that it reads them again: #review #"deep work". Pure.
QString tagsText(const std::vector<std::string> &ids, const Catalog &catalog);

/// The identifiers of the tags that a field says. The error is what in it is no tag.
Result<std::vector<std::string>, std::string> typedTags(const QString &typed, const Catalog &catalog,
                                                        const PreferencesResponse &preferences,
                                                        const UserTime &time);

} // namespace orvane
