// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Eventual.h"
#include "Support/Executor.h"
#include "Support/Task.h"

#include <QMetaObject>
#include <QObject>
#include <QThreadPool>
#include <type_traits>

/// Hops between threads. An actor keeps its state on one executor (an object's thread, or a pool of one
/// thread); its public calls go there through `runOn` and resume on the thread that called, which must run an
/// event loop. The calling coroutine never leaves its own thread, and the work never leaves the executor's.
namespace orvane {

namespace hop {

template <class Make, class T>
Task<> drive(Make make, Eventual<T> answer)
{
    answer.finish(co_await make());
}

} // namespace hop

/// Runs the task that `make` makes on `executor`'s thread. `executor` must outlive the call.
template <class Make>
auto runOn(QObject *executor, Make make) -> Task<typename std::invoke_result_t<Make>::value_type>
{
    using T = typename std::invoke_result_t<Make>::value_type;
    Eventual<T> answer(ResumeWaiters::fromTheirLoops);
    QMetaObject::invokeMethod(
        executor, [make = std::move(make), answer]() mutable { hop::drive(std::move(make), answer); },
        Qt::QueuedConnection);
    co_return co_await std::move(answer);
}

/// Runs a plain function on an executor, one at a time in the order in which they were posted.
template <class Function>
auto runOn(Executor &executor, Function function) -> Task<std::invoke_result_t<Function>>
{
    Eventual<std::invoke_result_t<Function>> answer(ResumeWaiters::fromTheirLoops);
    executor.post([function = std::move(function), answer]() mutable { answer.finish(function()); });
    co_return co_await std::move(answer);
}

/// Runs a plain function on a pool. With a pool of one thread, calls run one at a time in the order they were
/// made.
template <class Function>
auto runOn(QThreadPool &pool, Function function) -> Task<std::invoke_result_t<Function>>
{
    Eventual<std::invoke_result_t<Function>> answer(ResumeWaiters::fromTheirLoops);
    pool.start([function = std::move(function), answer]() mutable { answer.finish(function()); });
    co_return co_await std::move(answer);
}

} // namespace orvane
