// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/LookupText.h"

#include "Terminal/TextWidth.h"

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

} // namespace

std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleItem &error)
{
    const std::string sort(kind);
    const auto &items = error.items;
    switch (error.why) {
    case NoSingleItem::Why::ambiguous:
        return quoted(typed) + " can mean " + std::to_string(items.size()) + " " + sort +
               "s:" + listed(kind, items);
    case NoSingleItem::Why::archived:
        return "The " + sort + " \"" + items.front().name + "\" is archived. Take it back with: orvane " +
               sort + "s restore " + items.front().id.substr(0, 8);
    case NoSingleItem::Why::unknown:
        break;
    }
    const std::string unknown = "There is no " + sort + " " + quoted(typed);
    if (items.empty())
        return unknown + ": there are no " + sort + "s yet.";
    return unknown + ". There are:" + listed(kind, items);
}

std::string lookupText(std::string_view kind, std::string_view typed, const NoSingleId &error)
{
    if (error.isAmbiguous())
        return quoted(typed) + " is the beginning of " + std::to_string(error.matches) +
               " identifiers; type more of it.";
    return "There is no " + std::string(kind) + " " + quoted(typed) + ".";
}

Result<std::size_t, std::string> choose(std::string_view kind, std::string_view typed,
                                        const std::vector<NamedItem> &items)
{
    return lookUp(typed, items).map_error([&](const NoSingleItem &error) {
        return lookupText(kind, typed, error);
    });
}

} // namespace orvane
