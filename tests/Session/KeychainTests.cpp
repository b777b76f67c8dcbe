// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/Keychain.h"

#include "Http/NetworkThread.h"
#include "Session/KernelKeyring.h"
#include "Session/MemoryTokenStore.h"
#include "Session/SparedKeychain.h"
#include "Session/TokenStoreChoice.h"
#include "support/Await.h"
#include "support/KernelKeys.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>

// The tests named Keyring run under support/with-keyring.sh, each in a process and a session of its own; the
// others want no bus.

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::await;

template <class Make>
auto on(NetworkThread &thread, Make make)
{
    return await(thread.run(std::move(make)));
}

Task<bool> write(std::shared_ptr<TokenStore> store, std::string value, std::string account)
{
    co_await store->write(std::move(value), std::move(account));
    co_return true;
}

Task<bool> remove(std::shared_ptr<TokenStore> store, std::string account)
{
    co_await store->remove(std::move(account));
    co_return true;
}

class KeychainTest : public ::testing::Test {
protected:
    std::shared_ptr<Keychain> make(const char *service = "com.orvanetrack.test")
    {
        return std::make_shared<Keychain>(QString::fromLatin1(service), 2s);
    }
    StoredToken read(const std::shared_ptr<TokenStore> &store, const std::string &account)
    {
        return on(thread, [=] { return store->read(account); });
    }
    void write(const std::shared_ptr<TokenStore> &store, const std::string &value, const std::string &account)
    {
        on(thread, [=] { return orvane::write(store, value, account); });
    }
    void remove(const std::shared_ptr<TokenStore> &store, const std::string &account)
    {
        on(thread, [=] { return orvane::remove(store, account); });
    }
    void lock()
    {
        const QString array = QStringLiteral("array:objpath:/org/freedesktop/secrets/collection/login");
        ASSERT_EQ(QProcess::execute(QStringLiteral("dbus-send"),
                                    {QStringLiteral("--session"), QStringLiteral("--print-reply"),
                                     QStringLiteral("--dest=org.freedesktop.secrets"),
                                     QStringLiteral("/org/freedesktop/secrets"),
                                     QStringLiteral("org.freedesktop.Secret.Service.Lock"), array}),
                  0);
    }

    NetworkThread thread;
};

class KeyringTest : public KeychainTest {
protected:
    void SetUp() override
    {
        if (!qEnvironmentVariableIsSet("ORVANE_KEYRING_PID"))
            GTEST_SKIP() << "runs under with-keyring.sh";
        ASSERT_GT(keyringProcess(), 1);
    }
    static QString service() { return QStringLiteral("com.orvanetrack.test"); }
    static void stall() { ASSERT_EQ(::kill(keyringProcess(), SIGSTOP), 0); }
    static void goOn() { ASSERT_EQ(::kill(keyringProcess(), SIGCONT), 0); }
    static pid_t keyringProcess() { return qEnvironmentVariableIntValue("ORVANE_KEYRING_PID"); }
};

TEST_F(KeyringTest, KeepsTokensByServiceAndAccount)
{
    EXPECT_EQ(on(thread, [] { return Keychain::probe(); }), Keychain::Health::works);
    const auto one = make();
    const auto two = make("com.orvanetrack.test.0123456789abcdef");
    write(one, "first", "http://a.example");
    write(one, "second", "http://a.example");
    write(one, "other", "http://b.example");
    // Another object, as another process has it.
    EXPECT_EQ(read(make(), "http://a.example"), "second");
    EXPECT_EQ(read(two, "http://a.example"), std::nullopt);
    remove(one, "http://a.example");
    remove(one, "http://a.example");
    EXPECT_EQ(read(make(), "http://a.example"), std::nullopt);
    EXPECT_EQ(read(make(), "http://b.example"), "other");
}

TEST_F(KeyringTest, IsChosenWhereItWorks)
{
    const auto choice = await(makeTokenStore(thread, std::nullopt));
    EXPECT_FALSE(choice.notice);
    EXPECT_EQ(choice.place, TokenPlace::keychain);
}

