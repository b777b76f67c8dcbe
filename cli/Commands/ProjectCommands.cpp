// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/NameOrder.h"
#include "Catalog/ProjectColor.h"
#include "Catalog/TypedAmounts.h"
#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Commands/CatalogDeletion.h"
#include "Commands/Confirmation.h"
#include "Input/ProjectOptions.h"
#include "Input/ShellText.h"
#include "Output/ProjectText.h"

#include <algorithm>

namespace orvane {

namespace {

std::string rateOf(const ProjectResponse &project, const Tracker &tracker)
{
    const std::string currency = tracker.settings() ? " " + tracker.settings()->currency : std::string();
    return project.hourlyRate ? rateText(*project.hourlyRate) + printable(currency) + "/h" : std::string();
}

std::string estimateOf(const ProjectResponse &project, const Tracker &tracker)
{
    return project.estimateSeconds ? tracker.time().duration(static_cast<double>(*project.estimateSeconds))
                                   : std::string();
}

std::string clientNameOf(const ProjectResponse &project, const Catalog &catalog)
{
    const ClientResponse *client = project.clientId ? catalog.client(*project.clientId) : nullptr;
    return client ? printable(client->name) : std::string();
}

/// "billable, 12.50 EUR/h, 40:00 planned, private".
std::string factsOf(const ProjectResponse &project, const Tracker &tracker)
{
    const std::string estimate = estimateOf(project, tracker);
    std::string text;
    for (const std::string &fact :
         {std::string(project.isBillable ? "billable" : ""), rateOf(project, tracker),
          estimate.empty() ? "" : estimate + " planned", std::string(project.isPrivate ? "private" : ""),
          std::string(project.isArchived ? "archived" : "")}) {
        if (!fact.empty())
            text += (text.empty() ? "" : ", ") + fact;
    }
    return text;
}

/// Line by line, so that nothing of it has to be cut.
std::string changedText(const ProjectResponse &project, const Tracker &tracker, const TerminalStyle &style)
{
    const auto orNone = [](const std::string &text) { return text.empty() ? "none" : text; };
    TextTable table({{}, {.shrinksTo = 12}});
    const auto add = [&](const char *what, const std::string &value) {
        table.add({TextCell(what, quiet), TextCell(value)});
    };
    add("client", orNone(clientNameOf(project, tracker.catalog())));
    add("rate", project.hourlyRate ? rateOf(project, tracker) : "the workspace's");
    add("estimate", orNone(estimateOf(project, tracker)));
    add("billable", project.isBillable ? "yes" : "no");
    add("private", project.isPrivate ? "yes" : "no");
    return "Changed the project " + printable(project.name) + "  " + project.id.substr(0, 8) + "\n" +
           table.render(style);
}

TextCell named(const ProjectResponse &project, const TerminalStyle &style)
{
    return colouredName(project.name, project.color, style);
}

std::string projectTable(std::vector<ProjectResponse> projects, const Tracker &tracker,
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
    // A rate that is cut says nothing: on a narrow terminal what is known of a project stands below it.
    constexpr int billableAndRate = 22;
    TextTable table({{}, {.shrinksTo = 12}, {.shrinksTo = 8}, {}, {.shrinksTo = billableAndRate}});
    for (std::size_t i = 0; i < projects.size(); ++i) {
        const ProjectResponse &project = projects[i];
        const auto tasks = static_cast<std::int64_t>(project.tasks.size());
        table.add({TextCell(ids[i], quiet), named(project, style),
                   TextCell(clientNameOf(project, tracker.catalog())),
                   TextCell(tasks > 0 ? counted(tasks, "task") : "", quiet),
                   TextCell(factsOf(project, tracker), quiet)});
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
        .output = projectTable(std::move(projects), context->account()->tracker(), context->style())};
}

/// The fields with what the options say, the client looked up at the server.
Task<Result<ProjectFields, CommandFailure>> withOptions(Context context, ProjectFields fields,
                                                        ProjectOptions options)
{
    auto changed = options.appliedTo(std::move(fields));
    if (!changed)
        co_return failure(CommandFailure::usage(changed.error()));
    if (options.client && options.client->empty()) {
        changed->clientId.reset();
    } else if (options.client) {
        Account &account = *context->account();
        const auto clients = co_await account.client().listClients(account.tracker().workspace().id, true);
        const auto client =
            chosenOf(clients, "client", *options.client,
                     clients ? namedItems(*clients) : std::vector<NamedItem>(), LookupPurpose::use);
        if (!client)
            co_return failure(client.error());
        changed->clientId = client->id;
    }
    co_return std::move(*changed);
}

CommandTask addProject(Context context, ProjectOptions options)
{
    if (const auto checked = options.appliedTo({}); !checked)
        co_return failure(CommandFailure::usage(checked.error()));
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    ProjectFields plain;
    plain.color = newProjectColor((*opened)->tracker().catalog().projects().size());
    auto fields = co_await withOptions(context, std::move(plain), options);
    if (!fields)
        co_return failure(fields.error());
    const auto made = co_await catalogEditor(**opened).createProject(std::move(*fields));
    CommandResult answer = answerMade(*context, made, "the project");
    // A rate suggests that its time is worth it, which only a bill would deny.
    if (made && made->hourlyRate && !made->isBillable && !options.isBillable)
        answer->messages.push_back(
            "Its time is billable only where an entry says $. To bill all of it: orvane "
            "projects edit " +
            shellArgument(printable(made->name)) + " --billable");
    co_return std::move(answer);
}

CommandTask editProject(Context context, std::string typed, ProjectOptions options)
{
    if (options == ProjectOptions())
        co_return failure(CommandFailure::usage("Say what to change, such as --name or --rate. See: orvane "
                                                "projects edit --help"));
    if (const auto checked = options.appliedTo({}); !checked)
        co_return failure(CommandFailure::usage(checked.error()));
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto project = co_await projectOf(context, typed, LookupPurpose::change);
    if (!project)
        co_return failure(project.error());
    auto fields = co_await withOptions(context, ProjectFields::of(*project), options);
    if (!fields)
        co_return failure(fields.error());
    const auto changed = co_await catalogEditor(**opened).updateProject(project->id, std::move(*fields));
    if (!changed || context->json())
        co_return answerWith(*context, changed, "");
    // For the currency.
    Tracker &tracker = (*opened)->tracker();
    if (!tracker.settings())
        co_await tracker.refresh(Topic::settings);
    co_return CommandAnswer{.output = changedText(*changed, tracker, context->style())};
}

enum class ProjectVerb { archive, restore };

CommandTask changeProject(Context context, std::string typed, ProjectVerb verb)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto project = co_await projectOf(context, typed, LookupPurpose::change);
    if (!project)
        co_return failure(project.error());
    CatalogEditor editor = catalogEditor(**opened);
    const std::string name = printable(project->name);
    if (verb == ProjectVerb::archive)
        co_return answerWith(*context, co_await editor.archiveProject(project->id),
                             "Archived the project " + name);
    co_return answerWith(*context, co_await editor.restoreProject(project->id),
                         "Restored the project " + name);
}

CommandTask deleteProject(Context context, std::string typed, bool isYes)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto project = co_await projectOf(context, typed, LookupPurpose::change);
    if (!project)
        co_return failure(project.error());
    CatalogDeletion deletion{
        .item = {CatalogItem::Kind::project, project->id}, .name = project->name, .isYes = isYes};
    const std::size_t tasks = project->tasks.size();
    if (tasks > 0)
        deletion.alsoLost = tasks == 1 ? "Its task is deleted with it."
                                       : "Its " + std::to_string(tasks) + " tasks are deleted with it.";
    if (!project->isArchived)
        deletion.instead = "orvane projects archive " + project->id.substr(0, 8);
    if (const auto wanted = co_await confirmDeletion(context, deletion); !wanted)
        co_return failure(wanted.error());
    co_return answerDeletion(*context, co_await catalogEditor(**opened).deleteProject(project->id), *project,
                             deletion, "Deleted the project " + printable(project->name));
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

/// What `add` and `edit` have in common.
void addProjectOptions(CLI::App *command, ProjectOptions &options)
{
    CommandTree::addText(command, "--client", options.client, "CLIENT",
                         "Whom it is for: a name or an identifier; \"\" for nobody");
    CommandTree::addText(command, "--color", options.color, "RRGGBB", "Its colour, such as 33aa77");
    CommandTree::addText(command, "--rate", options.rate, "AMOUNT",
                         "What an hour costs, such as 80 or 12.50; \"\" for the workspace's rate");
    CommandTree::addText(command, "--estimate", options.estimate, "LENGTH",
                         "How long it is planned to take, such as 40h or 1:30; \"\" for no plan");
    CommandTree::addSwitch(command, "billable", options.isBillable, "Its time can be billed",
                           "Its time cannot be billed");
    CommandTree::addSwitch(command, "private", options.isPrivate, "Only its members see it",
                           "All of the workspace see it");
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

    const auto made = std::make_shared<ProjectOptions>();
    made->name.emplace();
    CLI::App *add = CommandTree::addVerb(projects, "add", "Make a project");
    CommandTree::addRequired(add, "NAME", *made->name, "The project's name");
    addProjectOptions(add, *made);
    tree.onRun(add, [made](Context context) { return addProject(std::move(context), *made); });

    const auto edited = std::make_shared<ProjectOptions>();
    const auto id = std::make_shared<std::string>();
    CLI::App *edit = CommandTree::addVerb(projects, "edit", "Change a project; what is not named stays");
    CommandTree::addRequired(edit, "ID", *id, projectText);
    CommandTree::addText(edit, "--name", edited->name, "NAME", "Its name");
    addProjectOptions(edit, *edited);
    tree.onRun(edit, [id, edited](Context context) { return editProject(std::move(context), *id, *edited); });

    addProjectVerb(tree, projects, "archive", "Put a project away; its entries stay", ProjectVerb::archive);
    addProjectVerb(tree, projects, "restore", "Take a project back from the archive", ProjectVerb::restore);
    const auto isYes = std::make_shared<bool>(false);
    CLI::App *remove = CommandTree::addVerb(projects, "delete",
                                            "Delete a project for good; asks first, and says what is on it");
    CommandTree::addRequired(remove, "ID", *id, projectText);
    CommandTree::addFlag(remove, "--yes", *isYes, yesText);
    tree.onRun(remove,
               [id, isYes](Context context) { return deleteProject(std::move(context), *id, *isYes); });
}

} // namespace orvane
