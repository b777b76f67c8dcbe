// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/NameOrder.h"
#include "Catalog/ProjectColor.h"
#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Output/ProjectText.h"

#include <algorithm>

namespace orvane {

namespace {

struct NewProject {
    ProjectFields fields;
    std::optional<std::string> client; ///< as typed
    std::optional<std::string> colour;
};

TextCell named(const ProjectResponse &project, const TerminalStyle &style)
{
    return colouredName(project.name, project.color, style);
}

std::string projectTable(std::vector<ProjectResponse> projects, const Catalog &catalog,
                         const TerminalStyle &style)
{
    if (projects.empty())
        return "There are no projects yet. Make one with: orvane projects add \"Website\"\n";
    std::ranges::sort(projects, {}, [](const ProjectResponse &project) {
        return std::pair(nameOrderKey(project.name), project.id);
    });
    std::vector<std::string> ids;
    for (const ProjectResponse &project : projects)
        ids.push_back(project.id);
    ids = shortIds(ids);
    TextTable table({{}, {.shrinksTo = 12}, {.shrinksTo = 10}, {}, {}});
    for (std::size_t i = 0; i < projects.size(); ++i) {
        const ProjectResponse &project = projects[i];
        const ClientResponse *client = project.clientId ? catalog.client(*project.clientId) : nullptr;
        const auto tasks = static_cast<std::int64_t>(project.tasks.size());
        std::string marks = project.isBillable ? "billable" : "";
        for (const auto &[is, mark] :
             {std::pair{project.isPrivate, "private"}, std::pair{project.isArchived, "archived"}}) {
            if (is)
                marks += (marks.empty() ? "" : ", ") + std::string(mark);
        }
        table.add({TextCell(ids[i], quiet), named(project, style),
                   TextCell(client ? printable(client->name) : ""),
                   TextCell(tasks > 0 ? counted(tasks, "task") : "", quiet), TextCell(marks, quiet)});
    }
    return table.render(style);
}

CommandTask listProjects(Context context, bool archivedToo)
{
    std::vector<ProjectResponse> projects;
    if (archivedToo) {
        const auto opened = co_await openOnline(context);
        if (!opened)
            co_return failure(opened.error());
        auto all = co_await (*opened)->client().listProjects((*opened)->tracker().workspace().id, true);
        if (!all)
            co_return failure(CommandFailure::of(all.error()));
        projects = std::move(*all);
        co_await context->bringUpToDate();
    } else {
        const auto opened = co_await context->openAccount();
        if (!opened)
            co_return failure(opened.error());
        co_await context->bringUpToDate();
        projects = (*opened)->tracker().catalog().projects();
        std::erase_if(projects, [](const ProjectResponse &project) { return project.isArchived; });
    }
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(projects)};
    co_return CommandAnswer{
        .output =
            projectTable(std::move(projects), context->account()->tracker().catalog(), context->style())};
}

CommandTask addProject(Context context, NewProject project)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    if (project.client) {
        const auto clients = co_await (*opened)->client().listClients((*opened)->tracker().workspace().id);
        const auto client = chosenOf(clients, "client", *project.client,
                                     clients ? namedItems(*clients) : std::vector<NamedItem>());
        if (!client)
            co_return failure(client.error());
        project.fields.clientId = client->id;
    }
    const std::size_t known = (*opened)->tracker().catalog().projects().size();
    project.fields.color = project.colour.value_or(newProjectColor(known));
    co_return answerMade(*context, co_await catalogEditor(**opened).createProject(std::move(project.fields)),
                         "the project");
}

/// The project that a typed name or identifier means, out of those that the server lists now.
Task<Result<ProjectResponse, CommandFailure>> projectOf(Context context, std::string typed, bool archivedToo)
{
    const Tracker &tracker = context->account()->tracker();
    const auto projects =
        co_await context->account()->client().listProjects(tracker.workspace().id, archivedToo);
    co_return chosenOf(projects, "project", typed,
                       projects ? namedItems(*projects, tracker.catalog()) : std::vector<NamedItem>());
}

enum class ProjectVerb { archive, restore, remove };

CommandTask changeProject(Context context, std::string typed, ProjectVerb verb)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto project = co_await projectOf(context, typed, true);
    if (!project)
        co_return failure(project.error());
    CatalogEditor editor = catalogEditor(**opened);
    const std::string name = printable(project->name);
    if (verb == ProjectVerb::remove)
        co_return answerWithout(*context, co_await editor.deleteProject(project->id), *project,
                                "Deleted the project " + name);
    if (verb == ProjectVerb::archive)
        co_return answerWith(*context, co_await editor.archiveProject(project->id),
                             "Archived the project " + name);
    co_return answerWith(*context, co_await editor.restoreProject(project->id),
                         "Restored the project " + name);
}

