// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Output/JsonShapes.h"
#include "QuickEntry/EntrySentence.h"
#include "QuickEntry/Palette.h"

namespace orvane::shapes {

struct SentenceClock {
    std::int64_t hours = 0;
    std::int64_t minutes = 0;
    std::optional<std::string> meridiem; ///< "am" or "pm"
};
/// "ago" or "duration".
struct SentenceLength {
    std::string kind;
    double seconds = 0;
};
struct SentenceSince {
    std::string kind = "since";
    SentenceClock clock;
};
struct SentenceRange {
    std::string kind = "range";
    SentenceClock start;
    SentenceClock end;
};
struct SentenceDay {
    std::string kind; ///< "today", "yesterday", "weekday" or "date"
    std::optional<std::int64_t> weekday;
    std::optional<std::chrono::year_month_day> date;
};
struct SentenceSpan {
    Instant start;
    std::optional<Instant> stop;
};

struct Sentence {
    std::string description;
    std::optional<std::string> projectId;
    std::optional<std::string> taskId;
    std::optional<std::string> clientId;
    std::vector<std::string> tagIds;
    bool isBillable = false;
    std::optional<RawJson> time; ///< one of the shapes above
    std::optional<SentenceDay> day;
    std::string timeText;
    std::optional<SentenceSpan> span;
    std::vector<std::string> notes;
    std::vector<std::string> unknown; ///< the mentions that name nothing, as they were typed
};
Sentence sentence(const EntrySentence::Reading &reading, const std::optional<EntrySentence::Span> &span,
                  std::vector<std::string> notes);

struct PaletteRow {
    std::string kind;
    std::string id;
    std::string name;
    double score = 0;
    std::vector<std::vector<std::int64_t>> ranges; ///< [start, end) in UTF-16 units
};
std::string_view kindText(PaletteItem::Kind kind);
PaletteRow paletteRow(const PaletteItem &item, const PaletteMatch::Match &match);

} // namespace orvane::shapes
