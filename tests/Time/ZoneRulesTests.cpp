// SPDX-License-Identifier: GPL-3.0-or-later
// Every zone of this computer beside what Python makes of the same files.
#include "Support/DateText.h"
#include "Support/ZoneNames.h"
#include "Time/ZoneRules.h"

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <sstream>

namespace orvane {
namespace {

using namespace std::chrono;

/// Not by QProcess, whose way of starting a program ends one under the thread sanitizer.
std::string changesByPython(const std::vector<std::string> &zones)
{
    std::string command =
        "exec python3 -B '" ORVANE_SOURCE_DIR "/tests/Time/zone_changes.py' '" + zoneFolder() + "'";
    for (const std::string &zone : zones)
        command += " " + zone;
    std::string text;
    std::FILE *python = ::popen(command.c_str(), "r");
    EXPECT_NE(python, nullptr);
    if (python == nullptr)
        return text;
    std::array<char, 64 * 1024> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), python))
        text.append(buffer.data(), count);
    EXPECT_EQ(::pclose(python), 0);
    return text;
}

/// The rules of zones that share one file.
struct Group {
    std::vector<std::shared_ptr<const ZoneRules>> zones;
    seconds offset{0};
};

Group groupOf(std::istream &line)
{
    Group group;
    std::vector<std::string> words{std::istream_iterator<std::string>(line), {}};
    group.offset = seconds{std::stoll(words.back())};
    words.pop_back();
    for (const std::string &name : words) {
        group.zones.push_back(ZoneRules::find(name));
        EXPECT_TRUE(group.zones.back()) << name;
        if (!group.zones.back())
            group.zones.pop_back();
    }
    return group;
}

void checkChange(const ZoneRules &zone, const ZoneChange &change, seconds before)
{
    const Instant justBefore = change.at - microseconds{1};
    EXPECT_EQ(zone.offset(change.at), change.offset) << zone.identifier() << " " << iso8601Text(change.at);
    EXPECT_EQ(zone.offset(justBefore), before) << zone.identifier() << " before " << iso8601Text(change.at);
    // A wall-clock time that the change skips or repeats belongs to the time before it.
    const seconds halfway = (before + change.offset) / 2;
    const LocalTime affected{change.at.time_since_epoch() + halfway};
    EXPECT_EQ(zone.instant(affected).time_since_epoch(), affected.time_since_epoch() - before)
        << zone.identifier() << " around " << iso8601Text(change.at);
    const bool isSkipped = change.offset > before;
    EXPECT_EQ(zone.firstInstant(affected), isSkipped ? change.at : zone.instant(affected))
        << zone.identifier() << " around " << iso8601Text(change.at);
}

TEST(ZoneRules, AgreeWithPythonOnBothSidesOfEveryChangeFrom1970To2040)
{
    const auto names = zoneNames();
    ASSERT_GT(names.size(), 300U);
    std::istringstream lines(changesByPython(names));
    std::size_t zones = 0;
    std::size_t changes = 0;
    Group group;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        if (line.starts_with("zone ")) {
            fields.ignore(5);
            group = groupOf(fields);
            zones += group.zones.size();
            for (const auto &zone : group.zones)
                EXPECT_EQ(zone->offset(Instant{}), group.offset) << zone->identifier();
            continue;
        }
        std::int64_t at = 0;
        std::int64_t offset = 0;
        fields >> at >> offset;
        const ZoneChange change{Instant{seconds{at}}, seconds{offset}};
        for (const auto &zone : group.zones)
            checkChange(*zone, change, group.offset);
        group.offset = change.offset;
        ++changes;
    }
    EXPECT_EQ(zones, names.size());
    EXPECT_GT(changes, 10'000U);
}

TEST(ZoneRules, UtcNeedsNoFile)
{
    const auto utc = ZoneRules::find("UTC");
    ASSERT_TRUE(utc);
    EXPECT_EQ(utc->offset(Instant{}), seconds{0});
    EXPECT_TRUE(isZone("Etc/UTC", "/nowhere"));
    EXPECT_FALSE(isZone("Europe/Paris", "/nowhere"));
}

} // namespace
} // namespace orvane
