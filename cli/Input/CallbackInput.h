// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "SignIn/CallbackSocket.h"
#include "Support/Eventual.h"
#include "Support/Task.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <deque>
#include <optional>
#include <string>

namespace orvane {

/// The addresses that a browser came back with: handed over by the program that the system starts for them,
/// or typed into standard input, a line each.
///
/// Lives on the main thread for the length of one sign-in, the user's or an agent's.
class CallbackInput final : public QObject {
    Q_OBJECT

public:
    /// `socketFolder` as of CallbackSocket.
    explicit CallbackInput(const std::string &socketFolder);

    /// The next one, as soon as it is there; none when nothing can come any more, or came for ten minutes.
    Task<std::optional<std::string>> next();
    /// What is typed from now on to a question, be it an empty line; an address is no answer.
    Task<std::optional<std::string>> answer();
    /// Nothing is waited for any more.
    void stop() { end(); }

private:
    void add(std::string address);
    void readInput();
    void endInput();
    void end();
    void hand(std::optional<std::string> address);

    CallbackSocket m_socket;
    QSocketNotifier m_input;
    QTimer m_patience;
    std::string m_typed;
    bool m_wasTyped = false;
    bool m_isAsking = false;
    bool m_isOver = false;
    std::deque<std::string> m_addresses;
    std::optional<Eventual<std::optional<std::string>>> m_waiting;
};

} // namespace orvane
