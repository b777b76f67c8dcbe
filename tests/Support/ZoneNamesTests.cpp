// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/ZoneNames.h"

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvane {
namespace {

namespace fs = std::filesystem;

/// A zone folder with all that such folders also hold.
class ZoneNames : public testing::Test {
protected:
    ZoneNames()
    {
        for (const char *zone : {"Europe/Paris", "America/Argentina/Ushuaia", "Etc/GMT+1", "EST5EDT",
                                 "Factory", "posix/Europe/Paris", "posixrules", "Europe/.Paris.tmp"})
            write(zone, "TZif2");
        write("../outside", "TZif2");
        write("zone.tab", "FR\t+4852+00220\tEurope/Paris");
        write("Europe/README", "no zone");
        fs::create_symlink("Paris", folder() + "/Europe/Monaco");
        fs::create_symlink("../outside", folder() + "/Outside");
        fs::create_symlink("Europe", folder() + "/Linked");
        fs::create_symlink("nowhere", folder() + "/Europe/Broken");
        ::mkfifo((folder() + "/Europe/Pipe").c_str(), 0600);
    }

    std::string folder() const { return m_root.path().toStdString() + "/zoneinfo"; }

private:
    void write(const std::string &name, const char *content)
    {
        const fs::path path = fs::path(folder()) / name;
        fs::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }

    QTemporaryDir m_root;
};

TEST_F(ZoneNames, AreTheFilesWithTheFormAndNameOfAZone)
{
    EXPECT_EQ(zoneNames(folder()),
              (std::vector<std::string>{"America/Argentina/Ushuaia", "EST5EDT", "Etc/GMT+1", "Europe/Monaco",
                                        "Europe/Paris", "Outside"}));
    for (const std::string &name : zoneNames(folder())) {
        EXPECT_EQ(zoneFile(name, folder()), folder() + "/" + name);
        EXPECT_TRUE(isZone(name, folder()));
    }
}

TEST_F(ZoneNames, NothingElseIsFound)
{
    using namespace std::string_literals;
    for (const std::string &text : {""s,
                                    "Europe"s,
                                    "Europe/"s,
                                    "/Europe/Paris"s,
                                    "Europe//Paris"s,
                                    "./Europe/Paris"s,
                                    "Europe/../Europe/Paris"s,
                                    "../outside"s,
                                    "europe/paris"s,
                                    "Europe/PARIS"s,
                                    "Europe/Paris\0"s,
                                    "Europe/Paris "s,
                                    "Europe/Paris/"s,
                                    "Europe/Paris/X"s,
                                    "Linked/Paris"s,
                                    "Europe/Pipe"s,
                                    "Europe/Broken"s,
                                    "Europe/README"s,
                                    "Factory"s,
                                    "posix/Europe/Paris"s,
                                    "posixrules"s,
                                    "zone.tab"s,
                                    "XYZ5"s,
                                    "UTC+1"s,
                                    folder() + "/Europe/Paris",
                                    "../../../../../dev/ptmx"s,
                                    std::string(100'000, 'A'),
                                    "A/"s + std::string(100'000, '/')})
        EXPECT_FALSE(isZone(text, folder())) << text.substr(0, 60);
    EXPECT_TRUE(zoneNames(folder() + "/nowhere").empty());
}

TEST(ZoneFolder, IsTheSystemsUnlessAnotherIsNamed)
{
    ASSERT_TRUE(isZone("Europe/Paris"));
    ASSERT_TRUE(isZone("Asia/Calcutta")) << "a name of old";
    const QTemporaryDir other;
    ::setenv("TZDIR", other.path().toUtf8().constData(), 1);
    EXPECT_FALSE(isZone("Europe/Paris"));
    ::setenv("TZDIR", "relative", 1);
    EXPECT_TRUE(isZone("Europe/Paris"));
    ::unsetenv("TZDIR");
}

} // namespace
} // namespace orvane
