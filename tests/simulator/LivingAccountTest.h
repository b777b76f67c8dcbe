// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "Session/MemoryTokenStore.h"
#include "Time/AppClock.h"
#include "simulator/Server.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace orvane::simulator {

/// A whole account in the world's time: a window that lives on, other processes beside it on the same store,
/// and a phone that is always connected.
class LivingAccountTest : public ::testing::Test {
protected:
    LivingAccountTest();
    ~LivingAccountTest() override;

    /// Lets the world go on until the task has come to its end.
    template <class T>
    T run(Task<T> task)
    {
        letEnd([&] { return task.isReady(); });
        if constexpr (std::is_void_v<T>)
            QCoro::waitFor(task);
        else
            return QCoro::waitFor(std::move(task));
    }

    /// Opens the account and loads it.
    std::unique_ptr<Account> open(bool livesOn);
    void close(std::unique_ptr<Account> account) { run(account->close()); }
    /// An entry of an hour, made on the phone.
    void recordElsewhere(const std::string &id, Instant start);

    World world{20260304};
    Server server{world};
    /// The computer's; the phone has its own.
    std::shared_ptr<Link> link = std::make_shared<Link>();
    QTemporaryDir folder;
    Installation installation{folder.path().toStdString()};
    std::unique_ptr<Account> window;
    std::unique_ptr<OrvaneClient> phone;

private:
    void letEnd(const std::function<bool()> &isDone);
};

} // namespace orvane::simulator
