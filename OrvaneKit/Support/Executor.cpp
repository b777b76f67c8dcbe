// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/Executor.h"

#include <utility>

namespace orvane {

ThreadExecutor::ThreadExecutor()
{
    m_pool.setMaxThreadCount(1);
    m_pool.setExpiryTimeout(-1);
}

ThreadExecutor::~ThreadExecutor()
{
    m_pool.waitForDone();
}

void ThreadExecutor::post(std::function<void()> job)
{
    m_pool.start(std::move(job));
}

void ThreadExecutor::finish()
{
    m_pool.waitForDone();
}

} // namespace orvane
