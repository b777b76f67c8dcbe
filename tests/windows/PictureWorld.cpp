// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureWorld.h"

#include "Support/DateText.h"
#include "Support/Require.h"
#include "Time/AppClock.h"

namespace orvane::testing {

namespace {

/// A Friday afternoon.
constexpr std::string_view moment = "2026-11-20T15:47:36Z";

struct WrittenProject {
    const char *name;
    const char *color;
    std::vector<const char *> tasks;
};

const std::vector<WrittenProject> projects{
    {"Atlas API", "#3B77D0", {"Backend"}}, {"Website", "#B75C14", {"Docs"}}, {"Mobile App", "#8362C5", {}},
    {"Platform", "#658A2A", {"CI"}},       {"Checkout", "#BE4C6F", {}},      {"Admin", "#687C88", {}},
    {"מערכת ההזמנות", "#0084B3", {}},      {"設計システム", "#A754A5", {}},
};

struct WrittenEntry {
    const char *when;
    const char *sentence;
};

const std::vector<WrittenEntry> week{
    {"2026-11-16 9:00-9:30", "Week planning @admin"},
    {"2026-11-16 9:30-12:05", "Usage metering @atlas-api $"},
    {"2026-11-16 12:55-14:30", "Release notes page @website"},
    {"2026-11-16 14:30-15:00", "Client call @website $"},
    {"2026-11-16 15:00-17:25", "Badge counts @mobile-app"},
    {"2026-11-17 8:45-10:00", "Usage metering @atlas-api $"},
    {"2026-11-17 10:00-13:30", "Runner images @platform/ci"},
    {"2026-11-17 14:30-17:00", "Payment errors @checkout"},
    {"2026-11-18 8:30-10:15", "תיקון הטופס @מערכת-ההזמנות"},
    {"2026-11-18 10:15-12:00", "色の見直し @設計システム"},
    {"2026-11-18 13:00-16:55", "🚀 Ship it @checkout"},
    {"2026-11-19 8:50-9:20", "Inbox and planning @admin"},
    {"2026-11-19 9:20-11:40", "Rate limits: design @atlas-api/backend #deep-work $"},
    {"2026-11-19 11:40-12:20", "Copy review @website #review $"},
    {"2026-11-19 13:10-15:40", "Badge counts @mobile-app $"},
    {"2026-11-19 15:40-17:15", "Find out why the nightly job that copies the ledger to the warehouse stops "
                               "after the first of three tables whenever the month turns, and write down "
                               "what would have told us a day before it did @platform/ci"},
    {"2026-11-20 8:52-9:10", "Inbox and planning @admin"},
    {"2026-11-20 9:10-10:35", "Rate limits per key @atlas-api/backend #deep-work $"},
    {"2026-11-20 10:35-11:00", "Stand-up @admin #meeting"},
    {"2026-11-20 11:00-12:30", "Cursor pagination @atlas-api/backend $"},
    {"2026-11-20 13:15-14:20", "Pricing page copy @website #content $"},
};

} // namespace

PictureWorld::PictureWorld(Contents contents)
{
    AppClock::setNow(*instantFromIso8601(moment));
    m_installation.environment["ORVANE_NOW"] = std::string(moment);
    m_installation.environment["TZ"] = "UTC";
    add({"settings", "set", "time-format", "24h"});
    if (contents == Contents::nothing)
        return;
    addCatalog();
    addWeek();
}

PictureWorld::~PictureWorld() = default;

void PictureWorld::add(const Arguments &arguments, const std::string &input) const
{
    const CommandRun run = m_installation.run(arguments, input);
    if (run.exitStatus != 0)
        std::fputs(run.all().c_str(), stderr);
    ORVANE_REQUIRE(run.exitStatus == 0, "the week of the pictures could not be made");
}

void PictureWorld::addCatalog() const
{
    for (const WrittenProject &project : projects) {
        add({"projects", "add", project.name, "--color", project.color});
        for (const char *task : project.tasks)
            add({"tasks", "add", project.name, task});
    }
    for (const char *tag : {"deep-work", "review", "meeting", "content"})
        add({"tags", "add", tag});
}

void PictureWorld::addWeek() const
{
    std::string lines;
    for (const WrittenEntry &entry : week)
        lines += std::string(entry.sentence) + " " + entry.when + "\n";
    add({"add", "-"}, lines);
    add({"start", "Fix the sync bug @atlas-api/backend since 14:23 $"});
}

} // namespace orvane::testing
