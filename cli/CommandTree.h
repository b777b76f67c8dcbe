// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// Whether a failure is written as such or as an outcome that carries it.
enum class FailureForm { error, outcome };

/// The command's language: the global options, which it has from the start, and the sub-commands that are
/// added with their options and what each of them does. Help, completions and parsing all come out of this
/// one tree.
class CommandTree {
public:
    /// Runs with an event loop; may open the account.
    using Handler = std::function<CommandTask(Context)>;
    /// Needs neither event loop nor account.
    using PlainHandler = std::function<CommandResult(const CommandTree &)>;

    struct Action {
        Handler handler;
        PlainHandler plain;
        FailureForm failureForm = FailureForm::error;
    };

    CommandTree();
    CommandTree(const CommandTree &) = delete;
    CommandTree &operator=(const CommandTree &) = delete;

    CLI::App &root() { return m_root; }
    const CLI::App &root() const { return m_root; }
    const GlobalOptions &options() const { return m_options; }

    /// A command of a group of the help text; a verb of a command has none.
    CLI::App *add(const std::string &name, const std::string &description, const std::string &group);
    static CLI::App *addVerb(CLI::App *command, const std::string &name, const std::string &description);
    void onRun(const CLI::App *command, Handler handler, FailureForm failureForm = FailureForm::error);
    void onRunPlain(const CLI::App *command, PlainHandler handler);

    /// An option or (without dashes) an argument with one value; `target` outlives the tree's use.
    static CLI::Option *addText(CLI::App *command, const std::string &name,
                                std::optional<std::string> &target, const std::string &type,
                                const std::string &description);
    static CLI::Option *addRequired(CLI::App *command, const std::string &name, std::string &target,
                                    const std::string &description);
    /// An option that may be given several times, one value each time.
    static CLI::Option *addTexts(CLI::App *command, const std::string &name, std::vector<std::string> &target,
                                 const std::string &type, const std::string &description);
    /// The values of an option as they were typed, for one that is added without the calls above.
    static std::vector<std::string> asTyped(std::vector<std::string> values);
    /// All remaining words, as one text with single spaces.
    static CLI::Option *addSentence(CLI::App *command, const std::string &name,
                                    std::optional<std::string> &target, const std::string &description);

    /// Reads the arguments (without the program's name). The error is a usage failure.
    Result<std::monostate, CommandFailure> parse(std::vector<std::string> arguments);
    /// The command that was parsed last, the root when none was named.
    const CLI::App *chosen() const;
    const Action &action() const;
    bool wantsHelp() const { return m_wantsHelp; }
    bool wantsVersion() const { return m_wantsVersion; }

    /// Every command's options, verbs and groups in order; skips what is hidden.
    static std::vector<const CLI::App *> commandsOf(const CLI::App *parent);

private:
    void addGlobalOptions();
    std::vector<std::string> prepared(const std::vector<std::string> &arguments) const;
    Result<std::monostate, CommandFailure> checkGlobalOptions();

    CLI::App m_root;
    GlobalOptions m_options;
    std::optional<std::string> m_homeFolder;
    std::optional<std::string> m_fixturesFolder;
    std::optional<std::string> m_dataFolder;
    bool m_wantsHelp = false;
    bool m_wantsVersion = false;
    std::map<const CLI::App *, Action> m_actions;
};

} // namespace orvane
