// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Process/HashPool.h"
#include "Process/RequestWorkers.h"

namespace orvane::server {

/// The executor of a whole server: its threads for requests and for hashes. Its end waits for what is being
/// worked on, and forgets the rest.
class ServerExecutor : public Executor {
public:
    explicit ServerExecutor(const RequestWorkers::Options &options) : m_workers(options) {}
    // Requests may ask for hashes, and those for requests again: neither goes while the other is at work.
    ~ServerExecutor() override { m_workers.end(); }

    void transact(Lane lane, Transaction work) override { m_workers.transact(lane, std::move(work)); }
    bool compute(std::function<void()> work, std::function<void()> done) override
    {
        return m_hashes.run(std::move(work), std::move(done));
    }

private:
    RequestWorkers m_workers;
    HashPool m_hashes;
};

} // namespace orvane::server
