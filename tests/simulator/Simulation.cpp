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

std::string clock(Instant instant)
{
    const auto seconds =
        std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count() % 86'400;
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", static_cast<int>(seconds / 3600),
                  static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60));
    return text;
}

const char *nameOf(SaveOutcome outcome)
{
    static constexpr const char *names[] = {"saved",   "waiting",      "rejected",
                                            "stopped", "needsDetails", "failed"};
    return names[static_cast<int>(outcome)];
}

} // namespace

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
            m_oracle.tell(*deed, Oracle::Fate::Refused);
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

// What users do

void Simulation::planUsers()
{
    Random &random = m_world.random();
    const std::int64_t deeds = random.between(4, 16);
    Millis at(500);
    for (std::int64_t i = 0; i < deeds; ++i) {
        // Mostly one after the other; sometimes two at once.
        at += random.chance(25) ? Millis(random.between(0, 3)) : Millis(random.between(50, 90'000));
        m_world.post(m_world.newLane(), at, [this] {
            Random &chance = m_world.random();
            Device &device = *m_devices[chance.below(m_devices.size())];
            auto running = open(&device);
            std::erase_if(running,
                          [this](const ProcessPtr &process) { return m_commands.contains(process.get()); });
            if (running.empty() || chance.chance(30))
                startProcess(device, !running.empty() || chance.chance(50));
            else
                act(running[chance.below(running.size())]);
        });
    }
}

void Simulation::act(const ProcessPtr &process)
{
    const std::size_t choice = m_world.random().below(100);
    if (choice < 22)
        startTimer(process);
    else if (choice < 36)
        stopTimer(process);
    else if (choice < 46)
        record(process);
    else if (choice < 78)
        edit(process);
    else if (choice < 84)
        remove(process);
    else if (choice < 92)
        settleOne(process);
    else
        reload(process, choice < 96);
}

Millis Simulation::distance(std::int64_t from, std::int64_t to)
{
    // Different in the milliseconds below a second, which the world's own times are not.
    return Millis(m_world.random().between(from, to) * 1000 + ++m_distances);
}

/// What the device's clock shows, made unlike every other moment.
Instant Simulation::moment(const Process &process)
{
    const Instant shown = m_world.now() + const_cast<Process &>(process).device().clockOffset;
    return std::chrono::floor<std::chrono::seconds>(shown) + Millis(++m_distances);
}

int Simulation::note(const ProcessPtr &process, Oracle::Kind kind, const std::string &entry, Contents writes,
                     const std::optional<TimeEntryResponse> &shown)
{
    return m_oracle.begin(process->device().name, kind, entry, std::move(writes), shown);
}

std::optional<TimeEntryResponse> Simulation::pick(const ProcessPtr &process)
{
    const auto &entries = process->tracker().entries();
    if (entries.empty())
        return std::nullopt;
    // The latest are what users have in their hands.
    const std::size_t count = std::min<std::size_t>(entries.size(), 3);
    return entries[m_world.random().below(count)];
}

void Simulation::startTimer(const ProcessPtr &process)
{
    const Instant at = moment(*process);
    m_nextId = "e" + std::to_string(++m_made);
    const auto running = process->tracker().running();
    if (running && running->start > at)
        return;
    std::vector<int> deeds;
    if (running)
        deeds.push_back(note(process, Oracle::Kind::Stop, running->id, {{Field::Stop, value(at)}}, running));
    const std::string text = "d" + std::to_string(m_made) + "." + process->name();
    deeds.push_back(note(process, Oracle::Kind::Create, m_nextId,
                         {{Field::Description, text}, {Field::Start, value(at)}}, {}));
    m_world.note(process->name(), "#" + std::to_string(deeds.back()) + " starts " + m_nextId + " at " +
                                      clock(at) + (running ? ", which stops " + running->id : ""));
    EntryDetails details;
    details.description = text;
    await(process, deeds, process->tracker().start(std::move(details), at));
}

void Simulation::stopTimer(const ProcessPtr &process)
{
    const Instant at = moment(*process);
    const auto running = process->tracker().running();
    if (!running || running->start > at)
        return;
    const int deed = note(process, Oracle::Kind::Stop, running->id, {{Field::Stop, value(at)}}, running);
    m_world.note(process->name(), "#" + std::to_string(deed) + " stops " + running->id + " at " + clock(at));
    await(process, {deed}, process->tracker().stop(at));
}

void Simulation::record(const ProcessPtr &process)
{
    EntryRequest request;
    m_nextId = "e" + std::to_string(++m_made);
    request.details.description = "d" + std::to_string(m_made) + "." + process->name();
    request.start = moment(*process) - distance(600, 3600);
    request.stop = request.start + distance(60, 500);
    const int deed = note(process, Oracle::Kind::Create, m_nextId,
                          {{Field::Description, request.details.description},
                           {Field::Start, value(request.start)},
                           {Field::Stop, value(*request.stop)}},
                          {});
    m_world.note(process->name(), "#" + std::to_string(deed) + " records " + m_nextId);
    await(process, {deed}, process->tracker().create(std::move(request)));
}

void Simulation::edit(const ProcessPtr &process)
{
    const auto shown = pick(process);
    if (!shown)
        return;
    EntryRequest request = entryRequest(*shown);
    Contents writes;
    const std::size_t choice = m_world.random().below(shown->stop ? 3 : 2);
    if (choice == 0) {
        request.details.description = "d" + std::to_string(++m_made) + "." + process->name();
        writes[Field::Description] = request.details.description;
    } else if (choice == 1) {
        request.start -= distance(1, 60);
        writes[Field::Start] = value(request.start);
    } else {
        *request.stop += distance(1, 60);
        writes[Field::Stop] = value(*request.stop);
    }
    static constexpr const char *what[] = {"description", "start", "stop"};
    const int deed = note(process, Oracle::Kind::Edit, shown->id, writes, shown);
    m_world.note(process->name(),
                 "#" + std::to_string(deed) + " edits the " + what[choice] + " of " + shown->id);
    await(process, {deed}, process->tracker().update(shown->id, std::move(request)));
}

void Simulation::remove(const ProcessPtr &process)
{
    const auto shown = pick(process);
    if (!shown)
        return;
    const int deed = note(process, Oracle::Kind::Remove, shown->id, {}, shown);
    m_world.note(process->name(), "#" + std::to_string(deed) + " removes " + shown->id);
    await(process, {deed}, process->tracker().remove(shown->id));
}

Task<> Simulation::await(ProcessPtr process, std::vector<int> deeds, Task<SaveResult> action)
{
    for (const int deed : deeds)
        m_waiting[deed] = process;
    const SaveResult result = co_await action;
    if (process->isGone())
        co_return;
    for (const int deed : deeds)
        m_waiting.erase(deed);
    learn(process, deeds, result);
}

/// Takes in what a user is told of an action.
void Simulation::learn(const ProcessPtr &process, const std::vector<int> &deeds, const SaveResult &result)
{
    m_world.note(process->name(), "#" + std::to_string(deeds.back()) + " is told: " + nameOf(result.outcome) +
                                      (result.isQueued ? ", queued" : "") +
                                      (result.message.empty() ? "" : ", \"" + result.message + "\""));
    for (std::size_t i = 0; i < deeds.size(); ++i) {
        if (i < result.seqs.size())
            m_oracle.number(deeds[i], process->device().name, result.seqs[i]);
        const bool isLast = i + 1 == deeds.size();
        if (m_oracle.deed(deeds[i]).fate == Oracle::Fate::Refused)
            continue;
        if (result.outcome == SaveOutcome::failed)
            m_oracle.tell(deeds[i], m_hasDiskFaults ? Oracle::Fate::Unknown : Oracle::Fate::Refused);
        else if (result.outcome == SaveOutcome::rejected)
            m_oracle.tell(deeds[i], isLast ? Oracle::Fate::Refused : Oracle::Fate::Unknown);
        else if (result.error && !isLast)
            m_oracle.tell(deeds[i], Oracle::Fate::Refused);
        else
            m_oracle.tell(deeds[i], Oracle::Fate::Taken);
    }
}

void Simulation::settleOne(const ProcessPtr &process)
{
    const auto conflicts = process->outbox().conflicts();
    if (conflicts.empty())
        return;
    const Outbox::Pending &row = conflicts[m_world.random().below(conflicts.size())];
    settle(process, row.seq, m_world.random().chance(50));
}

std::optional<int> Simulation::deedOf(Process &process, const Outbox::Pending &row) const
{
    const std::string &device = process.device().name;
    if (const auto deed = m_oracle.deedAt(device, row.seq))
        return deed;
    Contents contents;
    Oracle::Kind kind = Oracle::Kind::Remove;
    if (const EntryRequest *request = row.change.request()) {
        contents = contentsOf(entryResponse(*request, row.change.entryId(), row.change.workspaceId()));
        kind = Oracle::Kind::Edit;
    } else if (const auto *stop = std::get_if<EntryChange::Stop>(&row.change.action)) {
        contents[Field::Stop] = value(stop->at);
        kind = Oracle::Kind::Stop;
    }
    return m_oracle.deedLike(device, row.change.entryId(), kind, contents);
}

Task<> Simulation::settle(ProcessPtr process, std::int64_t seq, bool keepsMine)
{
    const auto conflicts = process->outbox().conflicts();
    const auto row = std::ranges::find(conflicts, seq, &Outbox::Pending::seq);
    if (row == conflicts.end())
        co_return;
    const TimeEntryResponse current = *row->conflict;
    const auto deed = deedOf(*process, *row);
    m_world.note(process->name(), "keeps " + std::string(keepsMine ? "mine" : "theirs") + " for change " +
                                      std::to_string(seq) + " of " + current.id);
    Oracle::Deed before;
    std::optional<std::string> wrong;
    if (deed) {
        before = m_oracle.deed(*deed);
        wrong = m_oracle.judgeConflict(*deed, current);
        if (keepsMine) {
            m_oracle.keptMine(*deed, current);
        } else {
            m_oracle.tell(*deed, Oracle::Fate::Unknown);
        }
    }
    const auto settled =
        keepsMine ? co_await process->outbox().keepMine(seq) : co_await process->outbox().keepTheirs(seq);
    if (!deed)
        co_return;
    if (process->isGone() || !settled) {
        m_oracle.mayAskAgain(*deed);
        co_return;
    }
    // Another program may have settled it meanwhile.
    if (*settled && wrong)
        fault(*wrong);
    if (!*settled && m_oracle.deed(*deed).fate != Oracle::Fate::Dropped)
        m_oracle.restore(*deed, before);
    else if (!keepsMine)
        m_oracle.keptTheirs(*deed, current);
}

Task<> Simulation::reload(ProcessPtr process, bool flushes)
{
    if (flushes)
        co_await process->outbox().flush();
    if (process->isOpen())
        co_await process->tracker().load();
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
                settle(process, row.seq, m_world.random().chance(50));
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
