// SPDX-License-Identifier: GPL-3.0-or-later
// The completions in the real shells, each on a terminal of its own, with names that would like to run.
#include "support/CommandRun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

struct LiveShell {
    const char *name;
    const char *call;
    const char *load; ///< reads the completions from the file that follows
};

class ShellCompletion : public testing::TestWithParam<LiveShell> {
protected:
    ShellCompletion()
    {
        const std::string script = installation.run({"completion", GetParam().name}).output;
        QFile file(QString::fromStdString(folder() + "/completions"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(script.data(), static_cast<qint64>(script.size()));
        EXPECT_TRUE(QDir(home.path()).mkdir(QStringLiteral("work")));
    }

    std::string folder() const { return home.path().toStdString(); }

    /// Types the lines into a shell that stands in an empty folder, and answers all that was shown.
    std::string typed(const std::string &lines) const
    {
        const std::string program =
            QFileInfo(QString::fromStdString(builtProgram("orvane"))).path().toStdString();
        const Environment environment{{"PATH", program + ":" + std::getenv("PATH")},
                                      {"HOME", folder()},
                                      {"TERM", "dumb"},
                                      {"LC_ALL", "C.UTF-8"}};
        const CommandRun run =
            runProgram("script", {"-qec", "cd " + folder() + "/work && exec " + GetParam().call, "/dev/null"},
                       environment, GetParam().load + folder() + "/completions\n" + lines + "exit\n");
        return run.all();
    }

    /// The call of a command whose words follow.
    std::string parse(const std::string &dataFolder) const
    {
        return "orvane --data-dir " + dataFolder + " parse --json ";
    }

    std::string made(const Arguments &arguments) const
    {
        return installation.json(arguments).object()[QStringLiteral("id")].toString().toStdString();
    }

    static std::size_t count(const std::string &text, const std::string &part)
    {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++count;
        return count;
    }

    TestInstallation installation;
    QTemporaryDir home;
};

TEST_P(ShellCompletion, PutsNamesInLetterByLetter)
{
    const std::string project =
        made({"projects", "add", "--", "x;touch${IFS}P&'\"$(touch P)`touch P`!*~\\{a,b}#|<P>"});
    ASSERT_NE(project, "");
    const std::string start = parse(installation.folder());
    const std::string shown = typed(start + "@\t\n" + start + "\"Fix @\t\n" + start + "'Fix @\t\n");
    EXPECT_EQ(count(shown, "\"projectId\":\"" + project + "\""), 3U) << shown;
    EXPECT_TRUE(QDir(home.path() + QStringLiteral("/work")).isEmpty()) << "a part of the name ran";
}

TEST_P(ShellCompletion, GoesOnFromWhatWasTyped)
{
    const std::string site = made({"projects", "add", "Website"});
    const std::string task = made({"tasks", "add", "Website", "Design"});
    const std::string tag = made({"tags", "add", "deep-work"});
    made({"tags", "add", "code-desk"});
    const std::string start = parse(installation.folder());
    const std::string shown =
        typed(start + "@We\t\n" + start + "\"Fix #de\t\n" + start + "Fix @web/De\t\n" + start + "'@We\t\n");
    EXPECT_EQ(count(shown, "\"projectId\":\"" + site + "\""), 3U) << shown;
    EXPECT_EQ(count(shown, "\"taskId\":\"" + task + "\""), 1U) << shown;
    EXPECT_EQ(count(shown, "\"tagIds\":[\"" + tag + "\"]"), 1U) << shown;
}

INSTANTIATE_TEST_SUITE_P(Shells, ShellCompletion,
                         testing::Values(LiveShell{"bash", "bash --norc --noprofile -i", "source "},
                                         LiveShell{"zsh", "zsh -f -i",
                                                   "autoload -U compinit; compinit -u -D; source "},
                                         LiveShell{"fish", "fish --no-config -i", "source "}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(CompleteWord, AsksWhatTheTypedLineNames)
{
    const TestInstallation installation;
    ASSERT_EQ(installation.run({"projects", "add", "Here"}).exitStatus, 0);
    const TestInstallation other;
    ASSERT_EQ(other.run({"projects", "add", "There"}).exitStatus, 0);
    const auto offered = [&installation](const std::string &line) {
        return installation.run({"complete-word", "--shell", "zsh", "--", line}).output;
    };
    EXPECT_EQ(offered("orvane start @"), "@Here\n");
    EXPECT_EQ(offered("orvane --data-dir " + other.folder() + " start @"), "@There\n");
    EXPECT_EQ(offered("orvane start --data-dir='" + other.folder() + "' x @"), "@There\n");
    EXPECT_EQ(offered("orvane --server http://127.0.0.1:9 start @"), "") << "nobody is signed in there";
    EXPECT_EQ(offered("orvane --data-dir \"$(pwd)\" start @"), "") << "only the shell can tell which";

    // It neither makes an installation nor starts a server.
    const std::string missing = installation.folder() + "/missing";
    EXPECT_EQ(offered("orvane --data-dir " + missing + " start @"), "");
    EXPECT_FALSE(QDir(QString::fromStdString(missing)).exists());
    ASSERT_TRUE(other.killServer());
    EXPECT_EQ(offered("orvane --data-dir " + other.folder() + " start @"), "@There\n");
    EXPECT_FALSE(other.hello());
}

} // namespace
} // namespace orvane
