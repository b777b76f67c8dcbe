// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/Account.h"

#include "support/Await.h"
#include "support/KernelKeys.h"
#include "support/TokenServer.h"

#include <QTemporaryDir>
#include <filesystem>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace orvane {
namespace {

using testing::await;
using testing::LoopbackServer;
using testing::SeenRequest;

/// An account at a server elsewhere, without a keychain.
class AccountTest : public ::testing::Test {
protected:
    AccountTest()
    {
        server.setAnswer([](const SeenRequest &request, LoopbackServer::Connection &connection) {
            connection.answer(200, request.path == "/api/me" ? encodeJson(profile()) : "[]");
        });
    }
    ~AccountTest() override { testing::forgetKernelKeys(folder.path().toStdString()); }
    static MeResponse profile()
    {
        MeResponse me;
        me.id = "u";
        me.email = "ada@example.org";
        me.timeZone = "UTC";
        me.defaultWorkspaceId = "w";
        WorkspaceSummary &workspace = me.workspaces.emplace_back();
        workspace.id = "w";
        return me;
    }
    std::shared_ptr<ServerAccess> access()
    {
        const auto access = std::make_shared<ServerAccess>(ServerAccess::Options{
            .installation = &installation, .server = server.url(), .startsServer = false});
        const auto found = await(access->find());
        EXPECT_TRUE(found) << (found ? "" : found.error().message);
        return access;
    }
    std::unique_ptr<Account> signIn()
    {
        auto account =
            await(Account::signIn(access(), {.livesOn = false}, PasswordSignIn{"ada@example.org", "right"}));
        EXPECT_TRUE(account) << account.error().message;
        return account ? std::move(*account) : nullptr;
    }

    QTemporaryDir folder;
    Installation installation{folder.path().toStdString()};
    testing::TokenServer server;
};

TEST_F(AccountTest, StaysWhereItIsWhenItCannotSignOut)
{
    const auto account = signIn();
    ASSERT_NE(account, nullptr);
    EXPECT_EQ(installation.currentServer(), server.url());
    server.setDown(true);
    const auto away = await(account->signOut());
    ASSERT_FALSE(away);
    EXPECT_EQ(away.error().kind, AccountError::Kind::unreachable);
    EXPECT_TRUE(away.error().message.ends_with("You are still signed in."));
    server.setDown(false);
    server.refuseLogout(403);
    EXPECT_FALSE(await(account->signOut()));
    EXPECT_EQ(installation.currentServer(), server.url());

    server.refuseLogout(202);
    EXPECT_TRUE(await(account->signOut()));
    EXPECT_EQ(installation.currentServer(), std::nullopt);
    await(account->close());
}

TEST_F(AccountTest, TellsThatTheServerIsAwayAndThatTheSessionEnded)
{
    const auto account = signIn();
    ASSERT_NE(account, nullptr);
    using Kind = AccountState::Kind;
    AccountState &state = account->state();
    EXPECT_EQ(state.kind(), Kind::online);
    server.setDown(true);
    EXPECT_FALSE(await(account->tracker().refresh(Topic::running)));
    EXPECT_EQ(state.kind(), Kind::offline);
    EXPECT_FALSE(state.reason().empty());
    EXPECT_FALSE(state.nextTry()) << "a process that ends soon does nothing by the clock";
    server.setDown(false);
    await(account->tracker().refresh(Topic::running));
    EXPECT_EQ(state.kind(), Kind::online);

    int changes = 0;
    QObject::connect(&state, &AccountState::changed, &state, [&] { ++changes; });
    server.revokeAccessTokens();
    server.revokeRefreshTokens();
    EXPECT_FALSE(await(account->tracker().refresh(Topic::running)));
    EXPECT_EQ(state.kind(), Kind::sessionEnded);
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(account->isReachable()) << "it answered, after all";
    await(account->close());
}

TEST_F(AccountTest, LeavesASessionThatIsOver)
{
    const auto account = signIn();
    ASSERT_NE(account, nullptr);
    await(account->close());
    testing::forgetKernelKeys(folder.path().toStdString());
    server.revokeRefreshTokens();
    const auto opened = await(Account::open(access(), {.livesOn = false}));
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, AccountError::Kind::signedOut);
    EXPECT_EQ(opened.error().message, "Your session has ended. Please sign in again.");
    EXPECT_EQ(installation.currentServer(), server.url());
    EXPECT_TRUE(await(access()->signOut()));
    EXPECT_EQ(installation.currentServer(), std::nullopt);
    EXPECT_EQ(installation.lastServer(), server.url());
}

