// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "Account/Installation.h"
#include "Output/CommandFailure.h"
#include "Patience.h"
#include "Terminal/ProgressLine.h"
#include "Terminal/TerminalStyle.h"
#include "Time/AppClock.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The options that every command takes.
struct GlobalOptions {
    std::optional<std::string> server;
    bool startsServer = true;
    std::string dataFolder;
    std::string homeFolder;
    std::string fixturesFolder;
    std::optional<std::string> workspace;
    std::optional<std::string> zone;
    bool json = false;
};

/// What a running command works with: its options, the streams' styles, and the account, opened when it is
/// asked for. The clock stands still while it lives: whatever the command does, it does at the moment when it
/// was called, however long the server takes; but for one that stays. Lives on the main thread for the length
/// of one command.
class CommandContext final : public QObject {
    Q_OBJECT

public:
    explicit CommandContext(GlobalOptions options);
    ~CommandContext() override;

    const GlobalOptions &options() const { return m_options; }
    bool json() const { return m_options.json; }
    /// Of standard output.
    const TerminalStyle &style() const { return m_style; }
    ProgressLine &progress() { return m_progress; }
    Installation &installation() { return m_installation; }

    /// The signed-in account with its snapshot read; the same one at each call. The account stays owned here.
    Task<Result<Account *, CommandFailure>> openAccount();
    /// The same for a command that stays: it is there at once as it was known last, the clock runs, and the
    /// server may come and go.
    Task<Result<Account *, CommandFailure>> openToStay();
    /// Looks whether somebody can sign in at that server, before they are asked for anything. From here on it
    /// is the server of this command.
    Task<Result<ServerResponse, CommandFailure>> meetServer(std::string address);
    Task<Result<Account *, CommandFailure>> signIn(SignIn way);
    /// Another one, for what is not to show or change anything of the command's; `patience` outlives the
    /// call.
    Task<Account::Opened> openApart(Patience &patience);
    /// Forgets what is left of a session that is over, and goes back to the account on this computer.
    Task<Result<void, CommandFailure>> leaveEndedSession();
    /// Why the account could not be opened.
    std::optional<AccountError::Kind> openError() const { return m_openError; }
    /// Whether that may be only because its sign-in lies in a keychain that cannot be read here.
    bool isSignInUnseen() const { return m_isSignInUnseen; }
    /// Null before it was opened.
    Account *account() const { return m_account.get(); }

    /// Somebody has answered, the server or the user who was asked: the wait for the server counts anew.
    void noteAnswer() { m_patience.restart(); }
    /// How long the command has been at it.
    std::chrono::milliseconds waited() const
    {
        return m_moment ? m_moment->held() : std::chrono::milliseconds{0};
    }
    /// Sends what waits, with a progress bar, for as long as the server goes on answering. Does nothing for
    /// an account whose server did not answer.
    Task<> flush();
    /// The server's state of the tracker, if the server answers in time. For a command that makes a change:
    /// what waits already is sent along with it.
    Task<> loadState();
    /// The same, and what waits is sent as far as the time goes. For a command that shows things.
    Task<> bringUpToDate();
    /// Says which changes of other accounts wait in stores of their own, when the command has ended. True
    /// when there are any.
    Task<bool> lookBeside();
    /// The numbers of the queue's rows that cannot be read.
    const std::vector<std::int64_t> &unreadable() const { return m_unreadable; }
    /// Shows what was refused while nobody waited, and what to do about conflicts; then ends the account.
    Task<> finish();

private:
    Task<Account::Opened> openWithin(Patience &patience, std::optional<SignIn> way);
    Task<Result<std::shared_ptr<ServerAccess>, AccountError>> findServer(Patience &patience,
                                                                         bool isForSignIn);
    std::string wayBack(const AccountError &error) const;
    Task<Result<Account *, CommandFailure>> adopt(Account::Opened opened, bool isSigningIn);
    Task<Result<void, CommandFailure>> checkQueue();
    Task<> sendQueue(bool restartsPatience);
    Task<> showRefusals();
    std::string whyAway() const;
    void showQueue();

    /// The first member: from here on the clock stands still.
    std::optional<ClockHold> m_moment{std::in_place};
    GlobalOptions m_options;
    TerminalStyle m_style;
    Installation m_installation;
    ProgressLine m_progress;
    Patience m_patience;
    std::unique_ptr<Account> m_account;
    std::optional<AccountError::Kind> m_openError;
    bool m_isSignInUnseen = false;
    TokenPlace m_tokenPlace = TokenPlace::keychain;
    std::vector<std::int64_t> m_unreadable;
    std::vector<std::string> m_besides;
    bool m_stays = false;
};

using Context = std::shared_ptr<CommandContext>;

} // namespace orvane
