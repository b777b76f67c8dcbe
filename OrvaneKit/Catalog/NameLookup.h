// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Finding things by what people type of their names and identifiers. Any thread.
namespace orvane {

/// Something that can be called by its name or its identifier. A value.
struct NamedItem {
    std::string id;
    std::string name;
    /// What tells it apart from others of its name: a project's client, a task's project. May be empty.
    std::string context = {};
    bool isArchived = false;

    bool operator==(const NamedItem &) const = default;
};

/// Why a typed text means no single thing, for a sentence that says so.
struct NoSingleItem {
    enum class Why {
        unknown,
        ambiguous,
        archived, ///< it means one thing, which is put away
    };
    Why why = Why::unknown;
    /// What could be meant: those that match, or when none does all there are.
    std::vector<NamedItem> items;

    bool operator==(const NoSingleItem &) const = default;
};

/// Which of the items a typed text means: the one with exactly this identifier, else this name (letter case
/// plays no part), else the only one whose name or identifier (of at least four characters) begins with it.
/// Gives its place.
Result<std::size_t, NoSingleItem> lookUp(std::string_view typed, const std::vector<NamedItem> &items);

/// The same among what is not put away. Naming what is deserves a better answer than "unknown".
Result<std::size_t, NoSingleItem> lookUpActive(std::string_view typed, const std::vector<NamedItem> &items);

/// How many identifiers begin with what was typed: none, or too many.
struct NoSingleId {
    std::size_t matches = 0;

    bool operator==(const NoSingleId &) const = default;
    bool isAmbiguous() const { return matches > 0; }
};

/// The identifier that begins with what was typed, at any length; a whole one is never ambiguous.
Result<std::string, NoSingleId> lookUpId(std::string_view typed, const std::vector<std::string> &ids);

/// Beginnings of the identifiers, at least six characters each and all different, in their order.
std::vector<std::string> shortIds(const std::vector<std::string> &ids);

} // namespace orvane
