// SPDX-License-Identifier: GPL-3.0-or-later
#include "HelpText.h"

#include "Output/HelpShapes.h"
#include "Terminal/TerminalStyle.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <optional>
#include <unistd.h>
#include <vector>

namespace orvane {

namespace {

struct Item {
    std::string term;
    std::string text;
};

std::vector<const CLI::App *> commandsOf(const CLI::App *command)
{
    return command->get_subcommands([](const CLI::App *sub) { return !sub->get_group().empty(); });
}

std::vector<const CLI::Option *> optionsOf(const CLI::App *command, bool arePositional)
{
    return command->get_options(
        [arePositional](const CLI::Option *option) { return option->get_positional() == arePositional; });
}

std::size_t widthOf(const std::string &text)
{
    return static_cast<std::size_t>(displayWidth(text));
}

/// Words on lines of at most `width` columns; lines after the first begin with `indent` spaces.
std::string wrapped(const std::string &text, std::size_t indent, std::size_t width)
{
    std::string out;
    std::size_t column = indent;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        const std::string word = text.substr(at, end - at);
        const std::size_t wide = widthOf(word);
        if (column > indent && column + 1 + wide > width) {
            out += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (column > indent) {
            out += ' ';
            ++column;
        }
        out += word;
        column += wide;
        at = end + 1;
    }
    return out;
}

std::string section(const std::string &title, const std::vector<Item> &items, std::size_t width)
{
    if (items.empty())
        return {};
    std::size_t term = 0;
    for (const Item &item : items)
        term = std::max(term, widthOf(item.term));
    // On a narrow terminal the terms leave room for words; longer ones stand on lines of their own.
    constexpr std::size_t leastText = 26;
    term = std::min({term, std::size_t{30}, width - std::min(leastText + 4, width)});
    std::string out = "\n" + title + ":\n";
    for (const Item &item : items) {
        out += "  " + item.term;
        out += widthOf(item.term) > term ? "\n" + std::string(term + 4, ' ')
                                         : std::string(term + 2 - widthOf(item.term), ' ');
        out += wrapped(item.text, term + 4, width) + "\n";
    }
    return out;
}

Item itemOf(const CLI::Option *option)
{
    std::string term = option->get_positional() ? option->get_name(true) : option->get_name(false, true);
    std::ranges::replace(term, ',', ' ');
    if (!option->get_positional() && option->get_expected_max() > 0 && !option->get_type_name().empty())
        term += " " + option->get_type_name();
    return {term, option->get_description()};
}

/// The arguments of a command, as they are typed: " ID… [SENTENCE]".
std::string argumentsText(const CLI::App *command)
{
    std::string out;
    for (const CLI::Option *argument : optionsOf(command, true)) {
        const std::string name = argument->get_name(true) + (argument->get_expected_max() > 1 ? "…" : "");
        out += argument->get_required() ? " " + name : " [" + name + "]";
    }
    return out;
}

std::string usage(const CLI::App *command)
{
    std::string out = callOf(command);
    const bool isRoot = command->get_parent() == nullptr;
    if (isRoot || !optionsOf(command, false).empty())
        out += " [OPTIONS]";
    out += argumentsText(command);
    if (!commandsOf(command).empty())
        out += " [COMMAND]";
    return out;
}

std::string commandSections(const CLI::App *command, std::size_t width)
{
    std::vector<std::string> groups;
    for (const CLI::App *sub : commandsOf(command)) {
        if (std::ranges::find(groups, sub->get_group()) == groups.end())
            groups.push_back(sub->get_group());
    }
    std::string out;
    for (const std::string &group : groups) {
        std::vector<Item> items;
        for (const CLI::App *sub : commandsOf(command)) {
            if (sub->get_group() != group)
                continue;
            items.push_back({sub->get_name() + argumentsText(sub), sub->get_description()});
        }
        out += section(group, items, width);
    }
    return out;
}

std::vector<Item> items(const std::vector<const CLI::Option *> &options)
{
    std::vector<Item> list;
    for (const CLI::Option *option : options)
        list.push_back(itemOf(option));
    return list;
}

std::optional<std::string> valueOf(const CLI::Option *option)
{
    return option->get_expected_max() > 0 ? std::optional(option->get_type_name()) : std::nullopt;
}

std::string jsonHelp(const CLI::App *command)
{
    shapes::Help help{command->get_name(), command->get_description(), usage(command), {}, {}, {}, {}};
    if (!command->get_footer().empty())
        help.more = command->get_footer();
    for (const CLI::Option *argument : optionsOf(command, true))
        help.arguments.push_back({argument->get_name(true), argument->get_description(),
                                  argument->get_required(), argument->get_expected_max() > 1});
    for (const CLI::Option *option : optionsOf(command, false)) {
        const auto shortNames = option->get_snames();
        help.options.push_back({"--" + option->get_lnames().front(),
                                shortNames.empty() ? std::nullopt : std::optional("-" + shortNames.front()),
                                valueOf(option), option->get_description()});
    }
    for (const CLI::App *sub : commandsOf(command))
        help.commands.push_back({jsonHelp(sub)});
    return encodeJson(help, JsonStyle{.writeNulls = true});
}

} // namespace

std::string helpOf(const CLI::App *command, bool json)
{
    return json ? jsonHelp(command) + "\n" : HelpText().make_help(command, {}, CLI::AppFormatMode::Normal);
}

std::string callOf(const CLI::App *command)
{
    std::string names;
    for (; command->get_parent(); command = command->get_parent())
        names = " " + command->get_name() + names;
    return command->get_name() + names;
}

std::string HelpText::make_help(const CLI::App *command, std::string, CLI::AppFormatMode) const
{
    const int columns = TerminalStyle::of(STDOUT_FILENO).width;
    const std::size_t width = columns > 0 ? static_cast<std::size_t>(std::clamp(columns, 40, 100)) : 100;
    const bool isRoot = command->get_parent() == nullptr;
    std::string out = wrapped(command->get_description(), 0, width) + "\n\nUsage: " + usage(command) + "\n";
    out += section("Arguments", items(optionsOf(command, true)), width);
    out += commandSections(command, width);
    out += section(isRoot ? "Options of every command" : "Options", items(optionsOf(command, false)), width);
    if (!command->get_footer().empty())
        out += "\n" + wrapped(command->get_footer(), static_cast<int>(width)) + "\n";
    if (!isRoot)
        out += "\nOptions of every command: orvane --help\n";
    return out;
}

} // namespace orvane
