// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/LivingAccountTest.h"

#include "Support/Require.h"

namespace orvane::simulator {

namespace {

constexpr const char *address = "http://127.0.0.1";
constexpr const char *zone = "Europe/Paris";

World *theWorld = nullptr;

Instant worldsNow()
{
    return theWorld->now();
}

} // namespace

LivingAccountTest::LivingAccountTest()
{
    theWorld = &world;
    AppClock::setSource(&worldsNow);
    const auto network = std::make_shared<NetworkThread>(NetworkThread::OnThisThread());
    const auto wire = std::make_shared<Wire>(world, server, std::make_shared<Link>());
    AuthSessionOptions options{
        .server = address, .tokenStore = std::make_shared<MemoryTokenStore>(), .deviceName = "phone"};
    options.reauthenticator = [this] { return codeFrom(&server, zone); };
    options.now = &worldsNow;
    phone =
        std::make_unique<OrvaneClient>(network, AuthSession::make(*network, wire, std::move(options)), wire);
}

LivingAccountTest::~LivingAccountTest()
{
    if (window)
        run(window->close());
    window.reset();
    AppClock::setSource(nullptr);
}

void LivingAccountTest::letEnd(const std::function<bool()> &isDone)
{
    runPosted();
    while (!isDone()) {
        const bool goesOn = world.step();
        ORVANE_REQUIRE(goesOn || isDone(), "the test would wait for ever");
    }
}

std::unique_ptr<Account> LivingAccountTest::open(bool livesOn)
{
    auto access = std::make_shared<ServerAccess>(
        ServerAccess::Options{.installation = &installation,
                              .server = address,
                              .network = std::make_shared<NetworkThread>(NetworkThread::OnThisThread()),
                              .transport = std::make_shared<Wire>(world, server, link),
                              .reauthenticator = [this] { return codeFrom(&server, zone); }});
    EXPECT_TRUE(run(access->find()));
    auto account =
        run(Account::open(access, {.livesOn = livesOn,
                                   .retryTimer = [this] { return std::make_unique<LaneTimer>(world); },
                                   .wallTimer = [this] { return std::make_unique<LaneWallTimer>(world); },
                                   .store = {.executor = std::make_shared<LaneExecutor>(world)}}));
    EXPECT_TRUE(account) << (account ? "" : account.error().message);
    if (!account)
        return nullptr;
    run((*account)->tracker().load());
    return std::move(*account);
}

void LivingAccountTest::recordElsewhere(const std::string &id, Instant start)
{
    CreateTimeEntryRequest entry;
    entry.id = id;
    entry.description = "on another device";
    entry.start = start;
    entry.stop = start + std::chrono::hours{1};
    EXPECT_TRUE(run(phone->createTimeEntry(window->tracker().workspace().id, entry)));
}

} // namespace orvane::simulator
