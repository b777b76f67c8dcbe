// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/AccountSettings.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <deque>
#include <functional>
#include <optional>

namespace orvane {

class Account;
class AppModel;

/// The account's settings as the pages show and change them: a change shows at once, goes to the server, and
/// is a step that undo takes back. One the server did not take is gone again, with its reason. Several are
/// sent one after the other.
///
/// Owner: the SettingsModel. Thread: the main thread; the AppModel outlives it.
class SettingsWriter final : public QObject {
    Q_OBJECT

public:
    using Change = std::function<void(AccountSettings &)>;

    explicit SettingsWriter(AppModel &app);

    /// With what is on its way; none while there is no account.
    const std::optional<AccountSettings> &shown() const { return m_shown; }
    bool isAway() const;
    bool isAdmin() const;
    /// Changes are on their way.
    bool isSending() const { return m_isSending; }
    /// Why the last change was not taken; empty when all is well.
    const QString &problem() const { return m_problem; }

    void change(Change change);

Q_SIGNALS:
    void changed();

private:
    void follow();
    void update();
    void setProblem(const QString &problem);
    Task<> send();

    AppModel *m_app;
    QPointer<Account> m_account;
    std::optional<AccountSettings> m_shown;
    std::deque<Change> m_waiting;
    bool m_isSending = false;
    QString m_problem;
};

} // namespace orvane
