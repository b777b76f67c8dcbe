// SPDX-License-Identifier: GPL-3.0-or-later
// Which time zone the real command works in, and what it says when it is not the one that was meant.
#include "support/CommandRun.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class Zone : public testing::Test {
protected:
    CommandRun list() { return installation.run({"list"}); }
    std::string startOf(const CommandRun &added)
    {
        EXPECT_EQ(added.exitStatus, 0) << added.all();
        return added.object()[u"entry"][u"start"].toString().toStdString();
    }
    /// A computer that knows this one zone alone.
    void knowOnly(const std::string &zone)
    {
        namespace fs = std::filesystem;
        const fs::path folder = installation.folder() + "/zones";
        fs::create_directories((folder / zone).parent_path());
        fs::copy_file("/usr/share/zoneinfo/" + zone, folder / zone);
        installation.environment["TZDIR"] = folder.string();
    }

    TestInstallation installation;
};

TEST_F(Zone, TheOneOfTheCallReadsTheClockThere)
{
    const auto added = [&](const std::string &zone) {
        return startOf(installation.json(
            {"--zone", zone, "add", "x", "--start", "2025-07-01 12:00", "--stop", "2025-07-01 13:00"}));
    };
    EXPECT_EQ(added("America/Mexico_City"), "2025-07-01T18:00:00.000Z");
    EXPECT_EQ(added("America/Ciudad_Juarez"), "2025-07-01T18:00:00.000Z");
    for (const char *unknown : {"Mars/Base", "Europe", "XYZ5", "../../../dev/ptmx"}) {
        const CommandRun run = installation.run({"--zone", unknown, "list"});
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.errors, HasSubstr(std::string("\"") + unknown + "\""));
    }
}

TEST_F(Zone, AnAccountsZoneThatIsUnknownHereIsTold)
{
    installation.environment["TZ"] = "Asia/Tokyo";
    EXPECT_THAT(list().errors, IsEmpty());
    knowOnly("Europe/Paris");
    installation.environment["TZ"] = "Europe/Paris";
    const CommandRun run = list();
    EXPECT_EQ(run.exitStatus, 0) << run.all();
    EXPECT_EQ(run.errors, "The time zone \"Asia/Tokyo\" is not known on this computer. Times are in "
                          "Europe/Paris. Another zone: --zone ZONE\n");
    const std::string home = installation.folder() + "/home";
    std::filesystem::create_directory(home);
    EXPECT_THAT(installation.run({"activity", "--home", home}).errors, HasSubstr("\"Asia/Tokyo\""));
    EXPECT_THAT(installation.run({"--zone", "Europe/Paris", "list"}).errors, IsEmpty());
}

TEST_F(Zone, AComputersZoneThatIsUnknownIsToldFromTheFirstUse)
{
    installation.environment["TZ"] = "XYZ5";
    const std::string notice = "This computer's time zone \"XYZ5\" is not known. Times are in UTC. "
                               "Another zone: --zone ZONE\n";
    EXPECT_THAT(list().errors, HasSubstr(notice));
    EXPECT_EQ(list().errors, notice);
    installation.environment["TZ"] = "UTC";
    EXPECT_THAT(list().errors, IsEmpty());
}

} // namespace
} // namespace orvane
