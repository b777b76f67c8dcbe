// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Executor.h"
#include "Support/Require.h"
#include "Support/Task.h"

#include <QAbstractEventDispatcher>
#include <QMetaObject>
#include <QThread>
#include <QThreadPool>
#include <coroutine>
#include <memory>
#include <optional>
#include <type_traits>

/// Hops between threads. An actor keeps its state on one executor (an object's thread, or a pool of one
/// thread); its public calls go there through `runOn` and resume on the thread that called, which must run an
/// event loop. The calling coroutine never leaves its own thread, and the work never leaves the executor's.
namespace orvane {

namespace hop {

/// An object that lives on the calling thread, to post the way back to.
inline QObject *hereReceiver()
{
    QObject *receiver = QAbstractEventDispatcher::instance();
    ORVANE_REQUIRE(receiver != nullptr, "an asynchronous call needs an event loop on its thread");
    return receiver;
}

template <class T>
struct Shared {
    std::optional<T> value;
    std::coroutine_handle<> waiting;
    QObject *home = hereReceiver();

    void finish(T &&result)
    {
        value.emplace(std::move(result));
        QMetaObject::invokeMethod(home, [handle = waiting] { handle.resume(); }, Qt::QueuedConnection);
    }
};

template <class T, class Post>
struct Awaiter {
    std::shared_ptr<Shared<T>> shared = std::make_shared<Shared<T>>();
    Post post;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle)
    {
        shared->waiting = handle;
        // The last thing that touches this object: the answer may come before the post returns.
        post(shared);
    }
    T await_resume() { return std::move(*shared->value); }
};

template <class Make, class T>
Task<> drive(Make make, std::shared_ptr<Shared<T>> shared)
{
    shared->finish(co_await make());
}

} // namespace hop

/// Runs the task that `make` makes on `executor`'s thread. `executor` must outlive the call.
template <class Make>
auto runOn(QObject *executor, Make make) -> Task<typename std::invoke_result_t<Make>::value_type>
{
    using T = typename std::invoke_result_t<Make>::value_type;
    const auto post = [executor, &make](const std::shared_ptr<hop::Shared<T>> &shared) {
        QMetaObject::invokeMethod(
            executor,
            [make = std::move(make), shared]() mutable { hop::drive(std::move(make), std::move(shared)); },
            Qt::QueuedConnection);
    };
    co_return co_await hop::Awaiter<T, decltype(post)>{.post = post};
}

/// Runs a plain function on an executor, one at a time in the order in which they were posted.
template <class Function>
auto runOn(Executor &executor, Function function) -> Task<std::invoke_result_t<Function>>
{
    using T = std::invoke_result_t<Function>;
    const auto post = [&executor, &function](const std::shared_ptr<hop::Shared<T>> &shared) {
        executor.post([function = std::move(function), shared]() mutable { shared->finish(function()); });
    };
    co_return co_await hop::Awaiter<T, decltype(post)>{.post = post};
}

/// Runs a plain function on a pool. With a pool of one thread, calls run one at a time in the order they were
/// made.
template <class Function>
auto runOn(QThreadPool &pool, Function function) -> Task<std::invoke_result_t<Function>>
{
    using T = std::invoke_result_t<Function>;
    const auto post = [&pool, &function](const std::shared_ptr<hop::Shared<T>> &shared) {
        pool.start([function = std::move(function), shared]() mutable { shared->finish(function()); });
    };
    co_return co_await hop::Awaiter<T, decltype(post)>{.post = post};
}

} // namespace orvane
