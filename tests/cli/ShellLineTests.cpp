// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/ShellLine.h"

#include "support/CommandRun.h"

#include <QDir>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::ElementsAre;
using Quote = ShellWord::Quote;

std::vector<std::string> texts(std::string_view line, Shell shell)
{
    std::vector<std::string> texts;
    for (const ShellWord &word : shellWords(line, shell))
        texts.push_back(word.text);
    return texts;
}

TEST(ShellLine, DividesWordsAsTheShellDoes)
{
    for (const Shell shell : {Shell::bash, Shell::zsh, Shell::fish}) {
        EXPECT_THAT(texts(R"(orvane start  Fix\ it "a 'b" 'c "d' x"y z"'w' "Fix @We)", shell),
                    ElementsAre("orvane", "start", "Fix it", "a 'b", "c \"d", "xy zw", "Fix @We"));
        EXPECT_THAT(texts("orvane start ", shell), ElementsAre("orvane", "start", ""));
        EXPECT_THAT(texts("", shell), ElementsAre(""));
        EXPECT_THAT(texts(R"("\"\$\\" '' x\)", shell), ElementsAre("\"$\\", "", "x"));
    }
    EXPECT_THAT(texts(R"('it\'s' x)", Shell::fish), ElementsAre("it's", "x"));
    EXPECT_THAT(texts(R"('it'\''s' $'don\'t' x)", Shell::bash), ElementsAre("it's", "don't", "x"));
}

TEST(ShellLine, KnowsWhatOnlyTheShellCanTell)
{
    const std::string home = std::getenv("HOME");
    EXPECT_THAT(texts("~/a \"$HOME/b\" ${HOME}/c ~root '$HOME' \"~\"", Shell::bash),
                ElementsAre(home + "/a", home + "/b", home + "/c", "~root", "$HOME", "~"));
    const auto last = [](std::string_view line) { return shellWords(line, Shell::zsh).back(); };
    EXPECT_TRUE(last("x $HOME").isExpanded);
    EXPECT_FALSE(last("x $HOME").isOpaque);
    for (const char *line : {"$ORVANE_NOT_THERE/x", "$(pwd)", "\"`pwd`/x", "${HOME:-x}", "$'\\x41"})
        EXPECT_TRUE(last(line).isOpaque) << line;
    EXPECT_FALSE(last("'$(touch P)").isOpaque);
    EXPECT_FALSE(last("\"9-10 $").isExpanded);
}

/// What programs get to see of a typed word, and what the word did beside that.
std::string seenThroughBash(const std::string &typed)
{
    const QTemporaryDir folder;
    const CommandRun run = runProgram(
        "bash", {"--norc", "-c", "cd \"$0\"; set -H; printf '%s|' " + typed, folder.path().toStdString()});
    EXPECT_TRUE(QDir(folder.path()).isEmpty()) << typed << " did something";
    EXPECT_EQ(run.errors, "") << typed;
    return run.output;
}

TEST(ShellLine, BashTakesQuotedNamesLetterByLetter)
{
    for (const std::string name : {"x;touch${IFS}P",
                                   "$(touch P)",
                                   "`touch P`",
                                   "it's \"so\"",
                                   "-dash",
                                   "a&touch P&",
                                   "*",
                                   "~",
                                   "!x !",
                                   "a\\b",
                                   "{a,b}",
                                   "#x",
                                   "[x]?",
                                   "a|b>P<c",
                                   "=x",
                                   "\u00E9\u4E16",
                                   "a!",
                                   "\"",
                                   "'",
                                   "\\",
                                   "$",
                                   "%x",
                                   "a b"}) {
        EXPECT_EQ(seenThroughBash(typedForBash(name, Quote::none)), name + "|");
        EXPECT_EQ(seenThroughBash("\"" + typedForBash(name, Quote::dual) + "\""), name + "|");
        EXPECT_EQ(seenThroughBash("'" + typedForBash(name, Quote::single) + "'"), name + "|");
    }
    // Inside double quotes an interactive bash would look a "!" up even behind a backslash.
    EXPECT_EQ(typedForBash("a!b", Quote::dual), "a\"\\!\"b");
}

TEST(ShellLine, RepliesToBashForThePartThatItReplaces)
{
    const auto reply = [](std::string_view line, std::string_view replaced, std::string_view text,
                          std::size_t kept) {
        return bashReply(shellWords(line, Shell::bash).back(), replaced, text, kept).value_or("none");
    };
    EXPECT_EQ(reply("o @We", "@We", "@R&D", 0), "@R\\&D");
    EXPECT_EQ(reply("o @We", "We", "@Web", 0), "Web") << "where the sign divides words";
    EXPECT_EQ(reply("o \"Fix $HOME @We", "Fix $HOME @We", "Fix " + std::string(std::getenv("HOME")) + " @Web",
                    shellWords("o \"Fix $HOME @We", Shell::bash).back().text.size() - 3),
              "Fix $HOME @Web")
        << "what was typed before stays as it is";
    EXPECT_EQ(reply("o Fix\\ @We", "@We", "Fix @a b", 4), "@a\\ b");
    EXPECT_EQ(reply("o @\"We", "We", "@Web", 0), "Web");
    EXPECT_EQ(reply("o @a:b", "b", "@a:bc", 0), "bc");
    EXPECT_EQ(reply("o @A:b", "b", "@a:bc", 0), "none") << "the beginning cannot be changed any more";
    EXPECT_EQ(reply("o @We", "other", "@Web", 0), "none");
    // Bash closes the quote, but not behind one.
    EXPECT_EQ(reply("o \"@We", "@We", "@x!", 0), "@x\"\\!\"\"");
    EXPECT_EQ(reply("o '@We", "@We", "@x'", 0), "@x'\\'''");
}

} // namespace
} // namespace orvane
