// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/FileLock.h"

#include <QLocalServer>
#include <QObject>
#include <chrono>
#include <string>

class QLocalSocket;

namespace orvane {

/// One window program at a time has a data folder: a second one hands over what it was started for and ends.
/// They meet at a socket in a folder that is its user's alone.
///
/// Owner: the program. Thread: the main thread.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    /// What a second start asks of the first.
    enum class Wish {
        raise, ///< the window to come to the front
        panel, ///< the panel to open
        agent, ///< an agent's request to be answered, whose address comes along
    };

    /// `folder` exists; the socket's own folder is made in it.
    explicit SingleInstance(const std::string &folder);

    /// True for the first, which from now on hears of others. A second one's wish is then handed to the first
    /// before this answers. Should the first just be ending, this one takes its place. Blocks for at most
    /// `patience`, after which a first that does not listen is left alone.
    /// `detail` is what comes along, a line of at most a few thousand bytes.
    bool takeOrHandOver(Wish wish, const QString &detail = {});
    /// From now on nothing is heard any more: who is started waits until this process has ended.
    void retire();

    static constexpr std::chrono::seconds patience{5};

Q_SIGNALS:
    void wished(orvane::SingleInstance::Wish wish, const QString &detail);

private:
    bool listen();
    bool handOver(Wish wish, const QString &detail);
    void hear();
    void read(QLocalSocket &socket);

    QString m_socketPath;
    FileLock m_lock;
    QLocalServer m_server;
};

} // namespace orvane
