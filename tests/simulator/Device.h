// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "LocalStore/LocalStore.h"
#include "Outbox/Outbox.h"
#include "Tracker/Tracker.h"
#include "simulator/Disk.h"
#include "simulator/Server.h"

namespace orvane::simulator {

/// The lock that lets one of a device's processes send at a time.
class SendLock {
public:
    explicit SendLock(World &world) : m_world(world) {}

    Task<Result<Outbox::Turn, std::string>> take(int process, std::chrono::milliseconds patience);
    /// The process is gone, and with it its hold; nothing waits for it any more.
    void release(int process);

private:
    void letGo(int process);

    World &m_world;
    std::optional<int> m_holder;
    std::vector<std::pair<int, Eventual<bool>>> m_waiting;
};

/// One computer: a store file, a connection, a clock.
struct Device {
    std::string name;
    std::string storePath;
    std::shared_ptr<Disk> disk = std::make_shared<Disk>();
    std::shared_ptr<Link> link = std::make_shared<Link>();
    std::shared_ptr<SendLock> lock;
    std::chrono::milliseconds clockOffset{0};
};

/// One running program on a device: the client's real layers from the store to the tracker.
class Process {
public:
    Process(World &world, Server &server, Device &device, int number);
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    ~Process();

    /// Opens store and queue and shows the snapshot; nothing is asked of the server yet. False when the store
    /// cannot be opened.
    Task<bool> open(WorkspaceSummary workspace, std::function<std::string()> newIdentifier);

    const std::string &name() const { return m_name; }
    Device &device() { return m_device; }
    DiskAccess &disk() { return m_disk; }
    OrvaneClient &client() { return *m_client; }
    bool isOpen() const { return m_tracker != nullptr && !m_isGone; }
    /// The process ended in the middle of things; what it still does reaches nobody.
    bool isGone() const { return m_isGone; }
    Tracker &tracker() { return *m_tracker; }
    Outbox &outbox() { return *m_outbox; }

    /// Ends as a killed process does: between two of its steps, with everything half done.
    void crash();
    /// Ends as a command does.
    Task<> close();

    /// A refusal, a number of a queue and nobody waiting.
    std::function<void(std::int64_t)> onRefused;

private:
    void drain();
    void destroy();

    World &m_world;
    Device &m_device;
    int m_number;
    std::string m_name;
    DiskAccess m_disk;
    std::shared_ptr<LaneExecutor> m_executor;
    std::shared_ptr<Wire> m_wire;
    std::shared_ptr<NetworkThread> m_network;
    std::shared_ptr<OrvaneClient> m_client;
    std::shared_ptr<LocalStore> m_store;
    std::unique_ptr<Outbox> m_outbox;
    std::unique_ptr<OutboxOutcomes> m_outcomes;
    std::unique_ptr<Tracker> m_tracker;
    bool m_isGone = false;
};

} // namespace orvane::simulator
