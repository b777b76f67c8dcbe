// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/SignIn/SignInModel.h"

#include "Account/KnownServer.h"
#include "Account/ServerAddress.h"
#include "AppModel/AppModel.h"
#include "SignIn/SchemeHandler.h"
#include "Time/SystemZone.h"

#include <QCoreApplication>
#include <QPointer>
#include <algorithm>

namespace orvane {

namespace {

/// The service that Orvane's makers run, where the build names it.
const std::string hostedServer = ORVANE_HOSTED_SERVER;

/// Only a link that a browser opens is offered.
QString webAddress(const std::optional<std::string> &text)
{
    const bool isWeb = text && (text->starts_with("https://") || text->starts_with("http://"));
    return isWeb ? QString::fromStdString(*text) : QString();
}

/// Nobody waits for it any more; it goes once what is on its way has been taken.
Task<> giveUp(std::shared_ptr<ServerAccess> access)
{
    access->giveUp("Another address was typed.");
    co_await access->settle();
}

} // namespace

SignInModel::SignInModel(AppModel &app) : m_app(&app), m_passkey(app.options().passkeys())
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(rest);
    connect(&m_rest, &QTimer::timeout, this, &SignInModel::ask);
    connect(&app, &AppModel::signInWanted, this, &SignInModel::begin);
    connect(&app, &AppModel::phaseChanged, this, [this] {
        if (m_app->phase() == AppModel::Phase::Open)
            setShown(false);
        Q_EMIT shownChanged();
    });
}

SignInModel::~SignInModel()
{
    if (m_asked)
        m_asked->giveUp("The application ends.");
}

bool SignInModel::canLeave() const
{
    return m_app->phase() == AppModel::Phase::Open;
}

bool SignInModel::hasHosted()
{
    return !hostedServer.empty();
}

void SignInModel::begin(const QString &server, const QString &notice)
{
    m_notice = notice;
    m_problem.clear();
    m_isRegistering = false;
    m_waiting = 0;
    forgetServer();
    m_address = server;
    const std::string wanted = server.toStdString();
    m_place = hasHosted() && (wanted.empty() || wanted == hostedServer) ? Place::Hosted : Place::OwnServer;
    setEmail({});
    if (!wanted.empty())
        fillIn(wanted);
    setShown(true);
    if (!this->server().empty())
        ask();
    Q_EMIT changed();
}

/// What is known of the account that was signed in to there.
void SignInModel::fillIn(const std::string &server)
{
    const auto servers = KnownServer::all(m_app->installation());
    const auto known = std::ranges::find(servers, server, &KnownServer::address);
    if (known == servers.end())
        return;
    m_waiting = known->waiting;
    if (known->me)
        setEmail(QString::fromStdString(known->me->email));
}

void SignInModel::setShown(bool isShown)
{
    m_isShown = isShown;
    if (!isShown)
        forgetServer();
    Q_EMIT shownChanged();
}

void SignInModel::leave()
{
    if (canLeave())
        setShown(false);
}

QString SignInModel::waiting() const
{
    if (m_waiting == 0)
        return {};
    return m_waiting == 1 ? tr("1 change is sent as soon as you are back.")
                          : tr("%1 changes are sent as soon as you are back.").arg(m_waiting);
}

// The server

void SignInModel::setPlace(Place place)
{
    if (m_place == place || m_isBusy)
        return;
    m_place = place;
    m_problem.clear();
    forgetServer();
    if (!server().empty())
        ask();
    Q_EMIT changed();
}

void SignInModel::setAddress(const QString &address)
{
    if (m_address == address)
        return;
    m_address = address;
    m_problem.clear();
    forgetServer();
    if (!server().empty())
        m_rest.start();
    Q_EMIT changed();
}

/// Empty while none is chosen, or what is typed is no address.
std::string SignInModel::server() const
{
    if (m_place == Place::Hosted)
        return hostedServer;
    if (m_place == Place::ThisComputer || m_address.trimmed().isEmpty())
        return {};
    return serverAddressOf(m_address.toStdString()).value_or("");
}

QString SignInModel::addressWarning() const
{
    return isReadableOnTheWay(server())
               ? tr("Not encrypted: your password and what you send can be read on the way.")
               : QString();
}

std::shared_ptr<ServerAccess> SignInModel::accessTo(const std::string &server)
{
    return std::make_shared<ServerAccess>(
        ServerAccess::Options{.installation = &m_app->installation(),
                              .server = server,
                              .startsServer = m_app->options().startsServer,
                              .serverProgram = m_app->options().serverProgram,
                              .isForSignIn = true});
}

void SignInModel::forgetServer()
{
    m_rest.stop();
    m_browser.reset();
    m_passkey.cancel();
    m_met.reset();
    m_addressProblem.clear();
    m_isAsking = false;
    if (m_asked)
        giveUp(std::exchange(m_asked, nullptr));
}

void SignInModel::ask()
{
    m_isAsking = true;
    askServer(server());
    Q_EMIT changed();
}

Task<> SignInModel::askServer(std::string server)
{
    const QPointer<SignInModel> self(this);
    const auto access = accessTo(server);
    m_asked = access;
    const auto found = co_await access->find();
    if (!self || m_asked != access)
        co_return;
    std::optional<ServerResponse> met;
    if (found) {
        if (auto said = co_await access->session()->getServer())
            met = std::move(*said);
    }
    if (self && m_asked == access)
        answered(std::move(met));
}

void SignInModel::answered(std::optional<ServerResponse> server)
{
    m_isAsking = false;
    m_met = std::move(server);
    if (!m_met)
        m_addressProblem = tr("No Orvane server answers at this address. Check it and try again.");
    if (!takesAccounts())
        m_isRegistering = false;
    giveUp(std::exchange(m_asked, nullptr));
    Q_EMIT changed();
}

