// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/EntryDraft.h"

#include "Support/DateText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Names = std::vector<std::string>;

Instant at(std::string_view text)
{
    return instantFromIso8601(text).value();
}

ProjectResponse project(const std::string &id, const std::string &name)
{
    ProjectResponse project;
    project.id = id;
    project.name = name;
    return project;
}

template <class Share>
Share share(const std::string &projectId, std::int64_t percent, const std::string &description = {})
{
    Share share;
    share.projectId = projectId;
    share.percent = percent;
    share.description = description;
    return share;
}

/// In UTC, on Wednesday 4 March 2026 at 10:00.
class EntryDraftTest : public ::testing::Test {
protected:
    EntryDraftTest()
    {
        ProjectResponse website = project("website", "Website");
        website.isBillable = true;
        website.tasks = {{"design", "website", "Design", true}};
        ProjectResponse api = project("api", "API");
        api.tasks = {{"tests", "api", "Tests", true}};
        catalog.replace({website, api}, {}, {{"review", "w", "review"}, {"docs", "w", "docs"}});
    }

    void take(EntryDraft &draft, std::string_view sentence) const
    {
        const SentenceCatalog names(catalog.projects(), catalog.clients(), catalog.tags());
        draft.take(EntrySentence::read(sentence, names, {}, now, time), catalog);
    }
    EntryDraft drafted(std::string_view sentence) const
    {
        EntryDraft draft;
        take(draft, sentence);
        return draft;
    }
    TypedMoment moment(const char *text) const { return TypedMoment::parse(text, time).value(); }
    EntryRequest request(const EntryDraft &draft) const { return draft.request(time, now).value().value(); }

    /// Monday from 9:00 to 10:30, of the website's design.
    static TimeEntryResponse entry()
    {
        TimeEntryResponse entry;
        entry.id = "entry";
        entry.description = "Draw";
        entry.projectId = "website";
        entry.taskId = "design";
        entry.tagIds = {"docs"};
        entry.start = at("2026-03-02T09:00:00Z");
        entry.stop = at("2026-03-02T10:30:00Z");
        return entry;
    }
    static TimeEntryResponse splitEntry()
    {
        TimeEntryResponse split = entry();
        split.shares = {share<TimeShareResponse>("website", 60, "Draw"),
                        share<TimeShareResponse>("api", 40, "Test")};
        return split;
    }

    Catalog catalog;
    UserTime time = UserTime::utc();
    Instant now = at("2026-03-04T10:00:00Z");
};

TEST_F(EntryDraftTest, OfASentenceIsAWholeRequest)
{
    const EntryRequest made = request(drafted("Fix it @website/design #review #docs 9-9:45"));
    EXPECT_EQ(made.details,
              (EntryDetails{"Fix it", "website", "design", {"review", "docs"}, /*isBillable*/ true, {}}))
        << "billable as its project is";
    EXPECT_EQ(made.start, at("2026-03-04T09:00:00Z"));
    EXPECT_EQ(made.stop, at("2026-03-04T09:45:00Z"));
}

TEST_F(EntryDraftTest, SaysWhatIsMissing)
{
    const auto times = EntryDraft().times(time, now);
    ASSERT_TRUE(times);
    EXPECT_FALSE(*times) << "a timer that starts now";
    EXPECT_FALSE(EntryDraft().request(time, now).value());

    EntryRules rules;
    rules.settings.requireDescription = rules.settings.requireProject = rules.settings.requireTag = true;
    EntryDraft draft = drafted("@api");
    EXPECT_THAT(draft.missing(rules), ElementsAre(RequiredDetail::description, RequiredDetail::tag));
    take(draft, "Fix it #docs");
    EXPECT_THAT(draft.missing(rules), IsEmpty()) << "what is not mentioned again stays";

    EntryDraft open;
    open.setStop(moment("9:30"));
    EXPECT_EQ(open.times(time, now).error(), EntryTimesProblem::endWithoutStart);
    take(open, "Fix it since 9");
    EXPECT_EQ(request(open).stop, at("2026-03-04T09:30:00Z")) << "the sentence has the start";
}

