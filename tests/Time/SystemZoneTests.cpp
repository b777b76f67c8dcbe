// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/SystemZone.h"

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;

class SystemZone : public testing::Test {
protected:
    SystemZone() : sources{.variable = {}, .link = path("localtime"), .name = path("timezone")} {}

    std::string path(const char *name) const { return m_root.path().toStdString() + "/" + name; }
    static std::string unknown(const Result<std::string, std::string> &zone)
    {
        return zone ? "known: " + *zone : zone.error();
    }
    Result<std::string, std::string> withVariable(const std::string &text)
    {
        ZoneSources changed = sources;
        changed.variable = text;
        return systemZone(changed);
    }

private:
    QTemporaryDir m_root;

protected:
    ZoneSources sources;
};

TEST_F(SystemZone, IsWhatTheLinkLeadsTo)
{
    EXPECT_EQ(systemZone(sources), "UTC") << "as a computer that was never told one";
    fs::create_symlink("../usr/share/zoneinfo/Asia/Calcutta", sources.link);
    EXPECT_EQ(systemZone(sources), "Asia/Calcutta");
    fs::rename(sources.link, path("second"));
    fs::create_symlink("second", sources.link);
    EXPECT_EQ(systemZone(sources), "Asia/Calcutta");
    fs::remove(sources.link);
    fs::create_symlink("/usr/share/zoneinfo/Mars/Base", sources.link);
    EXPECT_EQ(unknown(systemZone(sources)), "Mars/Base");
    fs::remove(sources.link);
    fs::create_symlink("localtime", sources.link);
    EXPECT_EQ(systemZone(sources), "UTC") << "a link to itself, which no program can follow";
}

TEST_F(SystemZone, IsInAFileBesideACopy)
{
    std::ofstream(sources.link) << "TZif2";
    EXPECT_EQ(unknown(systemZone(sources)), "");
    std::ofstream(sources.name) << "Europe/Paris\n";
    EXPECT_EQ(systemZone(sources), "Europe/Paris");
    std::ofstream(sources.name) << "Europe/Nowhere\n";
    EXPECT_EQ(unknown(systemZone(sources)), "Europe/Nowhere");
}

TEST_F(SystemZone, IsWhatTheVariableNames)
{
    fs::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", sources.link);
    EXPECT_EQ(withVariable("Europe/Paris"), "Europe/Paris");
    EXPECT_EQ(withVariable(":Europe/Paris"), "Europe/Paris");
    EXPECT_EQ(withVariable("/usr/share/zoneinfo/Europe/Paris"), "Europe/Paris");
    EXPECT_EQ(withVariable(":" + sources.link), "Asia/Tokyo");
    EXPECT_EQ(withVariable(""), "UTC");
    for (const char *text :
         {"XYZ5", "Europe", "/dev/ptmx", "../../../dev/ptmx", "CET-1CEST,M3.5.0,M10.5.0/3"})
        EXPECT_EQ(unknown(withVariable(text)), text);
}

} // namespace
} // namespace orvane
