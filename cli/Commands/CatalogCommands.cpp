// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/NameOrder.h"
#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Commands/CatalogDeletion.h"
#include "Commands/Confirmation.h"
#include "Input/ProjectOptions.h"

#include <algorithm>

namespace orvane {

namespace {

template <class T>
std::string nameTable(std::vector<T> items, const TerminalStyle &style, const std::string &whenEmpty)
{
    if (items.empty())
        return whenEmpty;
    std::ranges::sort(items, {}, [](const T &item) { return std::pair(nameOrderKey(item.name), item.id); });
    std::vector<std::string> ids;
    for (const T &item : items)
        ids.push_back(item.id);
    ids = shortIds(ids);
    TextTable table({{}, {.shrinksTo = 12}, {}});
    for (std::size_t i = 0; i < items.size(); ++i) {
        std::string mark;
        if constexpr (requires { items[i].isArchived; })
            mark = items[i].isArchived ? "archived" : "";
        table.add({TextCell(ids[i], quiet), TextCell(printable(items[i].name)), TextCell(mark, quiet)});
    }
    return table.render(style);
}

CommandTask listClients(Context context, bool archivedToo)
{
    std::vector<ClientResponse> clients;
    const auto opened = co_await (archivedToo ? openOnline(context) : context->openAccount());
    if (!opened)
        co_return failure(opened.error());
    if (archivedToo) {
        auto all = co_await (*opened)->client().listClients((*opened)->tracker().workspace().id, true);
        if (!all)
            co_return failure(CommandFailure::of(all.error()));
        clients = std::move(*all);
    } else {
        co_await context->bringUpToDate();
        clients = (*opened)->tracker().catalog().clients();
        std::erase_if(clients, [](const ClientResponse &client) { return client.isArchived; });
    }
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(clients)};
    co_return CommandAnswer{
        .output = nameTable(std::move(clients), context->style(),
                            "There are no clients yet. Make one with: orvane clients add \"Acme\"\n")};
}

CommandTask addClient(Context context, std::string name)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    co_return answerMade(*context, co_await catalogEditor(**opened).createClient(std::move(name)),
                         "the client");
}

/// The client that a typed name or identifier means, out of those that the server lists now.
Task<Result<ClientResponse, CommandFailure>> clientOf(Context context, std::string typed)
{
    Account &account = *context->account();
    const auto clients = co_await account.client().listClients(account.tracker().workspace().id, true);
    co_return chosenOf(clients, "client", typed, clients ? namedItems(*clients) : std::vector<NamedItem>(),
                       LookupPurpose::change);
}

enum class ClientVerb { archive, restore };

CommandTask changeClient(Context context, std::string typed, ClientVerb verb)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto client = co_await clientOf(context, typed);
    if (!client)
        co_return failure(client.error());
    CatalogEditor editor = catalogEditor(**opened);
    const std::string name = printable(client->name);
    if (verb == ClientVerb::archive)
        co_return answerWith(*context, co_await editor.archiveClient(client->id),
                             "Archived the client " + name);
    co_return answerWith(*context, co_await editor.restoreClient(client->id), "Restored the client " + name);
}

CommandTask renameClient(Context context, std::string typed, std::string name)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto client = co_await clientOf(context, typed);
    if (!client)
        co_return failure(client.error());
    const auto changed = co_await catalogEditor(**opened).renameClient(client->id, std::move(name));
    co_return answerWith(*context, changed,
                         changed ? "Changed the client " + printable(changed->name) : std::string());
}

/// Which projects lose their client, in a sentence.
std::string clientUse(const ClientResponse &client, const std::vector<ProjectResponse> &projects)
{
    constexpr std::size_t namedAtMost = 8;
    std::vector<std::string> names;
    for (const ProjectResponse &project : projects) {
        if (project.clientId == client.id)
            names.push_back(printable(project.name) + (project.isArchived ? " (archived)" : ""));
    }
    const std::string name = printable(client.name);
    if (names.empty())
        return name + " has no projects.";
    std::string listed;
    for (std::size_t i = 0; i < names.size() && i < namedAtMost; ++i)
        listed += (i == 0 ? "" : ", ") + names[i];
    if (names.size() > namedAtMost)
        listed += " and " + std::to_string(names.size() - namedAtMost) + " more";
    return name + " has " + counted(static_cast<std::int64_t>(names.size()), "project") + ": " + listed +
           (names.size() == 1 ? "; it stays and loses its client." : "; they stay and lose their client.");
}

CommandTask deleteClient(Context context, std::string typed, bool isYes)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto client = co_await clientOf(context, typed);
    if (!client)
        co_return failure(client.error());
    const std::string name = printable(client->name);
    if (!isYes) {
        const auto projects =
            co_await (*opened)->client().listProjects((*opened)->tracker().workspace().id, true);
        if (!projects)
            co_return failure(CommandFailure::of(projects.error()));
        std::string facts = clientUse(*client, *projects);
        if (!client->isArchived)
            facts +=
                "\nTo put it away without loss instead: orvane clients archive " + client->id.substr(0, 8);
        if (const auto wanted = confirm(*context, facts, "Delete the client " + name + "?", false); !wanted)
            co_return failure(wanted.error());
    }
    co_return answerWithout(*context, co_await catalogEditor(**opened).deleteClient(client->id), *client,
                            "Deleted the client " + name);
}