CommandTask listTasks(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const Catalog &catalog = (*opened)->tracker().catalog();
    const std::vector<TaskResponse> tasks = tasksOf(catalog);
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(tasks)};
    if (tasks.empty())
        co_return CommandAnswer{
            .output = "There are no tasks yet. Make one with: orvane tasks add PROJECT \"Design\"\n"};
    std::vector<std::string> ids;
    for (const TaskResponse &task : tasks)
        ids.push_back(task.id);
    ids = shortIds(ids);
    TextTable table({{}, {.shrinksTo = 12}, {.shrinksTo = 12}, {}});
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        const ProjectResponse *project = catalog.project(tasks[i].projectId);
        table.add({TextCell(ids[i], quiet), TextCell(printable(tasks[i].name)),
                   project ? named(*project, context->style()) : TextCell(),
                   TextCell(tasks[i].isActive ? "" : "done", quiet)});
    }
    co_return CommandAnswer{.output = table.render(context->style())};
}

CommandTask addTask(Context context, std::string typedProject, std::string name)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto project = co_await projectOf(context, typedProject, false);
    if (!project)
        co_return failure(project.error());
    const auto made = co_await catalogEditor(**opened).createTask(project->id, std::move(name));
    co_return answerWith(*context, made,
                         made ? "Added the task " + printable(made->name) + " to " +
                                    printable(project->name) + "  " + made->id.substr(0, 8)
                              : std::string());
}

CommandTask deleteTask(Context context, std::string typed)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const Catalog &catalog = (*opened)->tracker().catalog();
    const std::vector<TaskResponse> tasks = tasksOf(catalog);
    const auto task = chosenOf<TaskResponse>(CallResult<std::vector<TaskResponse>>(tasks), "task", typed,
                                             namedItems(tasks, catalog));
    if (!task)
        co_return failure(task.error());
    co_return answerWithout(*context, co_await catalogEditor(**opened).deleteTask(task->projectId, task->id),
                            *task, "Deleted the task " + printable(task->name));
}

const std::string projectText = "A name or an identifier";

void addProjectVerb(CommandTree &tree, CLI::App *projects, const char *name, const char *description,
                    ProjectVerb verb)
{
    const auto id = std::make_shared<std::string>();
    CLI::App *command = CommandTree::addVerb(projects, name, description);
    CommandTree::addRequired(command, "ID", *id, projectText);
    tree.onRun(command, [id, verb](Context context) { return changeProject(std::move(context), *id, verb); });
}

void addTaskCommands(CommandTree &tree, const std::string &group)
{
    CLI::App *tasks = tree.add("tasks", "List the tasks of the projects, or change them", group);
    tree.onRun(tasks, listTasks);
    const auto project = std::make_shared<std::string>();
    const auto name = std::make_shared<std::string>();
    CLI::App *add = CommandTree::addVerb(tasks, "add", "Make a task of a project");
    CommandTree::addRequired(add, "PROJECT", *project, projectText);
    CommandTree::addRequired(add, "NAME", *name, "The task's name");
    tree.onRun(add,
               [project, name](Context context) { return addTask(std::move(context), *project, *name); });
    const auto id = std::make_shared<std::string>();
    CLI::App *remove = CommandTree::addVerb(tasks, "delete", "Delete a task");
    CommandTree::addRequired(remove, "ID", *id, "A name or an identifier");
    tree.onRun(remove, [id](Context context) { return deleteTask(std::move(context), *id); });
}

} // namespace

void addProjectCommands(CommandTree &tree)
{
    const std::string group = "The workspace";
    CLI::App *projects = tree.add("projects", "List the projects, or change them", group);
    const auto archivedToo = std::make_shared<bool>(false);
    CommandTree::addFlag(projects, "--archived", *archivedToo, "List the archived ones too");
    tree.onRun(projects,
               [archivedToo](Context context) { return listProjects(std::move(context), *archivedToo); });

    const auto project = std::make_shared<NewProject>();
    CLI::App *add = CommandTree::addVerb(projects, "add", "Make a project");
    CommandTree::addRequired(add, "NAME", project->fields.name, "The project's name");
    CommandTree::addText(add, "--client", project->client, "CLIENT",
                         "Whom it is for: a name or an identifier");
    CommandTree::addText(add, "--color", project->colour, "#RRGGBB",
                         "Its colour; one is chosen unless it is named");
    CommandTree::addFlag(add, "--billable", project->fields.isBillable, "Its time can be billed");
    CommandTree::addFlag(add, "--private", project->fields.isPrivate, "Only its members see it");
    tree.onRun(add, [project](Context context) { return addProject(std::move(context), *project); });
    addProjectVerb(tree, projects, "archive", "Put a project away; its entries stay", ProjectVerb::archive);
    addProjectVerb(tree, projects, "restore", "Take a project back from the archive", ProjectVerb::restore);
    addProjectVerb(tree, projects, "delete", "Delete a project", ProjectVerb::remove);
    addTaskCommands(tree, group);
}

} // namespace orvane
