// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Account/LiveRefresh.h"
#include "CommandTree.h"
#include "Http/Connectivity.h"
#include "Support/StopSignals.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"

#include <cerrno>
#include <cstring>

namespace orvane {

namespace {

std::string whatChanged(const SyncChange &change, const std::string &ownId)
{
    if (change.topic == "time-entries")
        return change.userId.empty() || change.userId == ownId ? "Entries changed"
                                                               : "Somebody else's entries changed";
    if (change.topic == "catalog")
        return "Projects, tasks, clients or tags changed";
    if (change.topic == "settings")
        return "The workspace's settings changed";
    if (change.topic == "agent-activity")
        return "What agents did changed";
    if (change.topic == "proposals")
        return "What agents propose changed";
    if (change.topic == "me")
        return "Your account changed";
    return "Something changed: " + printable(change.topic);
}

/// Prints what live sync tells, for as long as nobody ends it.
class Watch final : public QObject {
public:
    Watch(CommandContext &context, Account &account)
        : m_context(context), m_account(account), m_live(liveSyncParts(account))
    {
        connect(&m_live, &LiveSync::changed, this, &Watch::print);
        connect(&m_live, &LiveSync::watchedChanged, this, &Watch::sayWhatIsWatched);
        connect(&m_live, &LiveSync::failed, this, &Watch::sayWhatFailed);
        connect(&m_signals, &StopSignals::stopRequested, this, [this] { m_end.finish(CommandAnswer{}); });
        m_network.onOnline = [this] { m_live.tryNow(); };
        connect(&account.state(), &AccountState::changed, this, [this] {
            if (m_account.state().kind() == AccountState::Kind::sessionEnded)
                m_end.finish(
                    failure(CommandFailure::of("Your session has ended. To sign in again: orvane login.")));
        });
        m_live.watch(account.tracker().workspace().id);
        m_live.start();
    }

    /// Goes on from the event loop, when nothing of this is at work any more.
    const Eventual<CommandResult> &end() const { return m_end; }

private:
    void print(const SyncChange &change)
    {
        const std::string time = m_account.time().clockLabel(AppClock::now());
        const std::string line = m_context.json() ? encodeJson(change)
                                                  : m_context.style().apply(time, quiet) + "  " +
                                                        whatChanged(change, m_account.me().id);
        if (writeOutput(line + "\n"))
            return;
        // A reader that went away (`orvane watch | head -1`) knows why.
        const int reason = errno;
        if (reason == EPIPE)
            m_end.finish(CommandAnswer{.output = {}, .exitStatus = ExitStatus::failed});
        else
            m_end.finish(failure(CommandFailure::of(std::string("The output could not be written: ") +
                                                    std::strerror(reason) + ".")));
    }

    void sayWhatIsWatched()
    {
        const std::string workspace = printable(m_account.tracker().workspace().name);
        if (m_live.isRefused()) {
            m_end.finish(failure(CommandFailure::of("The server does not say what changes in " + workspace +
                                                    " to this account.")));
        } else if (m_live.watched()) {
            writeMessage(std::exchange(m_hasWatched, true)
                             ? "Connected again."
                             : "Waiting for changes in " + workspace + ". Ctrl-C ends it.");
            m_isToldOfFailure = false;
        }
    }

    /// Once, however often it is tried in vain.
    void sayWhatFailed()
    {
        if (!std::exchange(m_isToldOfFailure, true))
            writeMessage("Not connected, trying again: " + printable(m_live.problem()));
    }

    CommandContext &m_context;
    Account &m_account;
    StopSignals m_signals;
    LiveSync m_live;
    Connectivity m_network;
    bool m_hasWatched = false;
    bool m_isToldOfFailure = false;
    Eventual<CommandResult> m_end{ResumeWaiters::fromTheirLoops};
};

CommandTask watch(Context context)
{
    const auto opened = co_await context->openToStay();
    if (!opened)
        co_return failure(opened.error());
    const auto watch = std::make_unique<Watch>(*context, **opened);
    const Eventual<CommandResult> end = watch->end();
    co_return co_await end;
}

} // namespace

void addWatchCommand(CommandTree &tree)
{
    CLI::App *command =
        tree.add("watch", "Stay, and print what changes in the workspace as it does", "Entries");
    CommandTree::addFooter(command, "It goes on until Ctrl-C. --json prints a value a line for each change.");
    tree.onRun(command, watch);
}

} // namespace orvane
