// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/NetworkTransport.h"
#include "Support/AsyncHop.h"

#include <QObject>
#include <QThread>
#include <atomic>
#include <memory>

namespace orvane {

/// The thread on which everything that talks to a server lives: the transport, sessions, the clients' chains.
/// One for a process is enough. It is owned by who puts the account together and must outlive every client
/// and session made with it.
///
/// Its end closes the transport, which answers every call that is under way with a ConnectionError, and waits
/// for those calls. A call that still does not end within `patience` is dropped; nobody is resumed for it.
class NetworkThread {
public:
    explicit NetworkThread(NetworkLimits limits = {},
                           std::chrono::milliseconds patience = std::chrono::seconds{5});
    /// Without a thread of its own: all of it lives on the calling one, as under a simulator.
    struct OnThisThread {};
    explicit NetworkThread(OnThisThread);
    NetworkThread(const NetworkThread &) = delete;
    NetworkThread &operator=(const NetworkThread &) = delete;
    ~NetworkThread();

    const std::shared_ptr<NetworkTransport> &transport() const { return m_transport; }

    /// An object that lives on the thread.
    QObject *executor() { return m_executor.get(); }
    /// For who may outlive the thread and has something to post to it while it is there.
    std::weak_ptr<QObject> executorHandle() const { return m_executor; }
    bool isCurrent() const { return QThread::currentThread() == m_executor->thread(); }

    /// Runs the task that `make` makes on the network thread and resumes on the calling one, which needs an
    /// event loop. From the network thread itself it runs at once.
    template <class Make>
    auto run(Make make) -> Task<typename std::invoke_result_t<Make>::value_type>
    {
        if (isCurrent())
            co_return co_await make();
        co_return co_await runOn(executor(), Counted<Make>{std::make_shared<Guard>(*this), std::move(make)});
    }

private:
    /// Counts a call that is under way; may go on any thread.
    struct Guard {
        explicit Guard(NetworkThread &thread) : owner(thread) { ++owner.m_underWay; }
        Guard(const Guard &) = delete;
        Guard &operator=(const Guard &) = delete;
        ~Guard() { owner.callEnded(); }
        NetworkThread &owner;
    };

    template <class Make>
    struct Counted {
        std::shared_ptr<Guard> guard;
        Make make;
        auto operator()() { return hold(std::move(guard), std::move(make)); }
    };

    template <class Make>
    static auto hold(std::shared_ptr<Guard> guard, Make make)
        -> Task<typename std::invoke_result_t<Make>::value_type>
    {
        auto result = co_await make();
        guard.reset();
        co_return std::move(result);
    }

    void callEnded();
    void quitWhenIdle();

    std::chrono::milliseconds m_patience;
    QThread m_thread;
    std::shared_ptr<NetworkTransport> m_transport;
    std::shared_ptr<QObject> m_executor;
    std::atomic<int> m_underWay = 0;
    std::atomic<bool> m_stopping = false;
};

} // namespace orvane
