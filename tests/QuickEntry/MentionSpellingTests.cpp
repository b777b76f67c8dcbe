// SPDX-License-Identifier: GPL-3.0-or-later
// That each spelling is read back as what it stands for is tested with the command's completion, which makes
// them all.
#include "QuickEntry/MentionSpelling.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

ProjectResponse projectCalled(const std::string &name)
{
    ProjectResponse project;
    project.id = name;
    project.name = name;
    return project;
}

TEST(MentionSpelling, HeedsWhatStandsAround)
{
    ProjectResponse web = projectCalled("Web");
    web.tasks.push_back({"design", "Web", "Design", true});
    Catalog catalog;
    catalog.replace({web, projectCalled("Web Shop")}, {}, {{"t", "w", "late"}});
    const SentenceCatalog names(catalog.projects(), catalog.clients(), catalog.tags());
    const MentionSpelling spelling(catalog, names);
    const std::vector<PaletteItem> items = PaletteItem::ofCatalog(catalog.projects(), {}, {});
    const PaletteItem &project = items.front();
    const PaletteItem &task = items.back();
    EXPECT_EQ(spelling.of(project, {.before = "Paint the ", .after = " shop"}), "@Web");
    EXPECT_EQ(spelling.of(project, {.before = "@Web-Shop "}), std::nullopt) << "a sentence has one project";
    EXPECT_EQ(spelling.of(task, {.before = "Paint ", .after = " now"}), "@Design");
    EXPECT_EQ(spelling.of(task, {.before = "Paint ", .after = " @Web-Shop"}), "@Web/Design")
        << "alone it would be looked for in the shop";
    const PaletteItem late = PaletteItem::ofCatalog({}, {}, catalog.tags()).front();
    EXPECT_EQ(spelling.of(late, {.before = "Paint "}), "#late");
}

TEST(OpenMention, IsTheOneThatReachesTheEnd)
{
    EXPECT_EQ(openMention("Fix @We"), 4U);
    EXPECT_EQ(openMention("@a #"), 3U);
    EXPECT_EQ(openMention("Fix @\"Big Pro"), 4U);
    EXPECT_EQ(openMention("@web/\"Write u"), 0U);
    EXPECT_EQ(openMention("@x;#y"), 0U);
    for (const char *none : {"", "Fix", "Fix @We ", "me@web", "C#", "@\"Big Project\" x"})
        EXPECT_EQ(openMention(none), std::nullopt) << none;
}

} // namespace
} // namespace orvane
