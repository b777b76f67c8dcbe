// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <csignal>

class QSocketNotifier;

namespace orvane {

/// While it lives, SIGTERM and SIGINT are signals of the event loop. One that whoever started the process
/// lets it ignore stays ignored. One in a process.
class StopSignals : public QObject {
    Q_OBJECT

public:
    StopSignals();
    ~StopSignals() override;

Q_SIGNALS:
    void stopRequested();

private:
    QSocketNotifier *m_notifier = nullptr;
    struct sigaction m_terminateBefore{};
    struct sigaction m_interruptBefore{};
};

} // namespace orvane
