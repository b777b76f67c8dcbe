// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/StopSignals.h"

#include <QSocketNotifier>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace orvane {

namespace {

// What a signal handler may touch.
int stopPipe[2] = {-1, -1};

void writeToStopPipe(int)
{
    const int kept = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(stopPipe[1], &byte, 1);
    errno = kept;
}

void takeOver(int signal, struct sigaction &before)
{
    struct sigaction action{};
    action.sa_handler = writeToStopPipe;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, &before);
    if (before.sa_handler == SIG_IGN)
        ::sigaction(signal, &before, nullptr);
}

} // namespace

StopSignals::StopSignals()
{
    if (::pipe(stopPipe) != 0)
        return;
    for (const int end : stopPipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    m_notifier = new QSocketNotifier(stopPipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(stopPipe[0], &byte, 1) > 0) {
        }
        Q_EMIT stopRequested();
    });
    takeOver(SIGTERM, m_terminateBefore);
    takeOver(SIGINT, m_interruptBefore);
}

StopSignals::~StopSignals()
{
    if (m_notifier == nullptr)
        return;
    ::sigaction(SIGTERM, &m_terminateBefore, nullptr);
    ::sigaction(SIGINT, &m_interruptBefore, nullptr);
    delete m_notifier;
    for (int &end : stopPipe) {
        ::close(end);
        end = -1;
    }
}

} // namespace orvane
