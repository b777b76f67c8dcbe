// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Commands/CatalogDeletion.h"
#include "Commands/Confirmation.h"
#include "Input/ProjectOptions.h"
#include "Output/ProjectText.h"

namespace orvane {

namespace {

struct TaskOptions {
    std::optional<std::string> name;
    std::optional<bool> isActive;
};

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
        const TextCell where =
            project ? colouredName(project->name, project->color, context->style()) : TextCell();
        table.add({TextCell(ids[i], quiet), TextCell(printable(tasks[i].name)), where,
                   TextCell(tasks[i].isActive ? "" : "done", quiet)});
    }
    co_return CommandAnswer{.output = table.render(context->style())};
}

CommandTask addTask(Context context, std::string typedProject, std::string name)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto project = co_await projectOf(context, typedProject, LookupPurpose::use);
    if (!project)
        co_return failure(project.error());
    const auto made = co_await catalogEditor(**opened).createTask(project->id, std::move(name));
    co_return answerWith(*context, made,
                         made ? "Added the task " + printable(made->name) + " to " +
                                    printable(project->name) + "  " + made->id.substr(0, 8)
                              : std::string());
}

/// The task that a typed name or identifier means, out of those that the server lists now.
Task<Result<TaskResponse, CommandFailure>> taskOf(Context context, std::string typed)
{
    Account &account = *context->account();
    const auto projects = co_await account.client().listProjects(account.tracker().workspace().id, true);
    if (!projects)
        co_return failure(CommandFailure::of(projects.error()));
    std::vector<TaskResponse> tasks;
    std::vector<NamedItem> named;
    for (const ProjectResponse &project : *projects) {
        for (const TaskResponse &task : project.tasks) {
            tasks.push_back(task);
            named.push_back({task.id, task.name, project.name});
        }
    }
    co_return chosenOf(CallResult<std::vector<TaskResponse>>(std::move(tasks)), "task", typed, named,
                       LookupPurpose::change);
}

CommandTask editTask(Context context, std::string typed, TaskOptions options)
{
    if (!options.name && !options.isActive)
        co_return failure(CommandFailure::usage("Say what to change: --name NAME, --active or --no-active."));
    if (const auto problem = options.name ? typedNameProblem(*options.name) : std::nullopt)
        co_return failure(CommandFailure::usage(*problem));
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    auto task = co_await taskOf(context, typed);
    if (!task)
        co_return failure(task.error());
    task->name = options.name.value_or(task->name);
    task->isActive = options.isActive.value_or(task->isActive);
    const auto changed = co_await catalogEditor(**opened).updateTask(*task);
    co_return answerWith(*context, changed,
                         changed ? "Changed the task " + printable(changed->name) +
                                       (changed->isActive ? "" : ": done, so it can no longer be chosen")
                                 : std::string());
}

CommandTask deleteTask(Context context, std::string typed, bool isYes)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto task = co_await taskOf(context, typed);
    if (!task)
        co_return failure(task.error());
    CatalogDeletion deletion{.item = {CatalogItem::Kind::task, task->id}, .name = task->name, .isYes = isYes};
    if (task->isActive)
        deletion.instead = "orvane tasks edit " + task->id.substr(0, 8) + " --no-active";
    if (const auto wanted = co_await confirmDeletion(context, deletion); !wanted)
        co_return failure(wanted.error());
    co_return answerDeletion(*context, co_await catalogEditor(**opened).deleteTask(task->projectId, task->id),
                             *task, deletion, "Deleted the task " + printable(task->name));
}

constexpr const char *taskText = "A name or an identifier";

void addEditTask(CommandTree &tree, CLI::App *tasks)
{
    const auto id = std::make_shared<std::string>();
    const auto options = std::make_shared<TaskOptions>();
    CLI::App *edit = CommandTree::addVerb(tasks, "edit", "Change a task; what is not named stays");
    CommandTree::addRequired(edit, "ID", *id, taskText);
    CommandTree::addText(edit, "--name", options->name, "NAME", "Its name");
    CommandTree::addSwitch(edit, "active", options->isActive, "It can be chosen for entries",
                           "It is done and can no longer be chosen");
    tree.onRun(edit, [id, options](Context context) { return editTask(std::move(context), *id, *options); });
}

} // namespace

void addTaskCommands(CommandTree &tree)
{
    CLI::App *tasks = tree.add("tasks", "List the tasks of the projects, or change them", "The workspace");
    tree.onRun(tasks, listTasks);
    const auto project = std::make_shared<std::string>();
    const auto name = std::make_shared<std::string>();
    CLI::App *add = CommandTree::addVerb(tasks, "add", "Make a task of a project");
    CommandTree::addRequired(add, "PROJECT", *project, taskText);
    CommandTree::addRequired(add, "NAME", *name, "The task's name");
    tree.onRun(add,
               [project, name](Context context) { return addTask(std::move(context), *project, *name); });
    addEditTask(tree, tasks);
    const auto id = std::make_shared<std::string>();
    const auto isYes = std::make_shared<bool>(false);
    CLI::App *remove =
        CommandTree::addVerb(tasks, "delete", "Delete a task for good; asks first, and says what is on it");
    CommandTree::addRequired(remove, "ID", *id, taskText);
    CommandTree::addFlag(remove, "--yes", *isYes, yesText);
    tree.onRun(remove, [id, isYes](Context context) { return deleteTask(std::move(context), *id, *isYes); });
}

} // namespace orvane
