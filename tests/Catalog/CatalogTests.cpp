// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/Catalog.h"
#include "Catalog/NameOrder.h"
#include "Catalog/PreferenceChanges.h"
#include "Catalog/ProjectFields.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace orvane {
namespace {

ProjectResponse project(std::string id, std::string name, std::optional<std::string> clientId = std::nullopt)
{
    ProjectResponse project;
    project.id = std::move(id);
    project.name = std::move(name);
    project.clientId = std::move(clientId);
    return project;
}

ClientResponse client(std::string id, std::string name)
{
    ClientResponse client;
    client.id = std::move(id);
    client.name = std::move(name);
    return client;
}

TagResponse tag(std::string id, std::string name)
{
    TagResponse tag;
    tag.id = std::move(id);
    tag.name = std::move(name);
    return tag;
}

TaskResponse task(std::string id, std::string projectId)
{
    TaskResponse task;
    task.id = std::move(id);
    task.projectId = std::move(projectId);
    return task;
}

/// "no client: a, b | Acme: c", with the names of the groups' clients.
std::string shown(const std::vector<ProjectGroup> &groups)
{
    std::string text;
    for (const ProjectGroup &group : groups) {
        text += text.empty() ? "" : " | ";
        text += group.client ? group.client->name : "no client";
        for (const ProjectResponse &item : group.projects)
            text += (&item == &group.projects.front() ? ": " : ", ") + item.name;
    }
    return text;
}

TEST(Catalog, LooksUpByIdentifierUntilAListIsReplaced)
{
    Catalog catalog;
    ProjectResponse first = project("p1", "One");
    first.tasks = {task("k1", "p1"), task("k2", "p1")};
    catalog.replace({first, project("p2", "Two")}, {client("c1", "Acme")}, {tag("t1", "urgent")});
    ASSERT_NE(catalog.project("p2"), nullptr);
    EXPECT_EQ(catalog.project("p2")->name, "Two");
    ASSERT_NE(catalog.task("k2"), nullptr);
    EXPECT_EQ(catalog.task("k2")->projectId, "p1");
    EXPECT_EQ(catalog.client("c1"), &catalog.clients().front());
    EXPECT_EQ(catalog.tag("t1"), &catalog.tags().front());
    EXPECT_EQ(catalog.project("k1"), nullptr);
    EXPECT_EQ(catalog.tag(""), nullptr);

    catalog.setProjects({project("p3", "Three")});
    EXPECT_EQ(catalog.project("p1"), nullptr);
    EXPECT_EQ(catalog.task("k1"), nullptr);
    EXPECT_EQ(catalog.project("p3"), &catalog.projects().front());
    EXPECT_NE(catalog.client("c1"), nullptr);
    catalog.setClients({});
    catalog.setTags({tag("t2", "later")});
    EXPECT_EQ(catalog.client("c1"), nullptr);
    EXPECT_EQ(catalog.tag("t1"), nullptr);
    EXPECT_EQ(catalog.tag("t2")->name, "later");
}

TEST(Catalog, SaysOnceThatItChangedAndNotWhenItDidNot)
{
    Catalog catalog;
    int changes = 0;
    QObject::connect(&catalog, &Catalog::changed, &catalog, [&] { ++changes; });
    catalog.replace({}, {}, {});
    EXPECT_EQ(changes, 0);
    catalog.replace({project("p", "One")}, {client("c", "Acme")}, {tag("t", "urgent")});
    EXPECT_EQ(changes, 1);
    catalog.setTags({tag("t", "urgent")});
    EXPECT_EQ(changes, 1);
    catalog.setTags({tag("t", "calm")});
    catalog.setClients({});
    catalog.setProjects({});
    EXPECT_EQ(changes, 4);
}

TEST(Catalog, GroupsProjectsByClientAsPeopleOrderNames)
{
    ProjectResponse archived = project("p9", "Archived", "c1");
    archived.isArchived = true;
    Catalog catalog;
    catalog.setClients(
        {client("c3", "Zeta"), client("c1", "acme"), client("c2", "Éclair"), client("c4", "Empty")});
    catalog.setProjects({project("p1", "Sprint 10", "c1"), project("p2", "sprint 2", "c1"),
                         project("p3", "Own"), project("p4", "zoo", "c3"), project("p5", "Cake", "c2"),
                         archived, project("p6", "Orphan", "deleted"), project("p7", "Apple", "c3")});
    EXPECT_EQ(shown(catalog.projectGroups()),
              "no client: Orphan, Own | acme: sprint 2, Sprint 10 | Éclair: Cake | Zeta: Apple, zoo");
}

TEST(Catalog, KeepsClientsOfOneNameApartInASteadyOrder)
{
    const std::vector<ClientResponse> clients = {client("c2", "Acme"), client("c1", "ACME")};
    std::vector<ProjectResponse> projects = {project("p4", "B", "c1"), project("p3", "A", "c2"),
                                             project("p2", "A", "c1"), project("p1", "A", "c1")};
    const auto groups = ProjectGroup::of(projects, clients);
    EXPECT_EQ(shown(groups), "ACME: A, A, B | Acme: A");
    EXPECT_EQ(groups.front().projects.front().id, "p1");
    std::ranges::reverse(projects);
    EXPECT_EQ(ProjectGroup::of(projects, clients), groups);
}

TEST(NameOrder, OrdersLongAndBrokenNamesToo)
{
    EXPECT_LT(nameOrderKey(""), nameOrderKey("a"));
    EXPECT_EQ(nameOrderKey("ÀB"), nameOrderKey("àb"));
    EXPECT_LT(nameOrderKey("e"), nameOrderKey("é"));
    EXPECT_LT(nameOrderKey("é"), nameOrderKey("f"));
    std::string name;
    for (int i = 0; i < 500; ++i)
        name += "\u6f22"; // each of these takes more bytes of key than of text
    EXPECT_LT(nameOrderKey(name), nameOrderKey(name + "a"));
    EXPECT_NE(nameOrderKey("\xFF\xC3"), nameOrderKey("a"));
}

TEST(ProjectFields, ComeFromAProjectAndGoIntoARequest)
{
    ProjectResponse response = project("p", "One", "c");
    response.color = "#ff0000";
    response.isPrivate = true;
    response.estimateSeconds = 3600;
    response.hourlyRate = 12.5;
    EXPECT_EQ(encodeJson(ProjectFields::of(response).request()),
              R"({"name":"One","clientId":"c","color":"#ff0000","isPrivate":true,"isBillable":false,)"
              R"("estimateSeconds":3600,"hourlyRate":12.5})");
}

TEST(PreferenceChanges, HoldOnlyWhatDiffers)
{
    PreferencesResponse before;
    before.weekStart = 1;
    before.timeFormat = "24h";
    before.pomodoroMinutes = 25;
    PreferencesResponse after = before;
    EXPECT_TRUE(PreferenceChanges::between(before, after).isEmpty());
    after.timeFormat = "12h";
    after.pomodoroEnabled = true;
    const auto changes = PreferenceChanges::between(before, after);
    EXPECT_FALSE(changes.isEmpty());
    EXPECT_EQ(encodeJson(changes.request()), R"({"timeFormat":"12h","pomodoroEnabled":true})");
    EXPECT_EQ(changes.appliedTo(before), after);
    EXPECT_EQ(changes.appliedTo(after), after);
}

} // namespace
} // namespace orvane
