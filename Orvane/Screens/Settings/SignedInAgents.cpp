// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/SignedInAgents.h"

#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "LiveSync/LiveSync.h"
#include "Time/UserTime.h"

#include <algorithm>

namespace orvane {

namespace {

QString reachOf(const AgentAccessResponse &agent)
{
    QStringList workspaces;
    for (const OrganizationAccess &organization : agent.organizations) {
        for (const WorkspaceSummary &workspace : organization.workspaces)
            workspaces << QString::fromStdString(workspace.name);
    }
    const bool proposes = std::ranges::find(agent.scopes, "time:propose") != agent.scopes.end();
    const QString rights = proposes ? SignedInAgents::tr("read, propose") : SignedInAgents::tr("read");
    return workspaces.isEmpty()
               ? rights
               : SignedInAgents::tr("%1: %2").arg(workspaces.join(QStringLiteral(", ")), rights);
}

QString useOf(const AgentAccessResponse &agent, const UserTime &time)
{
    const auto day = [&](Instant instant) {
        return QString::fromStdString(time.dayLabel(time.dayKey(instant)));
    };
    if (!agent.lastUsedAt)
        return SignedInAgents::tr("since %1, not used yet").arg(day(agent.grantedAt));
    return SignedInAgents::tr("since %1, used %2, %3")
        .arg(day(agent.grantedAt), day(*agent.lastUsedAt),
             QString::fromStdString(time.clockLabel(*agent.lastUsedAt)));
}

} // namespace

SignedInAgents::SignedInAgents(AppModel &app) : m_app(&app)
{
    connect(m_app, &AppModel::trackerChanged, this, &SignedInAgents::follow);
    connect(m_app, &AppModel::phaseChanged, this, &SignedInAgents::refresh);
    follow();
}

void SignedInAgents::follow()
{
    if (m_account == m_app->account())
        return;
    m_account = m_app->account();
    m_agents.clear();
    m_problem.clear();
    Q_EMIT changed();
    refresh();
}

/// It begins some time after its account is there.
void SignedInAgents::hearLive()
{
    if (m_live == m_app->live())
        return;
    if (m_live)
        m_live->disconnect(this);
    m_live = m_app->live();
    if (m_live)
        connect(m_live, &LiveSync::changed, this, [this](const SyncChange &change) {
            if (change.topic == "me")
                refresh();
        });
}

void SignedInAgents::setLookedAt(bool isLookedAt)
{
    m_isLookedAt = isLookedAt;
    refresh();
}

void SignedInAgents::refresh()
{
    hearLive();
    if (m_isLookedAt && m_account)
        load();
}

Task<> SignedInAgents::load()
{
    const QPointer<SignedInAgents> self(this);
    const QPointer<Account> account = m_account;
    auto found = co_await account->client().listSessions();
    if (!self || !account || account != m_account)
        co_return;
    hearLive();
    m_problem = found ? QString() : QString::fromStdString(describe(found.error()));
    if (found) {
        std::erase_if(*found, [](const SessionResponse &session) { return !session.agent; });
        m_agents = std::move(*found);
    }
    Q_EMIT changed();
}

QVariantList SignedInAgents::agents() const
{
    QVariantList rows;
    if (!m_account)
        return rows;
    for (const SessionResponse &session : m_agents)
        rows << QVariantMap{
            {QStringLiteral("id"), QString::fromStdString(session.id)},
            {QStringLiteral("name"), QString::fromStdString(session.agent->clientName)},
            {QStringLiteral("reach"), reachOf(*session.agent)},
            {QStringLiteral("used"), useOf(*session.agent, m_account->time())},
        };
    return rows;
}

void SignedInAgents::signOut(const QString &id)
{
    if (m_account)
        doSignOut(id.toStdString());
}

Task<> SignedInAgents::doSignOut(std::string id)
{
    const QPointer<SignedInAgents> self(this);
    const QPointer<Account> account = m_account;
    const auto done = co_await account->client().revokeSession(std::move(id));
    if (!self || !account || account != m_account)
        co_return;
    if (!done)
        m_app->notices()->tellFailure(QString::fromStdString(describe(done.error())));
    co_await load();
}

} // namespace orvane