TEST_F(KeyringTest, DoesNotHangWhenLocked)
{
    const auto keychain = make();
    write(keychain, "token", "http://a.example");
    lock();
    QElapsedTimer timer;
    timer.start();
    // What this process knows still serves it; another one has nothing to go by.
    EXPECT_EQ(read(keychain, "http://a.example"), "token");
    EXPECT_EQ(read(make(), "http://a.example"), std::nullopt);
    EXPECT_NE(on(thread, [] { return Keychain::probe(1s); }), Keychain::Health::works);
    EXPECT_LT(timer.elapsed(), 8000);
}

TEST_F(KeyringTest, GoesOnWhenTheKeyringGoesAway)
{
    const auto keychain = make();
    write(keychain, "token", "http://a.example");
    ASSERT_EQ(::kill(keyringProcess(), SIGKILL), 0);
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(read(keychain, "http://a.example"), "token");
    write(keychain, "next token", "http://a.example");
    EXPECT_EQ(read(keychain, "http://a.example"), "next token");
    remove(keychain, "http://a.example");
    EXPECT_EQ(read(keychain, "http://a.example"), std::nullopt);
    EXPECT_LT(timer.elapsed(), 12'000);
}

TEST_F(KeyringTest, IsLeftAloneWhileItDoesNotAnswer)
{
    const auto keychain = std::make_shared<Keychain>(service(), 300ms);
    write(keychain, "token", "http://a.example");
    stall();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 20; ++i)
        EXPECT_FALSE(read(keychain, "http://a.example"));
    // One that is only slow is no reason to forget who was signed in before.
    const auto choice = await(makeTokenStore(thread, std::nullopt));
    EXPECT_TRUE(choice.notice);
    EXPECT_EQ(choice.place, TokenPlace::silentKeychain);
    EXPECT_FALSE(on(thread, [&] { return choice.store->read("http://a.example"); }));
    EXPECT_LT(timer.elapsed(), 5000);
    // As with a prompt that its user answers late.
    goOn();
    EXPECT_TRUE(testing::eventually([&] { return read(keychain, "http://a.example") == "token"; }));
    EXPECT_FALSE(await(makeTokenStore(thread, std::nullopt)).notice);
}

TEST_F(KeyringTest, TakesWhatLayInTheSpare)
{
    const auto spare = std::make_shared<MemoryTokenStore>();
    const auto inSpare = [&](const char *account) {
        return on(thread, [spare, account] { return spare->read(account); });
    };
    const auto keychain = make();
    const auto store = std::make_shared<SparedKeychain>(keychain, spare);
    on(thread, [=] { return orvane::write(spare, "of ssh", "http://a.example"); });
    write(keychain, "older", "http://a.example");
    EXPECT_EQ(read(store, "http://a.example"), "of ssh");
    write(store, "next", "http://a.example");
    EXPECT_EQ(read(make(), "http://a.example"), "next");
    EXPECT_EQ(inSpare("http://a.example"), std::nullopt) << "a token lies in one place";

    ASSERT_EQ(::kill(keyringProcess(), SIGKILL), 0);
    write(store, "not taken", "http://a.example");
    EXPECT_EQ(inSpare("http://a.example"), "not taken");
    EXPECT_EQ(read(store, "http://a.example"), "not taken");
    remove(store, "http://a.example");
    EXPECT_EQ(read(store, "http://a.example"), std::nullopt);
}

TEST_F(KeyringTest, WritesAgainWhatGotNoAnswer)
{
    // The first operation is the one that hangs, and it lands late; the next is not even begun.
    const auto keychain = std::make_shared<Keychain>(service(), 300ms);
    write(keychain, "first", "http://a.example");
    stall();
    EXPECT_FALSE(read(keychain, "http://a.example"));
    write(keychain, "second", "http://a.example");
    goOn();
    EXPECT_TRUE(testing::eventually([&] { return read(make(), "http://a.example") == "first"; }));
    EXPECT_EQ(read(keychain, "http://a.example"), "second");
    EXPECT_EQ(read(make(), "http://a.example"), "second");
}

