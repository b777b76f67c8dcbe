// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandTree.h"

#include "Commands/Commands.h"
#include "CompletionScript.h"
#include "HelpText.h"
#include "support/CommandRun.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::HasSubstr;

struct WholeTree : CommandTree {
    WholeTree() { addCommands(*this); }
};

std::string usageError(std::vector<std::string> arguments)
{
    WholeTree tree;
    const auto parsed = tree.parse(std::move(arguments));
    if (parsed)
        return {};
    EXPECT_EQ(parsed.error().exitStatus, ExitStatus::usage);
    return parsed.error().message;
}

TEST(CommandTree, TakesGlobalOptionsBeforeAndAfterTheCommand)
{
    WholeTree tree;
    ASSERT_TRUE(tree.parse({"--json", "list", "--zone", "Europe/Paris", "--no-start-server", "--server",
                            "https://time.example.com/"}));
    EXPECT_EQ(tree.chosen()->get_name(), "list");
    EXPECT_TRUE(tree.options().json);
    EXPECT_FALSE(tree.options().startsServer);
    EXPECT_EQ(tree.options().zone, "Europe/Paris");
    EXPECT_EQ(tree.options().server, "https://time.example.com");
    WholeTree nothing;
    ASSERT_TRUE(nothing.parse({}));
    EXPECT_EQ(nothing.chosen(), &nothing.root());
}

TEST(CommandTree, RefusesWhatItDoesNotUnderstand)
{
    EXPECT_EQ(usageError({"--zone", "UTC", "fly", "high"}),
              "There is no command \"fly\". See: orvane --help");
    EXPECT_EQ(usageError({"undo", "all"}), "orvane undo does not take \"all\". See: orvane undo --help");
    EXPECT_EQ(usageError({"list", "--wek", "today"}),
              "orvane list has no option \"--wek\". Did you mean \"--week\"? See: orvane list --help");
    EXPECT_EQ(usageError({"projects", "rename", "x"}),
              "orvane projects has no command \"rename\". See: orvane projects --help");
    EXPECT_EQ(usageError({"undo", "[all]"}), "orvane undo does not take \"[all]\". See: orvane undo --help");
    EXPECT_EQ(usageError({"edit"}), "ID is required. See: orvane edit --help");
    EXPECT_THAT(usageError({"outbox", "keep-mine", "three"}), HasSubstr("SEQ"));
    EXPECT_NE(usageError({"start", "--billable", "--no-billable", "x"}), "");
    EXPECT_EQ(usageError({"list", "--day"}), "--day needs a value. See: orvane list --help");
    EXPECT_EQ(usageError({"list", "--day", "today", "--week"}),
              "--day and --week do not go together. See: orvane list --help");
    EXPECT_NE(usageError({"status", "list"}), "");
    EXPECT_THAT(usageError({"--server", "example.com"}), HasSubstr("--server"));
    EXPECT_THAT(usageError({"--server", "ftp://example.com"}), HasSubstr("--server"));
    EXPECT_THAT(usageError({"--zone", "Mars/Olympus"}), HasSubstr("--zone"));
    EXPECT_THAT(usageError({"--home", "/no/such/folder"}), HasSubstr("--home"));
    EXPECT_THAT(usageError({"--fixtures", "/no/such/folder"}), HasSubstr("--fixtures"));
    EXPECT_THAT(usageError({"--data-dir", ""}), HasSubstr("--data-dir"));
}

TEST(CommandTree, SaysWhatWasProbablyMeant)
{
    const auto meant = [](std::vector<std::string> arguments) {
        const std::string message = usageError(std::move(arguments));
        const std::size_t begin = message.find("Did you mean \"");
        return begin == std::string::npos ? "" : message.substr(begin + 14, message.find("\"?") - begin - 14);
    };
    EXPECT_EQ(meant({"statsu"}), "status");
    EXPECT_EQ(meant({"strat", "Write", "the", "README"}), "start");
    EXPECT_EQ(meant({"projects", "archvie", "x"}), "archive");
    EXPECT_EQ(meant({"list", "--jsno"}), "--json");
    EXPECT_EQ(meant({"add", "x", "--descripton=y"}), "--description");
    EXPECT_EQ(meant({"complete-wrd"}), "") << "it is for the scripts";
    EXPECT_EQ(meant({"fly"}), "");
    EXPECT_EQ(meant({"list", "--"}), "");
}

TEST(CommandTree, AWordWithSpacesIsASentenceWhateverItBeginsWith)
{
    for (const char *sentence : {"-h meeting 9-10", "--foo bar 15m", "--help me 15m", "--json=x y",
                                 "-- x 15m", "-\u00A0x", "--not a=b"}) {
        WholeTree tree;
        ASSERT_TRUE(tree.parse({"help", sentence, "--zone", "UTC"})) << sentence;
        EXPECT_FALSE(tree.wantsHelp()) << sentence;
        EXPECT_FALSE(tree.options().json) << sentence;
        EXPECT_EQ(tree.options().zone, "UTC");
    }
    // An option's value is one too, beside its name or in the same word.
    for (const std::vector<std::string> &call :
         std::vector<std::vector<std::string>>{{"start", "--description", "-h meeting"},
                                               {"start", "--description=Fix it", "--tag=deep work"}}) {
        WholeTree tree;
        ASSERT_TRUE(tree.parse(call));
        EXPECT_FALSE(tree.wantsHelp());
    }
    WholeTree help;
    ASSERT_TRUE(help.parse({"add", "-h"}));
    EXPECT_TRUE(help.wantsHelp());
    EXPECT_THAT(usageError({"add", "--foo", "bar"}), HasSubstr("has no option \"--foo\""));
}

