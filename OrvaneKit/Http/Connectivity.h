// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <functional>

namespace orvane {

/// Whether the machine's network looks usable, as the system reports it. A hint and no more: nothing asks it
/// before sending, and without a back end for the system (no bus, say) it stays online. What it is good for
/// is the moment of coming back, when what is queued can go at once. The system is first asked after a
/// second, since its monitor keeps the thread waiting while it is set up.
///
/// Lives on the main thread, as long as the account that it serves.
class Connectivity : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOnline READ isOnline NOTIFY isOnlineChanged)

public:
    explicit Connectivity(QObject *parent = nullptr);

    bool isOnline() const { return m_isOnline; }
    /// Called each time when the network comes back.
    std::function<void()> onOnline;

    /// What the system's monitor says. Public since tests are a monitor too.
    void setOnline(bool online);

Q_SIGNALS:
    void isOnlineChanged();

private:
    void watch();

    bool m_isOnline = true;
};

} // namespace orvane
