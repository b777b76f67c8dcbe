// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/LiveRefresh.h"

#include "Account/Account.h"
#include "Account/ServerAccess.h"
#include "Proposals/AgentProposals.h"

namespace orvane {

namespace {

using namespace std::chrono_literals;

/// Short enough that nobody waits for it, long enough that a device which sends a queue of fifty changes
/// makes this one ask a few times.
constexpr std::chrono::milliseconds betweenRefreshes = 250ms;

Task<Result<LiveSync::Opening, ConnectionError>> openingThrough(std::shared_ptr<ServerAccess> access,
                                                                HttpRequest request)
{
    auto proven = co_await access->proven(std::move(request));
    if (!proven)
        co_return failure(std::move(proven.error()));
    co_return LiveSync::Opening{std::move(proven->address), std::move(proven->request)};
}

} // namespace

LiveSync::Parts liveSyncParts(const Account &account)
{
    LiveSync::Parts parts;
    parts.client = account.sharedAccess()->client();
    parts.prepare = [access = account.sharedAccess()](HttpRequest request) {
        return openingThrough(access, std::move(request));
    };
    if (account.options().continuousTimer)
        parts.timer = account.options().continuousTimer();
    return parts;
}

WantedRefresh refreshFor(const std::string &topic)
{
    if (topic == "time-entries")
        return {.topics = Topics(Topic::entries) | Topic::running};
    if (topic == "catalog")
        return {.topics = Topic::catalog};
    // The workspace's name is a setting too, which the profile repeats.
    if (topic == "settings")
        return {.topics = Topic::settings, .me = true};
    if (topic == "me")
        return {.topics = {}, .me = true};
    if (topic == "proposals")
        return {.topics = {}, .proposals = true};
    return {};
}

LiveRefresh::LiveRefresh(Account &account) : LiveRefresh(account, liveSyncParts(account)) {}

LiveRefresh::LiveRefresh(Account &account, LiveSync::Parts parts)
    : m_account(account), m_live(std::move(parts)), m_pause(account.makeRetryTimer())
{
    connect(&m_live, &LiveSync::changed, this, &LiveRefresh::hear);
    connect(&m_live, &LiveSync::watchedChanged, this, [this] {
        if (m_live.watched())
            catchUp();
    });
    connect(&m_live, &LiveSync::reconnected, this, &LiveRefresh::catchUp);
    connect(&account, &Account::trackerChanged, this, &LiveRefresh::followTracker);
    connect(&account, &Account::networkCameBack, &m_live, &LiveSync::tryNow);
    connect(&account.state(), &AccountState::cameBack, &m_live, &LiveSync::tryNow);
    connect(&account.state(), &AccountState::changed, this, [this] {
        if (m_account.state().kind() == AccountState::Kind::sessionEnded)
            m_live.stop();
    });
}

void LiveRefresh::start()
{
    followTracker();
    m_live.start();
}

void LiveRefresh::followTracker()
{
    m_live.watch(m_account.tracker().workspace().id);
}

void LiveRefresh::hear(const SyncChange &change)
{
    const bool isHere =
        change.workspaceId.empty() || change.workspaceId == m_account.tracker().workspace().id;
    const bool isOurs = change.userId.empty() || change.userId == m_account.me().id;
    if (isHere && isOurs)
        want(refreshFor(change.topic));
}

void LiveRefresh::catchUp()
{
    want({.topics = allTopics, .me = true, .proposals = true});
}

void LiveRefresh::want(WantedRefresh wanted)
{
    m_wanted.topics |= wanted.topics;
    m_wanted.me = m_wanted.me || wanted.me;
    m_wanted.proposals = m_wanted.proposals || wanted.proposals;
    if (m_wanted == WantedRefresh{} || std::exchange(m_isPausing, true))
        return;
    m_pause->schedule(0ms, [this] { refreshNow(); });
}

/// What could not be had is asked for again by the account.
void LiveRefresh::refreshNow()
{
    const WantedRefresh wanted = std::exchange(m_wanted, {});
    m_isPausing = wanted != WantedRefresh{};
    if (!m_isPausing)
        return;
    m_pause->schedule(betweenRefreshes, [this] { refreshNow(); });
    if (wanted.me)
        m_account.refreshMe();
    if (wanted.proposals)
        m_account.proposals().refresh();
    if (wanted.topics)
        m_account.tracker().refresh(wanted.topics);
}

} // namespace orvane
