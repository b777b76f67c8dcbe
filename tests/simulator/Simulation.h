// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/Device.h"
#include "simulator/Oracle.h"

#include <QTemporaryDir>

namespace orvane::simulator {

/// What became of one history.
struct Verdict {
    std::uint64_t seed = 0;
    /// Empty when all is well.
    std::vector<std::string> faults;
    std::vector<std::string> history;
};

/// One history: devices whose users track time while connections, disks and programs fail, and then the rest
/// after it, in which everything must come to one truth. All of it follows from the seed.
class Simulation {
public:
    /// `folder` is for the devices' files; they are removed at the end.
    Simulation(std::uint64_t seed, std::string folder);
    ~Simulation();

    Verdict run();

private:
    using ProcessPtr = std::shared_ptr<Process>;

    // The set-up
    Task<> meetServer();
    void makeDevices();
    void startProcess(Device &device, bool isCommand);
    Task<> live(ProcessPtr process, bool isCommand);

    // What users do
    void planUsers();
    void act(const ProcessPtr &process);
    void startTimer(const ProcessPtr &process);
    void stopTimer(const ProcessPtr &process);
    void record(const ProcessPtr &process);
    void editEntry(const ProcessPtr &process, const std::optional<TimeEntryResponse> &shown);
    void remove(const ProcessPtr &process);
    void settleOne(const ProcessPtr &process);
    Task<> await(ProcessPtr process, std::vector<int> deeds, Task<SaveResult> action);
    std::optional<int> deedOf(Process &process, const Outbox::Pending &row) const;
    enum class Way { mine, theirs, merged };
    /// An entry that a user put together, and the fields in which it says what they wanted.
    struct Merged {
        EntryRequest request;
        std::set<Field> kept;
    };
    Way anyWay();
    std::optional<Merged> merged(const EntryRequest &mine, const TimeEntryResponse &theirs);
    Task<> settle(ProcessPtr process, std::int64_t seq, Way way, TimeEntryResponse shown);
    Task<> reload(ProcessPtr process, bool flushes);
    void learn(const ProcessPtr &process, const std::vector<int> &deeds, const SaveResult &result);
    int note(const ProcessPtr &process, Oracle::Kind kind, const std::string &entry, Contents writes,
             const std::optional<TimeEntryResponse> &shown);
    std::optional<TimeEntryResponse> pick(const ProcessPtr &process);
    static std::optional<TimeEntryResponse> shownAs(const ProcessPtr &process, const std::string &id);
    void soon(const ProcessPtr &process, std::int64_t atMost, std::function<void()> deed);
    Instant moment(const Process &process);
    /// A length or distance that nobody used before.
    World::Millis distance(std::int64_t from, std::int64_t to);
    /// As it stands in the history.
    static std::string clock(Instant instant);
    static std::string value(Instant instant) { return std::to_string(millisecondsSinceEpoch(instant)); }

    // What goes wrong
    void planTroubles();
    void changeLink(Device &device);
    void crashSome(bool losesPower);
    void end(const ProcessPtr &process);
    void endWhatDied();

    // The rest
    void rest();
    void settleAll();
    void compare();
    void fault(const std::string &text);
    void describe(const std::string &whose, const std::vector<TimeEntryResponse> &entries);
    void checkAnswered();
    std::vector<ProcessPtr> open(const Device *device = nullptr) const;

    std::string m_folder;
    World m_world;
    Server m_server;
    Oracle m_oracle;
    WorkspaceSummary m_workspace;
    std::vector<std::unique_ptr<Device>> m_devices;
    std::vector<ProcessPtr> m_processes;
    /// Those of them that do one thing and end.
    std::set<const Process *> m_commands;

    /// Actions that wait for their answer: deed to who waits.
    std::map<int, ProcessPtr> m_waiting;
    std::vector<std::string> m_faults;
    std::string m_nextId;
    int m_made = 0;
    int m_distances = 0;
    int m_programs = 0;
    bool m_hasDiskFaults = false;
};

} // namespace orvane::simulator
