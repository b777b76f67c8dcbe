// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Support/Json.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class QSettings;

namespace orvane {

/// What the user picked in the palette, and how recently. A value; any thread.
///
/// A key names the thing that was picked; see PaletteItem for those of the palette.
struct PaletteUsage {
    struct Use {
        std::int64_t count = 0; ///< how often it was picked, 1 or more
        Instant last;           ///< the last time, to the millisecond

        bool operator==(const Use &) const = default;
        /// As that of the key.
        double weight(Instant now) const;
    };

    /// So many keys are remembered, those picked last.
    static constexpr std::size_t mostKeys = 120;

    std::map<std::string, Use> uses;

    bool operator==(const PaletteUsage &) const = default;

    /// How much a key is in use: 0 when unknown, towards 1 with each pick; a pick counts half after 14 days.
    double weight(const std::string &key, Instant now) const;

    /// Remembers a pick.
    void record(const std::string &key, Instant now);

    /// The keys in regular use (a weight above 0.15), the heaviest first and equal ones by key.
    std::vector<std::string> frequent(Instant now) const;

    /// The JSON that is kept among the preferences. Reading never fails: text that is no usage gives an empty
    /// one, and what no pick can have made is left out.
    std::string json() const;
    static PaletteUsage fromJson(std::string_view text);

    /// In the settings under "paletteUsage." and the scope's identifier; a scope is a workspace.
    static PaletteUsage load(const QSettings &settings, const std::string &scope);
    void save(QSettings &settings, const std::string &scope) const;
};

template <>
struct JsonFields<PaletteUsage::Use> {
    static constexpr auto list = JsonFieldList{
        jsonField<"count">(&PaletteUsage::Use::count),
        jsonField<"last">(&PaletteUsage::Use::last),
    };
};

template <>
struct JsonFields<PaletteUsage> {
    static constexpr auto list = JsonFieldList{jsonField<"uses">(&PaletteUsage::uses)};
};

} // namespace orvane