TEST_F(KeyringTest, PrefersWhatAnotherProcessWroteMeanwhile)
{
    const auto keychain = std::make_shared<Keychain>(service(), 300ms);
    write(keychain, "first", "http://a.example");
    stall();
    EXPECT_FALSE(read(keychain, "http://a.example"));
    write(keychain, "second", "http://a.example");
    goOn();
    const auto other = make();
    EXPECT_TRUE(testing::eventually([&] { return read(other, "http://a.example").has_value(); }));
    write(other, "third", "http://a.example");
    EXPECT_EQ(read(keychain, "http://a.example"), "third");
    EXPECT_EQ(read(make(), "http://a.example"), "third");
}

TEST_F(KeychainTest, IsNotChosenWithoutABus)
{
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS"))
        GTEST_SKIP() << "there is a bus";
    const auto choice = await(makeTokenStore(thread, std::nullopt));
    EXPECT_EQ(choice.place, testing::hasKernelKeyring() ? TokenPlace::kernelKeyring : TokenPlace::memory);
    EXPECT_TRUE(choice.notice);
    // A session in it goes on all the same.
    const auto keychain = make();
    write(keychain, "token", "http://a.example");
    EXPECT_EQ(read(keychain, "http://a.example"), "token");
}

TEST_F(KeychainTest, HasAKeyringOfTheKernelBeside)
{
    if (!testing::hasKernelKeyring())
        GTEST_SKIP() << "this system has none, or forbids it";
    const std::string service = "com.orvanetrack.test." + std::to_string(QCoreApplication::applicationPid());
    const auto one = makeKernelKeyring(service);
    const auto two = makeKernelKeyring(service + "0");
    const std::string longToken(3000, 't');
    write(one, "first", "http://a.example");
    write(one, longToken, "http://a.example");
    write(one, "other", "http://b.example");
    EXPECT_EQ(read(makeKernelKeyring(service), "http://a.example"), longToken);
    EXPECT_EQ(read(two, "http://a.example"), std::nullopt);
    // One too long for the kernel is kept by this process alone, and the one before is gone.
    const std::string tooLong(40'000, 't');
    write(one, tooLong, "http://a.example");
    EXPECT_EQ(read(one, "http://a.example"), tooLong);
    EXPECT_EQ(read(makeKernelKeyring(service), "http://a.example"), std::nullopt);
    for (const char *account : {"http://a.example", "http://b.example", "http://b.example"})
        remove(one, account);
    EXPECT_EQ(read(one, "http://a.example"), std::nullopt);
    EXPECT_EQ(read(makeKernelKeyring(service), "http://b.example"), std::nullopt);
}

TEST(KeychainService, IsTheInstallationsOwn)
{
    const QTemporaryDir folder;
    const auto service = [](const QString &path) { return keychainService(path.toStdString()); };
    EXPECT_EQ(keychainService({}), QStringLiteral("com.orvanetrack.refresh-token"));
    const QString own = service(folder.path());
    EXPECT_TRUE(own.startsWith(QStringLiteral("com.orvanetrack.refresh-token.")));
    EXPECT_EQ(own.size(), 30 + 16);
    EXPECT_EQ(service(folder.path() + QStringLiteral("/new/../")), own);
    // The name of a folder does not change when the folder is made.
    const QString later = folder.filePath(QStringLiteral("later"));
    const QString before = service(later);
    EXPECT_NE(before, own);
    ASSERT_TRUE(QDir().mkdir(later));
    EXPECT_EQ(service(later), before);
    ASSERT_TRUE(QFile::link(folder.path(), later + QStringLiteral("/link")));
    EXPECT_EQ(service(later + QStringLiteral("/link")), own);
}

} // namespace
} // namespace orvane
