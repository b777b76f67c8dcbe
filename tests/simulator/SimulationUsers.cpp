// SPDX-License-Identifier: GPL-3.0-or-later
// What the users of a simulation do, and what they are told.
#include "simulator/Simulation.h"

#include "Catalog/EntryConversions.h"

#include <algorithm>

namespace orvane::simulator {

namespace {

using Millis = World::Millis;

const char *nameOf(SaveOutcome outcome)
{
    static constexpr const char *names[] = {"saved",   "waiting",      "rejected",
                                            "stopped", "needsDetails", "failed"};
    return names[static_cast<int>(outcome)];
}

} // namespace

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
        editEntry(process, pick(process));
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
        deeds.push_back(note(process, Oracle::Kind::stop, running->id, {{Field::stop, value(at)}}, running));
    const std::string text = "d" + std::to_string(m_made) + "." + process->name();
    deeds.push_back(note(process, Oracle::Kind::create, m_nextId,
                         {{Field::description, text}, {Field::start, value(at)}}, {}));
    m_world.note(process->name(), "#" + std::to_string(deeds.back()) + " starts " + m_nextId + " at " +
                                      clock(at) + (running ? ", which stops " + running->id : ""));
    EntryDetails details;
    details.description = text;
    await(process, deeds, process->tracker().start(std::move(details), at));
    // Often it was a short thing, or a slip.
    if (m_world.random().chance(40))
        soon(process, 20'000, [this, process] { stopTimer(process); });
}

/// What the user of a window does next, as one thing follows the other.
void Simulation::soon(const ProcessPtr &process, std::int64_t atMost, std::function<void()> deed)
{
    const Millis wait(m_world.random().between(0, atMost));
    m_world.post(m_world.newLane(), wait, [this, process, deed = std::move(deed)] {
        if (process->isOpen() && !m_commands.contains(process.get()))
            deed();
    });
}

void Simulation::stopTimer(const ProcessPtr &process)
{
    const Instant at = moment(*process);
    const auto running = process->tracker().running();
    if (!running || running->start > at)
        return;
    const int deed = note(process, Oracle::Kind::stop, running->id, {{Field::stop, value(at)}}, running);
    m_world.note(process->name(), "#" + std::to_string(deed) + " stops " + running->id + " at " + clock(at));
    await(process, {deed}, process->tracker().stop(at));
    // What it was is often said once it is over.
    if (m_world.random().chance(40))
        soon(process, 4'000, [this, process, id = running->id] { editEntry(process, shownAs(process, id)); });
}

void Simulation::record(const ProcessPtr &process)
{
    EntryRequest request;
    m_nextId = "e" + std::to_string(++m_made);
    request.details.description = "d" + std::to_string(m_made) + "." + process->name();
    request.start = moment(*process) - distance(600, 3600);
    request.stop = request.start + distance(60, 500);
    const int deed = note(process, Oracle::Kind::create, m_nextId,
                          {{Field::description, request.details.description},
                           {Field::start, value(request.start)},
                           {Field::stop, value(*request.stop)}},
                          {});
    m_world.note(process->name(), "#" + std::to_string(deed) + " records " + m_nextId);
    await(process, {deed}, process->tracker().create(std::move(request)));
}

std::optional<TimeEntryResponse> Simulation::shownAs(const ProcessPtr &process, const std::string &id)
{
    const auto &entries = process->tracker().entries();
    const auto shown = std::ranges::find(entries, id, &TimeEntryResponse::id);
    return shown == entries.end() ? std::nullopt : std::optional{*shown};
}

void Simulation::editEntry(const ProcessPtr &process, const std::optional<TimeEntryResponse> &shown)
{
    if (!shown)
        return;
    EntryRequest request = entryRequest(*shown);
    Contents writes;
    const std::size_t choice = m_world.random().below(shown->stop ? 3 : 2);
    if (choice == 0) {
        request.details.description = "d" + std::to_string(++m_made) + "." + process->name();
        writes[Field::description] = request.details.description;
    } else if (choice == 1) {
        request.start -= distance(1, 60);
        writes[Field::start] = value(request.start);
    } else {
        *request.stop += distance(1, 60);
        writes[Field::stop] = value(*request.stop);
    }
    if (choice != 0 && m_world.random().chance(25)) {
        request.details.description = "d" + std::to_string(++m_made) + "." + process->name();
        writes[Field::description] = request.details.description;
    }
    static constexpr const char *what[] = {"description", "start", "stop"};
    const int deed = note(process, Oracle::Kind::edit, shown->id, writes, shown);
    m_world.note(process->name(), "#" + std::to_string(deed) + " edits the " + what[choice] +
                                      (writes.size() > 1 ? " and the description of " : " of ") + shown->id);
    await(process, {deed}, process->tracker().update(shown->id, std::move(request)));
}

void Simulation::remove(const ProcessPtr &process)
{
    const auto shown = pick(process);
    if (!shown)
        return;
    const int deed = note(process, Oracle::Kind::remove, shown->id, {}, shown);
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
        const Oracle::Fate fate = m_oracle.deed(deeds[i]).fate;
        // Told already, or given up in another window before the answer came.
        if (fate == Oracle::Fate::refused || fate == Oracle::Fate::dropped)
            continue;
        if (result.outcome == SaveOutcome::failed)
            m_oracle.tell(deeds[i], m_hasDiskFaults ? Oracle::Fate::unknown : Oracle::Fate::refused);
        else if (result.outcome == SaveOutcome::rejected)
            m_oracle.tell(deeds[i], isLast ? Oracle::Fate::refused : Oracle::Fate::unknown);
        else if (result.error && !isLast)
            m_oracle.tell(deeds[i], Oracle::Fate::refused);
        else
            m_oracle.tell(deeds[i], Oracle::Fate::taken);
    }
}

void Simulation::settleOne(const ProcessPtr &process)
{
    const auto conflicts = process->outbox().conflicts();
    if (conflicts.empty())
        return;
    const Outbox::Pending row = conflicts[m_world.random().below(conflicts.size())];
    const Way way = anyWay();
    if (m_commands.contains(process.get()) || m_world.random().chance(50)) {
        settle(process, row.seq, way, *row.conflict);
        return;
    }
    // Or first goes on with the day, and answers while that is being sent.
    editEntry(process, pick(process));
    editEntry(process, shownAs(process, row.change.entryId()));
    soon(process, 300, [this, process, row, way] { settle(process, row.seq, way, *row.conflict); });
}

Simulation::Way Simulation::anyWay()
{
    const std::size_t choice = m_world.random().below(3);
    return choice == 0 ? Way::mine : choice == 1 ? Way::theirs : Way::merged;
}

std::optional<int> Simulation::deedOf(Process &process, const Outbox::Pending &row) const
{
    const std::string &device = process.device().name;
    if (const auto deed = m_oracle.deedAt(device, row.seq))
        return deed;
    Contents contents;
    Oracle::Kind kind = Oracle::Kind::remove;
    if (const EntryRequest *request = row.change.request()) {
        contents = contentsOf(entryResponse(*request, row.change.entryId(), row.change.workspaceId()));
        kind = Oracle::Kind::edit;
    } else if (const auto *stop = std::get_if<EntryChange::Stop>(&row.change.action)) {
        contents[Field::stop] = value(stop->at);
        kind = Oracle::Kind::stop;
    }
    return m_oracle.deedLike(device, row.change.entryId(), kind, contents);
}

/// Chooses a side for each field in which the two differ. Nothing where only one side can be chosen whole.
std::optional<Simulation::Merged> Simulation::merged(const EntryRequest &mine,
                                                     const TimeEntryResponse &theirs)
{
    Merged merged{entryRequest(theirs), {}};
    bool hasMine = false;
    const auto choose = [&](Field field, const auto &ours, auto &into) {
        const bool isSame = ours == into;
        if (!isSame && m_world.random().chance(50))
            return;
        into = ours;
        // What both have is mine too: it may have been taken before its answer was lost.
        merged.kept.insert(field);
        hasMine = hasMine || !isSame;
    };
    choose(Field::description, mine.details.description, merged.request.details.description);
    choose(Field::start, mine.start, merged.request.start);
    choose(Field::stop, mine.stop, merged.request.stop);
    const bool isPossible = !merged.request.stop || *merged.request.stop >= merged.request.start;
    return isPossible && hasMine ? std::optional(std::move(merged)) : std::nullopt;
}

/// `shown` is what the user has on the screen as theirs, which may be old by now.
Task<> Simulation::settle(ProcessPtr process, std::int64_t seq, Way way, TimeEntryResponse shown)
{
    const auto sides = co_await process->outbox().sides(seq);
    if (process->isGone())
        co_return;
    const auto conflicts = process->outbox().conflicts();
    const auto row = std::ranges::find(conflicts, seq, &Outbox::Pending::seq);
    if (row == conflicts.end() || !sides)
        co_return;
    std::optional<Merged> put;
    if (way == Way::merged && !sides->isStop && sides->mine.request() != nullptr)
        put = merged(*sides->mine.request(), shown);
    if (way == Way::merged && !put)
        way = Way::mine;
    const TimeEntryResponse current = put ? shown : *row->conflict;
    const auto deed = deedOf(*process, *row);
    static constexpr const char *sideNames[] = {"mine", "theirs", "some of both"};
    m_world.note(process->name(), "keeps " + std::string(sideNames[static_cast<int>(way)]) + " for change " +
                                      std::to_string(seq) + " of " + current.id);

    std::optional<std::string> wrong;
    const bool wasDropped = deed && m_oracle.deed(*deed).fate == Oracle::Fate::dropped;
    if (deed) {
        // A stop whose number was never heard comes back as an edit of the end.
        m_oracle.number(*deed, process->device().name, seq);
        wrong = m_oracle.judgeConflict(*deed, *row->conflict);
        if (way == Way::theirs)
            m_oracle.tell(*deed, Oracle::Fate::unknown);
        else
            m_oracle.keptMine(*deed, current);
    }
    const auto settled = put                ? co_await process->outbox().keepMerged(seq, put->request, shown)
                         : way == Way::mine ? co_await process->outbox().keepMine(seq)
                                            : co_await process->outbox().keepTheirs(seq);
    if (!deed)
        co_return;
    if (process->isGone() || !settled) {
        m_oracle.mayAskAgain(*deed);
        // Whether it was done again, before the program died, nobody knows; and of a merge, how much of it.
        if (wasDropped || put)
            m_oracle.tell(*deed, Oracle::Fate::unknown);
        co_return;
    }
    // Another program may have settled it meanwhile.
    if (*settled && wrong)
        fault(*wrong);
    if (!*settled)
        m_oracle.tell(*deed, Oracle::Fate::unknown);
    else if (way == Way::theirs)
        m_oracle.keptTheirs(*deed, current);
    else if (put)
        m_oracle.keptOnly(*deed, put->kept);
}

Task<> Simulation::reload(ProcessPtr process, bool flushes)
{
    if (flushes)
        co_await process->outbox().flush();
    if (process->isOpen())
        co_await process->tracker().load();
}

} // namespace orvane::simulator
