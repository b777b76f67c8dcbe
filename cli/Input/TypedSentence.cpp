// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/TypedSentence.h"

#include "QuickEntry/UnreadWords.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

#include <cmath>

namespace orvane {

namespace {

/// A line with more that was not understood is no sentence, and one note says as much as ten.
constexpr std::size_t mostNotes = 5;

std::string quoted(std::string_view text)
{
    return "\"" + printable(text) + "\"";
}

std::string noteOn(const UnreadMention &mention)
{
    const std::string text = quoted(mention.text);
    switch (mention.why) {
    case UnreadMention::Why::ambiguous:
        return "Several names match " + text +
               ", so it stays in the description; type more of the one you mean.";
    case UnreadMention::Why::surplus:
        return text + " does not go with what else is named, so it stays in the description.";
    case UnreadMention::Why::unknown:
        break;
    }
    return (mention.text.front() == '#' ? "No tag matches " : "No project, task or client matches ") + text +
           ", so it stays in the description.";
}

std::string noteOn(const UnreadWords &words, bool hasTime)
{
    const std::string text = quoted(words.text);
    switch (words.kind) {
    case UnreadWords::Kind::hours:
        return text + " was not read as a time, since it may be any two numbers; write " + words.asRange() +
               " for one.";
    case UnreadWords::Kind::day:
        return text + " was not read as a day" +
               (hasTime ? std::string(".") : "; a day needs its time beside it, as in: yesterday 9-10:30");
    case UnreadWords::Kind::time:
        break;
    }
    return text + " was not read as a time; it stays in the description.";
}

/// The number of an issue (#2) looks like a tag only to us.
bool isNumber(const UnreadMention &mention)
{
    return mention.text.front() == '#' &&
           mention.text.find_first_not_of("0123456789", 1) == std::string::npos;
}

std::chrono::milliseconds length(double seconds)
{
    return std::chrono::milliseconds{std::llround(seconds * 1000)};
}

} // namespace

TypedSentence TypedSentence::read(const std::optional<std::string> &sentence, const Account &account)
{
    TypedSentence typed;
    if (!sentence)
        return typed;
    const Tracker &tracker = account.tracker();
    const Catalog &catalog = tracker.catalog();
    const SentenceCatalog names(catalog.projects(), catalog.clients(), catalog.tags());
    const Instant now = AppClock::now();
    typed.reading = EntrySentence::read(
        *sentence, names, EntrySentence::Options::of(account.me().preferences), now, tracker.time());
    if (typed.reading.time)
        typed.span = EntrySentence::resolve(*typed.reading.time, typed.reading.day, now, tracker.time());
    return typed;
}

EntryDetails TypedSentence::appliedTo(EntryDetails details, const Catalog &catalog) const
{
    if (!reading.description.empty())
        details.description = reading.description;
    if (reading.projectID) {
        takeProject(details, reading.projectID, catalog, true);
        details.taskId = reading.taskID;
    }
    if (!reading.tagIDs.empty())
        details.tagIds = reading.tagIDs;
    if (reading.isBillable)
        details.isBillable = true;
    return details;
}

Result<NamedTimes, CommandFailure> TypedSentence::times(const EntryOptions &options,
                                                        const UserTime &time) const
{
    auto times = namedTimes(options, time);
    if (!times || !span)
        return times;
    if (!times->start)
        times->start = TypedMoment{.clock = {}, .instant = span->start};
    if (!times->stop && span->stop)
        times->stop = TypedMoment{.clock = {}, .instant = *span->stop};
    return times;
}

EditedTimes TypedSentence::edited(EditedTimes before, const UserTime &time) const
{
    if (!reading.time)
        return before;
    const Instant now = AppClock::now();
    if (const auto *duration = std::get_if<EntrySentence::Duration>(&*reading.time)) {
        if (before.stop)
            return {before.start, before.start + length(duration->seconds)};
        return {now - length(duration->seconds), std::nullopt};
    }
    const auto day =
        reading.day ? reading.day
                    : std::optional<EntrySentence::DayRef>(EntrySentence::Date{time.dayKey(before.start)});
    const bool takesDay = !std::holds_alternative<EntrySentence::Ago>(*reading.time);
    const auto onDay = EntrySentence::resolve(*reading.time, takesDay ? day : std::nullopt, now, time);
    if (!onDay)
        return before;
    return {onDay->start, onDay->stop ? onDay->stop : before.stop};
}

std::vector<std::string> TypedSentence::leftOut(const Catalog &catalog) const
{
    std::vector<std::string> notes;
    const ClientResponse *client =
        reading.clientID && !reading.projectID ? catalog.client(*reading.clientID) : nullptr;
    if (client != nullptr)
        notes.push_back("An entry belongs to a project, and " + quoted(client->name) +
                        " is a client. Name one of its projects to put it there.");
    for (const UnreadMention &mention : reading.unreadMentions) {
        if (!isNumber(mention))
            notes.push_back(noteOn(mention));
    }
    for (const UnreadWords &words : UnreadWords::of(reading))
        notes.push_back(noteOn(words, reading.time.has_value()));
    if (notes.size() > mostNotes)
        notes.resize(mostNotes);
    return notes;
}

std::string TypedSentence::withNotes(std::string message, const Catalog &catalog) const
{
    for (const std::string &note : leftOut(catalog))
        message += "\nNote: " + note;
    return message;
}

std::vector<std::string> TypedSentence::usageKeys() const
{
    std::vector<std::string> keys;
    const auto add = [&keys](const char *kind, const std::optional<std::string> &id) {
        if (id)
            keys.push_back(std::string(kind) + ":" + *id);
    };
    add("project", reading.projectID);
    add("task", reading.taskID);
    add("client", reading.clientID);
    for (const std::string &tag : reading.tagIDs)
        add("tag", tag);
    return keys;
}

} // namespace orvane
