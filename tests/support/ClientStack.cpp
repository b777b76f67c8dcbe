// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ClientStack.h"

#include "LocalServer/LocalAccount.h"
#include "Session/MemoryTokenStore.h"

#include <gtest/gtest.h>

namespace orvane::testing {

ClientStack::ClientStack()
{
    m_link = LocalServerLink::make(
        *m_network, {.folder = m_installation.serverFolder(), .program = builtProgram("orvane-server")});
    const auto hello = await(m_link->ensureRunning(std::chrono::seconds{30}));
    if (!hello) {
        ADD_FAILURE() << describe(hello.error());
        std::abort();
    }
    m_address = hello->address;
    m_proxy = std::make_unique<FaultProxy>(m_address);
    m_client = makeClient(m_proxy->url());
    m_otherDevice = makeClient(m_address);
    const auto me = await(m_otherDevice->getMe());
    if (!me || me->workspaces.empty()) {
        ADD_FAILURE() << (me ? "no workspace" : describe(me.error()));
        std::abort();
    }
    m_workspaceId = me->workspaces.front().id;
}

ClientStack::~ClientStack() = default;

std::shared_ptr<OrvaneClient> ClientStack::makeClient(const std::string &server)
{
    AuthSessionOptions options{
        .server = server, .tokenStore = std::make_shared<MemoryTokenStore>(), .deviceName = "test"};
    options.reauthenticator = localReauthenticator(m_link, "Europe/Paris", true);
    return std::make_shared<OrvaneClient>(m_network, AuthSession::make(*m_network, std::move(options)));
}

ClientStack::Box ClientStack::openOutbox(Outbox::SendCheck check)
{
    auto store = await(LocalStore::open(storePath()));
    EXPECT_TRUE(store) << (store ? "" : describe(store.error()));
    auto retry = std::make_unique<ManualRetryTimer>();
    Box box;
    box.retry = retry.get();
    Outbox::Parts parts;
    parts.api = m_client;
    parts.store = *store;
    parts.lockPath = storePath() + ".lock";
    parts.retry = std::move(retry);
    parts.mayBeSent = std::move(check);
    box.outbox = await(Outbox::make(std::move(parts)));
    return box;
}

void ClientStack::restartServer()
{
    m_installation.killServer();
    const auto hello = await(m_link->ensureRunning(std::chrono::seconds{30}));
    ASSERT_TRUE(hello) << describe(hello.error());
    EXPECT_EQ(hello->address, m_address) << "the port is kept";
}

std::vector<TimeEntryResponse> ClientStack::serverEntries()
{
    using namespace std::chrono;
    auto entries = await(m_otherDevice->listTimeEntries(m_workspaceId, sys_days{2020y / January / 1},
                                                        sys_days{2030y / January / 1}));
    EXPECT_TRUE(entries) << (entries ? "" : describe(entries.error()));
    if (!entries)
        return {};
    std::ranges::sort(*entries, {},
                      [](const TimeEntryResponse &entry) { return std::tie(entry.start, entry.id); });
    return std::move(*entries);
}

EntryRequest requestAt(const std::string &description, int start, std::optional<int> minutes)
{
    EntryRequest request;
    request.details.description = description;
    request.start = instantFromMilliseconds(1'770'800'000'000) + std::chrono::minutes{start};
    if (minutes)
        request.stop = request.start + std::chrono::minutes{*minutes};
    return request;
}

} // namespace orvane::testing
