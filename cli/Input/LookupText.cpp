// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/LookupText.h"

#include "Input/NearestName.h"
#include "Input/ShellText.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

constexpr std::size_t listedAtMost = 8;

std::string quoted(std::string_view typed)
{
    return "\"" + printable(typed) + "\"";
}

std::string listed(std::string_view kind, const std::vector<NamedItem> &items)
{
    const char *relation = kind == "task" ? " of " : " for ";
    std::string text;
    for (std::size_t i = 0; i < items.size() && i < listedAtMost; ++i) {
        text += "\n  " + items[i].id.substr(0, 8) + "  " + printable(items[i].name);
        if (!items[i].context.empty())
            text += relation + printable(items[i].context);
    }
    if (items.size() > listedAtMost)
        text += "\n  and " + std::to_string(items.size() - listedAtMost) + " more";
    return text;
}

/// The project that all of the tasks belong to; empty when there are several, or none.
std::string projectOfAll(const std::vector<NamedItem> &tasks)
{
    const bool isOne = !tasks.empty() && std::ranges::all_of(tasks, [&](const NamedItem &task) {
        return task.context == tasks.front().context;
    });
    return isOne ? tasks.front().context : std::string();
}

/// Where one is near it is named, else all that there are.
std::string unknownText(std::string_view kind, std::string_view typed, const std::vector<NamedItem> &items,
                        LookupPurpose purpose)
{
    const std::string sort(kind);
    std::vector<std::string> names;
    for (const NamedItem &item : items)
        names.push_back(item.name);
    const std::string near = didYouMean(typed, names);
    const std::string making =
        purpose == LookupPurpose::use ? makingCommand(kind, typed, projectOfAll(items)) : "";
    std::string text = "There is no " + sort + " " + quoted(typed);
    text += items.empty() && making.empty() ? ": there are no " + sort + "s yet." : "." + near;
    if (!making.empty())
        text += " To make it: " + making;
    if (!items.empty() && near.empty())
        text += (making.empty() ? " " : "\n") + ("There are:" + listed(kind, items));
    return text;
}

} // namespace

std::string makingCommand(std::string_view kind, std::string_view name, std::string_view project)
{
    constexpr std::array<std::string_view, 4> kinds{"project", "client", "tag", "task"};
    if (name.empty() || std::ranges::find(kinds, kind) == kinds.end())
        return {};
    const std::string argument = (name.starts_with('-') ? "-- " : "") + shellArgument(name);
    const std::string where = project.empty() ? "PROJECT" : shellArgument(project);
    return "orvane " + std::string(kind) + "s add " + (kind == "task" ? where + " " : "") + argument;
}

std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleItem &error,
                       LookupPurpose purpose)
{
    const std::string sort(kind);
    const auto &items = error.items;
    switch (error.why) {
    case NoSingleItem::Why::ambiguous:
        return quoted(typed) + " can mean " + std::to_string(items.size()) + " " + sort +
               "s:" + listed(kind, items);
    case NoSingleItem::Why::archived:
        if (kind == "task")
            return "The task " + quoted(items.front().name) +
                   " is done. Take it up again with: orvane "
                   "tasks edit " +
                   items.front().id.substr(0, 8) + " --active";
        return "The " + sort + " " + quoted(items.front().name) + " is archived. Take it back with: orvane " +
               sort + "s restore " + items.front().id.substr(0, 8);
    case NoSingleItem::Why::unknown:
        break;
    }
    return unknownText(kind, typed, items, purpose);
}

std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleId &error)
{
    if (error.isAmbiguous())
        return quoted(typed) + " is the beginning of " + std::to_string(error.matches) +
               " identifiers; type more of it.";
    return "There is no " + std::string(kind) + " " + quoted(typed) + ".";
}

Result<std::size_t, std::string> choose(std::string_view kind, std::string_view typed,
                                        const std::vector<NamedItem> &items, LookupPurpose purpose)
{
    const auto found = purpose == LookupPurpose::use ? lookUpActive(typed, items) : lookUp(typed, items);
    return found.map_error(
        [&](const NoSingleItem &error) { return lookupText(kind, typed, error, purpose); });
}

} // namespace orvane