TEST_F(AccountTest, TakesNoProfileFromBeforeItsOwnChange)
{
    const auto account = signIn();
    ASSERT_NE(account, nullptr);
    MeResponse changed = profile();
    changed.preferences.timeFormat = "12h";
    std::atomic<bool> isChanged = false;
    std::atomic<int> asked = 0;
    server.setAnswer([&](const SeenRequest &, LoopbackServer::Connection &connection) {
        const bool isOld = asked++ == 0;
        while (isOld && !isChanged && connection.wait(std::chrono::milliseconds{5})) {
        }
        connection.answer(200, encodeJson(isOld ? profile() : changed));
    });
    auto refreshing = account->refreshMe();
    ASSERT_TRUE(testing::eventually([&] { return asked == 1; }));
    await(account->updateMe(changed));
    isChanged = true;
    EXPECT_TRUE(await(std::move(refreshing)));
    EXPECT_EQ(account->me(), changed);
    EXPECT_EQ(asked, 2);
    await(account->close());
}

TEST_F(AccountTest, KnowsAServerThatNobodySignedInTo)
{
    server.setDown(true);
    const auto opened = await(Account::open(access(), {.livesOn = false}));
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, AccountError::Kind::neverSignedIn);
    EXPECT_EQ(opened.error().message, "You are not signed in at " + server.url() + ".");
}

TEST_F(AccountTest, TellsAServerThatIsBusyFromOneThatIsAway)
{
    const auto account = signIn();
    ASSERT_NE(account, nullptr);
    const AccountState &state = account->state();
    int status = 503;
    server.setAnswer(
        [&](const SeenRequest &, LoopbackServer::Connection &connection) { connection.answer(status, ""); });
    for (const auto &[code, words] : {std::pair{503, "worked on (503)"}, {429, "wants a pause (429)"}}) {
        status = code;
        EXPECT_FALSE(await(account->tracker().refresh(Topic::running)));
        EXPECT_EQ(state.kind(), AccountState::Kind::offline);
        EXPECT_TRUE(state.isTurnedAway());
        EXPECT_NE(state.reason().find(words), std::string::npos) << state.reason();
    }
    server.setDown(true);
    EXPECT_FALSE(await(account->tracker().refresh(Topic::running)));
    EXPECT_FALSE(state.isTurnedAway());
    await(account->close());
}

TEST(InstallationKeychain, SetsOtherHomeFoldersApartAndKeepsSignInsFromBefore)
{
    const QTemporaryDir folder;
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", folder.path().toUtf8());
    Installation installation;
    const std::optional own = installation.root();
    EXPECT_TRUE(own->starts_with(folder.path().toStdString())) << *own;
    EXPECT_EQ(installation.keychainFolder("https://a.example", false), own);
    installation.setAccount("https://a.example", "ada");
    EXPECT_EQ(installation.keychainFolder("https://a.example", false), std::nullopt) << "it lies there";
    EXPECT_EQ(installation.keychainFolder("https://a.example", true), own) << "the next one does not";
    installation.noteSignIn("https://a.example");
    EXPECT_EQ(installation.keychainFolder("https://a.example", false), own);
    EXPECT_EQ(installation.currentServer(), "https://a.example");

    // The usual place is known by what the system says of its user.
    const QByteArray home = ::getpwuid(::geteuid())->pw_dir;
    qputenv("XDG_DATA_HOME", home + "/.local/share");
    EXPECT_EQ(Installation().keychainFolder("https://b.example", true), std::nullopt);
    before.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", before);
}

TEST(InstallationFolder, IsRefusedWhenOthersCanWriteToIt)
{
    const QTemporaryDir folder;
    const Installation installation(folder.path().toStdString());
    std::string problem;
    EXPECT_TRUE(installation.makeFolder(problem)) << problem;
    // A sticky one, like /tmp, keeps nobody from planting links there.
    using enum std::filesystem::perms;
    std::filesystem::permissions(installation.root(), all | sticky_bit);
    EXPECT_FALSE(installation.makeFolder(problem));
    EXPECT_NE(problem.find("chmod 700"), std::string::npos) << problem;
}

} // namespace
} // namespace orvane
