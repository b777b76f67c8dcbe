// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>
#include <string>

class QLocalSocket;

namespace orvane {

/// Where a process that has sent the browser to a sign-in waits for the address that the browser comes back
/// with: the system starts a program for it, which hands it over here. A user waits at one place at a time;
/// whoever begins later takes it over.
///
/// Owner: who waits. Thread: the main thread.
class CallbackSocket final : public QObject {
    Q_OBJECT

public:
    /// Of the user, whatever installation the waiting process is of: the program that the system starts knows
    /// of none.
    static std::string usualFolder();
    /// Hands an address over, at the latest within a second. False when nobody waits.
    static bool deliver(const std::string &folder, const std::string &address);

    /// Makes the folder, for the user alone.
    explicit CallbackSocket(const std::string &folder);

    /// Whether addresses can come this way.
    bool isListening() const { return m_server.isListening(); }

    /// Longer than any address that a server sends a browser to, in bytes.
    static constexpr qint64 longestAddress = 4096;

Q_SIGNALS:
    void arrived(const QString &address);

private:
    void hear();
    void read(QLocalSocket &socket);

    QLocalServer m_server;
};

} // namespace orvane
