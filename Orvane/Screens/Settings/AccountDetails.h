// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <vector>

namespace orvane {

class Account;
class AppModel;
class SettingsWriter;

/// Who one is at the server in use, where else one is signed in, and what can be taken along or ended. Only
/// what the server says it did is shown as done.
///
/// Owner: the SettingsModel. Thread: the main thread; the AppModel outlives it.
class AccountDetails final : public QObject {
    Q_OBJECT
    /// False for the account on this computer, which signs in by itself.
    Q_PROPERTY(bool hasSignIn READ hasSignIn NOTIFY changed)
    Q_PROPERTY(bool isAway READ isAway NOTIFY changed)
    Q_PROPERTY(QString place READ place NOTIFY changed)
    Q_PROPERTY(QString fullName READ fullName NOTIFY changed)
    Q_PROPERTY(QString email READ email NOTIFY changed)
    Q_PROPERTY(bool isConfirmed READ isConfirmed NOTIFY changed)
    Q_PROPERTY(QString zone READ zone NOTIFY changed)
    Q_PROPERTY(bool hasPassword READ hasPassword NOTIFY changed)
    Q_PROPERTY(bool isChangingPassword READ isChangingPassword NOTIFY changed)
    Q_PROPERTY(QString passwordProblem READ passwordProblem NOTIFY changed)
    /// { id, device, isCurrent, since, used }, this device first.
    Q_PROPERTY(QVariantList sessions READ sessions NOTIFY sessionsChanged)
    Q_PROPERTY(QString sessionsProblem READ sessionsProblem NOTIFY sessionsChanged)
    Q_PROPERTY(bool isExporting READ isExporting NOTIFY changed)
    Q_PROPERTY(bool isDeleting READ isDeleting NOTIFY changed)
    Q_PROPERTY(QString deletionProblem READ deletionProblem NOTIFY changed)
    Q_PROPERTY(int waiting READ waiting NOTIFY changed)

public:
    AccountDetails(AppModel &app, SettingsWriter &writer);

    bool hasSignIn() const;
    bool isAway() const;
    QString place() const;
    QString fullName() const;
    QString email() const;
    bool isConfirmed() const;
    QString zone() const;
    bool hasPassword() const;
    bool isChangingPassword() const { return m_isChangingPassword; }
    QString passwordProblem() const { return m_passwordProblem; }
    QVariantList sessions() const;
    QString sessionsProblem() const { return m_sessionsProblem; }
    bool isExporting() const { return m_isExporting; }
    bool isDeleting() const { return m_isDeleting; }
    QString deletionProblem() const { return m_deletionProblem; }
    /// How many changes wait to be sent.
    int waiting() const;

    /// Whether somebody looks at it: then the server is asked where one is signed in.
    Q_INVOKABLE void setLookedAt(bool isLookedAt);
    Q_INVOKABLE void setFullName(const QString &name);
    /// `passwordChanged` tells that it worked.
    Q_INVOKABLE void changePassword(const QString &current, const QString &next);
    Q_INVOKABLE void signOutSession(const QString &id);
    Q_INVOKABLE void signOutOthers();
    /// Saves everything that the server keeps about one in the folder for downloads.
    Q_INVOKABLE void exportData();
    /// For good; afterwards another account is open, or none.
    Q_INVOKABLE void deleteAccount(const QString &email, const QString &password);
    Q_INVOKABLE void forgetProblems();

Q_SIGNALS:
    void changed();
    void sessionsChanged();
    void passwordChanged();

private:
    void follow();
    void look();
    Task<> loadSessions();
    Task<> doChangePassword(ChangePasswordRequest request);
    Task<> doSignOutSession(std::string id);
    Task<> doSignOutOthers();
    Task<> doExport();
    Task<> doDelete(DeleteAccountRequest request);
    void setSessions(std::vector<SessionResponse> sessions, const QString &problem);

    AppModel *m_app;
    SettingsWriter *m_writer;
    QPointer<Account> m_account;
    bool m_isLookedAt = false;
    bool m_isChangingPassword = false;
    QString m_passwordProblem;
    std::vector<SessionResponse> m_sessions;
    QString m_sessionsProblem;
    bool m_isExporting = false;
    bool m_isDeleting = false;
    QString m_deletionProblem;
};

} // namespace orvane