QString SignInModel::termsUrl() const
{
    return m_met ? webAddress(m_met->termsUrl) : QString();
}

QString SignInModel::privacyUrl() const
{
    return m_met ? webAddress(m_met->privacyUrl) : QString();
}

// Signing in

void SignInModel::setRegistering(bool isRegistering)
{
    m_isRegistering = isRegistering && takesAccounts();
    m_problem.clear();
    Q_EMIT changed();
}

void SignInModel::setEmail(const QString &email)
{
    if (m_email == email)
        return;
    m_email = email;
    Q_EMIT emailChanged();
}

void SignInModel::submit(const QString &password)
{
    if (m_isBusy || !isMet())
        return;
    const QString email = m_email.trimmed();
    if (email.isEmpty() || password.isEmpty()) {
        fail(email.isEmpty() ? tr("Type your email address.") : tr("Type your password."));
        return;
    }
    m_problem.clear();
    m_isBusy = true;
    if (m_isRegistering)
        signInWith(Registration{email.toStdString(), password.toStdString()});
    else
        signInWith(PasswordSignIn{email.toStdString(), password.toStdString()});
    Q_EMIT changed();
}

QVariantList SignInModel::providers() const
{
    QVariantList providers;
    if (!m_met)
        return providers;
    for (const SignInProviderResponse &provider : m_met->signInProviders)
        providers << QVariantMap{{QStringLiteral("name"), QString::fromStdString(provider.name)},
                                 {QStringLiteral("title"), QString::fromStdString(provider.displayName)}};
    return providers;
}

QString SignInModel::awaited() const
{
    return m_browser ? m_browser->title : QString();
}

void SignInModel::continueWith(const QString &provider)
{
    if (m_isBusy || !m_met)
        return;
    const auto found =
        std::ranges::find(m_met->signInProviders, provider.toStdString(), &SignInProviderResponse::name);
    if (found == m_met->signInProviders.end())
        return;
    // Where the system cannot be told, the browser says that it does not know the address.
    registerSchemeHandler(QCoreApplication::applicationFilePath().toStdString());
    m_problem.clear();
    m_browser = BrowserAttempt{.title = QString::fromStdString(found->displayName),
                               .pkce = ExternalSignIn::PKCE::make(),
                               .socket = std::make_unique<CallbackSocket>(CallbackSocket::usualFolder())};
    connect(m_browser->socket.get(), &CallbackSocket::arrived, this, &SignInModel::takeCallback,
            Qt::QueuedConnection);
    Q_EMIT browserWanted(QString::fromStdString(ExternalSignIn::startAddress(
        server(), found->name, m_browser->pkce, systemZone().value_or(std::string()))));
    Q_EMIT changed();
}

void SignInModel::abandonBrowser()
{
    m_browser.reset();
    Q_EMIT changed();
}

void SignInModel::takeCallback(const QString &address)
{
    const auto callback = ExternalSignIn::readCallback(address.toStdString());
    if (!m_browser || m_isBusy || !callback)
        return;
    if (const auto *code = std::get_if<ExternalSignIn::Code>(&*callback)) {
        m_problem.clear();
        m_isBusy = true;
        // Should the server not take it, it was of another attempt, and this one is still open.
        signInWith(CodeSignIn{code->value, m_browser->pkce.verifier});
        Q_EMIT changed();
        return;
    }
    m_browser.reset();
    fail(QString::fromStdString(describe(std::holds_alternative<ExternalSignIn::Cancelled>(*callback)
                                             ? ExternalSignInError::cancelled
                                             : ExternalSignInError::failed)));
}

void SignInModel::usePasskey()
{
    if (m_isBusy || !hasPasskeys())
        return;
    m_problem.clear();
    m_isBusy = true;
    askPasskey();
    Q_EMIT changed();
}

Task<> SignInModel::askPasskey()
{
    const QPointer<SignInModel> self(this);
    const auto access = accessTo(server());
    const auto found = co_await access->find();
    if (!self)
        co_return;
    if (!found) {
        fail(QString::fromStdString(found.error().message));
        co_return;
    }
    const auto asked = co_await access->session()->passkeyOptions();
    if (!self)
        co_return;
    const auto options = asked ? readAssertionOptions(*asked) : failure(PasskeyError::invalidOptions);
    if (!options) {
        fail(QString::fromStdString(asked ? describe(options.error()) : describe(asked.error())));
        co_return;
    }
    auto answer = co_await m_passkey.assertion(access->address(), *options);
    if (!self)
        co_return;
    if (!answer) {
        fail(QString::fromStdString(describe(answer.error())));
        co_return;
    }
    co_await signInWith(PasskeySignIn{asked->challengeToken, std::move(*answer)});
}

Task<> SignInModel::signInWith(SignIn way)
{
    const QPointer<SignInModel> self(this);
    const auto access = accessTo(server());
    const auto found = co_await access->find();
    if (!self)
        co_return;
    if (!found) {
        fail(QString::fromStdString(found.error().message));
        co_return;
    }
    auto opened = co_await Account::signIn(access, m_app->options().account, std::move(way));
    if (!self)
        co_return;
    m_isBusy = false;
    if (!opened) {
        fail(QString::fromStdString(opened.error().message));
        co_return;
    }
    m_browser.reset();
    m_app->enter(std::move(*opened));
    Q_EMIT changed();
}

void SignInModel::fail(const QString &problem)
{
    m_isBusy = false;
    m_problem = problem;
    Q_EMIT changed();
}

void SignInModel::useThisComputer()
{
    if (canLeave() && m_app->account()->isAutomatic())
        setShown(false);
    else
        m_app->switchTo({}, {});
}

} // namespace orvane
