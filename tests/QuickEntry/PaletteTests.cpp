// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/Palette.h"
#include "QuickEntry/PaletteUsage.h"

#include "Support/DateText.h"

#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace orvane {
namespace {

const Instant now = instantFromIso8601("2025-03-07T12:00:00.500Z").value();
using std::chrono::days;

PaletteUsage usage(std::int64_t count, Instant last)
{
    PaletteUsage usage;
    usage.uses["k"] = {count, last};
    return usage;
}

TEST(PaletteUsage, WeighsPicksByNumberAndAge)
{
    PaletteUsage picked;
    for (int i = 0; i < 3; ++i)
        picked.record("k", now);
    EXPECT_DOUBLE_EQ(picked.weight("k", now), 0.6);
    EXPECT_DOUBLE_EQ(picked.weight("other", now), 0);
    EXPECT_DOUBLE_EQ(usage(1, now - days{14}).weight("k", now), 0.2);
    EXPECT_DOUBLE_EQ(usage(1, now - days{28}).weight("k", now), 0.25 / 2.25);
    // The clock may have been set back since.
    EXPECT_DOUBLE_EQ(usage(2, now + days{100}).weight("k", now), 0.5);
}

TEST(PaletteUsage, ListsWhatIsInRegularUse)
{
    PaletteUsage picked;
    picked.uses = {{"a", {1, now}}, {"b", {9, now}}, {"c", {1, now}}, {"old", {1, now - days{28}}}};
    EXPECT_EQ(picked.frequent(now), (std::vector<std::string>{"b", "a", "c"}));
}

TEST(PaletteUsage, RemembersTheKeysPickedLast)
{
    PaletteUsage picked;
    for (int i = 0; i < 120; ++i)
        picked.record("k" + std::to_string(i), now + std::chrono::seconds{i});
    picked.record("k0", now + std::chrono::hours{1});
    picked.record("new", now + std::chrono::hours{2});
    EXPECT_EQ(picked.uses.size(), 120U);
    EXPECT_FALSE(picked.uses.contains("k1"));
    EXPECT_EQ(picked.uses.at("k0").count, 2);
    EXPECT_EQ(picked.uses.at("new"), (PaletteUsage::Use{1, now + std::chrono::hours{2}}));
}

TEST(PaletteUsage, IsKeptInTheSettings)
{
    PaletteUsage picked;
    picked.record("project:ä\"/1", now);
    picked.record("project:ä\"/1", now + std::chrono::microseconds{700});
    EXPECT_EQ(picked.json(), R"({"uses":{"project:ä\"/1":{"count":2,"last":"2025-03-07T12:00:00.500Z"}}})");

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("settings.ini"));
    {
        QSettings settings(path, QSettings::IniFormat);
        picked.save(settings, "workspace-1");
    }
    const QSettings settings(path, QSettings::IniFormat);
    EXPECT_EQ(PaletteUsage::load(settings, "workspace-1"), picked);
    EXPECT_TRUE(settings.contains(QStringLiteral("paletteUsage.workspace-1")));
    EXPECT_EQ(PaletteUsage::load(settings, "workspace-2"), PaletteUsage{});
}

TEST(PaletteUsage, ReadsAnything)
{
    for (const char *text : {"", "[]", "{\"uses\":3}", "{\"uses\":{\"k\":{\"count\":1}}}",
                             "{\"uses\":{\"k\":{\"count\":1,\"last\":\"yesterday\"}}}"})
        EXPECT_EQ(PaletteUsage::fromJson(text), PaletteUsage{}) << text;
    // Minus two picks would divide by zero.
    const auto odd = PaletteUsage::fromJson(R"({"uses":{"a":{"count":-2,"last":"2025-03-07T12:00:00Z"},
        "b":{"count":9223372036854775807,"last":"2025-03-07T12:00:00Z"}}})");
    ASSERT_EQ(odd.uses.size(), 1U);
    PaletteUsage more = odd;
    more.record("b", now);
    EXPECT_DOUBLE_EQ(more.weight("b", now), 1);
}

ProjectResponse project(std::string id, std::string name, std::optional<std::string> client = {})
{
    ProjectResponse project;
    project.id = std::move(id);
    project.name = std::move(name);
    project.clientId = std::move(client);
    return project;
}

struct Lists {
    std::vector<ProjectResponse> projects = {project("p1", "Website", "c1"), project("p2", "Retired", "c1"),
                                             project("p3", "Backend", "gone")};
    std::vector<ClientResponse> clients = {{"c1", "w", "Acme", false}, {"c2", "w", "Closed", true}};
    std::vector<TagResponse> tags = {{"t1", "w", "deep-work"}};

