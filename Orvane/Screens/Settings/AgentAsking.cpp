// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/AgentAsking.h"

#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "SignIn/AgentAnswer.h"
#include "SignIn/AgentCallback.h"

#include <QPointer>
#include <algorithm>

namespace orvane {

AgentAsking::AgentAsking(AppModel &app) : m_app(&app)
{
    connect(m_app, &AppModel::trackerChanged, this, &AgentAsking::follow);
}

void AgentAsking::take(const QString &address)
{
    auto request = AgentCallback::read(address.toStdString());
    if (!request)
        return;
    forget();
    m_request = std::move(request);
    Q_EMIT wanted();
    follow();
}

void AgentAsking::forget()
{
    ++m_turn;
    m_request.reset();
    m_preview.reset();
    m_chosen.clear();
    m_problem.clear();
    m_isLookedAt = m_isBusy = false;
    Q_EMIT workspacesChanged();
    Q_EMIT changed();
}

/// An account's workspaces are no other's, so who has asked is looked at anew.
void AgentAsking::follow()
{
    if (!m_request)
        return;
    if (m_preview || m_isLookedAt) {
        auto request = std::move(m_request);
        forget();
        m_request = std::move(request);
    }
    if (m_app->account() != nullptr) {
        m_isLookedAt = true;
        look(m_turn);
    }
}

Task<> AgentAsking::look(int turn)
{
    const QPointer<AgentAsking> self(this);
    auto preview = co_await m_app->account()->client().previewAgentAuthorization(*m_request);
    if (!self || turn != m_turn)
        co_return;
    if (!preview) {
        fail(QString::fromStdString(describe(preview.error())));
        co_return;
    }
    for (const OrganizationAccess &organization : preview->organizations) {
        for (const WorkspaceSummary &workspace : organization.workspaces)
            m_chosen.insert(workspace.id);
    }
    m_preview = std::move(*preview);
    Q_EMIT workspacesChanged();
    Q_EMIT changed();
}

void AgentAsking::fail(const QString &problem)
{
    m_isBusy = false;
    m_problem = problem;
    Q_EMIT changed();
}

QString AgentAsking::name() const
{
    return m_preview ? QString::fromStdString(m_preview->clientName) : QString();
}

QString AgentAsking::host() const
{
    return m_preview ? QString::fromStdString(m_preview->redirectHost) : QString();
}

bool AgentAsking::mayPropose() const
{
    return m_preview && std::ranges::find(m_preview->scopes, "time:propose") != m_preview->scopes.end();
}

QVariantList AgentAsking::workspaces() const
{
    QVariantList rows;
    if (!m_preview)
        return rows;
    const bool isOneAlone = m_preview->organizations.size() == 1;
    for (const OrganizationAccess &organization : m_preview->organizations) {
        for (const WorkspaceSummary &workspace : organization.workspaces)
            rows << QVariantMap{
                {QStringLiteral("id"), QString::fromStdString(workspace.id)},
                {QStringLiteral("name"), QString::fromStdString(workspace.name)},
                {QStringLiteral("organization"),
                 isOneAlone ? QString() : QString::fromStdString(organization.name)},
                {QStringLiteral("isChosen"), m_chosen.contains(workspace.id)},
            };
    }
    return rows;
}

void AgentAsking::choose(const QString &workspaceId, bool isChosen)
{
    if (isChosen)
        m_chosen.insert(workspaceId.toStdString());
    else
        m_chosen.erase(workspaceId.toStdString());
    m_problem.clear();
    Q_EMIT changed();
}

void AgentAsking::allow()
{
    if (!canAnswer())
        return;
    if (m_chosen.empty())
        return fail(tr("Choose a workspace."));
    answer(true, m_turn);
}

void AgentAsking::refuse()
{
    if (canAnswer() && m_app->account() != nullptr)
        answer(false, m_turn);
    else if (!m_isBusy)
        forget();
}

Task<> AgentAsking::answer(bool isApproved, int turn)
{
    const QPointer<AgentAsking> self(this);
    const OAuthAuthorizationRequest request = *m_request;
    m_isBusy = true;
    m_problem.clear();
    Q_EMIT changed();
    OAuthConsentRequest body{.authorization = request, .isApproved = isApproved, .workspaceIds = {}};
    if (isApproved)
        body.workspaceIds.assign(m_chosen.begin(), m_chosen.end());
    const auto answered = co_await m_app->account()->client().answerAgentAuthorization(std::move(body));
    if (!self)
        co_return;
    // Another one may have begun to ask meanwhile; this one hears its answer all the same.
    const bool isAsked = turn == m_turn;
    if (!answered) {
        if (isAsked)
            fail(QString::fromStdString(describe(answered.error())));
        co_return;
    }
    const std::string back = answered->redirectUri;
    if (isAsked)
        forget();
    if (!AgentCallback::leadsBack(request, back))
        co_return;
    if (!AgentCallback::isOnThisComputer(back)) {
        Q_EMIT browserWanted(QString::fromStdString(back));
    } else if (!co_await tellAgent(back)) {
        if (self)
            m_app->notices()->tellFailure(tr("The agent no longer waits for the answer."));
    }
    if (self)
        Q_EMIT self->answered();
}

} // namespace orvane
