// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "QuickEntry/EntrySentence.h"

#include <string>
#include <vector>

namespace orvane {

/// Something in a sentence that its entry will not have as it was perhaps meant: what was understood but has
/// no place there, and what looks like a name, a time or a day and was not read as one. For people; who shows
/// it finds the words. A value.
struct SentenceNote {
    enum class Kind {
        client,         ///< named without a project of it; an entry belongs to a project
        unknownTag,     ///< no tag has such a name
        unknownName,    ///< no project, task or client has
        ambiguousName,  ///< several names match
        secondProject,  ///< it names a project beside another
        surplusName,    ///< it does not go with what else is named
        bareHours,      ///< two numbers that would be a range with minutes
        day,            ///< not read, beside a time that was
        dayWithoutTime, ///< which it would need
        time,
    };

    /// A line with more that was not understood is no sentence, and one note says as much as ten.
    static constexpr std::size_t mostNotes = 5;

    Kind kind = Kind::time;
    std::string text;       ///< as typed; of a client its name
    std::string suggestion; ///< of bare hours the range that they would be: "9:00-17:00"; else empty

    bool operator==(const SentenceNote &) const = default;

    /// In the order typed, names first. The number of an issue (#2) is no tag to ask about. On the catalog's
    /// thread.
    static std::vector<SentenceNote> of(const EntrySentence::Reading &reading, const Catalog &catalog);
};

} // namespace orvane
