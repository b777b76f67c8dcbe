// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/CatalogUse.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using Kind = CatalogItem::Kind;

const Instant now = std::chrono::sys_days{std::chrono::year{2026} / 3 / 4} + 12h;

TimeEntryResponse entryOn(std::string id, std::optional<std::string> project, std::optional<std::string> task,
                          std::vector<std::string> tags)
{
    TimeEntryResponse entry;
    entry.id = std::move(id);
    entry.projectId = std::move(project);
    entry.taskId = std::move(task);
    entry.tagIds = std::move(tags);
    entry.start = now - 2h;
    entry.stop = now - 1h;
    return entry;
}

TEST(CatalogUse, CountsSharesAndRunningTimeAndWhatWaits)
{
    TimeEntryResponse split = entryOn("split", "web", "design", {"review"});
    split.shares = {{"web", "code", false, 25, ""}, {"shop", {}, false, 50, ""}, {"web", {}, false, 25, ""}};
    TimeEntryResponse running = entryOn("running", "web", {}, {});
    running.stop.reset();
    const std::vector<TimeEntryResponse> entries{entryOn("plain", "web", "design", {"review", "calm"}), split,
                                                 running, entryOn("other", "shop", {}, {})};
    const auto use = [&](Kind kind, const char *id) {
        return CatalogUse::of({kind, id}, entries, {"split", "other"}, now);
    };
    EXPECT_EQ(use(Kind::project, "web"), (CatalogUse{3, 3600 + 1800 + 7200, 1}));
    EXPECT_EQ(use(Kind::project, "shop"), (CatalogUse{2, 1800 + 3600, 2}));
    EXPECT_EQ(use(Kind::task, "design"), (CatalogUse{1, 3600, 0}))
        << "a split entry's own task counts nowhere";
    EXPECT_EQ(use(Kind::task, "code"), (CatalogUse{1, 900, 1}));
    EXPECT_EQ(use(Kind::tag, "review"), (CatalogUse{2, 7200, 1}));
    EXPECT_EQ(use(Kind::tag, "web"), CatalogUse{});
}

} // namespace
} // namespace orvane