TEST_F(EntryDraftTest, TimesThatAreNamedSinglyCountMoreThanTheSentences)
{
    EntryDraft draft;
    draft.setStart(moment("8:30"));
    take(draft, "Fix it 9-9:45");
    EXPECT_EQ(draft.times(time, now).value(),
              (EntryTimes{at("2026-03-04T08:30:00Z"), at("2026-03-04T09:45:00Z")}));
    EXPECT_FALSE(draft.namesStartDay());
    draft.setStart(moment("2026-03-04 9:50"));
    EXPECT_TRUE(draft.namesStartDay());
    EXPECT_EQ(draft.times(time, now).error(), EntryTimesProblem::endBeforeStart);
    EXPECT_FALSE(drafted("Fix it since 9").namesStartDay());
}

TEST_F(EntryDraftTest, OfAnEntryChangesOnlyWhatIsNamed)
{
    EXPECT_EQ(request(EntryDraft::of(entry())),
              (EntryRequest{{"Draw", "website", "design", {"docs"}, false, {}},
                            at("2026-03-02T09:00:00Z"),
                            at("2026-03-02T10:30:00Z")}));
    EntryDraft draft = EntryDraft::of(entry());
    take(draft, "#review 14:00-15");
    draft.setStop(moment("16:00"));
    EXPECT_EQ(request(draft), (EntryRequest{{"Draw", "website", "design", {"review"}, false, {}},
                                            at("2026-03-02T14:00:00Z"),
                                            at("2026-03-02T16:00:00Z")}))
        << "on its own day";
    take(draft, "@website");
    EXPECT_EQ(draft.details().taskId, std::nullopt) << "a project that is named without a task has none";
}

TEST_F(EntryDraftTest, AProjectTakesTheOldTaskAwayAndATaskBringsItsProject)
{
    EntryDraft draft = EntryDraft::of(entry());
    draft.setProject("website", catalog);
    EXPECT_EQ(draft.details().taskId, "design") << "the same project keeps it";
    EXPECT_TRUE(draft.details().isBillable) << "but it was chosen anew";
    draft.setProject("api", catalog);
    EXPECT_EQ(draft.details().taskId, std::nullopt);
    EXPECT_FALSE(draft.details().isBillable);
    draft.setTask("design", catalog);
    EXPECT_EQ(draft.details().projectId, "website");
    EXPECT_TRUE(draft.details().isBillable);
    draft.setTask(std::nullopt, catalog);
    EXPECT_EQ(draft.details().projectId, "website");
    draft.setProject(std::nullopt, catalog);
    EXPECT_TRUE(draft.details().isBillable) << "no project has nothing to say about that";
}

TEST_F(EntryDraftTest, BillableThatWasSetHoldsAgainstEveryProject)
{
    EntryDraft draft;
    draft.setBillable(false);
    take(draft, "Fix it @website $");
    draft.setTask("design", catalog);
    EXPECT_FALSE(draft.details().isBillable);
    EntryDraft marked = drafted("Fix it @api $");
    EXPECT_TRUE(marked.details().isBillable) << "of the sentence, \"$\" counts more than its project";
    marked.setProject("api", catalog);
    EXPECT_FALSE(marked.details().isBillable) << "but a project that is chosen singly brings its own";
}

TEST_F(EntryDraftTest, AProjectEndsASplitAndOtherDetailsDoNot)
{
    EntryDraft draft = EntryDraft::of(splitEntry());
    draft.setDescription("Draw more");
    take(draft, "#review");
    EXPECT_EQ(draft.details().shares.size(), 2U);
    EXPECT_TRUE(request(draft).describeParts);
    EntryDraft moved = draft;
    moved.setProject("api", catalog);
    EXPECT_THAT(moved.details().shares, IsEmpty());
    EXPECT_FALSE(request(moved).describeParts) << "there are none";
    draft.setTask("tests", catalog);
    EXPECT_THAT(draft.details().shares, IsEmpty());
    draft.setShares({share<SplitPart>("api", 100)}, false);
    EXPECT_EQ(request(draft).details.shares.size(), 1U);
}

TEST_F(EntryDraftTest, HasEachTagOnce)
{
    EntryDraft draft;
    draft.setTags({"b", "a", "b"});
    EXPECT_EQ(draft.details().tagIds, (Names{"b", "a"}));
    draft.setTags({});
    EXPECT_THAT(draft.details().tagIds, IsEmpty());
}

} // namespace
} // namespace orvane
