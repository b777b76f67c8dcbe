// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/EntryHints.h"

#include "Catalog/CatalogLookup.h"
#include "Input/ShellText.h"
#include "Support/DateText.h"
#include "Terminal/TextWidth.h"

#include <algorithm>

namespace orvane {

namespace {

struct DetailNames {
    const char *text;
    const char *placeholder;
    const char *member;
};

DetailNames namesOf(RequiredDetail detail)
{
    switch (detail) {
    case RequiredDetail::description:
        return {"a description", "what it was", "description"};
    case RequiredDetail::project:
        return {"a project", "@project", "projectId"};
    case RequiredDetail::task:
        return {"a task", "@task", "taskId"};
    case RequiredDetail::tag:
        break;
    }
    return {"a tag", "#tag", "tagIds"};
}

/// "a, b and c".
std::string listText(const std::vector<std::string> &items)
{
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i)
        text += (i == 0 ? "" : i + 1 == items.size() ? " and " : ", ") + items[i];
    return text;
}

std::string overlapText(const EntryWarning &warning, const UserTime &time)
{
    const TimeEntryResponse &other = warning.other;
    const std::string end = other.stop ? time.timeLabel(*other.stop) : "now";
    const std::string what = other.description.empty() ? "" : " \"" + printable(other.description) + "\"";
    return "It overlaps" + what + " (" + time.timeLabel(other.start) + " – " + end + ").";
}

/// A time that reads as just this instant.
std::string exactly(Instant instant, const UserTime &time)
{
    const std::string local = time.dayKey(instant).description() + " " + time.timeOfDay(instant).text(false);
    const bool isWhole = time.date(time.dayKey(instant), time.timeOfDay(instant)) == instant;
    return isWhole ? local : iso8601Text(instant);
}

} // namespace

std::string missingText(const std::vector<RequiredDetail> &missing)
{
    std::vector<std::string> texts;
    std::ranges::transform(missing, std::back_inserter(texts),
                           [](RequiredDetail detail) { return namesOf(detail).text; });
    return listText(texts);
}

std::string missingSentence(const std::vector<RequiredDetail> &missing)
{
    const bool lacksProject = std::ranges::find(missing, RequiredDetail::project) != missing.end();
    std::string sentence;
    for (const RequiredDetail detail : missing) {
        const bool isInProject = detail == RequiredDetail::task && lacksProject;
        sentence +=
            isInProject ? "/task" : (sentence.empty() ? "" : " ") + std::string(namesOf(detail).placeholder);
    }
    return sentence;
}

std::string stopNeedsText(const std::vector<RequiredDetail> &missing)
{
    return "To stop, this workspace wants " + missingText(missing) + ": orvane stop \"" +
           missingSentence(missing) + "\"";
}

std::vector<std::string> missingNames(const std::vector<RequiredDetail> &missing)
{
    std::vector<std::string> names;
    std::ranges::transform(missing, std::back_inserter(names),
                           [](RequiredDetail detail) { return namesOf(detail).member; });
    return names;
}

std::vector<std::string> warningTexts(const std::vector<EntryWarning> &warnings, const UserTime &time)
{
    constexpr std::size_t mostOverlaps = 3;
    std::vector<std::string> texts;
    std::size_t overlaps = 0;
    for (const EntryWarning &warning : warnings) {
        if (warning.kind == EntryWarning::Kind::longerThanDay)
            texts.emplace_back("It is longer than a day.");
        else if (warning.kind == EntryWarning::Kind::inFuture)
            texts.emplace_back("It lies in the future.");
        else if (++overlaps <= mostOverlaps)
            texts.push_back(overlapText(warning, time));
    }
    if (overlaps > mostOverlaps)
        texts.push_back("It overlaps " + std::to_string(overlaps - mostOverlaps) + " more.");
    return texts;
}

std::string makingLine(const TimeEntryResponse &entry, const Catalog &catalog, const UserTime &time)
{
    if (!entry.shares.empty())
        return {};
    std::string line = entry.stop ? "orvane add" : "orvane start";
    const auto option = [&line](const char *name, const std::string &value) {
        line += std::string(" ") + name + (value.starts_with('-') ? "=" : " ") + shellArgument(value);
    };
    // By its name where that means just this one.
    const auto named = [](const auto *item, const std::string &id, const auto &found) {
        return item != nullptr && found && *found == id ? item->name : id;
    };
    if (!entry.description.empty())
        option("--description", entry.description);
    option("--start", exactly(entry.start, time));
    if (entry.stop)
        option("--stop", exactly(*entry.stop, time));
    const ProjectResponse *project = entry.projectId ? catalog.project(*entry.projectId) : nullptr;
    if (project != nullptr)
        option("--project", named(project, project->id, lookUpProject(project->name, catalog)));
    if (const TaskResponse *task = entry.taskId ? catalog.task(*entry.taskId) : nullptr)
        option("--task", named(task, task->id, lookUpTask(task->name, catalog, entry.projectId)));
    for (const std::string &id : entry.tagIds) {
        if (const TagResponse *tag = catalog.tag(id))
            option("--tag", named(tag, id, lookUpTag(tag->name, catalog)));
    }
    if (entry.isBillable != (project != nullptr && project->isBillable))
        line += entry.isBillable ? " --billable" : " --no-billable";
    return line;
}

} // namespace orvane