TEST(CommandTree, EveryCommandHasAnActionAndAHelpText)
{
    WholeTree tree;
    std::vector<const CLI::App *> commands{&tree.root()};
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const std::string help = HelpText().make_help(commands[i], {}, CLI::AppFormatMode::Normal);
        EXPECT_THAT(help, HasSubstr("Usage: " + callOf(commands[i])));
        std::vector<std::string> call;
        for (const CLI::App *app = commands[i]; app->get_parent(); app = app->get_parent())
            call.insert(call.begin(), app->get_name());
        for (const CLI::Option *option : commands[i]->get_options()) {
            if (option->get_positional() && option->get_required())
                call.emplace_back("1");
        }
        WholeTree parsed;
        EXPECT_TRUE(parsed.parse(call)) << callOf(commands[i]);
        EXPECT_TRUE(parsed.action().handler || parsed.action().plain) << callOf(commands[i]);
        for (const CLI::App *sub : CommandTree::commandsOf(commands[i]))
            commands.push_back(sub);
    }
    EXPECT_GT(commands.size(), 30U);
}

class Completions : public testing::TestWithParam<const char *> {};

TEST_P(Completions, KnowEveryCommandAndOption)
{
    WholeTree tree;
    const auto script = completionScript(tree.root(), GetParam());
    ASSERT_TRUE(script);
    const bool isFish = std::string_view(GetParam()) == "fish";
    std::vector<const CLI::App *> commands{&tree.root()};
    for (std::size_t i = 0; i < commands.size(); ++i) {
        if (i > 0 && commands[i]->get_group().empty())
            continue; // for the scripts themselves
        for (const CLI::Option *option : commands[i]->get_options()) {
            for (const std::string &name : option->get_lnames())
                EXPECT_THAT(*script, HasSubstr((isFish ? "-l " : "--") + name));
        }
        for (const CLI::App *sub : CommandTree::commandsOf(commands[i])) {
            EXPECT_THAT(*script, HasSubstr(sub->get_name()));
            commands.push_back(sub);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shells, Completions, testing::Values("bash", "zsh", "fish"));

TEST(Completions, DescribeInWholeWords)
{
    const QTemporaryDir folder;
    WholeTree tree;
    const auto shown = [&](const char *shell, const std::string &before, const std::string &after) {
        const std::string program = before + completionScript(tree.root(), shell).value() + after;
        const std::string option = std::string_view(shell) == "zsh" ? "-f" : "--no-config";
        return runProgram(shell, {option, "-c", program}, {{"HOME", folder.path().toStdString()}}).output;
    };
    EXPECT_THAT(shown("zsh", "compdef() {}\n", "print -rl -- $_orvane_global"),
                HasSubstr("agents' log folders"));
    EXPECT_THAT(shown("fish", "", "complete -C 'orvane --hom'"), HasSubstr("agents' log folders"));
}

/// What bash offers for the words, the last of which is being typed.
std::string offered(const std::string &script, const std::vector<std::string> &words)
{
    std::string program = script + "\nCOMP_WORDS=(";
    for (const std::string &word : words)
        program += "'" + word + "' ";
    program += ")\nCOMP_CWORD=" + std::to_string(words.size() - 1) +
               "\nCOMP_LINE=\"${COMP_WORDS[*]}\"\nCOMP_POINT=${#COMP_LINE}\n"
               "_orvane orvane \"${COMP_WORDS[COMP_CWORD]}\"\nprintf '%s ' \"${COMPREPLY[@]}\"\n";
    return runProgram("bash", {"--norc", "-c", program}).output;
}

TEST(Completions, OfferWhatCanFollow)
{
    WholeTree tree;
    const std::string script = completionScript(tree.root(), "bash").value();
    EXPECT_EQ(offered(script, {"orvane", "sta"}), "status start ");
    EXPECT_EQ(offered(script, {"orvane", "projects", "a"}), "add archive ");
    EXPECT_EQ(offered(script, {"orvane", "--json", "--zone", "list", "outbox", "keep"}),
              "keep-mine keep-theirs ")
        << "the value of an option is no command";
    EXPECT_EQ(offered(script, {"orvane", "start", "--pro"}), "--project ");
    EXPECT_EQ(offered(script, {"orvane", "start", "--js"}), "--json ");
    EXPECT_EQ(offered(script, {"orvane", "start", "--project", "sta"}), " ")
        << "a project's name, which it does not know";

    // Names come from the command, a line each, and nothing in them means anything to the shell.
    const std::string named = "orvane() { printf '%s\\n' '* $(touch P)' \"$*\"; }\n" + script;
    EXPECT_EQ(offered(named, {"orvane", "parse", "#de"}),
              "* $(touch P) complete-word --shell bash --replaced=#de -- orvane parse #de ");
    EXPECT_EQ(offered(named, {"orvane", "list", "#de"}), " ");
}

} // namespace
} // namespace orvane
