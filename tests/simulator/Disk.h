// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/Random.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3_vfs;

namespace orvane::simulator {

/// What a device's disk would still hold after the power went: what was written to its files since they were
/// last synced. Several processes share one.
class Disk {
public:
    struct Write {
        std::int64_t offset = 0;
        std::string before;
        std::int64_t sizeBefore = 0;
    };
    void wrote(const std::string &file, Write write) { m_unsynced[file].push_back(std::move(write)); }
    void synced(const std::string &file) { m_unsynced.erase(file); }
    void removed(const std::string &file) { m_unsynced.erase(file); }
    /// The power goes: of what was not synced, chance decides what is lost. Nobody may have the files open
    /// for writing any more. Answers how many writes were lost.
    int loseUnsynced(Random &random);

private:
    std::map<std::string, std::vector<Write>> m_unsynced;
};

/// One process's way to the disk: a file layer for SQLite that counts writes and can fail them.
class DiskAccess {
public:
    explicit DiskAccess(std::shared_ptr<Disk> disk);
    DiskAccess(const DiskAccess &) = delete;
    DiskAccess &operator=(const DiskAccess &) = delete;
    ~DiskAccess();

    /// What to open a store with.
    const std::string &fileLayer() const { return m_name; }

    /// From now on nothing that this process writes, cuts or deletes reaches the disk.
    void die() { m_isDead = true; }
    bool isDead() const { return m_isDead; }
    /// The process dies at its n-th write from now.
    void dieAtWrite(int n) { m_writesLeft = n; }
    /// So many of the next writes fail, as on a full disk.
    void failWrites(int count) { m_failing = count; }

    // For the layer.
    Disk &disk() { return *m_disk; }
    /// Whether a change of a file goes through.
    bool takesWrite();

private:
    std::shared_ptr<Disk> m_disk;
    std::string m_name;
    std::unique_ptr<sqlite3_vfs> m_layer;
    bool m_isDead = false;
    std::optional<int> m_writesLeft;
    int m_failing = 0;
};

} // namespace orvane::simulator
