// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentConnector/LoginShell.h"
#include "Support/Eventual.h"
#include "Support/FileDescriptor.h"
#include "Support/Result.h"
#include "Support/RetryTimer.h"

#include <QObject>
#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

class QSocketNotifier;

namespace orvane {

/// What was printed, cut in the middle where it is longer than anybody reads.
class BoundedOutput {
public:
    /// Bytes kept of the beginning, and as many of the end.
    static constexpr std::size_t half = 64 * 1024;

    void append(std::string_view more);
    std::string text() const;

private:
    std::string m_begin;
    /// Up to twice what is shown of it, so that it moves seldom.
    std::string m_end;
    bool m_isCut = false;
};

/// One program in a session of its own, without input, that leaves nothing running: when it is over, given up
/// or this object goes, whatever came from it is ended too. Also when this process is killed.
///
/// Thread: one with an event loop. Owner: whoever awaits the outcome.
class ProcessRun final : public QObject {
    Q_OBJECT

public:
    struct Program {
        /// With its folder.
        std::string path;
        /// Without the program's name.
        std::vector<std::string> arguments;
        ProcessEnvironment environment;
        /// What went over to a session of its own, like a browser, may outlive a program that ended by
        /// itself.
        bool sparesDetached = false;
    };
    struct Ended {
        /// 127 where it could not be started, above 128 where a signal ended it.
        int exitStatus = 0;
        /// Standard output and error together.
        std::string output;
    };
    enum class Failure { notStarted, tookTooLong, givenUp };
    using Outcome = Result<Ended, Failure>;

    ProcessRun(const Program &program, std::unique_ptr<RetryTimer> timer, std::chrono::milliseconds limit);
    ~ProcessRun() override;

    /// Finished once nothing of it runs any more.
    Eventual<Outcome> outcome() const { return m_outcome; }
    void giveUp() { giveUp(Failure::givenUp); }

private:
    bool start(const Program &program);
    void giveUp(Failure reason);
    bool readOutput(int most);
    void finish();

    std::unique_ptr<RetryTimer> m_timer;
    Eventual<Outcome> m_outcome{ResumeWaiters::fromTheirLoops};
    Failure m_failure = Failure::notStarted;
    pid_t m_keeper = -1;
    FileDescriptor m_control;
    FileDescriptor m_status;
    FileDescriptor m_output;
    std::unique_ptr<QSocketNotifier> m_statusNotifier;
    std::unique_ptr<QSocketNotifier> m_outputNotifier;
    BoundedOutput m_printed;
};

} // namespace orvane
