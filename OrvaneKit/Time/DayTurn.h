// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/UserTime.h"
#include "Time/WallTimer.h"

#include <QObject>
#include <memory>

namespace orvane {

/// Tells when today becomes another day in the user's zone: at midnight, after a sleep, and when the clock is
/// set.
///
/// Owner: the account. Thread: the main thread.
class DayTurn final : public QObject {
    Q_OBJECT

public:
    DayTurn(UserTime time, std::unique_ptr<WallTimer> timer);

    DayKey today() const { return m_today; }
    /// Another zone has midnight at another moment, and today may be another day there.
    void setTime(UserTime time);

Q_SIGNALS:
    void turned();

private:
    void look();

    UserTime m_time;
    std::unique_ptr<WallTimer> m_timer;
    DayKey m_today;
};

} // namespace orvane
