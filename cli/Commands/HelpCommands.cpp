// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "CompletionScript.h"
#include "HelpText.h"
#include "Input/NearestName.h"
#include "Support/JsonOutput.h"
#include "Terminal/TextWidth.h"

#include <algorithm>

namespace orvane {

namespace {

CommandResult help(const CommandTree &tree, const std::vector<std::string> &names)
{
    const CLI::App *command = &tree.root();
    for (const std::string &name : names) {
        const auto all = CommandTree::commandsOf(command);
        const auto next = std::ranges::find(all, name, &CLI::App::get_name);
        if (next == all.end())
            return failure(CommandFailure::usage("There is no command \"" + printable(name) + "\"." +
                                                 didYouMean(name, CommandTree::namesBelow(command)) +
                                                 " See: orvane --help"));
        command = *next;
    }
    return CommandAnswer{.output = helpOf(command, tree.options().json)};
}

CommandResult completion(const CommandTree &tree, const std::string &shell)
{
    const auto script = completionScript(tree.root(), shell);
    if (!script)
        return failure(CommandFailure::usage("Completions are there for bash, zsh and fish, not for \"" +
                                             printable(shell) + "\"."));
    if (!tree.options().json)
        return CommandAnswer{.output = *script};
    return CommandAnswer{.output = encodeJson(*script) + "\n"};
}

} // namespace

void addHelpCommands(CommandTree &tree)
{
    const std::string group = "The program";
    const auto names = std::make_shared<std::vector<std::string>>();
    CLI::App *helpCommand = tree.add("help", "Say what a command does", group);
    CommandTree::addWords(helpCommand, "COMMAND", *names, "The command, and the verb of it");
    tree.onRunPlain(helpCommand, [names](const CommandTree &whole) { return help(whole, *names); });

    const auto shell = std::make_shared<std::string>();
    CLI::App *completionCommand = tree.add("completion", "Print the completions for a shell", group);
    CommandTree::addRequired(completionCommand, "SHELL", *shell, "bash, zsh or fish");
    CommandTree::addFooter(completionCommand, "bash: source <(orvane completion bash) in ~/.bashrc. zsh: "
                                              "what orvane completion zsh prints, in a folder of "
                                              "$fpath, as _orvane. fish: orvane completion fish > "
                                              "~/.config/fish/completions/orvane.fish.");
    tree.onRunPlain(completionCommand,
                    [shell](const CommandTree &whole) { return completion(whole, *shell); });
}

} // namespace orvane
