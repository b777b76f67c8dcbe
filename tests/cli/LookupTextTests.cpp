// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/LookupText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using Why = NoSingleItem::Why;

const std::vector<NamedItem> websites{
    {"0a11c0de-0000-4000-8000-000000000001", "Website", "Acme"},
    {"bead0000-0000-4000-8000-000000000004", "web\033[31msite"},
};

TEST(LookupText, ListsWhatCouldBeMeant)
{
    EXPECT_EQ(lookupText("project", "Website", NoSingleItem{Why::ambiguous, websites}),
              "\"Website\" can mean 2 projects:\n  0a11c0de  Website for Acme\n  bead0000  web [31msite");
    EXPECT_EQ(
        lookupText("task", "des", NoSingleItem{Why::archived, {{"0a11c0de-0000", "Design", "Website"}}}),
        "The task \"Design\" is done. Take it up again with: orvane tasks edit 0a11c0de --active");
    EXPECT_EQ(lookupText("project", "old", NoSingleItem{Why::archived, {{"0a11c0de-0000", "Old"}}}),
              "The project \"Old\" is archived. Take it back with: orvane projects restore 0a11c0de");
}

TEST(LookupText, SaysHowToMakeWhatIsNotThere)
{
    const auto unknown = [](std::string_view kind, std::string_view typed, std::vector<NamedItem> items,
                            LookupPurpose purpose = LookupPurpose::use) {
        return lookupText(kind, typed, NoSingleItem{Why::unknown, std::move(items)}, purpose);
    };
    EXPECT_EQ(unknown("tag", "newtag", {}), "There is no tag \"newtag\". To make it: orvane tags add newtag");
    EXPECT_EQ(unknown("task", "x", {{"0a11c0de-0000", "Design", "Website"}}),
              "There is no task \"x\". To make it: orvane tasks add Website x\nThere are:\n"
              "  0a11c0de  Design of Website");
    EXPECT_EQ(unknown("project", "Web sit", websites),
              "There is no project \"Web sit\". Did you mean \"Website\"? To make it: "
              "orvane projects add \"Web sit\"");
    EXPECT_EQ(unknown("tag", "x", {}, LookupPurpose::change),
              "There is no tag \"x\": there are no tags yet.");
    EXPECT_EQ(unknown("tag", "reviw", {{"0a11c0de-0000", "review"}}, LookupPurpose::change),
              "There is no tag \"reviw\". Did you mean \"review\"?");
    EXPECT_EQ(unknown("workspace", "x", {{"0a11c0de-0000", "Home"}}),
              "There is no workspace \"x\". There are:\n  0a11c0de  Home");
    const std::string many = unknown("tag", "x", std::vector(11, NamedItem{"0a11c0de-1", "tag"}));
    EXPECT_TRUE(many.ends_with("\n  0a11c0de  tag\n  and 3 more")) << many;
}

TEST(LookupText, QuotesCommandsForTheShell)
{
    EXPECT_EQ(makingCommand("client", "Müller"), "orvane clients add Müller");
    EXPECT_EQ(makingCommand("client", "Acme & Sons"), "orvane clients add \"Acme & Sons\"");
    EXPECT_EQ(makingCommand("tag", "#1"), "orvane tags add \"#1\"");
    EXPECT_EQ(makingCommand("tag", "-x"), "orvane tags add -- -x");
    EXPECT_EQ(makingCommand("tag", "$(rm) 'it'"), "orvane tags add '$(rm) '\\''it'\\'''");
    EXPECT_EQ(makingCommand("tag", "a\nb"), "orvane tags add \"a b\"");
    EXPECT_EQ(makingCommand("task", "x"), "orvane tasks add PROJECT x");
    EXPECT_EQ(makingCommand("entry", "x"), "");
}

TEST(LookupText, SaysHowManyIdentifiersThereAre)
{
    EXPECT_EQ(lookupText("entry", "ab", NoSingleId{2}),
              "\"ab\" is the beginning of 2 identifiers; type more of it.");
    EXPECT_EQ(lookupText("entry", "ab", NoSingleId{}), "There is no entry \"ab\".");
}

} // namespace
} // namespace orvane
