// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/EntryOptions.h"

#include "Catalog/CatalogLookup.h"
#include "Input/LookupText.h"
#include "Input/MomentText.h"

namespace orvane {

namespace {

/// What an option names: nothing for an empty text, else what `found` is the answer to.
Result<std::optional<std::string>, std::string> named(std::string_view kind, const std::string &typed,
                                                      const Result<std::string, NoSingleItem> &found)
{
    if (typed.empty())
        return std::optional<std::string>();
    if (!found)
        return failure(lookupText(kind, typed, found.error()));
    return *found;
}

Result<std::vector<std::string>, std::string> namedTags(const std::vector<std::string> &typed,
                                                        const Catalog &catalog)
{
    std::vector<std::string> ids;
    for (const std::string &name : typed) {
        const auto tag = named("tag", name, lookUpTag(name, catalog));
        if (!tag)
            return failure(tag.error());
        if (*tag)
            ids.push_back(**tag);
    }
    return ids;
}

} // namespace

bool EntryOptions::isEmpty() const
{
    return !start && !stop && !nameDetails();
}

bool EntryOptions::nameDetails() const
{
    return sentence || description || project || task || tags || billable;
}

Result<EntryDraft, std::string> EntryOptions::timesIn(EntryDraft draft, const EntrySentence::Options &options,
                                                      const UserTime &time) const
{
    if (start) {
        const auto moment = readMoment(*start, options, time);
        if (!moment)
            return failure(moment.error());
        draft.setStart(*moment);
    }
    if (stop) {
        const auto moment = readMoment(*stop, options, time);
        if (!moment)
            return failure(moment.error());
        draft.setStop(*moment);
    }
    return draft;
}

Result<EntryDraft, std::string> EntryOptions::detailsIn(EntryDraft draft, const Catalog &catalog) const
{
    if (description)
        draft.setDescription(*description);
    if (billable)
        draft.setBillable(*billable);
    if (project) {
        const auto id = named("project", *project, lookUpProject(*project, catalog));
        if (!id)
            return failure(id.error());
        draft.setProject(*id, catalog);
    }
    if (task) {
        const auto within = project ? draft.details().projectId : std::nullopt;
        const auto id = named("task", *task, lookUpTask(*task, catalog, within));
        if (!id)
            return failure(id.error());
        draft.setTask(*id, catalog);
    }
    if (tags) {
        auto ids = namedTags(*tags, catalog);
        if (!ids)
            return failure(ids.error());
        draft.setTags(std::move(*ids));
    }
    return draft;
}

std::string timesText(EntryTimesProblem problem)
{
    switch (problem) {
    case EntryTimesProblem::endBeforeStart:
        return "The end has to be after the start.";
    case EntryTimesProblem::tooLong:
        return "From that start to that end it is more than 16 hours. If that is meant, name the days too, "
               "as in "
               "--stop \"2026-03-02 9:00\".";
    case EntryTimesProblem::countedFromNow:
        return "The entry ended on another day; what counts from now says nothing about it. Name its time, "
               "as in "
               "--stop 17:30.";
    case EntryTimesProblem::endWithoutStart:
        break;
    }
    return "An end needs a start; name both with --start and --stop.";
}

} // namespace orvane
