// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/AccountLogins.h"

#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"

#include <algorithm>

namespace orvane {

namespace {

QString sinceText(const UserTime &time, Instant instant)
{
    return AccountLogins::tr("since %1").arg(QString::fromStdString(time.dayLabel(time.dayKey(instant))));
}

QString usedText(const UserTime &time, const std::optional<Instant> &instant)
{
    if (!instant)
        return AccountLogins::tr("not used yet");
    return AccountLogins::tr("used %1, %2")
        .arg(QString::fromStdString(time.dayLabel(time.dayKey(*instant))),
             QString::fromStdString(time.clockLabel(*instant)));
}

QVariantMap loginRow(const std::string &id, const QString &name, const QString &begun, const QString &last)
{
    return {{QStringLiteral("id"), QString::fromStdString(id)},
            {QStringLiteral("name"), name},
            {QStringLiteral("since"), begun},
            {QStringLiteral("used"), last}};
}

} // namespace

AccountLogins::AccountLogins(AppModel &app) : m_app(&app), m_prompt(app.options().passkeys())
{
    connect(m_app, &AppModel::trackerChanged, this, &AccountLogins::follow);
    follow();
}

void AccountLogins::follow()
{
    if (m_account == m_app->account())
        return;
    if (m_account)
        m_account->disconnect(this);
    m_account = m_app->account();
    m_prompt.cancel();
    m_server = {};
    m_offersPasskeys = m_isAdding = false;
    m_passkeys.clear();
    m_providers.clear();
    m_problem.clear();
    // Another device adds and removes them too.
    if (m_account)
        connect(m_account, &Account::meChanged, this, &AccountLogins::look);
    Q_EMIT changed();
    look();
}

void AccountLogins::setLookedAt(bool isLookedAt)
{
    m_isLookedAt = isLookedAt;
    if (!isLookedAt)
        m_prompt.cancel();
    look();
}

void AccountLogins::look()
{
    if (m_isLookedAt && m_account && !m_account->isAutomatic())
        load();
}

Task<> AccountLogins::load()
{
    const QPointer<AccountLogins> self(this);
    const QPointer<Account> account = m_account;
    auto server = co_await account->access().session()->getServer();
    if (!self || account != m_account)
        co_return;
    auto passkeys = co_await account->client().listPasskeys();
    if (!self || account != m_account)
        co_return;
    auto providers = co_await account->client().listExternalLogins();
    if (!self || account != m_account)
        co_return;
    if (server) {
        m_server = std::move(*server);
        m_offersPasskeys = m_server.hosted;
    }
    // A server that does not have them has none of them to list.
    if (passkeys)
        m_passkeys = std::move(*passkeys);
    if (providers)
        m_providers = std::move(*providers);
    Q_EMIT changed();
}

QVariantList AccountLogins::passkeys() const
{
    QVariantList rows;
    for (const PasskeyResponse &passkey : m_passkeys)
        rows << loginRow(passkey.id, QString::fromStdString(passkey.name),
                         sinceText(m_account->time(), passkey.createdAt),
                         usedText(m_account->time(), passkey.lastUsedAt));
    return rows;
}

QVariantList AccountLogins::providers() const
{
    QVariantList rows;
    for (const ExternalLoginResponse &login : m_providers) {
        const auto named =
            std::ranges::find(m_server.signInProviders, login.provider, &SignInProviderResponse::name);
        const std::string &name =
            named == m_server.signInProviders.end() ? login.provider : named->displayName;
        rows << loginRow(login.id, QString::fromStdString(name),
                         sinceText(m_account->time(), login.createdAt),
                         QString::fromStdString(login.email.value_or("")));
    }
    return rows;
}

void AccountLogins::forgetProblem()
{
    m_problem.clear();
    Q_EMIT changed();
}

void AccountLogins::addPasskey(const QString &name, const QString &password)
{
    if (!m_account || m_isAdding)
        return;
    PasskeyCreationRequest request;
    if (!password.isEmpty())
        request.currentPassword = password.toStdString();
    m_problem.clear();
    if (name.trimmed().isEmpty())
        m_problem = tr("Type a name, so that you know which key it is.");
    else if (m_account->me().hasPassword && !request.currentPassword)
        m_problem = tr("Type your password to confirm.");
    else
        doAdd(name.trimmed().toStdString(), std::move(request));
    Q_EMIT changed();
}

Task<> AccountLogins::doAdd(std::string name, PasskeyCreationRequest request)
{
    const QPointer<AccountLogins> self(this);
    const QPointer<Account> account = m_account;
    m_isAdding = true;
    const auto asked = co_await account->client().passkeyCreationOptions(std::move(request));
    if (!self || account != m_account)
        co_return;
    if (!asked) {
        endAdding(QString::fromStdString(describe(asked.error())));
        co_return;
    }
    auto options = readRegistrationOptions(asked->options.text);
    if (!options) {
        endAdding(QString::fromStdString(describe(options.error())));
        co_return;
    }
    auto made = co_await m_prompt.registration(account->server(), std::move(*options));
    if (!self || account != m_account)
        co_return;
    if (!made) {
        endAdding(QString::fromStdString(describe(made.error())));
        co_return;
    }
    SavePasskeyRequest saving{std::move(name), asked->challengeToken, {std::move(*made)}};
    const auto saved = co_await account->client().savePasskey(std::move(saving));
    if (!self || account != m_account)
        co_return;
    endAdding(saved ? QString() : QString::fromStdString(describe(saved.error())));
    if (!saved)
        co_return;
    Q_EMIT added();
    co_await load();
}

void AccountLogins::endAdding(const QString &problem)
{
    m_isAdding = false;
    m_problem = problem;
    Q_EMIT changed();
}

void AccountLogins::removePasskey(const QString &id)
{
    if (m_account)
        removeAt(m_account->client().removePasskey(id.toStdString()));
}

void AccountLogins::removeProvider(const QString &id)
{
    if (m_account)
        removeAt(m_account->client().removeExternalLogin(id.toStdString()));
}

Task<> AccountLogins::removeAt(Task<CallResult<void>> removal)
{
    const QPointer<AccountLogins> self(this);
    const QPointer<Account> account = m_account;
    const auto done = co_await removal;
    if (!self || account != m_account)
        co_return;
    if (!done)
        m_app->notices()->tellFailure(QString::fromStdString(describe(done.error())));
    co_await load();
}

} // namespace orvane
