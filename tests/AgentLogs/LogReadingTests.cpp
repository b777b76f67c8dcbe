// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/LogReading.h"

#include <QTemporaryDir>
#include <atomic>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane::logreading {
namespace {

/// Many logs of one prompt and some work each.
class LogReadingTest : public ::testing::Test {
protected:
    static constexpr int count = 60;

    void SetUp() override
    {
        for (int i = 0; i < count; ++i) {
            const std::string session = "s" + std::to_string(i);
            files.push_back({m_folder.path().toStdString() + "/" + session + ".jsonl", {}});
            std::ofstream log(files.back().url, std::ios::binary);
            log << R"({"type":"user","sessionId":")" << session
                << R"(","cwd":"/p","message":{"content":"Go"},"timestamp":"2026-03-03T10:00:00.000Z"})"
                   "\n";
            for (int work = 0; work < i; ++work)
                log << R"({"type":"assistant","sessionId":")" << session
                    << R"(","message":{"content":[]},"timestamp":"2026-03-03T10:00:)" << 10 + work % 50
                    << ".000Z\"}\n";
        }
        for (auto &file : files)
            file.stamp = ActivityFileStamp::of(file.url).value_or(ActivityFileStamp{});
    }
    std::vector<Job> jobs(const std::vector<SharedCached> &before = {}) const
    {
        std::vector<Job> jobs;
        for (std::size_t i = 0; i < files.size(); ++i)
            jobs.push_back({AgentSource::claude, &files[i], before.empty() ? nullptr : before[i]});
        return jobs;
    }

    std::vector<ActivityFileInventory::File> files;

private:
    QTemporaryDir m_folder;
};

TEST_F(LogReadingTest, GivesWhatEachFileHasInTheOrderAsked)
{
    Cost cost;
    std::int64_t told = 0;
    const auto read = readAll(jobs(), cost, [&](std::int64_t done) { told = done; }, [] { return true; });
    ASSERT_EQ(read.size(), files.size());
    std::int64_t sizes = 0;
    for (std::size_t i = 0; i < read.size(); ++i) {
        ASSERT_TRUE(read[i]->isComplete);
        ASSERT_EQ(read[i]->sessions.size(), 1U);
        EXPECT_EQ(read[i]->sessions[0].id, "claude:s" + std::to_string(i));
        EXPECT_EQ(read[i]->sessions[0].events.size(), 1 + std::min<std::size_t>(i, 50));
        sizes += files[i].stamp.size;
    }
    EXPECT_GE(cost.bytesRead, sizes);
    EXPECT_LE(told, sizes);

    // Nothing is new: only what shows that the files are the same is read.
    Cost again;
    const auto reread = readAll(jobs(read), again, {}, [] { return true; });
    EXPECT_LE(again.bytesRead, 2 * sizes + count * 2 * Fingerprint::boundaryLength);
    for (std::size_t i = 0; i < read.size(); ++i)
        EXPECT_EQ(reread[i]->sessions, read[i]->sessions);
}

TEST_F(LogReadingTest, StopsWhenNobodyWantsItAnyMore)
{
    Cost cost;
    std::atomic<int> asked = 0;
    const auto read = readAll(jobs(), cost, {}, [&] { return ++asked <= 10; });
    ASSERT_EQ(read.size(), files.size());
    const auto complete =
        std::ranges::count_if(read, [](const SharedCached &cached) { return cached->isComplete; });
    EXPECT_EQ(complete, 10);
}

} // namespace
} // namespace orvane::logreading
