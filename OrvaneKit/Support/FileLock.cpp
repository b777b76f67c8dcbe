// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/FileLock.h"

#include <QCoro/QCoroTimer>
#include <QDeadlineTimer>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace orvane {

FileLock::FileLock(std::string path) : m_path(std::move(path)) {}

FileLock::~FileLock()
{
    unlock();
}

bool FileLock::tryLock()
{
    if (isHeld())
        return true;
    m_error.clear();
    const int descriptor = ::open(m_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        m_error = std::strerror(errno);
        return false;
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK)
            m_error = std::strerror(errno);
        ::close(descriptor);
        return false;
    }
    m_descriptor = descriptor;
    return true;
}

void FileLock::unlock()
{
    if (isHeld())
        ::close(std::exchange(m_descriptor, -1));
}

Task<bool> lockWithin(std::shared_ptr<FileLock> lock, std::chrono::milliseconds patience)
{
    // The system has no way to wait for such a lock without a thread; the holders keep it for one request.
    constexpr std::chrono::milliseconds interval{10};
    const QDeadlineTimer deadline(patience);
    while (!lock->tryLock()) {
        if (deadline.hasExpired() || !lock->error().empty())
            co_return false;
        QTimer timer;
        timer.setSingleShot(true);
        timer.start(interval);
        co_await timer;
    }
    co_return true;
}

} // namespace orvane
