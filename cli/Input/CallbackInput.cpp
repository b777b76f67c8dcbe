// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/CallbackInput.h"

#include <QPointer>
#include <array>
#include <cerrno>
#include <unistd.h>
#include <utility>

namespace orvane {

CallbackInput::CallbackInput(const std::string &socketFolder)
    : m_socket(socketFolder), m_input(STDIN_FILENO, QSocketNotifier::Read)
{
    connect(&m_socket, &CallbackSocket::arrived, this, [this](const QString &address) {
        if (!m_isAsking)
            add(address.toStdString());
    });
    connect(&m_input, &QSocketNotifier::activated, this, &CallbackInput::readInput);
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, &CallbackInput::end);
}

Task<std::optional<std::string>> CallbackInput::next()
{
    if (!m_addresses.empty()) {
        std::optional<std::string> first = std::move(m_addresses.front());
        m_addresses.pop_front();
        co_return std::move(first);
    }
    if (m_isOver)
        co_return std::nullopt;
    m_patience.start(std::chrono::minutes{10});
    m_waiting.emplace(ResumeWaiters::fromTheirLoops);
    auto waiting = *m_waiting;
    co_return co_await std::move(waiting);
}

Task<std::optional<std::string>> CallbackInput::answer()
{
    const QPointer<CallbackInput> self(this);
    m_addresses.clear();
    m_isAsking = true;
    auto answered = co_await next();
    if (self)
        m_isAsking = false;
    co_return std::move(answered);
}

void CallbackInput::hand(std::optional<std::string> address)
{
    m_patience.stop();
    const auto waiting = std::exchange(m_waiting, std::nullopt);
    if (waiting)
        waiting->finish(std::move(address));
    else if (address)
        m_addresses.push_back(std::move(*address));
}

void CallbackInput::add(std::string address)
{
    const bool isWanted = m_isAsking ? !address.starts_with("orvane:") : !address.empty();
    if (isWanted)
        hand(std::move(address));
}

void CallbackInput::readInput()
{
    std::array<char, 4096> part{};
    const ssize_t size = ::read(STDIN_FILENO, part.data(), part.size());
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (size <= 0)
        return endInput();
    m_typed.append(part.data(), static_cast<std::size_t>(size));
    for (std::size_t end = m_typed.find('\n'); end != std::string::npos; end = m_typed.find('\n')) {
        m_wasTyped = true;
        add(QString::fromStdString(m_typed.substr(0, end)).trimmed().toStdString());
        m_typed.erase(0, end + 1);
    }
    if (m_typed.size() > CallbackSocket::longestAddress)
        m_typed.clear();
}

/// Where nothing was ever typed, as with /dev/null, the other way is waited for alone.
void CallbackInput::endInput()
{
    m_input.setEnabled(false);
    if (!m_typed.empty())
        add(std::exchange(m_typed, {}));
    if (m_wasTyped || !m_socket.isListening())
        end();
}

void CallbackInput::end()
{
    m_isOver = true;
    hand(std::nullopt);
}

} // namespace orvane
