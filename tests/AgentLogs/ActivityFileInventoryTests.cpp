// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityFileInventory.h"

#include <QTemporaryDir>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class ActivityFileInventoryTest : public testing::Test {
protected:
    void write(const std::string &path, std::string_view text = "{}\n")
    {
        fs::create_directories((root() / path).parent_path());
        std::ofstream(root() / path) << text;
    }
    void link(const std::string &target, const std::string &path)
    {
        fs::create_symlink(root() / target, root() / path);
    }
    fs::path root() const { return m_folder.path().toStdString(); }

    Texts found(AgentSource source = AgentSource::claude, const std::string &folder = ".")
    {
        Texts names;
        for (const auto &file : inventory.files(AgentLogFormat::of(source), (root() / folder).string()))
            names.push_back(fs::path(file.url).lexically_relative(root() / folder).string());
        return names;
    }
    /// How many folders are listed to answer.
    std::int64_t listings()
    {
        const std::int64_t before = inventory.listings();
        found();
        return inventory.listings() - before;
    }
    /// Does something in a folder until its times show it.
    template <class Change>
    void changing(const std::string &folder, const Change &change)
    {
        const auto before = ActivityFileStamp::of((root() / folder).string());
        change();
        while (ActivityFileStamp::of((root() / folder).string()) == before) {
            write(folder + "/passing");
            fs::remove(root() / folder / "passing");
        }
    }

    /// Nothing is fresh for a clock that is ahead.
    ActivityFileInventory inventory{[] { return std::int64_t{std::time(nullptr)} + 60; }};

private:
    QTemporaryDir m_folder;
};

TEST_F(ActivityFileInventoryTest, FindsEachAgentsLogsByNameAndDepth)
{
    for (const std::string path :
         {"top.jsonl", "events.jsonl", "rollout-0.jsonl", "p/s.jsonl", "p/events.jsonl", "p.q/s.jsonl",
          "p/s/subagents/agent-1.jsonl", "p/rollout-1.json", "p/notes.txt", "p/.jsonl",
          "2026/04/30/rollout-2.jsonl", "2026/04/30/events.jsonl", "p/x.jsonl/in.jsonl"})
        write(path);
    fs::create_directory(root() / "q");
    EXPECT_EQ(::mkfifo((root() / "q/events.jsonl").c_str(), 0600), 0);
    EXPECT_EQ(found(),
              (Texts{"2026/04/30/events.jsonl", "2026/04/30/rollout-2.jsonl", "events.jsonl", "p.q/s.jsonl",
                     "p/.jsonl", "p/events.jsonl", "p/s.jsonl", "p/s/subagents/agent-1.jsonl",
                     "p/x.jsonl/in.jsonl", "rollout-0.jsonl", "top.jsonl"}));
    inventory.clear();
    EXPECT_EQ(found(AgentSource::codex), (Texts{"2026/04/30/rollout-2.jsonl", "rollout-0.jsonl"}));
    inventory.clear();
    EXPECT_EQ(found(AgentSource::copilot), (Texts{"p/events.jsonl"}));
    EXPECT_EQ(found(AgentSource::claude, "no such folder"), Texts{});
    EXPECT_EQ(found(AgentSource::claude, "top.jsonl"), Texts{});
}

TEST_F(ActivityFileInventoryTest, ListsAFolderAgainOnlyWhenItChanged)
{
    write("p/a.jsonl");
    write("q/b.jsonl");
    EXPECT_EQ(listings(), 3);
    EXPECT_EQ(listings(), 0);
    write("p/a.jsonl", "{}\n{}\n");
    EXPECT_EQ(listings(), 0) << "what stands in a file is no matter of its folder's";
    EXPECT_EQ(
        inventory.files(AgentLogFormat::of(AgentSource::claude), (root() / ".").string()).front().stamp.size,
        6);
    changing("p", [&] { write("p/c.jsonl"); });
    EXPECT_EQ(listings(), 1);
    changing("q", [&] { fs::remove(root() / "q/b.jsonl"); });
    EXPECT_EQ(found(), (Texts{"p/a.jsonl", "p/c.jsonl"}));
    changing(".", [&] {
        fs::remove_all(root() / "p");
        write("p", "a file now");
    });
    EXPECT_EQ(found(), Texts{});
    changing(".", [&] {
        fs::remove(root() / "p");
        write("p/a.jsonl");
    });
    EXPECT_EQ(found(), (Texts{"p/a.jsonl"}));
}

TEST_F(ActivityFileInventoryTest, DoesNotTrustAFolderThatChangedJustNow)
{
    // Within the grain of the file system's clock two changes have one time.
    inventory = ActivityFileInventory([] { return std::int64_t{std::time(nullptr)}; });
    write("p/a.jsonl");
    EXPECT_EQ(listings(), 2);
    EXPECT_EQ(listings(), 2);
    inventory = ActivityFileInventory([] { return std::int64_t{0}; });
    EXPECT_EQ(listings(), 2);
    EXPECT_EQ(listings(), 2) << "a clock that was set back";
}

TEST_F(ActivityFileInventoryTest, FollowsLinksButNotInCircles)
{
    write("real/p/a.jsonl");
    fs::create_directory(root() / "logs");
    link("real/p", "logs/p");
    link("real/p/a.jsonl", "logs/b.jsonl");
    link("nowhere", "logs/c.jsonl");
    link("logs", "logs/round");
    link("logs/self", "logs/self");
    link("logs", "real/p/back");
    EXPECT_EQ(found(AgentSource::claude, "logs"), (Texts{"b.jsonl", "p/a.jsonl"}));
}

TEST_F(ActivityFileInventoryTest, GoesThroughAMazeOfLinksInNoTime)
{
    // Each of thirty folders has two links to the next: a billion ways.
    for (int i = 0; i < 30; ++i) {
        const std::string folder = "m" + std::to_string(i);
        write(folder + "/a.jsonl");
        link("m" + std::to_string((i + 1) % 30), folder + "/x");
        link("m" + std::to_string((i + 1) % 30), folder + "/y");
    }
    EXPECT_EQ(found(AgentSource::claude, "m0").size(), 30U);
}

TEST_F(ActivityFileInventoryTest, GoesNoDeeperThanAHundredLevels)
{
    std::string deep = "d";
    for (int i = 0; i < 120; ++i) {
        write(deep + "/a.jsonl");
        deep += "/d";
    }
    EXPECT_EQ(found().size(), 100U);
}

} // namespace
} // namespace orvane
