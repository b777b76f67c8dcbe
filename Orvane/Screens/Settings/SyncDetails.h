// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <optional>

namespace orvane {

class Account;
class AppModel;
struct EntryChange;

/// What waits to be sent to the server, in words, and when all of it was there last.
///
/// Owner: the SettingsModel. Thread: the main thread; the AppModel outlives it.
class SyncDetails final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString place READ place NOTIFY changed)
    Q_PROPERTY(QString address READ address NOTIFY changed)
    Q_PROPERTY(QString sentAt READ sentAt NOTIFY changed)
    Q_PROPERTY(QStringList waiting READ waiting NOTIFY changed)
    Q_PROPERTY(int more READ more NOTIFY changed)
    Q_PROPERTY(bool isSending READ isSending NOTIFY changed)

public:
    /// So many waiting changes are named one by one.
    static constexpr int mostNamed = 20;

    explicit SyncDetails(AppModel &app);

    /// Where the server is: "This Computer", or its host.
    QString place() const;
    QString address() const;
    /// "All was sent at 15:47."; empty before that is known.
    QString sentAt() const;
    /// The first of what waits: "New entry “Stand-up”".
    QStringList waiting() const;
    /// How many wait beside those.
    int more() const;
    bool isSending() const { return m_isSending; }

    /// Tries now.
    Q_INVOKABLE void sendNow();

Q_SIGNALS:
    void changed();

private:
    void follow();
    void handlePass();
    Task<> doSend();
    QString words(const EntryChange &change) const;

    AppModel *m_app;
    QPointer<Account> m_account;
    std::optional<Instant> m_sentAt;
    bool m_isSending = false;
};

} // namespace orvane
