// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"
#include "OrvaneAPI/Schemas.h"
#include "Screens/SignIn/PasskeyPrompt.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <QVariantList>
#include <vector>

namespace orvane {

class Account;
class AppModel;

/// The ways beside the password in which one signs in to the server in use: passkeys and providers. Listed as
/// the server has them; a passkey is added where the server offers it.
///
/// Owner: the SettingsModel. Thread: the main thread; the AppModel outlives it.
class AccountLogins final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool offersPasskeys READ offersPasskeys NOTIFY changed)
    /// { id, name, since, used }, the oldest first.
    Q_PROPERTY(QVariantList passkeys READ passkeys NOTIFY changed)
    /// { id, name, since, used }: who signs one in; `used` is the address there, where it is known.
    Q_PROPERTY(QVariantList providers READ providers NOTIFY changed)
    /// A passkey is being added.
    Q_PROPERTY(bool isAdding READ isAdding NOTIFY changed)
    /// Why the last one was not added, or these are not known.
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    Q_PROPERTY(orvane::PasskeyPrompt *prompt READ prompt CONSTANT)

public:
    explicit AccountLogins(AppModel &app);

    bool offersPasskeys() const { return m_offersPasskeys; }
    QVariantList passkeys() const;
    QVariantList providers() const;
    bool isAdding() const { return m_isAdding; }
    QString problem() const { return m_problem; }
    PasskeyPrompt *prompt() { return &m_prompt; }

    /// Whether somebody looks at it: then the server is asked.
    Q_INVOKABLE void setLookedAt(bool isLookedAt);
    /// Makes a passkey of that name; `password` is the account's, where it has one. `added` tells that it
    /// worked. The prompt says meanwhile what is wanted of the user.
    Q_INVOKABLE void addPasskey(const QString &name, const QString &password);
    Q_INVOKABLE void removePasskey(const QString &id);
    Q_INVOKABLE void removeProvider(const QString &id);
    Q_INVOKABLE void forgetProblem();

Q_SIGNALS:
    void changed();
    void added();

private:
    void follow();
    void look();
    Task<> load();
    Task<> doAdd(std::string name, PasskeyCreationRequest request);
    void endAdding(const QString &problem);
    Task<> removeAt(Task<CallResult<void>> removal);

    AppModel *m_app;
    QPointer<Account> m_account;
    bool m_isLookedAt = false;
    ServerResponse m_server;
    bool m_offersPasskeys = false;
    std::vector<PasskeyResponse> m_passkeys;
    std::vector<ExternalLoginResponse> m_providers;
    bool m_isAdding = false;
    QString m_problem;
    PasskeyPrompt m_prompt;
};

} // namespace orvane
