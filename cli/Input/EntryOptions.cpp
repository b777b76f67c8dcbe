// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/EntryOptions.h"

#include "CommandTree.h"

#include <algorithm>

namespace orvane {

namespace {

/// What can be chosen for an entry: archived projects cannot, but naming one deserves a better answer than
/// "unknown".
Result<std::string, CommandFailure> chooseProject(const std::string &typed, const Catalog &catalog)
{
    std::vector<ProjectResponse> active;
    std::vector<ProjectResponse> archived;
    for (const ProjectResponse &project : catalog.projects())
        (project.isArchived ? archived : active).push_back(project);
    const auto found = choose("project", typed, candidates(active, catalog));
    if (found)
        return active[*found].id;
    if (const auto old = choose("project", typed, candidates(archived, catalog)))
        return failure(CommandFailure::of("The project \"" + archived[*old].name +
                                          "\" is archived. Take it back with: " + "orvane projects restore " +
                                          archived[*old].id.substr(0, 8)));
    return failure(CommandFailure::of(found.error()));
}

Result<TaskResponse, CommandFailure> chooseTask(const std::string &typed, const Catalog &catalog,
                                                const std::optional<std::string> &projectId)
{
    std::vector<TaskResponse> tasks = tasksOf(catalog, projectId);
    std::erase_if(tasks, [](const TaskResponse &task) { return !task.isActive; });
    const auto found = choose("task", typed, candidates(tasks, catalog));
    if (!found)
        return failure(CommandFailure::of(found.error()));
    return tasks[*found];
}

Result<std::vector<std::string>, CommandFailure> chooseTags(const std::vector<std::string> &typed,
                                                            const Catalog &catalog)
{
    std::vector<std::string> ids;
    for (const std::string &name : typed) {
        if (name.empty())
            continue;
        const auto found = choose("tag", name, candidates(catalog.tags()));
        if (!found)
            return failure(CommandFailure::of(found.error()));
        const std::string &id = catalog.tags()[*found].id;
        if (std::ranges::find(ids, id) == ids.end())
            ids.push_back(id);
    }
    return ids;
}

} // namespace

void takeProject(EntryDetails &details, std::optional<std::string> projectId, const Catalog &catalog,
                 bool takesBillable)
{
    if (details.projectId != projectId)
        details.taskId.reset();
    details.projectId = std::move(projectId);
    details.shares.clear();
    const ProjectResponse *project = details.projectId ? catalog.project(*details.projectId) : nullptr;
    if (takesBillable && project)
        details.isBillable = project->isBillable;
}

bool EntryOptions::isEmpty() const
{
    return !sentence && !description && !start && !stop && !project && !task && !tags && !billable;
}

void addEntryOptions(CLI::App *command, EntryOptions &options)
{
    CommandTree::addText(command, "--description", options.description, "TEXT", "What the work is");
    CommandTree::addText(command, "--start", options.start, "TIME", "When it began");
    CommandTree::addText(command, "--stop", options.stop, "TIME", "When it ended");
    CommandTree::addText(command, "--project", options.project, "PROJECT",
                         "A name or an identifier; \"\" for none");
    CommandTree::addText(command, "--task", options.task, "TASK", "A name or an identifier; \"\" for none");
    command
        ->add_option_function<std::vector<std::string>>(
            "--tag",
            [&options](const std::vector<std::string> &tags) { options.tags = CommandTree::asTyped(tags); },
            "A name or an identifier; once for each tag, \"\" for none")
        ->type_name("TAG")
        ->allow_extra_args(false);
    CLI::Option *billable = command->add_flag_callback(
        "--billable", [&options] { options.billable = true; }, "The time can be billed");
    command
        ->add_flag_callback(
            "--no-billable", [&options] { options.billable = false; }, "The time cannot be billed")
        ->excludes(billable);
    command->footer("A TIME is a time of day (930, 9:30, 9:30pm), \"now\", how long ago (-15, -1h), "
                    "\"2026-03-01 9:30\" or "
                    "2026-03-01T09:30:00Z.");
}

Result<EntryDetails, CommandFailure> withOptions(EntryDetails details, const EntryOptions &options,
                                                 const Catalog &catalog)
{
    if (options.description)
        details.description = *options.description;
    if (options.project) {
        std::optional<std::string> projectId;
        if (!options.project->empty()) {
            auto chosen = chooseProject(*options.project, catalog);
            if (!chosen)
                return failure(chosen.error());
            projectId = *chosen;
        }
        takeProject(details, std::move(projectId), catalog, !options.billable);
    }
    if (options.task && options.task->empty()) {
        details.taskId.reset();
    } else if (options.task) {
        const auto task =
            chooseTask(*options.task, catalog, options.project ? details.projectId : std::nullopt);
        if (!task)
            return failure(task.error());
        if (details.projectId != task->projectId)
            takeProject(details, task->projectId, catalog, !options.billable);
        details.taskId = task->id;
        details.shares.clear();
    }
    if (options.tags) {
        auto tags = chooseTags(*options.tags, catalog);
        if (!tags)
            return failure(tags.error());
        details.tagIds = std::move(*tags);
    }
    if (options.billable)
        details.isBillable = *options.billable;
    return details;
}

Result<NamedTimes, CommandFailure> namedTimes(const EntryOptions &options, const UserTime &time)
{
    NamedTimes times;
    const auto read = [&](const std::optional<std::string> &text, std::optional<TypedMoment> &target) {
        if (!text)
            return std::string();
        const auto moment = readMoment(*text, time);
        if (!moment)
            return moment.error();
        target = *moment;
        return std::string();
    };
    for (const std::string &problem : {read(options.start, times.start), read(options.stop, times.stop)}) {
        if (!problem.empty())
            return failure(CommandFailure::usage(problem));
    }
    return times;
}

std::vector<Candidate> candidates(const std::vector<ProjectResponse> &projects, const Catalog &catalog)
{
    std::vector<Candidate> list;
    for (const ProjectResponse &project : projects) {
        const ClientResponse *client = project.clientId ? catalog.client(*project.clientId) : nullptr;
        list.push_back({project.id, project.name, client ? "for " + client->name : std::string()});
    }
    return list;
}

std::vector<Candidate> candidates(const std::vector<ClientResponse> &clients)
{
    std::vector<Candidate> list;
    for (const ClientResponse &client : clients)
        list.push_back({client.id, client.name});
    return list;
}

std::vector<Candidate> candidates(const std::vector<TagResponse> &tags)
{
    std::vector<Candidate> list;
    for (const TagResponse &tag : tags)
        list.push_back({tag.id, tag.name});
    return list;
}

std::vector<Candidate> candidates(const std::vector<TaskResponse> &tasks, const Catalog &catalog)
{
    std::vector<Candidate> list;
    for (const TaskResponse &task : tasks) {
        const ProjectResponse *project = catalog.project(task.projectId);
        list.push_back({task.id, task.name, project ? "of " + project->name : std::string()});
    }
    return list;
}

std::vector<TaskResponse> tasksOf(const Catalog &catalog, const std::optional<std::string> &projectId)
{
    std::vector<TaskResponse> tasks;
    for (const ProjectResponse &project : catalog.projects()) {
        if (!projectId || project.id == *projectId)
            tasks.insert(tasks.end(), project.tasks.begin(), project.tasks.end());
    }
    return tasks;
}

} // namespace orvane