    Lists()
    {
        projects[0].tasks = {{"k1", "p1", "Design", true}, {"k2", "p1", "Finished", false}};
        projects[1].isArchived = true;
        projects[1].tasks = {{"k3", "p2", "Lost", true}};
    }
};

TEST(PaletteItem, IsMadeOfWhatCanBePicked)
{
    const Lists lists;
    using Kind = PaletteItem::Kind;
    EXPECT_EQ(PaletteItem::ofCatalog(lists.projects, lists.clients, lists.tags),
              (std::vector<PaletteItem>{{Kind::project, "p1", "Website", {"Acme"}, "project:p1"},
                                        {Kind::project, "p3", "Backend", {}, "project:p3"},
                                        {Kind::task, "k1", "Design", {"Website", "Acme"}, "task:k1"},
                                        {Kind::client, "c1", "Acme", {}, "client:c1"},
                                        {Kind::tag, "t1", "deep-work", {}, "tag:t1"}}));
}

TEST(PaletteItem, IsMadeOfRecentWorkOnce)
{
    const Lists lists;
    TimeEntryResponse entry;
    entry.id = "e1";
    entry.description = "Fix login";
    entry.projectId = "p1";
    entry.taskId = "k1";
    entry.tagIds = {"t1", "deleted"};
    auto again = entry;
    again.id = "e2";
    again.tagIds = {"deleted", "t1"};
    auto other = entry;
    other.id = "e3";
    other.isBillable = true;
    auto silent = entry;
    silent.description = "  ";
    const auto items =
        PaletteItem::ofRecent({entry, again, silent, other}, lists.projects, lists.clients, lists.tags);
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].id, "e1");
    EXPECT_EQ(items[0].name, "Fix login");
    EXPECT_EQ(items[0].alternatives, (std::vector<std::string>{"Design", "Website", "Acme", "deep-work"}));
    EXPECT_EQ(items[1].id, "e3");
    EXPECT_NE(items[0].key, items[1].key);
    // The next entry of its kind is known by the same key, and the key does not tell what was done.
    EXPECT_EQ(items[0].key, PaletteItem::ofRecent({again}, {}, {}, {})[0].key);
    EXPECT_EQ(items[0].key.find("login"), std::string::npos);
}

std::vector<std::string> names(const Palette &palette, std::string_view query, const PaletteUsage &usage,
                               std::size_t limit = SIZE_MAX)
{
    std::vector<std::string> names;
    for (const auto &found : palette.find(query, usage, now, limit))
        names.push_back(palette.items()[found.item].name);
    return names;
}

TEST(Palette, OrdersByMatchThenUseThenName)
{
    std::vector<PaletteItem> items;
    for (const char *name :
         {"Sprint 10", "sprint 2", "Sprint 2", "Spring", "Spr", "My sprint", "Offspring", "Other"})
        items.push_back({PaletteItem::Kind::project, name, name, {}, "project:" + std::string(name)});
    const Palette palette(items);
    EXPECT_EQ(names(palette, "spr", {}), (std::vector<std::string>{"Spr", "Spring", "sprint 2", "Sprint 2",
                                                                   "Sprint 10", "My sprint", "Offspring"}));
    PaletteUsage usage;
    usage.record("project:Sprint 10", now);
    usage.record("project:Offspring", now);
    usage.record("project:Offspring", now);
    // Use lifts a row among its equals only.
    EXPECT_EQ(names(palette, "spr", usage),
              (std::vector<std::string>{"Spr", "Sprint 10", "Spring", "sprint 2", "Sprint 2", "My sprint",
                                        "Offspring"}));
    EXPECT_EQ(names(palette, "", usage, 3),
              (std::vector<std::string>{"Offspring", "Sprint 10", "My sprint"}));
    EXPECT_EQ(names(palette, "zzz", usage), std::vector<std::string>{});
}

TEST(Palette, FindsByAlternativesToo)
{
    const Lists lists;
    const Palette palette(PaletteItem::ofCatalog(lists.projects, lists.clients, lists.tags));
    EXPECT_EQ(names(palette, "acme", {}), (std::vector<std::string>{"Acme", "Design", "Website"}));
    EXPECT_EQ(names(palette, "acme web des", {}), (std::vector<std::string>{"Design"}));
}

} // namespace
} // namespace orvane
