// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/TypedSentence.h"

#include "Catalog/CatalogLookup.h"
#include "Input/LookupText.h"
#include "Input/NearestName.h"
#include "QuickEntry/SentenceNote.h"
#include "QuickEntry/UnreadTime.h"
#include "QuickEntry/UnreadWords.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

#include <algorithm>

namespace orvane {

namespace {

/// Of a mention, without its sign and quotes.
std::string nameIn(std::string_view mention)
{
    mention.remove_prefix(1);
    if (mention.size() > 2 && mention.starts_with('"') && mention.ends_with('"'))
        mention = mention.substr(1, mention.size() - 2);
    return std::string(mention);
}

std::string nearestOf(std::string_view typed, const std::vector<NamedItem> &items)
{
    std::vector<std::string> names;
    for (const NamedItem &item : items) {
        if (!item.isArchived)
            names.push_back(item.name);
    }
    return didYouMean(typed, names);
}

/// How to make what is not there, where that is allowed.
std::string toMake(std::string_view what, const std::string &making, bool mayMake)
{
    return mayMake ? " To make " + std::string(what) + ": " + making
                   : " Only the workspace's administrators make one.";
}

/// That the project which a mention names is put away, and how to take it back.
std::optional<std::string> archivedProject(const std::string &mention, const Catalog &catalog)
{
    const std::string name = nameIn(mention);
    const std::string place = name.substr(0, name.find('/'));
    const auto project = lookUpProject(place, catalog);
    if (project || project.error().why != NoSingleItem::Why::archived)
        return std::nullopt;
    return lookupText("project", place, project.error());
}

/// What was perhaps meant by a mention that names nothing, and how to come to what it names.
std::string wayToName(const std::string &mention, const Tracker &tracker)
{
    const Catalog &catalog = tracker.catalog();
    const EntryRules rules = tracker.rules();
    const std::string name = nameIn(mention);
    if (mention.front() == '#')
        return nearestOf(name, namedItems(catalog.tags())) +
               toMake("it", makingCommand("tag", name), rules.mayCreateTags());
    const std::string place = name.substr(0, name.find('/'));
    const auto project = lookUpProject(place, catalog);
    if (project && place.size() + 1 < name.size()) {
        const std::string task = name.substr(place.size() + 1);
        return nearestOf(task, namedItems(tasksOf(catalog, *project), catalog)) +
               toMake("the task", makingCommand("task", task, place), rules.mayCreateProjects());
    }
    return nearestOf(name, namedItems(catalog.projects(), catalog)) +
           toMake("a project", makingCommand("project", name), rules.mayCreateProjects());
}

std::string noteText(const SentenceNote &note, const Tracker &tracker)
{
    using Kind = SentenceNote::Kind;
    const std::string text = "\"" + printable(note.text) + "\"";
    switch (note.kind) {
    case Kind::client:
        return "An entry belongs to a project, and " + text +
               " is a client. Name one of its projects to put it there.";
    case Kind::unknownTag:
        return "No tag is called " + text + ", so it stays in the description." +
               wayToName(note.text, tracker);
    case Kind::unknownName:
        if (const auto archived = archivedProject(note.text, tracker.catalog()))
            return *archived;
        return "No project, task or client is called " + text + ", so it stays in the description." +
               wayToName(note.text, tracker);
    case Kind::ambiguousName:
        return "Several names match " + text +
               ", so it stays in the description; type more of the one you mean.";
    case Kind::secondProject:
        return "A project is named already, so " + text + " stays in the description.";
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

TypedSentence TypedSentence::read(const std::optional<std::string> &sentence, const Account &account,
                                  bool literally)
{
    TypedSentence typed;
    typed.options = EntrySentence::Options::of(account.me().preferences);
    if (!sentence)
        return typed;
    if (literally) {
        typed.reading.description = *sentence;
        typed.isLiteral = true;
        return typed;
    }
    const Tracker &tracker = account.tracker();
    const Catalog &catalog = tracker.catalog();
    const SentenceCatalog names(catalog.projects(), catalog.clients(), catalog.tags());
    const Instant now = AppClock::now();
    typed.reading = EntrySentence::read(*sentence, names, typed.options, now, tracker.time());
    if (typed.reading.time)
        typed.span = EntrySentence::resolve(*typed.reading.time, typed.reading.day, now, tracker.time());
    return typed;
}

std::optional<std::string> TypedSentence::unreadTime(const UserTime &time) const
{
    const auto unread = isLiteral ? std::nullopt : UnreadTime::of(reading, options, AppClock::now(), time);
    if (!unread)
        return std::nullopt;
    const std::string said = "\"" + printable(unread->text) + "\"";
    if (unread->why == UnreadTime::Why::noRange)
        return said + " is no time that an entry can have: it lasts no time at all, or more than 16 hours.";
    return said + " was not read as a time, since \"" + printable(unread->mark) +
           "\" stands behind it and names nothing here.";
}

bool TypedSentence::namesTime() const
{
    const auto isTime = [](const UnreadWords &words) { return words.kind != UnreadWords::Kind::day; };
    return reading.time || (!isLiteral && std::ranges::any_of(UnreadWords::of(reading), isTime));
}

bool TypedSentence::saysNothing() const
{
    return !isLiteral && orvane::saysNothing(reading);
}

std::vector<std::string> TypedSentence::leftOut(const Tracker &tracker) const
{
    std::vector<std::string> notes;
    if (isLiteral)
        return notes;
    for (const SentenceNote &note : SentenceNote::of(reading, tracker.catalog()))
        notes.push_back(noteText(note, tracker));
    return notes;
}

std::string TypedSentence::withNotes(std::string message, const Tracker &tracker) const
{
    for (std::string &note : leftOut(tracker))
        message += "\n" + noteOfRefused(std::move(note));
    return message;
}

std::string noteOfRefused(std::string note)
{
    constexpr std::string_view stays = ", so it stays in the description";
    if (const std::size_t at = note.find(stays); at != std::string::npos)
        note.erase(at, stays.size());
    return note;
}

} // namespace orvane
