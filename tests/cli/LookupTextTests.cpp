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
    EXPECT_EQ(lookupText("task", "x", NoSingleItem{Why::unknown, {{"0a11c0de-0000", "Design", "Website"}}}),
              "There is no task \"x\". There are:\n  0a11c0de  Design of Website");
    EXPECT_EQ(lookupText("tag", "x", NoSingleItem{Why::unknown, {}}),
              "There is no tag \"x\": there are no tags yet.");
    EXPECT_EQ(lookupText("project", "old", NoSingleItem{Why::archived, {{"0a11c0de-0000", "Old"}}}),
              "The project \"Old\" is archived. Take it back with: orvane projects restore 0a11c0de");
    const std::string many =
        lookupText("tag", "x", NoSingleItem{Why::unknown, std::vector(11, NamedItem{"0a11c0de-1", "t"})});
    EXPECT_TRUE(many.ends_with("\n  0a11c0de  t\n  and 3 more")) << many;
}

TEST(LookupText, SaysHowManyIdentifiersThereAre)
{
    EXPECT_EQ(lookupText("entry", "ab", NoSingleId{2}),
              "\"ab\" is the beginning of 2 identifiers; type more of it.");
    EXPECT_EQ(lookupText("entry", "ab", NoSingleId{}), "There is no entry \"ab\".");
}

} // namespace
} // namespace orvane
