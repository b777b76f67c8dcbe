// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The library behind it takes the compiler seconds to read: only what builds help and completions knows it.
namespace CLI {
class App;
class Option;
} // namespace CLI

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
        /// Whether `plain` does it where both are there.
        std::function<bool()> prefersPlain = {};

        bool isPlain() const { return plain && (!handler || prefersPlain()); }
    };

    CommandTree();
    ~CommandTree();
    CommandTree(const CommandTree &) = delete;
    CommandTree &operator=(const CommandTree &) = delete;

    const CLI::App &root() const { return *m_root; }
    const GlobalOptions &options() const { return m_options; }

    /// A command of a group of the help text; a verb of a command has none.
    CLI::App *add(const std::string &name, const std::string &description, const std::string &group);
    static CLI::App *addVerb(CLI::App *command, const std::string &name, const std::string &description);
    /// A sentence more of what the help says below a command's options.
    static void addFooter(CLI::App *command, const std::string &text);
    void onRun(const CLI::App *command, Handler handler, FailureForm failureForm = FailureForm::error);
    void onRunPlain(const CLI::App *command, PlainHandler handler);
    /// Once the arguments are read, `prefersPlain` says whether the plain handler runs instead of the other.
    void onRunPlain(const CLI::App *command, PlainHandler handler, std::function<bool()> prefersPlain);

    /// An option or (without dashes) an argument with one value; `target` outlives the tree's use.
    static CLI::Option *addText(CLI::App *command, const std::string &name,
                                std::optional<std::string> &target, const std::string &type,
                                const std::string &description);
    static void addRequired(CLI::App *command, const std::string &name, std::string &target,
                            const std::string &description);
    static void addRequired(CLI::App *command, const std::string &name, std::int64_t &target,
                            const std::string &description);
    static void addFlag(CLI::App *command, const std::string &name, bool &target,
                        const std::string &description);
    /// Two flags of which one can be given: "--billable" and "--no-billable".
    static void addSwitch(CLI::App *command, const std::string &name, std::optional<bool> &target,
                          const std::string &descriptionOn, const std::string &descriptionOff);
    /// "--day DAY" or "--week [DAY]", which means today without its value.
    static void addDayOrWeek(CLI::App *command, std::optional<std::string> &day,
                             std::optional<std::string> &week);
    /// "--month [DAY]", which means today without its value.
    static CLI::Option *addDay(CLI::App *command, const std::string &name, std::optional<std::string> &target,
                               const std::string &description);
    /// An option that may be given several times, one value each time.
    static void addTexts(CLI::App *command, const std::string &name,
                         std::optional<std::vector<std::string>> &target, const std::string &type,
                         const std::string &description);
    /// All remaining words.
    static void addWords(CLI::App *command, const std::string &name, std::vector<std::string> &target,
                         const std::string &description, bool isRequired = false);
    /// The same as one text with single spaces.
    static void addSentence(CLI::App *command, const std::string &name, std::optional<std::string> &target,
                            const std::string &description, bool isRequired = false);

    /// Reads the arguments (without the program's name). The error is a usage failure.
    Result<std::monostate, CommandFailure> parse(std::vector<std::string> arguments);
    /// The command that was parsed last, the root when none was named.
    const CLI::App *chosen() const;
    const Action &action() const;
    /// The help of the command that was parsed last, in the form that was asked for.
    std::string help() const;
    /// Refuses where nothing says in which folder to keep things: better none than a place of chance.
    Result<std::monostate, CommandFailure> checkPlace() const;
    bool wantsHelp() const { return m_wantsHelp; }
    bool wantsVersion() const { return m_wantsVersion; }

    /// Every command's options, verbs and groups in order; skips what is hidden.
    static std::vector<const CLI::App *> commandsOf(const CLI::App *parent);
    /// What a person may type behind it.
    static std::vector<std::string> namesBelow(const CLI::App *parent);

private:
    void addGlobalOptions();
    std::vector<std::string> prepared(const std::vector<std::string> &arguments) const;
    Result<std::monostate, CommandFailure> checkGlobalOptions();

    std::unique_ptr<CLI::App> m_root;
    GlobalOptions m_options;
    std::optional<std::string> m_homeFolder;
    std::optional<std::string> m_fixturesFolder;
    std::optional<std::string> m_dataFolder;
    bool m_wantsHelp = false;
    bool m_wantsVersion = false;
    std::map<const CLI::App *, Action> m_actions;
};

} // namespace orvane
