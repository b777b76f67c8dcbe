// SPDX-License-Identifier: GPL-3.0-or-later
#include "Repositories/ActivityRepositoryResolver.h"

#include <QProcess>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvane {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// A folder with repositories that git makes, and a resolver whose home it is.
class ActivityRepositoryResolverTest : public testing::Test {
protected:
    std::string path(const std::string &name = "") const
    {
        // Temporary folders are links on some systems, and git writes what they lead to.
        return std::filesystem::canonical(m_folder.path().toStdString()).string() +
               (name.empty() ? "" : "/") + name;
    }

    void git(const std::string &folder, const QStringList &arguments) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_folder.path());
        environment.insert(QStringLiteral("GIT_CONFIG_NOSYSTEM"), QStringLiteral("1"));
        for (const char *who :
             {"GIT_AUTHOR_NAME", "GIT_AUTHOR_EMAIL", "GIT_COMMITTER_NAME", "GIT_COMMITTER_EMAIL"})
            environment.insert(QString::fromLatin1(who), QStringLiteral("somebody"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(QString::fromStdString(path(folder)));
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("git"),
                      QStringList{QStringLiteral("-c"), QStringLiteral("protocol.file.allow=always"),
                                  QStringLiteral("-c"), QStringLiteral("init.defaultBranch=main")} +
                          arguments);
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
    }
    void git(const std::string &folder, const char *arguments) const
    {
        git(folder, QString::fromUtf8(arguments).split(QLatin1Char(' ')));
    }

    /// A repository with one commit and an address as its origin.
    void makeRepository(const std::string &name, const char *origin = "git@example.com:acme/web.git") const
    {
        git("", ("init -q " + name).c_str());
        git(name, "commit -q --allow-empty -m start");
        if (*origin != '\0')
            git(name, {QStringLiteral("remote"), QStringLiteral("add"), QStringLiteral("origin"),
                       QString::fromUtf8(origin)});
    }

    void write(const std::string &name, const std::string &text) const
    {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << text;
    }

    ActivityRepositoryResolver::Resolution resolve(const std::string &name) const
    {
        return ActivityRepositoryResolver(path()).resolve(path(name));
    }
    ActivityRepository repository(const std::string &name) const { return *resolve(name).repository; }

    /// What resolving gives for a tree whose origin cannot be read.
    void expectBareTree(const std::string &name) const
    {
        const ActivityRepository found = repository(name);
        EXPECT_EQ(found.key, path(name));
        EXPECT_TRUE(found.isRepository) << name;
        EXPECT_EQ(found.origin, "") << name;
        EXPECT_TRUE(found.identity.starts_with("path:")) << name;
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(ActivityRepositoryResolverTest, FindsTheTreeOfAFolderInIt)
{
    makeRepository("web");
    const auto resolution = resolve("web/src/../src/./deep//");
    EXPECT_EQ(*resolution.repository, (ActivityRepository{.key = path("web"),
                                                          .name = "web",
                                                          .origin = "git@example.com:acme/web.git",
                                                          .isRepository = true,
                                                          .identity = "origin:example.com/acme/web"}));
    EXPECT_THAT(resolution.dependencies, ElementsAre(path("web/.git"), path("web/.git/config")));
    EXPECT_THAT(resolution.missing, ElementsAre(path("web/src/deep/.git"), path("web/src/.git")));
    EXPECT_EQ(ActivityRepositoryResolver(path()).resolve("web/src").repository->key, path("web"));
}

TEST_F(ActivityRepositoryResolverTest, ReadsAddressesAsGitWroteThem)
{
    for (const char *origin : {"https://example.com/a;b#c", "C:\\repos\\web", " spaced \"out\" ",
                               "ssh://git@example.com:22/web"}) {
        makeRepository("odd", origin);
        EXPECT_EQ(repository("odd").origin, origin);
        std::filesystem::remove_all(path("odd"));
    }
}

TEST_F(ActivityRepositoryResolverTest, TakesAllWorktreesForOneRepository)
{
    makeRepository("web");
    git("web", "worktree add -q ../other/side");
    const auto resolution = resolve("other/side/src");
    EXPECT_EQ(*resolution.repository, repository("web"));
    EXPECT_THAT(resolution.dependencies,
                ElementsAre(path("other/side/.git"), path("web/.git/worktrees/side/commondir"),
                            path("web/.git/config")));

    // The same with a relative link, and when the folder is reached through a symbolic one.
    write("other/side/.git", "gitdir: ../../web/.git/worktrees/side\n");
    std::filesystem::create_directory_symlink(path("other/side"), path("short"));
    EXPECT_EQ(repository("other/side"), repository("web"));
    EXPECT_EQ(repository("short"), repository("web"));

    // Without the main tree nothing tells the repository.
    std::filesystem::remove_all(path("web"));
    expectBareTree("other/side");
    EXPECT_THAT(resolve("other/side").missing, Contains(path("web/.git/worktrees/side/commondir")));
}

TEST_F(ActivityRepositoryResolverTest, TakesWorktreesOfABareRepositoryTogether)
{
    makeRepository("web");
    git("", "clone -q --bare web bare.git");
    git("", "clone -q --bare web all/.bare");
    for (const char *tree : {"one", "two"}) {
        git("bare.git", (std::string("worktree add -q ../") + tree).c_str());
        EXPECT_EQ(repository(tree).key, path("bare.git"));
        EXPECT_EQ(repository(tree).origin, path("web"));
        EXPECT_TRUE(repository(tree).identity.starts_with("path:"));
    }
    git("all/.bare", "worktree add -q ../three");
    EXPECT_EQ(repository("all/three").key, path("all"));
    EXPECT_EQ(repository("all/three").name, "all");
}

TEST_F(ActivityRepositoryResolverTest, TakesSubmodulesAndTreesWithTheirGitElsewhereForThemselves)
{
    makeRepository("library");
    makeRepository("web");
    git("web", {QStringLiteral("submodule"), QStringLiteral("--quiet"), QStringLiteral("add"),
                QString::fromStdString(path("library")), QStringLiteral("parts/library")});
    EXPECT_EQ(repository("web/parts/library/src").key, path("web/parts/library"));
    EXPECT_EQ(repository("web/parts/library").name, "library");
    EXPECT_EQ(repository("web/parts/library").origin, path("library"));
    EXPECT_EQ(repository("web/parts").key, path("web"));

    git("", "clone -q --separate-git-dir=store library apart");
    EXPECT_EQ(repository("apart").key, path("apart"));
    EXPECT_EQ(repository("apart").origin, path("library"));
}

TEST_F(ActivityRepositoryResolverTest, GivesFoldersOutsideOfTreesAsTheyAre)
{
    const auto resolution = resolve("gone/deep");
    EXPECT_EQ(resolution.repository->key, path("gone/deep"));
    EXPECT_EQ(resolution.repository->name, "deep");
    EXPECT_FALSE(resolution.repository->isRepository);
    EXPECT_EQ(resolution.repository->identity.size(), 5U + 32U);
    EXPECT_EQ(*resolution.repository, repository("gone/./deep/"));
    EXPECT_THAT(resolution.missing, Contains(path("gone/.git")));
    EXPECT_THAT(resolution.dependencies, IsEmpty());

    const ActivityRepositoryResolver resolver("/nowhere/home/");
    EXPECT_EQ(resolver.resolve("").repository->key, "/nowhere/home");
    EXPECT_EQ(resolver.resolve("../../../..").repository->key, "/");
    EXPECT_EQ(resolver.resolve("/").repository->name, "/");
    EXPECT_EQ(resolver.resolve(std::string("/a\0b", 4)).repository->isRepository, false);
    // Each of its parents is not a path that is worth noting.
    std::string deepest;
    for (int i = 0; i < 100'000; ++i)
        deepest += "/ab";
    EXPECT_LT(resolver.resolve(deepest).missing.size(), 2'000U);
}

TEST_F(ActivityRepositoryResolverTest, GathersScratchFolders)
{
    const std::string agentFolder = "Library/Application Support/Claude/";
    const ActivityRepository scratch = repository(agentFolder + "Scratchpads/7/x");
    EXPECT_EQ(scratch, repository(agentFolder + "x/scratch"));
    EXPECT_EQ(scratch.key, path(agentFolder + "scratch"));
    EXPECT_EQ(scratch.name, "Scratch");
    EXPECT_FALSE(scratch.isRepository);
    EXPECT_EQ(repository(agentFolder + "other").name, "other");
    EXPECT_EQ(repository(agentFolder + "../scratch").name, "scratch");
}

TEST_F(ActivityRepositoryResolverTest, FallsBackWhereGitFilesMakeNoSense)
{
    const std::string secret = "[remote \"origin\"]\n\turl = https://example.com/secret\n";
    write("secret", secret);
    for (const std::string &text : {std::string(), std::string("gitdir:"), std::string("gitdir: \n/x"),
                                    "gitdir: " + std::string(10'000, 'x'), std::string("gitdir: x\0y", 11),
                                    std::string("gitdir: ../secret"), std::string("gitdir: ."),
                                    std::string("gitdir: .git"), std::string(3'000'000, 'x')}) {
        write("odd/.git", text);
        expectBareTree("odd");
    }
    // A shared folder that leads back here or nowhere.
    write("odd/.git", "gitdir: store\n");
    for (const char *common : {"", "gone", "../store/config"}) {
        write("odd/store/commondir", common);
        expectBareTree("odd");
    }
    // Neither a file nor a folder: the search goes on above.
    makeRepository("web");
    std::filesystem::create_directory(path("web/pipe"));
    ASSERT_EQ(::mkfifo(path("web/pipe/.git").c_str(), 0600), 0);
    EXPECT_EQ(repository("web/pipe").key, path("web"));
}

TEST_F(ActivityRepositoryResolverTest, ReadsNoOtherKindOfFile)
{
    makeRepository("web");
    const std::string config = path("web/.git/config");
    // A link to a file of the same name is fine: some tools share a configuration in this way.
    std::filesystem::rename(config, path("config"));
    std::filesystem::create_symlink(path("config"), config);
    EXPECT_EQ(repository("web").origin, "git@example.com:acme/web.git");

    std::filesystem::rename(path("config"), path("notes"));
    const auto replaceConfig = [&](const char *target) {
        std::filesystem::remove(config);
        std::filesystem::create_symlink(target, config);
    };
    replaceConfig(path("notes").c_str());
    expectBareTree("web");
    replaceConfig("/dev/zero");
    expectBareTree("web");
    replaceConfig(config.c_str());
    expectBareTree("web");
    std::filesystem::remove(config);
    ASSERT_EQ(::mkfifo(config.c_str(), 0600), 0);
    expectBareTree("web");

    // Of a very long one the first MiB counts, but not a line that it cuts in two.
    std::filesystem::remove(config);
    const std::string section = "[remote \"origin\"]\n\turl = ";
    write("web/.git/config", section + "https://example.com/a\n" + std::string(3'000'000, '#'));
    EXPECT_EQ(repository("web").origin, "https://example.com/a");
    write("web/.git/config", section + std::string(3'000'000, 'a'));
    expectBareTree("web");
}

} // namespace
} // namespace orvane
