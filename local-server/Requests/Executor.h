// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Database/Database.h"

#include <functional>

namespace orvane::server {

/// Where the parts of a request are worked on. Whoever hands a request to the core with one keeps it, and the
/// core, until the request is answered or will not be. Its calls come from any thread.
class Executor {
public:
    virtual ~Executor() = default;

    /// Calls `work` once, now or later, on a thread with a database, which is its alone meanwhile; with null
    /// when none can be opened. What was asked for before the end of the executor may be forgotten.
    using Transaction = std::function<void(Database *)>;
    virtual void transact(Lane lane, Transaction work) = 0;

    /// Has `work` done, which takes long and touches nothing of the server's, and then calls `done`. False,
    /// and nothing is called, when there is too much to do already.
    virtual bool compute(std::function<void()> work, std::function<void()> done) = 0;
};

/// Does everything in place, with one database.
class InPlaceExecutor : public Executor {
public:
    explicit InPlaceExecutor(Database &database) : m_database(database) {}

    void transact(Lane, Transaction work) override { work(&m_database); }
    bool compute(std::function<void()> work, std::function<void()> done) override
    {
        work();
        done();
        return true;
    }

private:
    Database &m_database;
};

} // namespace orvane::server
