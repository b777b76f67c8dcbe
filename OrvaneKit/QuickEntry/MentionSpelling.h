// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "QuickEntry/Palette.h"
#include "QuickEntry/SentenceCatalog.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// How a thing of the catalog is written into a sentence so that the sentence takes it for that thing and no
/// other: "@Website", "@\"Big Project\"", "@acme/Website", "#deep-work".
///
/// Made where it is needed; both catalogs outlive it. On the catalog's thread, the main one.
class MentionSpelling {
public:
    /// Where in a sentence it is to stand.
    struct Place {
        std::string_view before;
        std::string_view after = {};
        /// What is kept of what was typed behind the sign, up to a slash and that ("web/").
        std::string_view outer = {};
        /// Whether the name is being typed in quotes.
        bool isQuoted = false;
    };

    MentionSpelling(const Catalog &catalog, const SentenceCatalog &names) : m_catalog(catalog), m_names(names)
    {
    }

    /// With its sign. Nothing where no spelling tells it from others; an entry that was worked on has none.
    std::optional<std::string> of(const PaletteItem &item, const Place &place) const;

private:
    std::string nameAround(const PaletteItem &item) const;
    bool means(const std::string &mention, const PaletteItem &item, const Place &place) const;

    const Catalog &m_catalog;
    const SentenceCatalog &m_names;
};

/// Where the mention begins that reaches to the end of the sentence, in bytes; one in quotes may have spaces.
std::optional<std::size_t> openMention(std::string_view sentence);

} // namespace orvane
