// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/NameOrder.h"
#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"

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

enum class ClientVerb { archive, restore, remove };

CommandTask changeClient(Context context, std::string typed, ClientVerb verb)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto clients = co_await (*opened)->client().listClients((*opened)->tracker().workspace().id, true);
    const auto client =
        chosenOf(clients, "client", typed, clients ? namedItems(*clients) : std::vector<NamedItem>());
    if (!client)
        co_return failure(client.error());
    CatalogEditor editor = catalogEditor(**opened);
    const std::string name = printable(client->name);
    if (verb == ClientVerb::remove)
        co_return answerWithout(*context, co_await editor.deleteClient(client->id), *client,
                                "Deleted the client " + name);
    if (verb == ClientVerb::archive)
        co_return answerWith(*context, co_await editor.archiveClient(client->id),
                             "Archived the client " + name);
    co_return answerWith(*context, co_await editor.restoreClient(client->id), "Restored the client " + name);
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

CommandTask deleteTag(Context context, std::string typed)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto tags = co_await (*opened)->client().listTags((*opened)->tracker().workspace().id);
    const auto tag = chosenOf(tags, "tag", typed, tags ? namedItems(*tags) : std::vector<NamedItem>());
    if (!tag)
        co_return failure(tag.error());
    co_return answerWithout(*context, co_await catalogEditor(**opened).deleteTag(tag->id), *tag,
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
    addVerb(tree, clients, "delete", "Delete a client", "ID", itemText, change(ClientVerb::remove));

    CLI::App *tags = tree.add("tags", "List the tags, or change them", group);
    tree.onRun(tags, listTags);
    addVerb(tree, tags, "add", "Make a tag", "NAME", "The tag's name", addTag);
    addVerb(tree, tags, "delete", "Delete a tag", "ID", itemText, deleteTag);
}

} // namespace orvane
