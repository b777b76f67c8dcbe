// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace orvane {

class SecondTick;

/// How what was recorded stands with the server, as the sidebar says it: a line, and a quieter one below.
///
/// Owner: the AppModel. Thread: the main thread.
class SyncStatus final : public QObject {
    Q_OBJECT
    Q_PROPERTY(Kind kind READ kind NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY changed)
    Q_PROPERTY(int waiting READ waiting NOTIFY changed)
    Q_PROPERTY(int conflicts READ conflicts NOTIFY changed)

public:
    enum class Kind { Loading, Saved, Sending, Offline, Conflict, HeldBack, SessionEnded };
    Q_ENUM(Kind)

    explicit SyncStatus(SecondTick &tick);

    /// Whose; null: nobody's.
    void setAccount(Account *account);

    Kind kind() const { return m_shown.kind; }
    QString title() const { return m_shown.title; }
    QString subtitle() const { return m_shown.subtitle; }
    /// How many changes wait to be sent, and how many entries have a conflict to settle.
    int waiting() const { return m_shown.waiting; }
    int conflicts() const { return m_shown.conflicts; }

Q_SIGNALS:
    void changed();

private:
    struct Shown {
        Kind kind = Kind::Loading;
        QString title;
        QString subtitle;
        int waiting = 0;
        int conflicts = 0;
        bool operator==(const Shown &) const = default;
    };
    void follow(Tracker *tracker);
    void update();
    Shown worked() const;
    QString nextTry() const;

    SecondTick *m_tick;
    QPointer<Account> m_account;
    Shown m_shown;
};

} // namespace orvane
