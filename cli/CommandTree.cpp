// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandTree.h"

#include "Account/ServerAddress.h"
#include "HelpText.h"
#include "Input/NearestName.h"
#include "Input/WantedAddress.h"
#include "QuickEntry/FoldedText.h"
#include "Support/Require.h"
#include "Terminal/TextWidth.h"
#include "Time/UserTime.h"

#include <QFileInfo>
#include <algorithm>
#include <iterator>

namespace orvane {

namespace {

/// The library splits "[a,b]" among remaining words into a list and takes "++" for the end of a sub-command.
/// Words that would be mangled so travel behind this mark, which cannot be typed.
constexpr char mark = '\x01';

bool isMangled(const std::string &argument)
{
    return argument == "++" || (!argument.empty() && argument.front() == '[' && argument.back() == ']');
}

std::string unmarked(const std::string &argument)
{
    return argument.starts_with(mark) ? argument.substr(1) : argument;
}

std::vector<std::string> asTyped(std::vector<std::string> values)
{
    std::ranges::transform(values, values.begin(), unmarked);
    return values;
}

bool hasValueOption(const CLI::App *command, std::string_view name)
{
    const auto isIt = [&](const CLI::Option *option) {
        return option->get_expected_max() > 0 && option->check_lname(std::string(name));
    };
    return std::ranges::any_of(command->get_options(), isIt) ||
           std::ranges::any_of(CommandTree::commandsOf(command),
                               [&](const CLI::App *below) { return hasValueOption(below, name); });
}

/// A word with white space in it is a sentence, whatever it begins with ("-h meeting 9-10"), but for the
/// value that an option has in the same word (--description=Fix it).
bool isDashedSentence(const std::string &argument, const CLI::App &root)
{
    const auto words = wordsOf(argument);
    if (!argument.starts_with('-') || (words.size() == 1 && words.front().size() == argument.size()))
        return false;
    const std::size_t equals = argument.find('=');
    return !argument.starts_with("--") || equals == std::string::npos ||
           !hasValueOption(&root, std::string_view(argument).substr(2, equals - 2));
}

std::string commandLine(const CLI::App *command)
{
    std::string names;
    for (const CLI::App *app = command; app->get_parent(); app = app->get_parent())
        names = " " + app->get_name() + names;
    return "orvane" + names;
}

std::string withoutMarks(std::string text)
{
    std::erase(text, mark);
    return text;
}

/// What the library found, in our words where its own are not for people.
std::string messageOf(const CLI::ParseError &error)
{
    const std::string text = error.what();
    const auto code = static_cast<CLI::ExitCodes>(error.get_exit_code());
    const std::string_view excludes = " excludes ";
    const std::size_t verb = text.find(excludes);
    if (code == CLI::ExitCodes::ExcludesError && verb != std::string::npos)
        return text.substr(0, verb) + " and " + text.substr(verb + excludes.size()) + " do not go together.";
    if (code == CLI::ExitCodes::ArgumentMismatch && text.ends_with(" missing"))
        return text.substr(0, text.find(':')) + " needs a value.";
    return text + (text.ends_with('.') ? "" : ".");
}

/// The option that was probably meant, of the command's own and those of every command.
std::string nearOption(const std::string &typed, const CLI::App *command, const CLI::App &root)
{
    std::vector<std::string> names;
    for (const CLI::App *app : {command, &root}) {
        for (const CLI::Option *option : app->get_options())
            std::ranges::copy(option->get_lnames(), std::back_inserter(names));
    }
    const std::size_t begin = std::min(typed.find_first_not_of('-'), typed.size());
    const auto name = nearestName(typed.substr(begin, typed.find('=') - begin), names);
    return name ? " Did you mean \"--" + *name + "\"?" : std::string();
}

/// Of several words too many, an option is named: the others may have been meant as its value.
std::string extraMessage(const std::vector<std::string> &extras, const CLI::App *command,
                         const CLI::App &root)
{
    const auto option =
        std::ranges::find_if(extras, [](const std::string &text) { return text.starts_with('-'); });
    const bool isOption = option != extras.end();
    const std::string what = extras.empty() ? "" : printable(unmarked(isOption ? *option : extras.front()));
    const std::string call = commandLine(command);
    if (isOption)
        return call + " has no option \"" + what + "\"." + nearOption(what, command, root);
    const std::string near = didYouMean(what, CommandTree::namesBelow(command));
    if (command == &root)
        return "There is no command \"" + what + "\"." + near;
    return call + (CommandTree::commandsOf(command).empty() ? " does not take \"" : " has no command \"") +
           what + "\"." + near;
}

std::optional<CommandFailure> folderProblem(const char *option, const std::optional<std::string> &folder)
{
    if (!folder || QFileInfo(QString::fromStdString(*folder)).isDir())
        return {};
    return CommandFailure::usage(std::string(option) + ": there is no folder \"" + printable(*folder) +
                                 "\".");
}

} // namespace

/// `--name=` is an empty value; the library would take the next argument for it.
std::vector<std::string> CommandTree::prepared(const std::vector<std::string> &arguments) const
{
    std::vector<std::string> out;
    bool onlyWords = false;
    for (const std::string &argument : arguments) {
        const bool isEmptyValue = !onlyWords && argument.size() > 3 && argument.starts_with("--") &&
                                  argument.find('=') == argument.size() - 1;
        if (isEmptyValue) {
            out.push_back(argument.substr(0, argument.size() - 1));
            out.emplace_back();
        } else {
            const bool isOnlyWord = isMangled(argument) || isDashedSentence(argument, *m_root);
            out.push_back(isOnlyWord ? mark + argument : argument);
        }
        onlyWords = onlyWords || argument == "--";
    }
    return out;
}

CommandTree::CommandTree() : m_root(std::make_unique<CLI::App>("Track time from the terminal.", "orvane"))
{
    m_root->formatter(std::make_shared<HelpText>());
    m_root->set_help_flag();
    m_root->fallthrough();
    m_root->require_subcommand(0, 1);
    addGlobalOptions();
}

CommandTree::~CommandTree() = default;

void CommandTree::addGlobalOptions()
{
    const std::string group = "Options of every command";
    const auto text = [&](const char *name, std::optional<std::string> &target, const char *type,
                          const char *what) {
        addText(m_root.get(), name, target, type, what)->group(group);
    };
    text("--server", m_options.server, "URL", "The server to talk to instead of the one signed in to");
    m_root->add_flag_callback("--no-start-server", [this] { m_options.startsServer = false; })
        ->description("Do not start the server on this computer")
        ->group(group);
    text("--data-dir", m_dataFolder, "DIR", "Keep everything in this folder, an installation of its own");
    text("--home", m_homeFolder, "DIR", "Where the agents' log folders are looked for");
    text("--fixtures", m_fixturesFolder, "DIR", "Read sample logs from here instead");
    text("--workspace", m_options.workspace, "ID", "The workspace for this call");
    text("--zone", m_options.zone, "ZONE", "The time zone for this call, such as Europe/Paris");
    m_root->add_flag("--json", m_options.json, "Print one JSON value, for programs")->group(group);
    m_root->add_flag("-h,--help", m_wantsHelp, "Say what a command does")->group(group);
    m_root->add_flag("--version", m_wantsVersion, "Say which version this is")->group(group);
}

CLI::App *CommandTree::add(const std::string &name, const std::string &description, const std::string &group)
{
    return m_root->add_subcommand(name, description)->group(group)->require_subcommand(0, 1);
}

CLI::App *CommandTree::addVerb(CLI::App *command, const std::string &name, const std::string &description)
{
    return command->add_subcommand(name, description)->group("Commands")->require_subcommand(0, 1);
}

void CommandTree::onRun(const CLI::App *command, Handler handler, FailureForm failureForm)
{
    m_actions[command] = {std::move(handler), {}, failureForm, {}};
}

void CommandTree::onRunPlain(const CLI::App *command, PlainHandler handler)
{
    m_actions[command] = {{}, std::move(handler), FailureForm::error, {}};
}

void CommandTree::onRunPlain(const CLI::App *command, PlainHandler handler,
                             std::function<bool()> prefersPlain)
{
    Action &action = m_actions[command];
    action.plain = std::move(handler);
    action.prefersPlain = std::move(prefersPlain);
}

CLI::Option *CommandTree::addText(CLI::App *command, const std::string &name,
                                  std::optional<std::string> &target, const std::string &type,
                                  const std::string &description)
{
    return command
        ->add_option_function<std::string>(
            name, [&target](const std::string &value) { target = unmarked(value); }, description)
        ->type_name(type)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

void CommandTree::addFooter(CLI::App *command, const std::string &text)
{
    const std::string before = command->get_footer();
    command->footer(before.empty() ? text : before + " " + text);
}

void CommandTree::addRequired(CLI::App *command, const std::string &name, std::string &target,
                              const std::string &description)
{
    command
        ->add_option_function<std::string>(
            name, [&target](const std::string &value) { target = unmarked(value); }, description)
        ->required();
}

void CommandTree::addRequired(CLI::App *command, const std::string &name, std::int64_t &target,
                              const std::string &description)
{
    command->add_option(name, target, description)->required();
}

void CommandTree::addFlag(CLI::App *command, const std::string &name, bool &target,
                          const std::string &description)
{
    command->add_flag(name, target, description);
}

void CommandTree::addSwitch(CLI::App *command, const std::string &name, std::optional<bool> &target,
                            const std::string &descriptionOn, const std::string &descriptionOff)
{
    CLI::Option *on = command->add_flag_callback("--" + name, [&target] { target = true; }, descriptionOn);
    command->add_flag_callback("--no-" + name, [&target] { target = false; }, descriptionOff)->excludes(on);
}

void CommandTree::addDayOrWeek(CLI::App *command, std::optional<std::string> &day,
                               std::optional<std::string> &week)
{
    CLI::Option *dayOption = addText(command, "--day", day, "DAY", "The day; today unless it is named");
    addDay(command, "--week", week, "The seven days of the week that holds it, or of this week")
        ->excludes(dayOption);
}

CLI::Option *CommandTree::addDay(CLI::App *command, const std::string &name,
                                 std::optional<std::string> &target, const std::string &description)
{
    return addText(command, name, target, "[DAY]", description)->expected(0, 1)->default_str("today");
}

void CommandTree::addTexts(CLI::App *command, const std::string &name,
                           std::optional<std::vector<std::string>> &target, const std::string &type,
                           const std::string &description)
{
    command
        ->add_option_function<std::vector<std::string>>(
            name, [&target](const std::vector<std::string> &values) { target = asTyped(values); },
            description)
        ->type_name(type)
        ->allow_extra_args(false);
}

void CommandTree::addWords(CLI::App *command, const std::string &name, std::vector<std::string> &target,
                           const std::string &description, bool isRequired)
{
    command
        ->add_option_function<std::vector<std::string>>(
            name, [&target](const std::vector<std::string> &words) { target = asTyped(words); }, description)
        ->required(isRequired);
}

void CommandTree::addSentence(CLI::App *command, const std::string &name, std::optional<std::string> &target,
                              const std::string &description, bool isRequired)
{
    command
        ->add_option_function<std::vector<std::string>>(
            name,
            [&target](const std::vector<std::string> &words) {
                std::string sentence;
                for (const std::string &word : words)
                    sentence += (sentence.empty() ? "" : " ") + unmarked(word);
                target = std::move(sentence);
            },
            description)
        ->required(isRequired);
}

Result<std::monostate, CommandFailure> CommandTree::parse(std::vector<std::string> arguments)
{
    std::vector<std::string> reversed = prepared(arguments);
    std::ranges::reverse(reversed);
    try {
        m_root->parse(reversed);
    } catch (const CLI::ParseError &error) {
        if (m_wantsHelp || m_wantsVersion)
            return std::monostate();
        const CLI::App *command = chosen();
        const bool isExtra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
        const std::string message = isExtra ? extraMessage(m_root->remaining(true), command, *m_root)
                                            : withoutMarks(messageOf(error));
        return failure(CommandFailure::usage(message + " See: " + commandLine(command) + " --help"));
    }
    if (m_wantsHelp || m_wantsVersion)
        return std::monostate();
    return checkGlobalOptions();
}

Result<std::monostate, CommandFailure> CommandTree::checkGlobalOptions()
{
    if (m_options.server) {
        auto address = serverAddress(*m_options.server);
        if (!address)
            return failure(CommandFailure::usage("--server" + wantedAddress(*m_options.server)));
        m_options.server = std::move(address);
    }
    if (m_options.zone && !UserTime::make(*m_options.zone))
        return failure(CommandFailure::usage("--zone wants a time zone such as Europe/Paris, not \"" +
                                             printable(*m_options.zone) + "\"."));
    if (m_dataFolder && m_dataFolder->empty())
        return failure(CommandFailure::usage("--data-dir wants a folder."));
    for (const auto &problem :
         {folderProblem("--home", m_homeFolder), folderProblem("--fixtures", m_fixturesFolder)}) {
        if (problem)
            return failure(*problem);
    }
    m_options.dataFolder = m_dataFolder.value_or("");
    m_options.homeFolder = m_homeFolder.value_or("");
    m_options.fixturesFolder = m_fixturesFolder.value_or("");
    return std::monostate();
}

Result<std::monostate, CommandFailure> CommandTree::checkPlace() const
{
    if (m_options.dataFolder.empty() && !Installation::hasUsualPlace())
        return failure(
            CommandFailure::of("There is no home folder to keep your time in: HOME is not set. Name a "
                               "folder with --data-dir DIR."));
    return std::monostate();
}

const CLI::App *CommandTree::chosen() const
{
    const CLI::App *command = m_root.get();
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().back();
    return command;
}

const CommandTree::Action &CommandTree::action() const
{
    const auto found = m_actions.find(chosen());
    ORVANE_REQUIRE(found != m_actions.end(), "every command does something");
    return found->second;
}

std::string CommandTree::help() const
{
    return helpOf(chosen(), m_options.json);
}

std::vector<const CLI::App *> CommandTree::commandsOf(const CLI::App *parent)
{
    return parent->get_subcommands([](const CLI::App *) { return true; });
}

std::vector<std::string> CommandTree::namesBelow(const CLI::App *parent)
{
    std::vector<std::string> names;
    for (const CLI::App *command : commandsOf(parent)) {
        if (!command->get_group().empty())
            names.push_back(command->get_name());
    }
    return names;
}

} // namespace orvane
