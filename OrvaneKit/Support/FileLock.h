// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Task.h"

#include <chrono>
#include <memory>
#include <string>

namespace orvane {

/// A lock between processes of one user: an advisory lock on a file, which the system releases when its
/// holder dies, however it dies. The file itself stays. Two objects exclude each other even inside one
/// process. One thread at a time uses an object.
class FileLock {
public:
    explicit FileLock(std::string path);
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;
    ~FileLock();

    /// False while another holder has it, and when the file cannot be made (see `error`).
    bool tryLock();
    void unlock();
    bool isHeld() const { return m_descriptor >= 0; }
    /// What the system said when the file could not be opened; empty when only another holder is in the way.
    const std::string &error() const { return m_error; }

private:
    std::string m_path;
    std::string m_error;
    int m_descriptor = -1;
};

/// Waits, without blocking the thread, until the lock is had; gives up after `patience` and answers whether
/// it is held.
Task<bool> lockWithin(std::shared_ptr<FileLock> lock, std::chrono::milliseconds patience);

} // namespace orvane
