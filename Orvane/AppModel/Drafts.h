// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A half-typed text: of an account, at one place ("field", "panel", "entry:ID").
struct Draft {
    std::string account;
    std::string key;
    std::string text; ///< UTF-8

    bool operator==(const Draft &) const = default;
};

/// The half-typed texts of all accounts, the one changed last at the end. Bounded: a text is cut, between two
/// characters, and when all of them are too much those go that were not touched for longest. A value.
class Drafts {
public:
    static constexpr std::size_t longestText = 32 * 1024; ///< in bytes, like all of these
    static constexpr std::size_t longestName = 256;       ///< of an account or a key
    static constexpr std::size_t mostText = 1024 * 1024;
    static constexpr std::size_t mostDrafts = 200;

    /// Reads what `written` wrote. Anything else makes no drafts.
    static Drafts read(std::string_view json);
    std::string written() const;

    const std::vector<Draft> &all() const { return m_drafts; }
    bool isEmpty() const { return m_drafts.empty(); }
    /// Empty when there is none.
    std::string text(std::string_view account, std::string_view key) const;
    /// An empty text takes the draft away, and a name that is too long has none. False when nothing changed.
    bool set(Draft draft);
    /// False when the account had none.
    bool forget(std::string_view account);

    bool operator==(const Drafts &) const = default;

private:
    std::vector<Draft>::const_iterator find(std::string_view account, std::string_view key) const;
    void dropOldest();

    std::vector<Draft> m_drafts;
};

} // namespace orvane
