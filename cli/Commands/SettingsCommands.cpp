// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Input/SettingList.h"
#include "Output/JsonShapes.h"
#include "Output/SettingsShapes.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <limits>

namespace orvane {

namespace {

CommandTask listWorkspaces(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const Account &account = **opened;
    const std::vector<WorkspaceSummary> workspaces = account.me().workspaces;
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(workspaces)};
    TextTable table({{}, {}, {.shrinksTo = 12}, {}}, 0);
    std::vector<std::string> ids;
    for (const WorkspaceSummary &workspace : workspaces)
        ids.push_back(workspace.id);
    ids = shortIds(ids);
    for (std::size_t i = 0; i < workspaces.size(); ++i) {
        const bool isUsed = workspaces[i].id == (*opened)->tracker().workspace().id;
        table.add({TextCell(isUsed ? "●" : " ", {.bold = true, .colour = TextStyle::Colour::green}),
                   TextCell(ids[i], quiet), TextCell(printable(workspaces[i].name), {.bold = isUsed}),
                   TextCell(std::string(jsonText(workspaces[i].role)), quiet)});
    }
    co_return CommandAnswer{.output = table.render(context->style())};
}

CommandTask useWorkspace(Context context, std::string typed)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const std::vector<WorkspaceSummary> workspaces = (*opened)->me().workspaces;
    std::vector<NamedItem> named;
    for (const WorkspaceSummary &workspace : workspaces)
        named.push_back({workspace.id, workspace.name});
    const auto found = choose("workspace", typed, named);
    if (!found)
        co_return failure(CommandFailure::of(found.error()));
    const WorkspaceSummary workspace = workspaces[*found];
    if (!(*opened)->useWorkspace(workspace.id))
        co_return failure(CommandFailure::of("The workspace " + printable(workspace.name) + " is gone."));
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(workspace)};
    co_return CommandAnswer{.output = "Using the workspace " + printable(workspace.name) + " from now on.\n"};
}

std::string headingOf(Setting::Group group, const AccountSettings &settings, const Tracker &tracker)
{
    switch (group) {
    case Setting::Group::profile:
        return "Profile of " + printable(settings.profile.email);
    case Setting::Group::preferences:
        return "Preferences";
    case Setting::Group::workspace:
        break;
    }
    const std::string name = "Workspace " + printable(tracker.workspace().name);
    return tracker.rules().isAdmin ? name : name + " (its administrators change these)";
}

struct SettingRow {
    Setting setting;
    TextCell value;
};

/// What is left for the settings' meanings beside names and values; 0 where that is too little.
int roomForMeanings(const std::vector<SettingRow> &rows, const TerminalStyle &style)
{
    constexpr int leastRoom = 24;
    if (style.width == 0)
        return std::numeric_limits<int>::max();
    int name = 0;
    int value = 0;
    for (const SettingRow &row : rows) {
        name = std::max(name, displayWidth(row.setting.name));
        value = std::max(value, row.value.width());
    }
    // Two spaces in front, and two after each.
    const int room = style.width - 6 - name - value;
    return room < leastRoom ? 0 : room;
}

/// Names, values and meanings are there to be copied, so nothing is cut: meanings go on below, and are left
/// out of a narrow terminal.
std::string settingsText(const AccountSettings &settings, const Tracker &tracker, const TerminalStyle &style)
{
    std::vector<SettingRow> rows;
    for (const Setting &setting : settingList()) {
        if (setting.group != Setting::Group::workspace || settings.workspace)
            rows.push_back({setting, TextCell(setting.shown(settings, tracker.time()), strong)});
    }
    const int room = roomForMeanings(rows, style);
    TextTable table({{}, {}, {}});
    std::vector<Setting::Group> groups;
    for (const SettingRow &row : rows) {
        const auto meaning =
            room > 0 ? TextCell(row.setting.meaning, quiet).wrapped(room) : std::vector<TextCell>();
        for (std::size_t i = 0; i < std::max<std::size_t>(meaning.size(), 1); ++i) {
            table.add({i == 0 ? TextCell(row.setting.name) : TextCell(), i == 0 ? row.value : TextCell(),
                       i < meaning.size() ? meaning[i] : TextCell()});
            groups.push_back(row.setting.group);
        }
    }
    std::string text;
    const std::vector<std::string> lines = table.lines(style);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i == 0 || groups[i] != groups[i - 1])
            text += TextCell(headingOf(groups[i], settings, tracker)).render(style) + "\n";
        text += lines[i] + "\n";
    }
    return text;
}

CommandTask listSettings(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const AccountSettings settings = AccountSettings::of(**opened);
    co_return CommandAnswer{.output = context->json()
                                          ? shapes::settingsText(settings)
                                          : settingsText(settings, (*opened)->tracker(), context->style())};
}

/// Wrong usage is told before a server is asked.
Result<Setting, CommandFailure> checkedSetting(const std::string &key, const std::string &value)
{
    AccountSettings any;
    any.workspace.emplace();
    auto setting = settingNamed(key);
    if (!setting)
        return failure(CommandFailure::usage(setting.error()));
    if (const auto taken = setting->with(std::move(any), value, UserTime::utc()); !taken)
        return failure(CommandFailure::usage(taken.error()));
    return std::move(*setting);
}

CommandTask setSetting(Context context, std::string key, std::string value)
{
    const auto setting = checkedSetting(key, value);
    if (!setting)
        co_return failure(setting.error());
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    Account *account = *opened;
    const auto before = co_await freshSettings(account);
    if (!before)
        co_return failure(CommandFailure::of(before.error()));
    const auto after = setting->with(*before, value, account->time());
    if (!after)
        co_return failure(CommandFailure::usage(after.error()));
    const auto kept = co_await saveSettings(account, *before, *after);
    if (!kept)
        co_return failure(CommandFailure::of(kept.error()));
    if (context->json())
        co_return CommandAnswer{.output = shapes::settingsText(*kept)};
    const std::string shown = setting->shown(*kept, account->time());
    co_return CommandAnswer{.output = setting->name + " is " + (shown.empty() ? "empty" : shown) + " now.\n"};
}

std::string settingNames()
{
    std::string names;
    for (const Setting &setting : settingList())
        names += (names.empty() ? "" : ", ") + setting.name;
    return names;
}

} // namespace

void addSettingsCommands(CommandTree &tree)
{
    const std::string group = "The account";
    CLI::App *workspaces = tree.add("workspaces", "List the workspaces, or choose the one in use", group);
    tree.onRun(workspaces, listWorkspaces);
    const auto id = std::make_shared<std::string>();
    CLI::App *use = CommandTree::addVerb(workspaces, "use", "Choose the workspace");
    CommandTree::addRequired(use, "ID", *id, "A name or an identifier");
    tree.onRun(use, [id](Context context) { return useWorkspace(std::move(context), *id); });

    CLI::App *command =
        tree.add("settings", "Show the account's settings and the workspace's rules, or change one", group);
    tree.onRun(command, listSettings);
    const auto key = std::make_shared<std::string>();
    const auto value = std::make_shared<std::string>();
    CLI::App *set =
        CommandTree::addVerb(command, "set", "Change a setting; the workspace's are its administrators'");
    CommandTree::addRequired(set, "KEY", *key, "Which setting");
    CommandTree::addRequired(set, "VALUE", *value, "What it shall be");
    CommandTree::addFooter(set, "A KEY is one of: " + settingNames() + ". What each wants: orvane settings");
    tree.onRun(set, [key, value](Context context) { return setSetting(std::move(context), *key, *value); });
}

} // namespace orvane
