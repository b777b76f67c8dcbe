// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "LocalServer/LocalServerLink.h"
#include "LocalStore/LocalStore.h"
#include "Outbox/Outbox.h"
#include "Session/AuthSession.h"
#include "support/Await.h"
#include "support/CommandRun.h"
#include "support/FaultProxy.h"
#include "support/ManualRetryTimer.h"

#include <QTemporaryDir>
#include <memory>

namespace orvane::testing {

/// The real server in a folder of its own, a proxy in front of it, and the client's layers up to the
/// outboxes, which share one store file as processes do.
class ClientStack {
public:
    /// Ends the test when the server does not start.
    ClientStack();
    ~ClientStack();

    struct Box {
        std::unique_ptr<Outbox> outbox;
        ManualRetryTimer *retry = nullptr;
    };
    /// An outbox with a store connection of its own; the check is asked before a pass.
    Box openOutbox(Outbox::SendCheck check = {});

    FaultProxy &proxy() { return *m_proxy; }
    OrvaneClient &client() { return *m_client; }
    /// Another device of the same account: its requests do not pass the proxy.
    OrvaneClient &otherDevice() { return *m_otherDevice; }
    std::shared_ptr<OrvaneClient> sharedClient() { return m_client; }
    const std::string &workspaceId() const { return m_workspaceId; }
    std::string storePath() const { return m_installation.folder() + "/store.sqlite"; }
    std::string serverAddress() const { return m_address; }
    const TestInstallation &installation() const { return m_installation; }

    /// Kills the server the hard way and starts it again.
    void restartServer();
    /// All entries that the server holds between the years 2020 and 2030, by their start.
    std::vector<TimeEntryResponse> serverEntries();

private:
    std::shared_ptr<OrvaneClient> makeClient(const std::string &server);

    TestInstallation m_installation;
    std::shared_ptr<NetworkThread> m_network = std::make_shared<NetworkThread>();
    std::shared_ptr<LocalServerLink> m_link;
    std::string m_address;
    std::unique_ptr<FaultProxy> m_proxy;
    std::shared_ptr<OrvaneClient> m_client;
    std::shared_ptr<OrvaneClient> m_otherDevice;
    std::string m_workspaceId;
};

/// A request for an entry of `minutes` length from minute `start` of a fixed Wednesday.
EntryRequest requestAt(const std::string &description, int start, std::optional<int> minutes);

} // namespace orvane::testing
