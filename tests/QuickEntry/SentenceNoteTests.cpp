// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/SentenceNote.h"

#include "QuickEntry/PalettePicks.h"
#include "QuickEntry/UnreadTime.h"
#include "Support/DateText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Kind = SentenceNote::Kind;

ProjectResponse project(const std::string &id, const std::string &name,
                        const std::optional<std::string> &clientId = {})
{
    ProjectResponse project;
    project.id = id;
    project.name = name;
    project.clientId = clientId;
    return project;
}

/// On Wednesday 4 March 2026 at 10:00, in UTC.
class SaidSentence : public ::testing::Test {
protected:
    SaidSentence()
    {
        ProjectResponse website = project("web", "Website", "acme");
        website.tasks = {{"design", "web", "Design", true}};
        catalog.replace({website, project("wiki", "Web wiki")}, {{"acme", "w", "Acme", false}},
                        {{"docs", "w", "docs"}, {"review", "w", "review"}});
    }

    EntrySentence::Reading read(std::string_view sentence) const
    {
        const SentenceCatalog names(catalog.projects(), catalog.clients(), catalog.tags());
        return EntrySentence::read(sentence, names, {}, now, UserTime::utc());
    }
    std::vector<SentenceNote> notes(std::string_view sentence) const
    {
        return SentenceNote::of(read(sentence), catalog);
    }

    Instant now = instantFromIso8601("2026-03-04T10:00:00Z").value();
    Catalog catalog;
};

TEST_F(SaidSentence, IsNotedOnWhereItsEntryIsAnother)
{
    EXPECT_THAT(notes("Fix it @website/design #docs 9-9:45 $"), IsEmpty());
    EXPECT_THAT(notes("Fix it @acme"), ElementsAre(SentenceNote{Kind::client, "Acme", ""}));
    EXPECT_THAT(notes("Fix it @acme @website"), IsEmpty()) << "a project of it says where";
    EXPECT_THAT(notes("Fix @nothing #nothing"), ElementsAre(SentenceNote{Kind::unknownName, "@nothing", ""},
                                                            SentenceNote{Kind::unknownTag, "#nothing", ""}));
    EXPECT_THAT(notes("Fix @web"), ElementsAre(SentenceNote{Kind::ambiguousName, "@web", ""}));
    EXPECT_THAT(notes("Fix @website @wiki"), ElementsAre(SentenceNote{Kind::secondProject, "@wiki", ""}));
    EXPECT_THAT(notes("Fix 9-17"), ElementsAre(SentenceNote{Kind::bareHours, "9-17", "9:00-17:00"}));
    EXPECT_THAT(notes("Review #2"), IsEmpty()) << "an issue";
}

TEST_F(SaidSentence, IsNotedOnWhereADayOrATimeWasNotRead)
{
    EXPECT_THAT(notes("Fix it 2026-03-02"),
                ElementsAre(SentenceNote{Kind::dayWithoutTime, "2026-03-02", ""}));
    EXPECT_THAT(notes("2026-03-02 fix it 45m"), ElementsAre(SentenceNote{Kind::day, "2026-03-02", ""}));
    EXPECT_THAT(notes("Call at 9:30 about it"), ElementsAre(SentenceNote{Kind::time, "9:30", ""}));
    EXPECT_THAT(notes("@a @b @c @d @e @f @g"), SizeIs(SentenceNote::mostNotes));
}

TEST_F(SaidSentence, PicksWhatItNames)
{
    const PalettePicks picks = PalettePicks::of(read("Fix it @website/design #docs #review"));
    EXPECT_THAT(picks.keys, ElementsAre("project:web", "task:design", "tag:docs", "tag:review"));
    EXPECT_TRUE(PalettePicks::of(read("Fix it @nothing")).isEmpty());

    const PaletteUsage usage = picks.notedIn(picks.notedIn({}, now - std::chrono::hours{1}), now);
    EXPECT_THAT(usage.uses, SizeIs(4));
    EXPECT_EQ(usage.uses.at("task:design"), (PaletteUsage::Use{2, now}));
}

TEST_F(SaidSentence, PicksByTheKeysOfThePalettesRows)
{
    const auto items = PaletteItem::ofCatalog(catalog.projects(), catalog.clients(), catalog.tags());
    for (const PaletteItem &item : items)
        EXPECT_EQ(PalettePicks::of(item).keys, std::vector{PaletteItem::keyOf(item.kind, item.id)});
    const auto picked = PalettePicks::of(read("@website/design @acme #docs"));
    EXPECT_THAT(picked.keys, SizeIs(4));
    for (const std::string &key : picked.keys)
        EXPECT_NE(std::ranges::find(items, key, &PaletteItem::key), items.end()) << key;
}

TEST_F(SaidSentence, IsNotRecordedWithoutItsTime)
{
    using Why = UnreadTime::Why;
    const auto unread = [&](std::string_view sentence) {
        return UnreadTime::of(read(sentence), {}, now, UserTime::utc());
    };
    EXPECT_EQ(unread("Fix 9-10:30 @nothing"), (UnreadTime{Why::behindIt, "9-10:30", "@nothing"}));
    EXPECT_EQ(unread("Fix since yesterday 9:40 @no #no."),
              (UnreadTime{Why::behindIt, "since yesterday 9:40", "@no"}));
    EXPECT_EQ(unread("Review 45m #2"), (UnreadTime{Why::behindIt, "45m", "#2"}));
    EXPECT_EQ(unread("Shift 10:00-3:00"), (UnreadTime{Why::noRange, "10:00-3:00", ""}));
    EXPECT_EQ(unread("Shift from 9:00 to 9:00"), (UnreadTime{Why::noRange, "from 9:00 to 9:00", ""}));
    EXPECT_EQ(unread("Fix @nothing 9-10:30"), std::nullopt) << "it is read";
    EXPECT_EQ(unread("Chapters 3-4 @nothing"), std::nullopt);
    EXPECT_EQ(unread("Fix 9:30 @nothing at last"), std::nullopt);
}

TEST_F(SaidSentence, SaysNothingWhenNoneOfItIsUnderstood)
{
    for (const char *line : {"@wbe", "#no, @wbe", "@wbe 9:30"})
        EXPECT_TRUE(saysNothing(read(line))) << line;
    for (const char *line : {"", "Fix @wbe", "@website", "9-10:30"})
        EXPECT_FALSE(saysNothing(read(line))) << line;
}

} // namespace
} // namespace orvane
