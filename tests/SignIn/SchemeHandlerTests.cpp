// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/SchemeHandler.h"
#include "support/CommandRun.h"

#include <QFile>
#include <QTemporaryDir>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using ::testing::HasSubstr;

/// A home of its own, in which the desktop's own commands look.
class SchemeHandlerTest : public ::testing::Test {
protected:
    SchemeHandlerTest() : m_before(qgetenv("HOME")) { qputenv("HOME", m_home.path().toUtf8()); }
    ~SchemeHandlerTest() override { qputenv("HOME", m_before); }

    std::string file(const char *name) const { return m_home.path().toStdString() + "/" + name; }
    std::string content(const char *name) const
    {
        std::ifstream stream(file(name));
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    QTemporaryDir m_home;
    QByteArray m_before;
};

TEST_F(SchemeHandlerTest, IsCalledWithTheAddressThatIsOpened)
{
    const std::string program = file("orvane-desktop");
    std::ofstream(program) << "#!/bin/sh\nprintf '%s\\n' \"$@\" >> \"$HOME/called\"\n";
    QFile::setPermissions(QString::fromStdString(program),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    ASSERT_TRUE(registerSchemeHandler(program));
    EXPECT_TRUE(registerSchemeHandler(program)) << "again, where it is there already";
    const CommandRun opened =
        runProgram("xdg-open", {"orvane://auth/callback?code=a%2Bb&x=%24HOME"}, {{"DISPLAY", ":99"}});
    EXPECT_EQ(opened.exitStatus, 0) << opened.all();
    EXPECT_EQ(content("called"), "orvane://auth/callback?code=a%2Bb&x=%24HOME\n");
}

TEST_F(SchemeHandlerTest, QuotesAPathThatHasToBe)
{
    ASSERT_TRUE(registerSchemeHandler("/opt/My $Apps/100%/orvane"));
    EXPECT_THAT(content(".local/share/applications/orvane-sign-in.desktop"),
                HasSubstr("\nExec=\"/opt/My \\\\$Apps/100%%/orvane\" %u\n"));
}

} // namespace
} // namespace orvane
