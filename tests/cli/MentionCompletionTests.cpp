// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/MentionCompletion.h"

#include "QuickEntry/FoldedText.h"
#include "QuickEntry/SentenceMentions.h"
#include "Support/DateText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Names = std::vector<std::string>;

class MentionCompletionTest : public testing::Test {
protected:
    void addProject(const std::string &id, const std::string &name,
                    const std::optional<std::string> &client = {}, const Names &tasks = {})
    {
        ProjectResponse project;
        project.id = id;
        project.name = name;
        project.clientId = client;
        for (const std::string &task : tasks)
            project.tasks.push_back({id + "." + task, id, task, true});
        projects.push_back(std::move(project));
    }

    MentionCompletion complete(std::string_view sentence) const
    {
        Catalog catalog;
        catalog.replace(projects, clients, tags);
        return MentionCompletion::of(sentence, catalog, {},
                                     instantFromIso8601("2025-03-07T12:00:00Z").value())
            .value_or(MentionCompletion());
    }
    Names offered(std::string_view sentence) const { return complete(sentence).mentions; }

    std::vector<ProjectResponse> projects;
    std::vector<ClientResponse> clients{{"acme", "w", "Acme", false}, {"bolt", "w", "Bolt", false}};
    std::vector<TagResponse> tags{{"deep", "w", "deep-work"}, {"code", "w", "code-desk"}};
};

TEST_F(MentionCompletionTest, PrefersWhatGoesOnFromWhatWasTyped)
{
    addProject("site", "Website", "acme", {"Design", "Write up"});
    addProject("api", "API");
    addProject("big", "Big Project");
    addProject("small", "Small Project");
    EXPECT_THAT(offered("@We"), ElementsAre("@Website")) << "and not its tasks";
    EXPECT_THAT(offered("Fix the @aPi"), ElementsAre("@API"));
    EXPECT_THAT(offered("#de"), ElementsAre("#deep-work"));
    EXPECT_THAT(offered("@bp"), ElementsAre("@Big-Project"));
    EXPECT_THAT(offered("@\"Big P"), ElementsAre("@\"Big Project\""));
    EXPECT_THAT(offered("@nothing"), IsEmpty());
    // Where the common beginning would take typed letters away, nothing may be put in.
    EXPECT_THAT(offered("@proj"), UnorderedElementsAre("@Big-Project", "@Small-Project"));
    EXPECT_FALSE(complete("@proj").goesOn);
    EXPECT_TRUE(complete("@we").goesOn);
    addProject("apes", "Apes");
    EXPECT_THAT(offered("@ap"), UnorderedElementsAre("@API", "@Apes"));
    EXPECT_FALSE(complete("@ap").goesOn) << "they begin with the same A only";
}

TEST_F(MentionCompletionTest, OffersWhatIsInAProjectBehindASlash)
{
    addProject("site", "Website", "acme", {"Design", "Write up"});
    addProject("shop", "Shop", "bolt", {"Design"});
    addProject("cicd", "CI/CD");
    EXPECT_THAT(offered("@web/"), UnorderedElementsAre("@web/Design", "@web/Write-up"));
    EXPECT_THAT(offered("@web/wr"), ElementsAre("@web/Write-up"));
    EXPECT_THAT(offered("@acme/"), ElementsAre("@acme/Website"));
    EXPECT_THAT(offered("@ci/"), ElementsAre("@CI/CD"));
    EXPECT_THAT(offered("@\"Website\"/\"Wri"), ElementsAre("@\"Website\"/\"Write up\""));
}

TEST_F(MentionCompletionTest, TellsEqualNamesApart)
{
    addProject("one", "Web", "acme", {"Design"});
    addProject("two", "Web", "bolt");
    addProject("shop", "Shop", {}, {"Design"});
    addProject("spaced", "Big Project");
    addProject("hyphened", "big-project");
    addProject("same", "Twin");
    addProject("other", "Twin");
    EXPECT_THAT(offered("@web"), UnorderedElementsAre("@Acme/Web", "@Bolt/Web"));
    EXPECT_THAT(offered("@des"), ElementsAre("@Shop/Design")) << "@Web/Design could be in either";
    EXPECT_THAT(offered("@shop @des"), ElementsAre("@Design")) << "the project is known";
    EXPECT_THAT(offered("@big"), UnorderedElementsAre("@\"Big Project\"", "@big-project"));
    EXPECT_THAT(offered("@twin"), IsEmpty()) << "nothing tells them apart";
    EXPECT_THAT(offered("@shop @big"), IsEmpty()) << "an entry has one project";
}

TEST_F(MentionCompletionTest, WhatItOffersIsReadBackWhateverTheNameHolds)
{
    for (const char *name : {"x;touch${IFS}P", "$(touch P)", "`touch P`", "it's", "say \"hi\"", "-dash",
                             "R&D", "st*r", "~home", "ba!ng!", "back\\slash", "new\nline", "tab\there",
                             "next\u2028line", "#hash", "@at", "a/b", "caf\u00E9 noir", "\u202Eright"}) {
        projects.clear();
        addProject("it", name);
        addProject("another", "Another");
        const SentenceCatalog catalog(projects, clients, tags);
        std::size_t read = 0;
        for (const std::string &mention : offered("Fix @")) {
            EXPECT_EQ(mention.find_first_of("\n\r\t"), std::string::npos) << name;
            read += SentenceMentions::of(wordsOf(mention), catalog).projectID == "it" ? 1 : 0;
        }
        EXPECT_EQ(read, 1U) << name;
    }
}

} // namespace
} // namespace orvane