CommandTask listTags(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const std::vector<TagResponse> tags = (*opened)->tracker().catalog().tags();
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(tags)};
    co_return CommandAnswer{
        .output = nameTable(tags, context->style(),
                            "There are no tags yet. Make one with: orvane tags add \"review\"\n")};
}

CommandTask addTag(Context context, std::string name)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    co_return answerMade(*context, co_await catalogEditor(**opened).createTag(std::move(name)), "the tag");
}

/// The tag that a typed name or identifier means, out of those that the server lists now.
Task<Result<TagResponse, CommandFailure>> tagOf(Context context, std::string typed)
{
    Account &account = *context->account();
    const auto tags = co_await account.client().listTags(account.tracker().workspace().id);
    co_return chosenOf(tags, "tag", typed, tags ? namedItems(*tags) : std::vector<NamedItem>(),
                       LookupPurpose::change);
}

CommandTask renameTag(Context context, std::string typed, std::string name)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto tag = co_await tagOf(context, typed);
    if (!tag)
        co_return failure(tag.error());
    const auto changed = co_await catalogEditor(**opened).renameTag(tag->id, std::move(name));
    co_return answerWith(*context, changed,
                         changed ? "Changed the tag " + printable(changed->name) : std::string());
}

CommandTask deleteTag(Context context, std::string typed, bool isYes)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto tag = co_await tagOf(context, typed);
    if (!tag)
        co_return failure(tag.error());
    const CatalogDeletion deletion{
        .item = {CatalogItem::Kind::tag, tag->id}, .name = tag->name, .isYes = isYes};
    if (const auto wanted = co_await confirmDeletion(context, deletion); !wanted)
        co_return failure(wanted.error());
    co_return answerDeletion(*context, co_await catalogEditor(**opened).deleteTag(tag->id), *tag, deletion,
                             "Deleted the tag " + printable(tag->name));
}

/// A verb with one argument.
void addVerb(CommandTree &tree, CLI::App *parent, const char *name, const char *description,
             const char *argument, const char *argumentText,
             std::function<CommandTask(Context, std::string)> run)
{
    const auto value = std::make_shared<std::string>();
    CLI::App *command = CommandTree::addVerb(parent, name, description);
    CommandTree::addRequired(command, argument, *value, argumentText);
    tree.onRun(command,
               [value, run = std::move(run)](Context context) { return run(std::move(context), *value); });
}

constexpr const char *itemText = "A name or an identifier";

using Rename = CommandTask (*)(Context, std::string, std::string);
using Delete = CommandTask (*)(Context, std::string, bool);

CommandTask renameTo(Context context, Rename rename, std::string typed, std::optional<std::string> name)
{
    if (!name)
        co_return failure(CommandFailure::usage("Say what to change: --name NAME."));
    if (const auto problem = typedNameProblem(*name))
        co_return failure(CommandFailure::usage(*problem));
    co_return co_await rename(std::move(context), std::move(typed), std::move(*name));
}

/// `noun` as in "Rename a client".
void addEditAndDelete(CommandTree &tree, CLI::App *parent, const std::string &noun, Rename rename,
                      Delete remove)
{
    const auto id = std::make_shared<std::string>();
    const auto name = std::make_shared<std::optional<std::string>>();
    CLI::App *edit = CommandTree::addVerb(parent, "edit", "Rename a " + noun);
    CommandTree::addRequired(edit, "ID", *id, itemText);
    CommandTree::addText(edit, "--name", *name, "NAME", "Its name");
    tree.onRun(edit, [=](Context context) { return renameTo(std::move(context), rename, *id, *name); });

    const auto isYes = std::make_shared<bool>(false);
    CLI::App *deletion = CommandTree::addVerb(
        parent, "delete", "Delete a " + noun + " for good; asks first, and says what is on it");
    CommandTree::addRequired(deletion, "ID", *id, itemText);
    CommandTree::addFlag(deletion, "--yes", *isYes, yesText);
    tree.onRun(deletion, [=](Context context) { return remove(std::move(context), *id, *isYes); });
}

} // namespace

void addCatalogCommands(CommandTree &tree)
{
    const std::string group = "The workspace";
    CLI::App *clients = tree.add("clients", "List the clients, or change them", group);
    const auto archivedToo = std::make_shared<bool>(false);
    CommandTree::addFlag(clients, "--archived", *archivedToo, "List the archived ones too");
    tree.onRun(clients,
               [archivedToo](Context context) { return listClients(std::move(context), *archivedToo); });
    addVerb(tree, clients, "add", "Make a client", "NAME", "The client's name", addClient);
    const auto change = [](ClientVerb verb) {
        return [verb](Context context, std::string id) {
            return changeClient(std::move(context), std::move(id), verb);
        };
    };
    addVerb(tree, clients, "archive", "Put a client away; its projects stay", "ID", itemText,
            change(ClientVerb::archive));
    addVerb(tree, clients, "restore", "Take a client back from the archive", "ID", itemText,
            change(ClientVerb::restore));
    addEditAndDelete(tree, clients, "client", renameClient, deleteClient);

    CLI::App *tags = tree.add("tags", "List the tags, or change them", group);
    tree.onRun(tags, listTags);
    addVerb(tree, tags, "add", "Make a tag", "NAME", "The tag's name", addTag);
    addEditAndDelete(tree, tags, "tag", renameTag, deleteTag);
}

} // namespace orvane
