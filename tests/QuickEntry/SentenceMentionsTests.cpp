// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/EntrySentence.h"
#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

class SentenceMentionsTest : public testing::Test {
protected:
    struct Task {
        std::string id;
        std::string name;
        bool isActive = true;
    };

    void addProject(const std::string &id, std::string name, std::optional<std::string> client = {},
                    const std::vector<Task> &tasks = {}, bool isArchived = false)
    {
        ProjectResponse project;
        project.id = id;
        project.name = std::move(name);
        project.clientId = std::move(client);
        project.isArchived = isArchived;
        for (const Task &task : tasks)
            project.tasks.push_back({task.id, id, task.name, task.isActive});
        projects.push_back(std::move(project));
    }

    EntrySentence::Reading read(std::string_view line) const
    {
        return EntrySentence::read(line, SentenceCatalog(projects, clients, tags), {},
                                   instantFromIso8601("2025-03-07T12:00:00Z").value(), UserTime::utc());
    }

    /// "project/task client [tags] description", with a dash for what is not there.
    std::string summary(std::string_view line) const
    {
        const auto reading = read(line);
        std::string text = reading.projectID.value_or("-") + "/" + reading.taskID.value_or("-") + " " +
                           reading.clientID.value_or("-") + " [";
        for (const std::string &tag : reading.tagIDs)
            text += (text.back() == '[' ? "" : ",") + tag;
        return text + "] " + reading.description;
    }

    std::vector<ProjectResponse> projects;
    std::vector<ClientResponse> clients;
    std::vector<TagResponse> tags;
};

TEST_F(SentenceMentionsTest, FindsTheBestMatchOfEachKind)
{
    addProject("site", "Website", "acme", {{"design", "Design"}});
    addProject("big", "Big Project");
    addProject("api", "API");
    addProject("docs", "API docs");
    clients = {{"acme", "w", "Acme Corp", false}};
    tags = {{
                "deep",
                "w",
                "deep-work",
            },
            {"call", "w", "Call"}};

    EXPECT_EQ(summary("Fix @web #deep now #call"), "site/- - [deep,call] Fix now");
    EXPECT_EQ(summary("@api Fix"), "api/- - [] Fix");     // the whole name rather than a beginning
    EXPECT_EQ(summary("Fix @bp"), "big/- - [] Fix");      // initials
    EXPECT_EQ(summary("Fix @project"), "big/- - [] Fix"); // a later word
    EXPECT_EQ(summary("Fix @roject"), "-/- - [] Fix @roject");
    EXPECT_EQ(summary("Fix @acme"), "-/- acme [] Fix");
    EXPECT_EQ(summary("@acme @web Fix"), "site/- acme [] Fix");
    EXPECT_EQ(summary("Fix @design"), "site/design - [] Fix");
    EXPECT_EQ(summary("#call #Call #CALL x"), "-/- - [call] x");
    // Unknown ones, signs alone and signs inside words are text.
    EXPECT_EQ(summary("Ask @nobody about C# @ # me@web #nothing"),
              "-/- - [] Ask @nobody about C# @ # me@web #nothing");
    // The second project is text.
    EXPECT_EQ(summary("@web @big fix"), "site/- - [] @big fix");
    EXPECT_EQ(summary("@web, fix #call."), "site/- - [call] fix");
}

TEST_F(SentenceMentionsTest, ReadsNamesWithSpacesQuotedOrJoined)
{
    addProject("big", "Big Project", {}, {{"write", "Write up"}});
    addProject("bigger", "Big Projection");
    addProject("slash", "CI/CD");
    addProject("cafe", "Café Noir");
    tags = {{"deep", "w", "Deep work"}, {"cpp", "w", "C++"}, {"cs", "w", "C#"}};

    for (const char *name :
         {"@\"Big Project\"", "@\"big   project\"", "@bigproject", "@big-project", "@Big_Project",
          "@\u201CBig Project\u201D", "@\u201EBig Project\u201C", "@\"Big Project\"."})
        EXPECT_EQ(summary(std::string("Fix ") + name + " bug"), "big/- - [] Fix bug") << name;
    for (const char *name : {"@bigproject/writeup", "@\"Big Project\"/write", "@bigproject/\"Write up\"",
                             "@\"Big Project\"/\"Write up\""})
        EXPECT_EQ(summary(std::string("Fix ") + name + " bug"), "big/write - [] Fix bug") << name;
    EXPECT_EQ(summary("@ci/cd fix"), "slash/- - [] fix");
    EXPECT_EQ(summary("@cafe-noir #deep-work #\"Deep work\" x"), "cafe/- - [deep] x");
    EXPECT_EQ(summary("x #C++ #c#"), "-/- - [cpp,cs] x");
    EXPECT_EQ(summary("x #c"), "-/- - [] x #c");
    // A quote that is not closed, or closed too far away, is text; so is what hangs on to one.
    EXPECT_EQ(summary("Say @\"Big Project and go"), "-/- - [] Say @\"Big Project and go");
    EXPECT_EQ(summary("Say @\"Big Project\"s x"), "-/- - [] Say @\"Big Project\"s x");
    EXPECT_EQ(summary("@bigproject/nothing x"), "-/- - [] @bigproject/nothing x");
    // "$" is billable wherever it stands.
    const auto reading = read("@\"Big $ Project\" x");
    EXPECT_TRUE(reading.isBillable);
    EXPECT_EQ(reading.projectID, "big");
}

