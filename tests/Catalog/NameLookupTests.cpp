// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/NameLookup.h"

#include "Catalog/CatalogLookup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Ids = std::vector<std::string>;
using Why = NoSingleItem::Why;

const std::vector<NamedItem> projects{
    {"0a11c0de-0000-4000-8000-000000000001", "Website", "Acme"},
    {"0a11c0de-0000-4000-8000-000000000002", "Website redesign"},
    {"bead0000-0000-4000-8000-000000000003", "Straße"},
    {"bead0000-0000-4000-8000-000000000004", "website"},
    {"cafe0000-0000-4000-8000-000000000005", "API"},
};

ProjectResponse project(const std::string &id, const std::string &name,
                        const std::optional<std::string> &clientId = {})
{
    ProjectResponse project;
    project.id = id;
    project.name = name;
    project.clientId = clientId;
    return project;
}

TEST(NameLookup, GoesByIdThenNameThenBeginning)
{
    EXPECT_EQ(lookUp(projects[3].id, projects), 3U);
    EXPECT_EQ(lookUp("api", projects), 4U);
    EXPECT_EQ(lookUp("STRASSE", projects), 2U) << "names are folded in full";
    EXPECT_EQ(lookUp("website r", projects), 1U);
    EXPECT_EQ(lookUp("CAFE0", projects), 4U);
    EXPECT_EQ(lookUp("ap", projects), 4U);
}

TEST(NameLookup, TellsAmbiguousFromUnknown)
{
    EXPECT_EQ(lookUp("Website", projects).error(), (NoSingleItem{Why::ambiguous, {projects[0], projects[3]}}))
        << "whole names count more than beginnings";
    EXPECT_EQ(lookUp("bead", projects).error().why, Why::ambiguous);
    EXPECT_EQ(lookUp("caf", projects).error(), (NoSingleItem{Why::unknown, projects}))
        << "three characters of an identifier could be a name by chance";
    EXPECT_EQ(lookUp("", projects).error().why, Why::unknown);
    EXPECT_THAT(lookUp("x", {}).error().items, IsEmpty());
}

TEST(NameLookup, IdentifiersMayBeCut)
{
    const Ids ids{"abcd1", "abcd2", "ef", "efg"};
    EXPECT_EQ(lookUpId("ABCD1", ids).value(), "abcd1");
    EXPECT_EQ(lookUpId("ef", ids).value(), "ef") << "a whole identifier is never ambiguous";
    EXPECT_EQ(lookUpId("abc", ids).error().matches, 2U);
    EXPECT_FALSE(lookUpId("x", ids).error().isAmbiguous());
    EXPECT_FALSE(lookUpId("", ids));
}

TEST(NameLookup, ShortIdentifiersStayDifferent)
{
    EXPECT_EQ(shortIds({"0123456789", "9876543210"}), (Ids{"012345", "987654"}));
    EXPECT_EQ(shortIds({"01234567aa", "01234567bb"}), (Ids{"01234567a", "01234567b"}));
    EXPECT_THAT(shortIds({}), IsEmpty());
}

TEST(CatalogLookup, FindsWhatCanBeChosenForAnEntry)
{
    ProjectResponse website = project("p-website", "Website", "c-acme");
    website.tasks = {{"t-design", "p-website", "Design", true}, {"t-done", "p-website", "Done", false}};
    ProjectResponse shop = project("p-shop", "Shop");
    shop.tasks = {{"t-shop-design", "p-shop", "Design", true}};
    ProjectResponse old = project("p-old", "Old");
    old.isArchived = true;
    Catalog catalog;
    catalog.replace({website, shop, old}, {{"c-acme", "w", "Acme", false}}, {{"g-docs", "w", "docs"}});

    EXPECT_EQ(lookUpProject("web", catalog), "p-website");
    EXPECT_EQ(lookUpProject("old", catalog).error(),
              (NoSingleItem{Why::archived, {{"p-old", "Old", {}, true}}}));
    EXPECT_THAT(lookUpProject("x", catalog).error().items,
                ElementsAre(NamedItem{"p-website", "Website", "Acme"}, NamedItem{"p-shop", "Shop"}))
        << "what is offered can be chosen";
    EXPECT_EQ(lookUpTask("design", catalog).error(),
              (NoSingleItem{Why::ambiguous,
                            {{"t-design", "Design", "Website"}, {"t-shop-design", "Design", "Shop"}}}));
    EXPECT_EQ(lookUpTask("design", catalog, "p-shop"), "t-shop-design");
    EXPECT_EQ(lookUpTask("done", catalog).error().why, Why::archived) << "not active";
    EXPECT_EQ(lookUpTag("DOCS", catalog), "g-docs");
}

} // namespace
} // namespace orvane
