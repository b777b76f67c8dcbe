// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>
#include <mutex>

namespace orvane {

/// Tells that a session has ended. Of ends that nobody was there to hear, the newest is kept for the first
/// who comes. From any thread.
class SessionEnd final : public QObject {
    Q_OBJECT

public:
    /// Calls the handler on the thread of `context`, through its event loop, as long as that lives.
    void listen(QObject *context, std::function<void()> handler);
    void tell();

Q_SIGNALS:
    void happened();

private:
    std::mutex m_mutex;
    bool m_unheard = false;
};

} // namespace orvane