TEST_F(SentenceMentionsTest, TakesOnlyWhatIsUnambiguous)
{
    addProject("site", "Web site", "acme", {{"d1", "Design"}, {"old", "Old task", false}});
    addProject("shop", "Web shop", "bolt", {{"d2", "Design"}, {"d3", "Designer"}});
    addProject("gone", "Gone", {}, {{"lost", "Lost"}}, true);
    addProject("upper", "NOTES");
    addProject("lower", "notes");
    addProject("acmeproject", "Bolt");
    clients = {{"acme", "w", "Acme", false}, {"bolt", "w", "Bolt", false}, {"shut", "w", "Shut", true}};

    EXPECT_EQ(summary("@web x"), "-/- - [] @web x");
    EXPECT_EQ(summary("@design x"), "-/- - [] @design x");
    EXPECT_EQ(summary("@NOTES x"), "upper/- - [] x");
    EXPECT_EQ(summary("@Notes x"), "-/- - [] @Notes x");
    // What else is named decides, wherever it stands.
    EXPECT_EQ(summary("@acme @web x"), "site/- acme [] x");
    EXPECT_EQ(summary("@acme/web x"), "site/- - [] x");
    EXPECT_EQ(summary("@design @websh x"), "shop/d2 - [] x");
    EXPECT_EQ(summary("@websh @design x"), "shop/d2 - [] x");
    EXPECT_EQ(summary("@websh/design x"), "shop/d2 - [] x");
    EXPECT_EQ(summary("@web-site @designer x"), "site/- - [] @designer x");
    // The project comes before the client of the same name.
    EXPECT_EQ(summary("@bolt x"), "acmeproject/- - [] x");
    // What is not active any more is not meant.
    EXPECT_EQ(summary("@gone @lost @shut @old x"), "-/- - [] @gone @lost @shut @old x");
}

TEST_F(SentenceMentionsTest, ASlashPartsNamesUnlessANameHasIt)
{
    addProject("api", "API", "acme", {{"docs", "Docs"}, {"cd", "CD"}});
    addProject("apidocs", "API docs");
    addProject("cicd", "CI/CD");
    addProject("ci", "CI", {}, {{"cdtask", "CD"}});
    addProject("acmeapi", "Acme API");
    clients = {{"acme", "w", "Acme", false}};

    EXPECT_EQ(summary("@api/docs x"), "api/docs - [] x");
    EXPECT_EQ(summary("@\"api\"/docs x"), "api/docs - [] x");
    EXPECT_EQ(summary("@acme/api x"), "api/- - [] x");
    EXPECT_EQ(summary("@api-docs x"), "apidocs/- - [] x");
    EXPECT_EQ(summary("@ci/cd x"), "cicd/- - [] x");
    EXPECT_EQ(summary("@\"ci\"/cd x"), "ci/cdtask - [] x");
}

TEST_F(SentenceMentionsTest, ANumberIsATagAsAWholeAlone)
{
    tags = {{"year", "w", "2024"}, {"two", "w", "Sprint 2"}, {"version", "w", "3.0"}, {"q1", "w", "2024-q1"}};
    EXPECT_EQ(summary("Review #2"), "-/- - [] Review #2");
    EXPECT_EQ(summary("Review #202, #30"), "-/- - [] Review #202, #30");
    EXPECT_EQ(summary("Review #2024."), "-/- - [year] Review");
    EXPECT_EQ(summary("Review #2024-q"), "-/- - [q1] Review");
    EXPECT_EQ(summary("Review #sprint"), "-/- - [two] Review");
}

TEST_F(SentenceMentionsTest, SaysWhichMentionsAreText)
{
    addProject("site", "Web site", {}, {{"design", "Design"}});
    addProject("shop", "Web shop");
    addProject("api", "API");
    tags = {{"one", "w", "call in"}, {"two", "w", "call out"}};
    using enum UnreadMention::Why;
    EXPECT_EQ(read("@nobody, @web #call @api @web-shop @design #? @\"No one\" x").unreadMentions,
              (std::vector<UnreadMention>{{"@nobody", unknown},
                                          {"@web", ambiguous},
                                          {"#call", ambiguous},
                                          {"@web-shop", secondProject},
                                          {"@design", surplus},
                                          {"#?", unknown},
                                          {"@\"No one\"", unknown}}));
    EXPECT_TRUE(read("@api me@web C# @ # x").unreadMentions.empty());
}

TEST_F(SentenceMentionsTest, TakesTheLongestRunOfWordsThatIsAName)
{
    addProject("app", "Mobile app");
    addProject("apps", "Mobile app shop", {}, {{"fix", "Fix it"}});
    addProject("web", "Web");
    addProject("webs", "Web site");
    tags = {{"deep", "w", "Deep work"}};
    EXPECT_EQ(summary("@Mobile app fix"), "app/- - [] fix");
    EXPECT_EQ(summary("@mobile APP shop, again #deep work"), "apps/- - [deep] again");
    EXPECT_EQ(summary("@web site"), "web/- - [] site") << "one word that is a whole name is enough";
    EXPECT_EQ(summary("@fix it"), "apps/fix - [] ");
    EXPECT_EQ(summary("@Mobile @app"), "-/- - [] @Mobile @app") << "a run ends at the next mention";
}

TEST_F(SentenceMentionsTest, ListsItsChips)
{
    addProject("api", "API", {}, {{"t", "Tests"}});
    clients = {{"acme", "w", "Acme", false}};
    tags = {{"a", "w", "one"}, {"b", "w", "two"}};
    using enum EntrySentence::Chip;
    EXPECT_EQ(read("$ #two @acme #one @api/tests").chips(),
              (std::vector<EntrySentence::ShownChip>{
                  {project, "api"}, {client, "acme"}, {tag, "b"}, {tag, "a"}, {billable, ""}}));
    EXPECT_TRUE(read("nothing").chips().empty());
}

} // namespace
} // namespace orvane
