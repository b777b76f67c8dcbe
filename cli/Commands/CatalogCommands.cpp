// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/NameOrder.h"
#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Input/EntryOptions.h"
#include "Terminal/TextWidth.h"

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
    ClientRequest request;
    request.name = name;
    auto made =
        co_await (*opened)->client().createClient((*opened)->tracker().workspace().id, std::move(request));
    std::string line =
        made ? "Added the client " + printable(made->name) + "  " + made->id.substr(0, 8) : std::string();
    co_return co_await answerWith(context, std::move(made), std::move(line));
}

enum class ClientVerb { Archive, Restore, Delete };

CommandTask changeClient(Context context, std::string typed, ClientVerb verb)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    OrvaneClient &api = (*opened)->client();
    const std::string workspace = (*opened)->tracker().workspace().id;
    const auto clients = co_await api.listClients(workspace, true);
    const auto client =
        chosenOf(clients, "client", typed, clients ? candidates(*clients) : std::vector<Candidate>());
    if (!client)
        co_return failure(client.error());
    const std::string name = printable(client->name);
    if (verb == ClientVerb::Delete)
        co_return co_await answerWithout(context, co_await api.deleteClient(workspace, client->id),
                                         ClientResponse(*client), "Deleted the client " + name);
    if (verb == ClientVerb::Archive)
        co_return co_await answerWith(context, co_await api.archiveClient(workspace, client->id),
                                      "Archived the client " + name);
    co_return co_await answerWith(context, co_await api.restoreClient(workspace, client->id),
                                  "Restored the client " + name);
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
    TagRequest request;
    request.name = name;
    auto made =
        co_await (*opened)->client().createTag((*opened)->tracker().workspace().id, std::move(request));
    std::string line =
        made ? "Added the tag " + printable(made->name) + "  " + made->id.substr(0, 8) : std::string();
    co_return co_await answerWith(context, std::move(made), std::move(line));
}

CommandTask deleteTag(Context context, std::string typed)
{
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    OrvaneClient &api = (*opened)->client();
    const std::string workspace = (*opened)->tracker().workspace().id;
    const auto tags = co_await api.listTags(workspace);
    const auto tag = chosenOf(tags, "tag", typed, tags ? candidates(*tags) : std::vector<Candidate>());
    if (!tag)
        co_return failure(tag.error());
    co_return co_await answerWithout(context, co_await api.deleteTag(workspace, tag->id), TagResponse(*tag),
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
    clients->add_flag("--archived", *archivedToo, "List the archived ones too");
    tree.onRun(clients,
               [archivedToo](Context context) { return listClients(std::move(context), *archivedToo); });
    addVerb(tree, clients, "add", "Make a client", "NAME", "The client's name", addClient);
    const auto change = [](ClientVerb verb) {
        return [verb](Context context, std::string id) {
            return changeClient(std::move(context), std::move(id), verb);
        };
    };
    addVerb(tree, clients, "archive", "Put a client away; its projects stay", "ID", itemText,
            change(ClientVerb::Archive));
    addVerb(tree, clients, "restore", "Take a client back from the archive", "ID", itemText,
            change(ClientVerb::Restore));
    addVerb(tree, clients, "delete", "Delete a client", "ID", itemText, change(ClientVerb::Delete));

    CLI::App *tags = tree.add("tags", "List the tags, or change them", group);
    tree.onRun(tags, listTags);
    addVerb(tree, tags, "add", "Make a tag", "NAME", "The tag's name", addTag);
    addVerb(tree, tags, "delete", "Delete a tag", "ID", itemText, deleteTag);
}

} // namespace orvane
