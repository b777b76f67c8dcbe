// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LiveSync/LiveSync.h"
#include "Support/RetryTimer.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class Account;

/// Live sync of an account: over its client, with the proof that the server on this computer asks for, and on
/// the account's clock.
LiveSync::Parts liveSyncParts(const Account &account);

/// What a change makes one ask the server for.
struct WantedRefresh {
    Topics topics;
    /// The profile.
    bool me = false;
    /// What agents proposed, where anybody looks at it.
    bool proposals = false;

    bool operator==(const WantedRefresh &) const = default;
};
/// Of a topic that is not known, or is shown nowhere, nothing.
WantedRefresh refreshFor(const std::string &topic);

/// Keeps what is shown of an account as the server has it: live sync watches the workspace in use, and what
/// it tells of becomes a quiet refresh of just that. A burst of changes becomes few refreshes. Whenever the
/// hub begins to watch, at first and after a loss, all is asked for once, since nobody told what changed
/// before.
///
/// Owner: who shows the account, which outlives it. Thread: the main thread.
class LiveRefresh final : public QObject {
    Q_OBJECT

public:
    explicit LiveRefresh(Account &account);
    LiveRefresh(Account &account, LiveSync::Parts parts);

    /// Begins to connect, and goes on until this goes or the session ends.
    void start();
    LiveSync &live() { return m_live; }

private:
    void followTracker();
    void hear(const SyncChange &change);
    void catchUp();
    void want(WantedRefresh wanted);
    void refreshNow();

    Account &m_account;
    LiveSync m_live;
    /// Gathers what comes in one go, and then keeps a distance between refreshes.
    std::unique_ptr<RetryTimer> m_pause;
    bool m_isPausing = false;
    WantedRefresh m_wanted;
};

} // namespace orvane
