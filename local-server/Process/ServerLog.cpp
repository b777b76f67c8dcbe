// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/ServerLog.h"

#include "Support/DateText.h"

#include <QString>
#include <QtGlobal>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane::server {

namespace {

constexpr off_t fullSize = 512 * 1024;

struct LogState {
    std::string path;
    bool alsoToTerminal = false;
};

LogState &state()
{
    static LogState log;
    return log;
}

void append(const std::string &line)
{
    const std::string &path = state().path;
    struct stat info{};
    if (::stat(path.c_str(), &info) == 0 && info.st_size > fullSize)
        std::rename(path.c_str(), (path + ".old").c_str());
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0)
        return;
    // A log that cannot be written is no reason to stop.
    [[maybe_unused]] const ssize_t written = ::write(descriptor, line.data(), line.size());
    ::close(descriptor);
}

void handleMessage(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtDebugMsg)
        return;
    const auto now = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    std::string text = message.toStdString();
    if (state().alsoToTerminal)
        std::fprintf(stderr, "orvane-server: %s\n", text.c_str());
    append(iso8601Text(now) + (type == QtInfoMsg ? " info " : " warning ") + text + "\n");
}

} // namespace

void startServerLog(const std::string &path, bool alsoToTerminal)
{
    state() = {path, alsoToTerminal};
    qInstallMessageHandler(handleMessage);
}

} // namespace orvane::server
