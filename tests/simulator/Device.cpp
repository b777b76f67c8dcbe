// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/Device.h"

#include "Session/MemoryTokenStore.h"

namespace orvane::simulator {

// The lock

Task<Result<Outbox::Turn, std::string>> SendLock::take(int process, std::chrono::milliseconds patience)
{
    Eventual<bool> freed;
    if (m_holder) {
        const World::LaneId lane = m_world.newLane();
        m_world.post(lane, patience, [freed]() mutable { freed.finish(false); });
        m_waiting.emplace_back(process, freed);
        co_await freed;
        m_world.clear(lane);
    }
    if (m_holder)
        co_return Outbox::Turn();
    m_holder = process;
    co_return Outbox::Turn(this, [process](SendLock *lock) { lock->letGo(process); });
}

void SendLock::letGo(int process)
{
    if (m_holder != process)
        return;
    m_holder.reset();
    // Whoever runs first has it, as with a lock on a file.
    for (auto &[waiting, freed] : std::exchange(m_waiting, {})) {
        m_world.post(m_world.newLane(), World::Millis(m_world.random().between(0, 10)),
                     [waiter = freed]() mutable { waiter.finish(true); });
    }
}

void SendLock::release(int process)
{
    for (auto &[waiting, freed] : std::vector(m_waiting)) {
        if (waiting == process)
            freed.finish(false);
    }
    letGo(process);
}

// The process

Process::Process(World &world, Server &server, Device &device, int number)
    : m_world(world)
    , m_device(device)
    , m_number(number)
    , m_name(device.name + "." + std::to_string(number))
    , m_disk(device.disk)
    , m_executor(std::make_shared<LaneExecutor>(world))
    , m_wire(std::make_shared<Wire>(world, server, device.link))
    , m_network(std::make_shared<NetworkThread>(NetworkThread::OnThisThread()))
{
    AuthSessionOptions options{.server = "http://127.0.0.1",
                               .tokenStore = std::make_shared<MemoryTokenStore>(),
                               .deviceName = device.name};
    options.reauthenticator = [server = &server] { return codeFrom(server, "Europe/Paris"); };
    options.now = [&world] { return world.now(); };
    m_client = std::make_shared<OrvaneClient>(
        m_network, AuthSession::make(*m_network, m_wire, std::move(options)), m_wire);
}

Process::~Process()
{
    destroy();
}

Task<bool> Process::open(WorkspaceSummary workspace, std::function<std::string()> newIdentifier)
{
    auto store = co_await LocalStore::open(m_device.storePath,
                                           {.executor = m_executor, .fileLayer = m_disk.fileLayer()});
    if (!store || m_isGone)
        co_return false;
    m_store = std::move(*store);
    Outbox::Parts parts;
    parts.api = m_client;
    parts.store = m_store;
    parts.takeTurn = [lock = m_device.lock, number = m_number](std::chrono::milliseconds patience) {
        return lock->take(number, patience);
    };
    parts.retry = std::make_unique<LaneTimer>(m_world);
    auto outbox = co_await Outbox::make(std::move(parts));
    if (m_isGone)
        co_return false;
    m_outbox = std::move(outbox);
    m_outcomes = std::make_unique<OutboxOutcomes>(*m_outbox);
    auto time = UserTime::make("Europe/Paris");
    m_tracker = std::make_unique<Tracker>(Tracker::Parts{.workspace = std::move(workspace),
                                                         .time = std::move(*time),
                                                         .api = m_client,
                                                         .store = m_store,
                                                         .outbox = m_outbox.get(),
                                                         .outcomes = m_outcomes.get(),
                                                         .newIdentifier = std::move(newIdentifier)});
    QObject::connect(m_outcomes.get(), &OutboxOutcomes::rejected, m_outcomes.get(),
                     [this](const QueuedChange &row) {
                         if (!m_isGone && onRefused)
                             onRefused(row.seq);
                     });
    co_await m_tracker->loadSnapshot();
    co_return isOpen();
}

void Process::crash()
{
    m_isGone = true;
    m_disk.die();
    m_wire->cut();
    m_device.lock->release(m_number);
    drain();
    destroy();
}

/// Lets what is under way come to its end, which nobody sees.
void Process::drain()
{
    runPosted();
    if (m_outbox)
        m_outbox->close();
    for (int i = 0; i < 40; ++i) {
        m_executor->finish();
        m_device.lock->release(m_number);
        runPosted();
    }
}

Task<> Process::close()
{
    m_wire->cut();
    co_await m_outbox->close();
    if (!m_isGone)
        co_await m_tracker->close();
}

void Process::destroy()
{
    m_tracker.reset();
    m_outcomes.reset();
    m_outbox.reset();
    m_store.reset();
    m_client.reset();
    runPosted();
}

} // namespace orvane::simulator
