// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/TypedSentence.h"

#include "QuickEntry/SentenceNote.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

namespace orvane {

namespace {

std::string noteText(const SentenceNote &note)
{
    using Kind = SentenceNote::Kind;
    const std::string text = "\"" + printable(note.text) + "\"";
    switch (note.kind) {
    case Kind::client:
        return "An entry belongs to a project, and " + text +
               " is a client. Name one of its projects to put it there.";
    case Kind::unknownTag:
        return "No tag matches " + text + ", so it stays in the description.";
    case Kind::unknownName:
        return "No project, task or client matches " + text + ", so it stays in the description.";
    case Kind::ambiguousName:
        return "Several names match " + text +
               ", so it stays in the description; type more of the one you mean.";
    case Kind::surplusName:
        return text + " does not go with what else is named, so it stays in the description.";
    case Kind::bareHours:
        return text + " was not read as a time, since it may be any two numbers; write " + note.suggestion +
               " for one.";
    case Kind::day:
        return text + " was not read as a day.";
    case Kind::dayWithoutTime:
        return text + " was not read as a day; a day needs its time beside it, as in: yesterday 9-10:30";
    case Kind::time:
        break;
    }
    return text + " was not read as a time; it stays in the description.";
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

std::vector<std::string> TypedSentence::leftOut(const Catalog &catalog) const
{
    std::vector<std::string> notes;
    for (const SentenceNote &note : SentenceNote::of(reading, catalog))
        notes.push_back(noteText(note));
    return notes;
}

std::string TypedSentence::withNotes(std::string message, const Catalog &catalog) const
{
    for (const std::string &note : leftOut(catalog))
        message += "\nNote: " + note;
    return message;
}

} // namespace orvane
