// SPDX-License-Identifier: GPL-3.0-or-later
#include "Repositories/GitConfig.h"
#include "Repositories/RepositoryIdentity.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(RepositoryIdentityTest, IsOneForEverySpellingOfARemote)
{
    for (const char *spelling :
         {"git@example.com:acme/web.git", "git@EXAMPLE.com:/acme/web", "example.com:acme/web/",
          "https://example.com/acme/web", "https://Example.com/acme/web.git/",
          "http://me:p@ss@example.com//acme/web", "ssh://git@example.com/acme/web.git",
          "git+ssh://git@example.com/acme/web/.git"})
        EXPECT_EQ(RepositoryIdentity::of(spelling, "/x"), "origin:example.com/acme/web") << spelling;
    // The case of a path can matter, and so can a port.
    EXPECT_EQ(RepositoryIdentity::remoteAddress("ssh://git@h:2222/A/b.git.git"), "h:2222/A/b.git");
    EXPECT_EQ(RepositoryIdentity::remoteAddress("git@[2001:DB8::1]:a/b.git"), "[2001:db8::1]/a/b");
}

TEST(RepositoryIdentityTest, TellsNothingOfALocalPath)
{
    for (const char *local : {"", "file:///srv/git/web.git", "FILE://host/web", "/srv/git/web", "../web",
                              "./a:b", "C:\\repos\\web", "c:/repos/web", "ext::sh -c cat", "/srv/odd://name",
                              "https:///web", "git@:web", "host:"}) {
        const std::string identity = RepositoryIdentity::of(local, "abc");
        EXPECT_EQ(identity, "path:ba7816bf8f01cfea414140de5dae2223") << local;
    }
    EXPECT_NE(RepositoryIdentity::of("", "/a"), RepositoryIdentity::of("", "/b"));
}

TEST(GitConfigTest, TakesTheFirstAddressOfTheOriginAlone)
{
    EXPECT_EQ(GitConfig::origin("[core]\n\turl = no\n[remote \"other\"]\n\turl = no\n"
                                "[remote \"origin\"] ; ours\n\tpushurl = no\n\turl\n  url=git@h:a  \n"
                                "\turl = second\n[remote \"origin\"]\n\turl = third\n"),
              "git@h:a");
    for (const char *none :
         {"", "[remote \"origin\"]", "[remote \"Origin\"]\nurl = x", "[remote origin]\nurl = x",
          "[remote \"origin\"]\n# url = x\n; url = x\n[branch \"main\"]\nurl = x",
          "[remote \"origin\"]\nurl =", "url = x"})
        EXPECT_EQ(GitConfig::origin(none), "") << none;
}

TEST(GitConfigTest, ReadsValuesAsGitDoes)
{
    const auto read = [](std::string_view value) {
        return GitConfig::origin(std::string("[remote \"origin\"]\r\n\turl = ").append(value));
    };
    EXPECT_EQ(read("https://h/a b # where it lives\n"), "https://h/a b");
    EXPECT_EQ(read("\"https://h/a#b \" ; quoted\r\n"), "https://h/a#b ");
    EXPECT_EQ(read("https://h/\\\n  a\\\"\\\\\\t\n"), "https://h/  a\"\\\t");
    EXPECT_EQ(read("C:\\repos\\web\r\nfetch = x"), "C:\\repos\\web");
    EXPECT_EQ(read("\"C:\\\\repos"), "C:\\repos");
    EXPECT_EQ(read("a\\"), "a");
}

} // namespace
} // namespace orvane
