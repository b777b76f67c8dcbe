// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Output/JsonShapes.h"
#include "Terminal/TextWidth.h"

#include <QString>
#include <array>

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
    const auto found = choose("workspace", typed, named, LookupPurpose::use);
    if (!found)
        co_return failure(CommandFailure::of(found.error()));
    const WorkspaceSummary workspace = workspaces[*found];
    if (!(*opened)->useWorkspace(workspace.id))
        co_return failure(CommandFailure::of("The workspace " + printable(workspace.name) + " is gone."));
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(workspace)};
    co_return CommandAnswer{.output = "Using the workspace " + printable(workspace.name) + " from now on.\n"};
}

enum class SettingKind { number, toggle, text };

struct Setting {
    const char *name;
    SettingKind kind;
    const char *meaning;
};

constexpr std::array settings{
    Setting{"weekStart", SettingKind::number, "0 (Sunday) to 6 (Saturday)"},
    Setting{"dateFormat", SettingKind::text, "dd/MM/yyyy, MM/dd/yyyy, yyyy-MM-dd or dd.MM.yyyy"},
    Setting{"timeFormat", SettingKind::text, "24h or 12h"},
    Setting{"durationFormat", SettingKind::text, "hms, hm or decimal"},
    Setting{"pomodoroEnabled", SettingKind::toggle, "on or off"},
    Setting{"pomodoroMinutes", SettingKind::number, "minutes of work"},
    Setting{"pomodoroBreakMinutes", SettingKind::number, "minutes of rest"},
    Setting{"pomodoroAutoStop", SettingKind::toggle, "on or off"},
};

std::string shown(const RawJson &value)
{
    if (value.text == "true")
        return "on";
    if (value.text == "false")
        return "off";
    // The texts among the settings are names of formats, which hold nothing that JSON would escape.
    const std::string &text = value.text;
    const bool isText = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return isText ? text.substr(1, text.size() - 2) : text;
}

std::string settingsText(const PreferencesResponse &preferences, const TerminalStyle &style)
{
    const auto values = decodeJson<shapes::Members>(encodeJson(preferences));
    TextTable table({{}, {}, {.shrinksTo = 12}});
    for (const Setting &setting : settings) {
        const auto value = values->find(setting.name);
        table.add({TextCell(setting.name),
                   TextCell(value == values->end() ? "" : shown(value->second), {.bold = true}),
                   TextCell(setting.meaning, quiet)});
    }
    return table.render(style);
}

CommandAnswer settingsAnswer(const CommandContext &context, const PreferencesResponse &preferences)
{
    return {.output =
                context.json() ? shapes::text(preferences) : settingsText(preferences, context.style())};
}

CommandTask listSettings(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_return settingsAnswer(*context, (*opened)->me().preferences);
}

QString lower(const std::string &text)
{
    return QString::fromStdString(text).toLower();
}

/// The value as JSON; nothing when it is none of the kind.
std::optional<std::string> jsonValue(const std::string &value, SettingKind kind)
{
    const QString text = lower(value).trimmed();
    bool isNumber = false;
    const qlonglong number = text.toLongLong(&isNumber);
    switch (kind) {
    case SettingKind::number:
        return isNumber ? std::optional(std::to_string(number)) : std::nullopt;
    case SettingKind::toggle:
        for (const char *word : {"on", "true", "yes", "1"}) {
            if (text == QLatin1String(word))
                return "true";
        }
        for (const char *word : {"off", "false", "no", "0"}) {
            if (text == QLatin1String(word))
                return "false";
        }
        return {};
    case SettingKind::text:
        return encodeJson(value);
    }
    return {};
}

Result<PreferencesRequest, CommandFailure> requestFor(const std::string &key, const std::string &value)
{
    TextTable known({{}, {}});
    for (const Setting &setting : settings) {
        known.add({TextCell(setting.name), TextCell(setting.meaning)});
        if (lower(key) != lower(setting.name))
            continue;
        const auto json = jsonValue(value, setting.kind);
        const auto request =
            json ? decodeJson<PreferencesRequest>("{\"" + std::string(setting.name) + "\":" + *json + "}")
                 : Result<PreferencesRequest, JsonError>(failure(JsonError{}));
        if (!request)
            return failure(CommandFailure::usage(std::string(setting.name) + " wants " + setting.meaning +
                                                 ", not \"" + printable(value) + "\"."));
        return *request;
    }
    std::string names = known.render({});
    names.pop_back();
    return failure(
        CommandFailure::usage("There is no setting \"" + printable(key) + "\". There are:\n" + names));
}

CommandTask setSetting(Context context, std::string key, std::string value)
{
    const auto request = requestFor(key, value);
    if (!request)
        co_return failure(request.error());
    const auto opened = co_await openOnline(context);
    if (!opened)
        co_return failure(opened.error());
    const auto preferences = co_await (*opened)->client().updatePreferences(*request);
    if (!preferences)
        co_return failure(CommandFailure::of(preferences.error()));
    MeResponse me = (*opened)->me();
    me.preferences = *preferences;
    co_await (*opened)->updateMe(std::move(me));
    co_return settingsAnswer(*context, *preferences);
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

    CLI::App *command = tree.add("settings", "Show the account's preferences, or change one", group);
    tree.onRun(command, listSettings);
    const auto key = std::make_shared<std::string>();
    const auto value = std::make_shared<std::string>();
    CLI::App *set = CommandTree::addVerb(command, "set", "Change a preference");
    CommandTree::addRequired(set, "KEY", *key, "The preference, as orvane settings names it");
    CommandTree::addRequired(set, "VALUE", *value, "What it shall be");
    tree.onRun(set, [key, value](Context context) { return setSetting(std::move(context), *key, *value); });
}

} // namespace orvane
