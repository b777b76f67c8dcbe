// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/QuickEntryShapes.h"

#include "OrvaneAPI/SchemaFields.h"
#include "Support/JsonImpl.h"

namespace orvane {

using namespace shapes;

template <>
struct JsonFields<SentenceClock> {
    static constexpr auto list = JsonFieldList{jsonField<"hours">(&SentenceClock::hours),
                                               jsonField<"minutes">(&SentenceClock::minutes),
                                               jsonField<"meridiem">(&SentenceClock::meridiem)};
};
template <>
struct JsonFields<SentenceLength> {
    static constexpr auto list = JsonFieldList{jsonField<"kind">(&SentenceLength::kind),
                                               jsonField<"seconds">(&SentenceLength::seconds)};
};
template <>
struct JsonFields<SentenceSince> {
    static constexpr auto list =
        JsonFieldList{jsonField<"kind">(&SentenceSince::kind), jsonField<"clock">(&SentenceSince::clock)};
};
template <>
struct JsonFields<SentenceRange> {
    static constexpr auto list =
        JsonFieldList{jsonField<"kind">(&SentenceRange::kind), jsonField<"start">(&SentenceRange::start),
                      jsonField<"end">(&SentenceRange::end)};
};
template <>
struct JsonFields<SentenceDay> {
    static constexpr auto list =
        JsonFieldList{jsonField<"kind">(&SentenceDay::kind), jsonField<"weekday">(&SentenceDay::weekday),
                      jsonField<"date">(&SentenceDay::date)};
};
template <>
struct JsonFields<SentenceSpan> {
    static constexpr auto list =
        JsonFieldList{jsonField<"start">(&SentenceSpan::start), jsonField<"stop">(&SentenceSpan::stop)};
};
template <>
struct JsonFields<Sentence> {
    static constexpr auto list = JsonFieldList{jsonField<"description">(&Sentence::description),
                                               jsonField<"projectId">(&Sentence::projectId),
                                               jsonField<"taskId">(&Sentence::taskId),
                                               jsonField<"clientId">(&Sentence::clientId),
                                               jsonField<"tagIds">(&Sentence::tagIds),
                                               jsonField<"isBillable">(&Sentence::isBillable),
                                               jsonField<"time">(&Sentence::time),
                                               jsonField<"day">(&Sentence::day),
                                               jsonField<"timeText">(&Sentence::timeText),
                                               jsonField<"span">(&Sentence::span),
                                               jsonField<"notes">(&Sentence::notes),
                                               jsonField<"unknown">(&Sentence::unknown)};
};
template <>
struct JsonFields<PaletteRow> {
    static constexpr auto list =
        JsonFieldList{jsonField<"kind">(&PaletteRow::kind), jsonField<"id">(&PaletteRow::id),
                      jsonField<"name">(&PaletteRow::name), jsonField<"score">(&PaletteRow::score),
                      jsonField<"ranges">(&PaletteRow::ranges)};
};

} // namespace orvane

ORVANE_JSON(orvane::shapes::SentenceLength)
ORVANE_JSON(orvane::shapes::SentenceSince)
ORVANE_JSON(orvane::shapes::SentenceRange)
ORVANE_JSON(orvane::shapes::Sentence)
ORVANE_JSON(std::vector<orvane::shapes::PaletteRow>)

namespace orvane::shapes {

namespace {

template <class T>
RawJson raw(const T &value)
{
    return {encodeJson(value, JsonStyle{.writeNulls = true})};
}

SentenceClock clock(const EntrySentence::TypedClock &typed)
{
    SentenceClock clock{.hours = typed.hours, .minutes = typed.minutes, .meridiem = {}};
    if (typed.meridiem != EntrySentence::Meridiem::none)
        clock.meridiem = typed.meridiem == EntrySentence::Meridiem::am ? "am" : "pm";
    return clock;
}

struct TimeShape {
    RawJson operator()(const EntrySentence::Ago &ago) const
    {
        return raw(SentenceLength{"ago", ago.seconds});
    }
    RawJson operator()(const EntrySentence::Duration &duration) const
    {
        return raw(SentenceLength{"duration", duration.seconds});
    }
    RawJson operator()(const EntrySentence::Since &since) const
    {
        return raw(SentenceSince{.clock = clock(since.start)});
    }
    RawJson operator()(const EntrySentence::Range &range) const
    {
        return raw(SentenceRange{.start = clock(range.start), .end = clock(range.end)});
    }
};

struct DayShape {
    SentenceDay operator()(const EntrySentence::Weekday &day) const
    {
        return {.kind = "weekday", .weekday = day.number, .date = {}};
    }
    SentenceDay operator()(const EntrySentence::Date &date) const
    {
        return {.kind = "date", .weekday = {}, .date = date.day.civil()};
    }
    SentenceDay operator()(const EntrySentence::Today &) const
    {
        return {.kind = "today", .weekday = {}, .date = {}};
    }
    SentenceDay operator()(const EntrySentence::Yesterday &) const
    {
        return {.kind = "yesterday", .weekday = {}, .date = {}};
    }
};

} // namespace

Sentence sentence(const EntrySentence::Reading &reading, const std::optional<EntrySentence::Span> &span,
                  std::vector<std::string> notes)
{
    Sentence sentence{.description = reading.description,
                      .projectId = reading.projectID,
                      .taskId = reading.taskID,
                      .clientId = reading.clientID,
                      .tagIds = reading.tagIDs,
                      .isBillable = reading.isBillable,
                      .time = {},
                      .day = {},
                      .timeText = reading.timeText,
                      .span = {},
                      .notes = std::move(notes),
                      .unknown = {}};
    for (const UnreadMention &mention : reading.unreadMentions)
        sentence.unknown.push_back(mention.text);
    if (reading.time)
        sentence.time = std::visit(TimeShape{}, *reading.time);
    if (reading.day)
        sentence.day = std::visit(DayShape{}, *reading.day);
    if (span)
        sentence.span = SentenceSpan{span->start, span->stop};
    return sentence;
}

std::string_view kindText(PaletteItem::Kind kind)
{
    switch (kind) {
    case PaletteItem::Kind::project:
        return "project";
    case PaletteItem::Kind::task:
        return "task";
    case PaletteItem::Kind::client:
        return "client";
    case PaletteItem::Kind::tag:
        return "tag";
    case PaletteItem::Kind::recentEntry:
        return "entry";
    }
    return {};
}

PaletteRow paletteRow(const PaletteItem &item, const PaletteMatch::Match &match)
{
    PaletteRow row{.kind = std::string(kindText(item.kind)),
                   .id = item.id,
                   .name = item.name,
                   .score = match.score,
                   .ranges = {}};
    for (const TextRange &range : match.ranges)
        row.ranges.push_back({static_cast<std::int64_t>(range.start), static_cast<std::int64_t>(range.end)});
    return row;
}

} // namespace orvane::shapes
