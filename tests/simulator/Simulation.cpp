// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/Simulation.h"

#include "Catalog/EntryConversions.h"
#include "Session/MemoryTokenStore.h"
#include "Time/AppClock.h"
#include "Tracker/Overlay.h"

#include <algorithm>
#include <filesystem>

namespace orvane::simulator {

namespace {

using Millis = World::Millis;
using std::chrono::minutes;

const World *clockOfTheWorld = nullptr;

Instant worldsNow()
{
    return clockOfTheWorld->now();
}

} // namespace

std::string Simulation::clock(Instant instant)
{
    const auto seconds =
        std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count() % 86'400;
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", static_cast<int>(seconds / 3600),
                  static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
    return text;
}

Simulation::Simulation(std::uint64_t seed, std::string folder)
    : m_folder(std::move(folder)), m_world(seed), m_server(m_world)
{
    clockOfTheWorld = &m_world;
    AppClock::setSource(&worldsNow);
}

Simulation::~Simulation()
{
    for (const ProcessPtr &process : m_processes) {
        if (!process->isGone())
            process->crash();
    }
    m_processes.clear();
    AppClock::setSource(nullptr);
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

Verdict Simulation::run()
{
    meetServer();
    while (m_workspace.id.empty() && m_world.step()) {
    }
    makeDevices();
    planUsers();
    planTroubles();
    m_world.afterStep = [this] { endWhatDied(); };
    m_world.runFor(minutes(20));
    rest();
    return {0, m_faults, m_world.history()};
}

// The set-up

Task<> Simulation::meetServer()
{
    Device device{.name = "setup", .storePath = {}, .lock = std::make_shared<SendLock>(m_world)};
    const auto process = std::make_shared<Process>(m_world, m_server, device, 0);
    const auto me = co_await process->client().getMe();
    if (me && !me->workspaces.empty())
        m_workspace = me->workspaces.front();
    process->crash();
}

void Simulation::makeDevices()
{
    Random &random = m_world.random();
    const std::size_t count = 1 + random.below(3);
    for (std::size_t i = 0; i < count; ++i) {
        auto device = std::make_unique<Device>();
        device->name = std::string(1, static_cast<char>('A' + i));
        device->storePath = m_folder + "/" + device->name + ".sqlite";
        device->lock = std::make_shared<SendLock>(m_world);
        device->clockOffset = random.chance(80) ? Millis(0) : Millis(random.between(-600'000, 600'000));
        m_devices.push_back(std::move(device));
        startProcess(*m_devices.back(), false);
    }
}

/// A window that stays, or a command that does one thing.
void Simulation::startProcess(Device &device, bool isCommand)
{
    const auto process = std::make_shared<Process>(m_world, m_server, device, ++m_programs);
    m_processes.push_back(process);
    if (isCommand)
        m_commands.insert(process.get());
    process->onRefused = [this, name = device.name, who = process->name()](std::int64_t seq) {
        m_world.note(who, "told: change " + std::to_string(seq) + " was refused");
        if (const auto deed = m_oracle.deedAt(name, seq))
            m_oracle.tell(*deed, Oracle::Fate::refused);
    };
    m_world.note(process->name(), isCommand ? "a command starts" : "a window opens");
    live(process, isCommand);
}

Task<> Simulation::live(ProcessPtr process, bool isCommand)
{
    const bool isOpen = co_await process->open(m_workspace, [this] { return m_nextId; });
    if (!isOpen || process->isGone())
        co_return;
    process->outbox().flush();
    process->tracker().load();
    if (!isCommand)
        co_return;
    // A user who waits for nothing longer than three seconds.
    const World::LaneId lane = m_world.newLane();
    m_world.post(lane, Millis(m_world.random().between(1, 600)), [this, process] {
        if (process->isOpen())
            act(process);
    });
    m_world.post(lane, Millis(3'700), [process] {
        if (process->isOpen())
            process->close();
    });
    m_world.post(lane, Millis(6'000), [this, process] {
        if (process->isOpen())
            end(process);
    });
}

// What goes wrong

void Simulation::planTroubles()
{
    Random &random = m_world.random();
    const std::int64_t count = random.between(0, 8);
    for (std::int64_t i = 0; i < count; ++i) {
        m_world.post(m_world.newLane(), Millis(random.between(1'000, 900'000)), [this] {
            Random &chance = m_world.random();
            const std::size_t choice = chance.below(100);
            if (choice < 60)
                changeLink(*m_devices[chance.below(m_devices.size())]);
            else
                crashSome(choice >= 90);
        });
    }
}

void Simulation::changeLink(Device &device)
{
    Random &random = m_world.random();
    Link link;
    link.isUp = !random.chance(40);
    const auto often = [&](int percent, int most) {
        return random.chance(percent) ? static_cast<int>(random.between(1, most)) : 0;
    };
    link.lostRequests = often(30, 40);
    link.lostAnswers = often(40, 60);
    link.doubled = often(40, 60);
    link.refusedByGateway = often(20, 40);
    link.late = often(20, 30);
    *device.link = link;
    m_world.note(device.name,
                 link.isUp ? "the connection is there, with troubles" : "the connection is away");
}

void Simulation::crashSome(bool losesPower)
{
    Random &random = m_world.random();
    Device &device = *m_devices[random.below(m_devices.size())];
    const auto running = open(&device);
    if (losesPower) {
        m_world.note(device.name, "the power goes");
        for (const ProcessPtr &process : m_processes) {
            if (&process->device() == &device && !process->isGone())
                process->crash();
        }
        device.disk->loseUnsynced(random);
        startProcess(device, false);
    } else if (!running.empty()) {
        const ProcessPtr process = running[random.below(running.size())];
        const std::size_t choice = random.below(3);
        if (choice == 0) {
            m_world.note(process->name(), "is killed");
            process->crash();
            startProcess(device, false);
        } else if (choice == 1) {
            m_world.note(process->name(), "will die while it writes");
            process->disk().dieAtWrite(static_cast<int>(random.between(1, 12)));
        } else {
            m_world.note(process->name(), "the disk is full for some writes");
            m_hasDiskFaults = true;
            process->disk().failWrites(static_cast<int>(random.between(1, 6)));
        }
    }
}

void Simulation::end(const ProcessPtr &process)
{
    for (const auto &[deed, waiting] : m_waiting) {
        if (waiting == process)
            fault("#" + std::to_string(deed) + " was not answered before the command ended");
    }
    m_world.note(process->name(), "ends");
    process->crash();
}

void Simulation::endWhatDied()
{
    for (std::size_t i = 0; i < m_processes.size(); ++i) {
        const ProcessPtr process = m_processes[i];
        if (!process->disk().isDead() || process->isGone())
            continue;
        m_world.note(process->name(), "died while it wrote");
        process->crash();
        startProcess(process->device(), false);
    }
}

// The rest

/// Everything works again, and nobody does anything: what is on its way has to arrive by itself. Then the
/// users settle their conflicts.
void Simulation::rest()
{
    m_world.note("--", "the troubles are over");
    for (const auto &device : m_devices) {
        *device->link = Link{};
        for (const ProcessPtr &process : open(device.get()))
            process->disk().failWrites(0);
        if (open(device.get()).empty())
            startProcess(*device, false);
    }
    m_world.runFor(minutes(15));
    checkAnswered();
    settleAll();
    for (const ProcessPtr &process : open())
        reload(process, false);
    m_world.runFor(minutes(5));
    compare();
}

std::vector<Simulation::ProcessPtr> Simulation::open(const Device *device) const
{
    std::vector<ProcessPtr> running;
    std::ranges::copy_if(m_processes, std::back_inserter(running), [&](const ProcessPtr &process) {
        return process->isOpen() && (device == nullptr || &process->device() == device);
    });
    return running;
}

void Simulation::checkAnswered()
{
    for (const auto &[deed, process] : m_waiting) {
        if (!process->isGone())
            fault("#" + std::to_string(deed) + " in " + process->name() + " was never answered");
    }
    for (const ProcessPtr &process : open()) {
        const auto conflicts = process->outbox().conflicts();
        for (const Outbox::Pending &row : process->outbox().pending()) {
            const bool waits = std::ranges::any_of(conflicts, [&](const Outbox::Pending &conflict) {
                return conflict.change.entryId() == row.change.entryId();
            });
            if (!waits)
                fault("change " + std::to_string(row.seq) + " in " + process->name() +
                      " is still queued, though nothing is in its way");
        }
    }
}

void Simulation::settleAll()
{
    for (int round = 0; round < 12; ++round) {
        for (const ProcessPtr &process : open()) {
            for (const Outbox::Pending &row : process->outbox().conflicts())
                settle(process, row.seq, anyWay(), *row.conflict);
        }
        m_world.runFor(minutes(2));
        for (const ProcessPtr &process : open())
            reload(process, true);
        m_world.runFor(minutes(5));
        if (std::ranges::all_of(
                open(), [](const ProcessPtr &process) { return process->outbox().pending().empty(); }))
            return;
    }
    for (const ProcessPtr &process : open()) {
        for (const Outbox::Pending &row : process->outbox().conflicts())
            fault("the conflict of change " + std::to_string(row.seq) + " in " + process->name() +
                  " cannot be settled");
    }
}

namespace {

Task<> readRefusals(Outbox *outbox, std::vector<std::int64_t> *seqs)
{
    for (const Refusal &refusal : co_await outbox->unshownRefusals())
        seqs->push_back(refusal.seq);
}

Task<> list(OrvaneClient *client, std::string workspace, Instant around,
            std::optional<std::vector<TimeEntryResponse>> *into)
{
    auto entries = co_await client->listTimeEntries(std::move(workspace), around - std::chrono::days(40),
                                                    around + std::chrono::days(40));
    if (entries)
        *into = std::move(*entries);
}

} // namespace

void Simulation::compare()
{
    for (const ProcessPtr &process : open()) {
        std::vector<std::int64_t> refused;
        readRefusals(&process->outbox(), &refused);
        m_world.runFor(minutes(1));
        for (const std::int64_t seq : refused)
            process->onRefused(seq);
    }
    if (open().empty())
        return fault("no program is left");
    std::optional<std::vector<TimeEntryResponse>> held;
    list(&open().front()->client(), m_workspace.id, m_world.now(), &held);
    m_world.runFor(minutes(1));
    if (!held)
        return fault("the server does not list its entries");
    sortNewestFirst(*held);
    for (const std::string &wrong : m_oracle.judge(*held))
        fault(wrong);
    for (const ProcessPtr &process : open()) {
        if (const auto &shown = process->tracker().entries(); shown != *held) {
            fault(process->name() + " shows other entries than the server holds");
            describe(process->name() + " shows", shown);
            describe("the server holds", *held);
        }
        if (!process->outbox().pending().empty())
            fault(process->name() + " still has changes in its queue");
    }
}

void Simulation::describe(const std::string &whose, const std::vector<TimeEntryResponse> &entries)
{
    for (const TimeEntryResponse &entry : entries)
        m_world.note("  ", whose + " " + entry.id + " " + clock(entry.start) + "-" +
                               (entry.stop ? clock(*entry.stop) : "") + " " + entry.description);
}

void Simulation::fault(const std::string &text)
{
    m_world.note("!!", text);
    m_faults.push_back(text);
}

} // namespace orvane::simulator
