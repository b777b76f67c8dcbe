// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/Candidates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::HasSubstr;

const std::vector<Candidate> projects{
    {"0a11c0de-0000-4000-8000-000000000001", "Website", "for Acme"},
    {"0a11c0de-0000-4000-8000-000000000002", "Website redesign"},
    {"bead0000-0000-4000-8000-000000000003", "Straße"},
    {"bead0000-0000-4000-8000-000000000004", "website"},
    {"cafe0000-0000-4000-8000-000000000005", "API"},
};

TEST(Candidates, AreChosenByIdThenNameThenBeginning)
{
    EXPECT_EQ(choose("project", projects[3].id, projects), 3U);
    EXPECT_EQ(choose("project", "api", projects), 4U);
    EXPECT_EQ(choose("project", "STRAßE", projects), 2U);
    EXPECT_EQ(choose("project", "website r", projects), 1U);
    EXPECT_EQ(choose("project", "CAFE0", projects), 4U);
    EXPECT_EQ(choose("project", "ap", projects), 4U);
}

TEST(Candidates, SayWhatCouldBeMeant)
{
    const std::string two = choose("project", "Website", projects).error();
    EXPECT_THAT(two, HasSubstr("can mean 2 projects"));
    EXPECT_THAT(two, HasSubstr("0a11c0de  Website for Acme"));
    EXPECT_THAT(choose("project", "bead", projects).error(), HasSubstr("can mean 2 projects"));
    EXPECT_THAT(choose("project", "caf", projects).error(),
                HasSubstr("There is no project \"caf\". There are:"))
        << "three characters of an identifier could be a name by chance";
    EXPECT_THAT(choose("tag", "x", {}).error(), HasSubstr("there are no tags yet"));
    EXPECT_FALSE(choose("project", "", projects));
}

TEST(Candidates, IdentifiersMayBeCut)
{
    const std::vector<std::string> ids{"abcd1", "abcd2", "ef", "efg"};
    EXPECT_EQ(chooseById("entry", "ABCD1", ids).value(), "abcd1");
    EXPECT_EQ(chooseById("entry", "ef", ids).value(), "ef") << "a whole identifier is never ambiguous";
    EXPECT_TRUE(chooseById("entry", "abc", ids).error().isAmbiguous);
    EXPECT_THAT(chooseById("entry", "abc", ids).error().message, HasSubstr("2 identifiers"));
    EXPECT_FALSE(chooseById("entry", "x", ids).error().isAmbiguous);
    EXPECT_FALSE(chooseById("entry", "", ids));
}

TEST(Candidates, ShortIdentifiersStayDifferent)
{
    EXPECT_EQ(shortIds({"0123456789", "9876543210"}), (std::vector<std::string>{"012345", "987654"}));
    EXPECT_EQ(shortIds({"01234567aa", "01234567bb"}), (std::vector<std::string>{"01234567a", "01234567b"}));
    EXPECT_EQ(shortIds({}), std::vector<std::string>());
}

} // namespace
} // namespace orvane
