// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "Account/Installation.h"
#include "Account/LiveRefresh.h"
#include "AppModel/DraftFile.h"
#include "AppModel/KeyTable.h"
#include "AppModel/Notices.h"
#include "AppModel/SecondTick.h"
#include "AppModel/SyncStatus.h"
#include "AppModel/WindowChoices.h"
#include "Passkeys/PasskeyPlatform.h"
#include "Support/Task.h"
#include "Tracker/UndoStack.h"

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

/// The application without its windows: the installation, the account in use and what every window shows of
/// them. View models listen to `trackerChanged` and get what they show from the tracker.
///
/// Owner: the program. Thread: the main thread. `close` before it goes.
class AppModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(Phase phase READ phase NOTIFY phaseChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY phaseChanged)
    Q_PROPERTY(bool isSigningOut READ isSigningOut NOTIFY signingOutChanged)
    Q_PROPERTY(QString workspaceName READ workspaceName NOTIFY placeChanged)
    Q_PROPERTY(QString placeName READ placeName NOTIFY placeChanged)
    Q_PROPERTY(orvane::SyncStatus *sync READ sync CONSTANT)
    Q_PROPERTY(orvane::Notices *notices READ notices CONSTANT)
    Q_PROPERTY(orvane::WindowChoices *choices READ choices CONSTANT)
    Q_PROPERTY(orvane::KeyTable *keys READ keys CONSTANT)

public:
    enum class Phase {
        /// On the way to the account in use.
        Opening,
        /// There is an account; the server may be away all the same.
        Open,
        /// It could not be opened; `problem` says why.
        Failed,
        /// Nobody is signed in at the server in use; `signInWanted` has told which one it is.
        SignedOut,
    };
    Q_ENUM(Phase)

    struct Options {
        /// Of the installation; empty: the platform's place.
        std::string folder = {};
        /// None: the server signed in to, at first use the one on this computer.
        std::optional<std::string> server = {};
        bool startsServer = true;
        /// Empty: beside the running program.
        std::string serverProgram = {};
        Account::Options account = {};
        /// What passkeys are kept in; of this computer, unless a test has its own.
        std::function<std::unique_ptr<PasskeyPlatform>()> passkeys = PasskeyPlatform::ofThisComputer;
    };

    explicit AppModel(Options options);
    ~AppModel() override;

    /// Begins to open the account in use, starting the server on this computer when it is that one's.
    /// Afterwards `phase` is open or failed.
    void open();
    /// The same once more, after a failure.
    Q_INVOKABLE void openAgain();
    /// Ends what is under way and saves what has to be.
    Task<> close();

    /// Goes over to the account of another server, as far as it is signed in to; empty: the one on this
    /// computer. A workspace of it may be named.
    Q_INVOKABLE void switchTo(const QString &server, const QString &workspaceId);
    /// Goes over to an account that somebody has just signed in to.
    void enter(std::unique_ptr<Account> account);
    /// Signs out of the account in use. What waits is sent first, or stays on this computer until somebody
    /// signs in to it again. Afterwards the next account is open, or nobody is signed in.
    Q_INVOKABLE void signOut(bool sendsFirst);
    /// The account in use is no more: what this computer has of it goes, and the next account is opened.
    void forgetAccount();
    /// Asks for the sign-in screen, at a server when it is named.
    Q_INVOKABLE void askForSignIn(const QString &server);

    /// Takes the last step back, or does it again; the notice line says which, or why not.
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    /// What the next undo takes back; empty when there is nothing.
    QString undoText() const { return m_undo ? m_undo->undoText() : QString(); }

    Phase phase() const { return m_phase; }
    QString problem() const { return m_problem; }
    QString workspaceName() const;
    /// "This Computer", or the server's host.
    QString placeName() const;
    SyncStatus *sync() { return &m_sync; }
    Notices *notices() { return &m_notices; }
    WindowChoices *choices() { return &m_choices; }
    KeyTable *keys() { return &m_keys; }
    /// A change beside entries was made, which undo takes back from now on. The notice line offers it when it
    /// is worth a word.
    void noteChange(const std::shared_ptr<UndoableChange> &change, bool isWorthTelling);
    SecondTick &tick() { return m_tick; }
    Installation &installation() { return m_installation; }
    const Options &options() const { return m_options; }
    /// Signing out waits for what is sent first, or for the server's answer.
    bool isSigningOut() const { return m_isSigningOut; }
    /// What has been begun to be typed with this account, under a name for the place; empty while there is no
    /// account, when nothing is kept.
    QString draft(const std::string &place) const;
    void setDraft(const std::string &place, const QString &text);
    /// Null while there is none.
    Account *account() const { return m_account.get(); }
    /// Tells what changes elsewhere; null while no account is shown.
    LiveSync *live() const { return m_live ? &m_live->live() : nullptr; }
    Tracker *tracker() const { return m_account ? &m_account->tracker() : nullptr; }

Q_SIGNALS:
    void phaseChanged();
    void placeChanged();
    /// `tracker` is another one, or the first.
    void trackerChanged();
    void signingOutChanged();
    /// Somebody has to sign in, or wants to; `notice` says why, unless the user asked for it.
    void signInWanted(const QString &server, const QString &notice);

private:
    void setPhase(Phase phase, const std::string &problem = {});
    Task<> openFrom(bool waitsForServer);
    Task<> reopen(bool waitsForServer);
    Task<> enterNext(std::unique_ptr<Account> next);
    Task<> leave();
    Task<> leaveEnded();
    Task<> signOutWhen(bool sendsFirst);
    Task<> leaveForGood();
    void failToOpen(const AccountError &error);
    Task<> openNext();
    Task<> askWhere();
    void useServer(const std::string &address);
    void setSigningOut(bool isSigningOut);
    void follow();
    std::string draftOwner() const;
    Task<> tell(Task<UndoStack::Answer> answer);
    void adopt(std::unique_ptr<Account> account);
    Task<> load();

    Options m_options;
    Installation m_installation;
    SecondTick m_tick;
    Notices m_notices;
    SyncStatus m_sync;
    WindowChoices m_choices;
    KeyTable m_keys;
    /// None where the installation's folder cannot be made.
    std::unique_ptr<DraftFile> m_drafts;
    std::shared_ptr<ServerAccess> m_access;
    std::optional<Task<>> m_opening;
    bool m_isClosing = false;
    bool m_isSigningOut = false;
    std::unique_ptr<Account> m_account;
    /// Of the account in use, once it is shown.
    std::unique_ptr<LiveRefresh> m_live;
    /// Of the tracker in use.
    std::unique_ptr<UndoStack> m_undo;
    Phase m_phase = Phase::Opening;
    QString m_problem;
};

} // namespace orvane
