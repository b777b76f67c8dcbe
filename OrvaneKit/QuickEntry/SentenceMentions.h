// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/SentenceCatalog.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A mention that stays in the description.
struct UnreadMention {
    enum class Why {
        unknown,       ///< nothing matches it well
        ambiguous,     ///< several things match it equally well
        secondProject, ///< an entry has one project, and it is named already
        surplus,       ///< what it names does not go with what else is named
    };

    std::string text; ///< with its sign, as it was typed, but without punctuation behind it
    Why why = Why::unknown;

    bool operator==(const UnreadMention &) const = default;
};

/// What the "@" and "#" words of a sentence name, by the rules of EntrySentence. A value; any thread.
struct SentenceMentions {
    std::optional<std::string> projectID;
    std::optional<std::string> taskID;
    std::optional<std::string> clientID;
    std::vector<std::string> tagIDs;
    std::vector<bool> isTaken;         ///< for each word whether it belongs to a mention that was understood
    std::vector<UnreadMention> unread; ///< the other mentions, in the order typed

    static SentenceMentions of(std::span<const std::string_view> words, const SentenceCatalog &catalog);
};

} // namespace orvane
