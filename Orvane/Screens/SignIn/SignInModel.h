// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/ServerAccess.h"
#include "Account/SignIn.h"
#include "Screens/SignIn/PasskeyPrompt.h"
#include "SignIn/CallbackSocket.h"
#include "SignIn/ExternalSignIn.h"
#include "Support/Task.h"

#include <QObject>
#include <QTimer>
#include <QVariantList>

namespace orvane {

class AppModel;

/// Where one's time is kept, and signing in there or making an account. An address is asked what it offers
/// once typing rests; the password stays in memory and goes with the answer.
///
/// Owner: the program. Thread: the main thread; the AppModel outlives it.
class SignInModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY shownChanged)
    Q_PROPERTY(bool canLeave READ canLeave NOTIFY shownChanged)
    Q_PROPERTY(bool hasHosted READ hasHosted CONSTANT)
    /// Why one has to sign in; empty when one wants to.
    Q_PROPERTY(QString notice READ notice NOTIFY shownChanged)
    /// "12 changes are sent as soon as you are back."; empty when none wait.
    Q_PROPERTY(QString waiting READ waiting NOTIFY changed)
    Q_PROPERTY(Place place READ place WRITE setPlace NOTIFY changed)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY changed)
    Q_PROPERTY(QString addressProblem READ addressProblem NOTIFY changed)
    /// What the user should know before typing a password there.
    Q_PROPERTY(QString addressWarning READ addressWarning NOTIFY changed)
    Q_PROPERTY(bool isAsking READ isAsking NOTIFY changed)
    /// The server answers, so one can sign in there.
    Q_PROPERTY(bool isMet READ isMet NOTIFY changed)
    Q_PROPERTY(bool takesAccounts READ takesAccounts NOTIFY changed)
    Q_PROPERTY(QString termsUrl READ termsUrl NOTIFY changed)
    Q_PROPERTY(QString privacyUrl READ privacyUrl NOTIFY changed)
    /// { name, title }: who can be signed in with beside a password.
    Q_PROPERTY(QVariantList providers READ providers NOTIFY changed)
    /// The title of the provider whose page is open in the browser; empty when none is.
    Q_PROPERTY(QString awaited READ awaited NOTIFY changed)
    /// One can be signed in with a passkey there.
    Q_PROPERTY(bool hasPasskeys READ hasPasskeys NOTIFY changed)
    Q_PROPERTY(orvane::PasskeyPrompt *passkey READ passkey CONSTANT)
    Q_PROPERTY(bool isRegistering READ isRegistering WRITE setRegistering NOTIFY changed)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY emailChanged)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

public:
    enum class Place { ThisComputer, Hosted, OwnServer };
    Q_ENUM(Place)

    static constexpr std::chrono::milliseconds rest{600};

    explicit SignInModel(AppModel &app);
    ~SignInModel() override;

    bool isShown() const { return m_isShown; }
    bool canLeave() const;
    static bool hasHosted();
    QString notice() const { return m_notice; }
    QString waiting() const;
    Place place() const { return m_place; }
    void setPlace(Place place);
    QString address() const { return m_address; }
    void setAddress(const QString &address);
    QString addressProblem() const { return m_addressProblem; }
    QString addressWarning() const;
    bool isAsking() const { return m_isAsking; }
    bool isMet() const { return m_met.has_value(); }
    bool takesAccounts() const { return m_met && m_met->registrationOpen; }
    QString termsUrl() const;
    QString privacyUrl() const;
    QVariantList providers() const;
    QString awaited() const;
    bool hasPasskeys() const { return m_met && m_met->hosted; }
    PasskeyPrompt *passkey() { return &m_passkey; }
    bool isRegistering() const { return m_isRegistering; }
    void setRegistering(bool isRegistering);
    QString email() const { return m_email; }
    void setEmail(const QString &email);
    bool isBusy() const { return m_isBusy; }
    QString problem() const { return m_problem; }

    /// Signs in, or registers. Where it works, the account is open afterwards and the screen gone.
    Q_INVOKABLE void submit(const QString &password);
    /// Sends the browser to a provider's page; `browserWanted` tells where that is. The terms have been shown
    /// beside it. Where the browser comes back, the account is open afterwards and the screen gone.
    Q_INVOKABLE void continueWith(const QString &provider);
    /// What the browser comes back with from now on is ignored.
    Q_INVOKABLE void abandonBrowser();
    /// The prompt says meanwhile what is wanted of the user. Where it works, the account is open afterwards
    /// and the screen gone.
    Q_INVOKABLE void usePasskey();
    Q_INVOKABLE void useThisComputer();
    /// Back to the account that is open.
    Q_INVOKABLE void leave();

Q_SIGNALS:
    void shownChanged();
    void changed();
    void emailChanged();
    void browserWanted(const QString &address);

private:
    /// A sign-in that went on in the browser.
    struct BrowserAttempt {
        QString title;
        ExternalSignIn::PKCE pkce;
        std::unique_ptr<CallbackSocket> socket;
    };

    void begin(const QString &server, const QString &notice);
    void takeCallback(const QString &address);
    void setShown(bool isShown);
    void fillIn(const std::string &server);
    std::string server() const;
    std::shared_ptr<ServerAccess> accessTo(const std::string &server);
    void forgetServer();
    void ask();
    Task<> askServer(std::string server);
    void answered(std::optional<ServerResponse> server);
    Task<> askPasskey();
    Task<> signInWith(SignIn way);
    void fail(const QString &problem);

    AppModel *m_app;
    bool m_isShown = false;
    QString m_notice;
    Place m_place = Place::OwnServer;
    QString m_address;
    QString m_addressProblem;
    QTimer m_rest;
    /// The server that is being asked; another one is asked instead when the address changes.
    std::shared_ptr<ServerAccess> m_asked;
    bool m_isAsking = false;
    std::optional<ServerResponse> m_met;
    std::optional<BrowserAttempt> m_browser;
    PasskeyPrompt m_passkey;
    bool m_isRegistering = false;
    QString m_email;
    std::int64_t m_waiting = 0;
    bool m_isBusy = false;
    QString m_problem;
};

} // namespace orvane
