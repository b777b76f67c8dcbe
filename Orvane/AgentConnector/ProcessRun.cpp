// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/ProcessRun.h"

#include "AgentConnector/ProcessKeeper.h"

#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane {

namespace {

struct Pipe {
    FileDescriptor reading = FileDescriptor();
    FileDescriptor writing = FileDescriptor();
};

Pipe makePipe()
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0)
        return {};
    for (const int end : ends)
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// As `execve` wants it; `texts` stay where they are meanwhile.
std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

int exitStatusOf(int status)
{
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

void BoundedOutput::append(std::string_view more)
{
    const std::size_t taken = std::min(half - std::min(half, m_begin.size()), more.size());
    m_begin += more.substr(0, taken);
    m_end += more.substr(taken);
    if (m_end.size() <= 2 * half)
        return;
    m_isCut = true;
    m_end.erase(0, m_end.size() - half);
}

std::string BoundedOutput::text() const
{
    const bool isCut = m_isCut || m_end.size() > half;
    const std::size_t skipped = m_end.size() - std::min(half, m_end.size());
    // Two ends that would make a word together do not.
    return m_begin + (isCut ? "\n…\n" : "") + m_end.substr(skipped);
}

ProcessRun::ProcessRun(const Program &program, std::unique_ptr<RetryTimer> timer,
                       std::chrono::milliseconds limit)
    : m_timer(std::move(timer))
{
    if (!start(program)) {
        m_outcome.finish(failure(Failure::notStarted));
        return;
    }
    m_timer->schedule(limit, [this] { giveUp(Failure::tookTooLong); });
}

ProcessRun::~ProcessRun()
{
    m_outcome.finish(failure(Failure::givenUp));
}

bool ProcessRun::start(const Program &program)
{
    Pipe control = makePipe();
    Pipe status = makePipe();
    Pipe output = makePipe();
    if (!control.writing || !status.writing || !output.writing)
        return false;
    std::vector<std::string> words{program.path};
    words.insert(words.end(), program.arguments.begin(), program.arguments.end());
    std::vector<std::string> variables;
    for (const auto &[name, value] : program.environment)
        variables.push_back(name + "=" + value);
    const std::vector<char *> arguments = pointersTo(words);
    const std::vector<char *> environment = pointersTo(variables);
    const KeeperOrder order{.program = program.path.c_str(),
                            .arguments = arguments.data(),
                            .environment = environment.data(),
                            .control = control.reading.get(),
                            .status = status.writing.get(),
                            .output = output.writing.get(),
                            .sparesDetached = program.sparesDetached};
    m_keeper = ::fork();
    if (m_keeper == 0)
        keepProcess(order);
    if (m_keeper < 0)
        return false;
    m_control = std::move(control.writing);
    m_status = std::move(status.reading);
    m_output = std::move(output.reading);
    ::fcntl(m_output.get(), F_SETFL, O_NONBLOCK);
    m_statusNotifier = std::make_unique<QSocketNotifier>(m_status.get(), QSocketNotifier::Read);
    connect(m_statusNotifier.get(), &QSocketNotifier::activated, this, &ProcessRun::finish);
    m_outputNotifier = std::make_unique<QSocketNotifier>(m_output.get(), QSocketNotifier::Read);
    connect(m_outputNotifier.get(), &QSocketNotifier::activated, this, [this] {
        constexpr int most = 16;
        m_outputNotifier->setEnabled(readOutput(most));
    });
    return true;
}

void ProcessRun::giveUp(Failure reason)
{
    if (!m_control)
        return;
    m_failure = reason;
    m_timer->cancel();
    m_control = FileDescriptor();
}

/// In so many pieces at most, since others wait for the event loop too. False when no more can come.
bool ProcessRun::readOutput(int most)
{
    std::array<char, 65536> piece{};
    for (int i = 0; i < most; ++i) {
        const ssize_t size = ::read(m_output.get(), piece.data(), piece.size());
        if (size <= 0)
            return size < 0 && (errno == EAGAIN || errno == EINTR);
        m_printed.append({piece.data(), static_cast<std::size_t>(size)});
    }
    return true;
}

void ProcessRun::finish()
{
    m_statusNotifier->setEnabled(false);
    m_outputNotifier->setEnabled(false);
    m_timer->cancel();
    int status = 0;
    const bool isKnown = ::read(m_status.get(), &status, sizeof status) == sizeof status;
    // The keeper has nothing left to do by now.
    ::waitpid(m_keeper, nullptr, 0);
    // A pipe holds a mebibyte at most; one that a detached program still writes to has no end.
    constexpr int most = 32;
    readOutput(most);
    const bool isGivenUp = !m_control;
    m_control = FileDescriptor();
    if (isKnown && !isGivenUp)
        m_outcome.finish(Ended{exitStatusOf(status), m_printed.text()});
    else
        m_outcome.finish(failure(m_failure));
}

} // namespace orvane
