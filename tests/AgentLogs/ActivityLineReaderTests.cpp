// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityLineReader.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <unistd.h>

namespace orvane {
namespace {

constexpr std::int64_t longest = ActivityLineReader::longestLine;
constexpr std::int64_t bufferLimit = longest + ActivityLineReader::growth;

/// A log that grows, and who follows it.
class Log {
public:
    void append(std::string_view text) { put(m_size, text); }
    void put(std::int64_t at, std::string_view text)
    {
        EXPECT_EQ(::pwrite(descriptor(), text.data(), text.size(), at), std::ssize(text));
        m_size = std::max(m_size, at + std::ssize(text));
    }
    void resize(std::int64_t size)
    {
        EXPECT_EQ(::ftruncate(descriptor(), size), 0);
        m_size = size;
    }
    std::int64_t size() const { return m_size; }

    /// Reads on, up to the present end unless `size` is given. False when it failed.
    bool follow(std::optional<std::int64_t> size = {})
    {
        const auto read =
            m_reader.read(descriptor(), state, size.value_or(m_size), [this](std::string_view line) {
                lines.emplace_back(line.size() > 1000 ? line.substr(0, 1) : line);
                lengths.push_back(std::ssize(line));
            });
        if (!read) {
            failure = read.error();
            return false;
        }
        state = read->state;
        tail = read->tail;
        bytes += read->bytes;
        peak = std::max(peak, read->peakBufferedBytes);
        return true;
    }

    ActivityLineReader::State state;
    std::vector<std::string> lines;
    std::vector<std::int64_t> lengths;
    std::string tail;
    std::int64_t bytes = 0;
    std::int64_t peak = 0;
    std::optional<ActivityLineReader::Failure> failure;

private:
    int descriptor() const { return ::fileno(m_file.get()); }

    std::unique_ptr<std::FILE, int (*)(std::FILE *)> m_file{std::tmpfile(), &std::fclose};
    std::int64_t m_size = 0;
    ActivityLineReader m_reader;
};

TEST(ActivityLineReaderTest, ReadsWholeLinesOnceHoweverTheFileGrows)
{
    std::mt19937 random(11);
    for (int round = 0; round < 40; ++round) {
        std::vector<std::string> expected;
        std::string all;
        for (int i = 0; i < 60; ++i) {
            std::string line(random() % 30, random() % 4 == 0 ? '\0' : 'x');
            if (random() % 9 == 0)
                line += '\r';
            all += line + '\n';
            expected.push_back(std::move(line));
        }
        all += "the tail";
        Log log;
        for (std::size_t at = 0; at < all.size();) {
            const std::string piece = all.substr(at, 1 + random() % (1 + random() % 100));
            log.append(piece);
            at += piece.size();
            ASSERT_TRUE(log.follow());
            const auto feed = all.rfind('\n', at - 1);
            const auto consumed = feed == std::string::npos ? 0 : feed + 1;
            ASSERT_EQ(log.state, (ActivityLineReader::State{static_cast<std::int64_t>(consumed), false}));
            ASSERT_EQ(log.tail, all.substr(consumed, at - consumed));
        }
        EXPECT_EQ(log.lines, expected);
    }
}

TEST(ActivityLineReaderTest, ReadsNothingTwiceAndNothingMoreThanAsked)
{
    Log log;
    log.append("one\ntwo\nthr");
    ASSERT_TRUE(log.follow(5));
    EXPECT_EQ(log.lines, (std::vector<std::string>{"one"}));
    EXPECT_EQ(log.tail, "t");
    ASSERT_TRUE(log.follow());
    EXPECT_EQ(log.bytes, 5 + 7) << "only the tail is read again";
    log.append("ee\n");
    ASSERT_TRUE(log.follow());
    EXPECT_EQ(log.lines, (std::vector<std::string>{"one", "two", "three"}));
    const std::int64_t before = log.bytes;
    ASSERT_TRUE(log.follow());
    EXPECT_EQ(log.bytes, before);
    log.resize(4);
    ASSERT_TRUE(log.follow(14));
    EXPECT_EQ(log.lines.size(), 3U) << "cut since it was looked at";
    log.state = {-1, false};
    EXPECT_FALSE(log.follow());
    EXPECT_EQ(log.failure, ActivityLineReader::Failure::unreadable);
    log.state = {std::numeric_limits<std::int64_t>::min(), false};
    EXPECT_FALSE(log.follow());
}

TEST(ActivityLineReaderTest, DropsLinesThatAreTooLong)
{
    std::string all = "first\n";
    std::vector<std::int64_t> expected{5};
    for (const std::int64_t length : {longest, longest + 1, std::int64_t{3}, longest - 1, longest + 70'000,
                                      3 * longest, std::int64_t{0}, longest}) {
        all += std::string(static_cast<std::size_t>(length), 'x') + "\n";
        if (length <= longest)
            expected.push_back(length);
    }
    for (const std::size_t step : {all.size(), std::size_t{1'048'577}, std::size_t{300'001}}) {
        Log log;
        std::int64_t furthest = 0;
        for (std::size_t at = 0; at < all.size(); at += step) {
            log.append(std::string_view(all).substr(at, step));
            ASSERT_TRUE(log.follow());
            ASSERT_GE(log.state.offset, furthest);
            ASSERT_LE(log.size() - log.state.offset, longest) << "it moves on while a line is dropped";
            furthest = log.state.offset;
        }
        EXPECT_EQ(log.lengths, expected) << "by " << step;
        EXPECT_EQ(log.state, (ActivityLineReader::State{log.size(), false}));
        EXPECT_LE(log.peak, bufferLimit);
    }
}

TEST(ActivityLineReaderTest, DropsAHugeLineInBoundedMemory)
{
    constexpr std::int64_t huge = std::int64_t{300} * 1024 * 1024;
    Log log;
    log.append("first\n");
    log.resize(huge);
    ASSERT_TRUE(log.follow(huge / 2));
    EXPECT_EQ(log.state, (ActivityLineReader::State{huge / 2, true}));
    log.append("\nlast\n");
    ASSERT_TRUE(log.follow());
    EXPECT_EQ(log.lines, (std::vector<std::string>{"first", "last"}));
    EXPECT_EQ(log.bytes, log.size()) << "no byte of it twice";
    EXPECT_LE(log.peak, bufferLimit);
}

TEST(ActivityLineReaderTest, RefusesAFirstLineThatIsTooLong)
{
    Log log;
    log.append(std::string(longest, 'x'));
    ASSERT_TRUE(log.follow()) << "it may still end";
    EXPECT_EQ(std::ssize(log.tail), longest);
    log.append("x");
    EXPECT_FALSE(log.follow());
    EXPECT_EQ(log.failure, ActivityLineReader::Failure::oversizedMetadata);
    log.append("\nmore\n");
    EXPECT_FALSE(log.follow());
    EXPECT_EQ(log.failure, ActivityLineReader::Failure::oversizedMetadata);
    EXPECT_TRUE(log.lines.empty());
    log.put(longest, "\n");
    ASSERT_TRUE(log.follow());
    EXPECT_EQ(log.lengths, (std::vector<std::int64_t>{longest, 0, 4}));
}

} // namespace
} // namespace orvane
