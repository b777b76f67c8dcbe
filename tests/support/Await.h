// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Task.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <utility>

namespace orvane::testing {

/// The task's result; events are handled meanwhile.
template <class T>
T await(Task<T> task)
{
    return QCoro::waitFor(std::move(task));
}

/// Handles events until the condition holds; false when it does not within 10 s.
template <class Condition>
bool eventually(Condition condition)
{
    const QDeadlineTimer deadline(10'000);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
    }
    return true;
}

} // namespace orvane::testing
