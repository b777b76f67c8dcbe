// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/StandardStreams.h"

#include "Terminal/TerminalStyle.h"
#include "Terminal/TextWidth.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace orvane {

namespace {

constexpr std::string_view clearLine = "\r\x1b[K";

// What the handler of Ctrl-C restores; only touched by the main thread and, after it, by the handler.
std::atomic<bool> progressIsShown = false;
std::atomic<int> hiddenTerminal = -1;
termios terminalBefore;

bool messagesAreMuted = false;

bool writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            // Somebody made the stream non-blocking for themselves; wait the plain way.
            usleep(1000);
            continue;
        }
        if (written <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

extern "C" void endOnInterrupt(int)
{
    const int terminal = hiddenTerminal.load();
    if (terminal >= 0) {
        tcsetattr(terminal, TCSANOW, &terminalBefore);
        (void)!::write(terminal, "\n", 1);
    }
    if (progressIsShown.load())
        (void)!::write(STDERR_FILENO, clearLine.data(), clearLine.size());
    _exit(130);
}

/// A line from a descriptor, byte by byte: what comes after it belongs to somebody else.
std::string readLine(int descriptor)
{
    constexpr std::size_t longest = 4096;
    std::string line;
    char byte = 0;
    while (line.size() < longest) {
        const ssize_t got = ::read(descriptor, &byte, 1);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0 || byte == '\n')
            break;
        line += byte;
    }
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

} // namespace

bool writeOutput(std::string_view text)
{
    return writeAll(STDOUT_FILENO, text);
}

void writeErrors(std::string_view text)
{
    // Nobody is left to tell when this fails.
    (void)writeAll(STDERR_FILENO, text);
}

void muteMessages()
{
    messagesAreMuted = true;
}

bool areMessagesMuted()
{
    return messagesAreMuted;
}

void writeMessage(std::string_view text)
{
    if (messagesAreMuted)
        return;
    if (progressIsShown.load())
        writeErrors(clearLine);
    writeErrors(wrapped(text, TerminalStyle::of(STDERR_FILENO).width) + "\n");
}

std::string readInputLine()
{
    return readLine(STDIN_FILENO);
}

std::vector<std::string> readInputLines()
{
    constexpr std::size_t most = std::size_t{1} << 20U;
    std::string text;
    std::array<char, 4096> part;
    while (text.size() < most) {
        const ssize_t got = ::read(STDIN_FILENO, part.data(), part.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        text.append(part.data(), static_cast<std::size_t>(got));
    }
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        std::string line = text.substr(at, end - at);
        if (line.ends_with('\r'))
            line.pop_back();
        lines.push_back(std::move(line));
        at = end + 1;
    }
    return lines;
}

bool canAsk()
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal < 0)
        return false;
    ::close(terminal);
    return true;
}

std::string ask(std::string_view question, bool hidden)
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_CLOEXEC);
    if (terminal < 0)
        return {};
    writeAll(terminal, question);
    const bool hides = hidden && tcgetattr(terminal, &terminalBefore) == 0;
    if (hides) {
        termios silent = terminalBefore;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hiddenTerminal = terminal;
        tcsetattr(terminal, TCSAFLUSH, &silent);
    }
    std::string line = readLine(terminal);
    if (hides) {
        tcsetattr(terminal, TCSAFLUSH, &terminalBefore);
        hiddenTerminal = -1;
        writeAll(terminal, "\n");
    }
    ::close(terminal);
    return line;
}

void takeOverSignals()
{
    std::signal(SIGPIPE, SIG_IGN);
    struct sigaction before{};
    // A caller that ignores Ctrl-C for its children (nohup and the like) keeps being obeyed.
    if (sigaction(SIGINT, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
        std::signal(SIGINT, endOnInterrupt);
}

void giveBackSignals()
{
    std::signal(SIGPIPE, SIG_DFL);
    struct sigaction before{};
    if (sigaction(SIGINT, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
        std::signal(SIGINT, SIG_DFL);
}

void setProgressIsShown(bool isShown)
{
    progressIsShown = isShown;
}

} // namespace orvane
