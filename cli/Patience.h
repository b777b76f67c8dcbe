// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <memory>

namespace orvane {

class ServerAccess;

/// How long a command waits for a server in all before it goes on without it. An account that is not known
/// yet has nothing to go on with: for it the wait counts from when the server was found.
///
/// Lives on the main thread for the length of one command.
class Patience final : public QObject {
    Q_OBJECT

public:
    explicit Patience(std::chrono::milliseconds length, QObject *parent = nullptr);

    std::chrono::milliseconds length() const { return m_length; }
    /// Counts from now on for that server, of which it gives up when the time is over.
    void begin(std::shared_ptr<ServerAccess> access);
    /// Counts anew, because the server just answered. Nothing once it has all but run out.
    void restart();
    /// Counts no more.
    void end();
    /// False once it has all but run out: what is begun now would be cut short.
    bool lasts() const { return !m_isWindingDown; }

Q_SIGNALS:
    /// A little before it is over, so that what takes long can come to an end of its own.
    void windingDown();

private:
    void count();

    std::chrono::milliseconds m_length;
    std::shared_ptr<ServerAccess> m_access;
    QTimer m_windDown;
    QTimer m_end;
    bool m_isWindingDown = false;
};

} // namespace orvane
