// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Shell/PlacesModel.h"

#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"

#include <QPointer>
#include <QUrl>
#include <algorithm>

namespace orvane {

namespace {

constexpr int mostKeys = 9;

QString serverName(const KnownServer &server)
{
    return server.isLocal ? PlacesModel::tr("This Computer")
                          : QUrl(QString::fromStdString(server.address)).authority();
}

QString keptText(std::int64_t count)
{
    if (count == 0)
        return PlacesModel::tr("Nothing waits");
    return count == 1 ? PlacesModel::tr("1 change kept") : PlacesModel::tr("%1 changes kept").arg(count);
}

} // namespace

PlacesModel::PlacesModel(AppModel &app) : m_app(&app)
{
    connect(&app, &AppModel::placeChanged, this, &PlacesModel::look);
}

QString PlacesModel::placeName() const
{
    return m_app->placeName();
}

bool PlacesModel::canSignOut() const
{
    return m_app->account() != nullptr && !m_app->account()->isAutomatic();
}

void PlacesModel::look()
{
    beginResetModel();
    m_servers = KnownServer::all(m_app->installation());
    if (const Account *account = m_app->account()) {
        const auto known = std::ranges::find(m_servers, account->server(), &KnownServer::address);
        if (known != m_servers.end()) {
            known->me = account->me();
            known->isAutomatic = account->isAutomatic();
        }
    }
    layOut();
    endResetModel();
    Q_EMIT listed();
}

void PlacesModel::layOut()
{
    m_rows.clear();
    int number = 0;
    for (const KnownServer &server : m_servers) {
        m_rows.push_back({Kind::Server, &server});
        if (server.isSignedOut)
            m_rows.push_back({Kind::Kept, &server});
        else if (server.me) {
            for (const WorkspaceSummary &workspace : server.me->workspaces)
                m_rows.push_back({Kind::Workspace, &server, &workspace, ++number});
        }
    }
}

void PlacesModel::choose(int row)
{
    if (row < 0 || row >= rowCount())
        return;
    const Row &chosen = m_rows[static_cast<std::size_t>(row)];
    const QString server = QString::fromStdString(chosen.server->address);
    if (chosen.kind == Kind::Kept)
        m_app->askForSignIn(server);
    else if (chosen.kind == Kind::Workspace)
        m_app->switchTo(server, QString::fromStdString(chosen.workspace->id));
}

void PlacesModel::chooseNumber(int number)
{
    look();
    const auto row = std::ranges::find(m_rows, number, &Row::number);
    if (row != m_rows.end())
        choose(static_cast<int>(row - m_rows.begin()));
}

// A new workspace

void PlacesModel::create(const QString &name)
{
    if (m_isCreating || m_app->account() == nullptr)
        return;
    if (name.trimmed().isEmpty())
        setCreating(false, tr("Give it a name."));
    else
        doCreate(name.trimmed().toStdString());
}

Task<> PlacesModel::doCreate(std::string name)
{
    const QPointer<PlacesModel> self(this);
    const QPointer<Account> account(m_app->account());
    setCreating(true);
    const auto made = co_await account->client().createWorkspace({.name = std::move(name)});
    if (!self)
        co_return;
    if (!made || !account) {
        setCreating(false, made ? QString() : QString::fromStdString(describe(made.error())));
        co_return;
    }
    const auto known = co_await account->refreshMe();
    if (!self)
        co_return;
    setCreating(false, known ? QString() : QString::fromStdString(describe(known.error())));
    if (known && account && account->useWorkspace(made->id))
        Q_EMIT created();
}

void PlacesModel::setCreating(bool isCreating, const QString &problem)
{
    m_isCreating = isCreating;
    m_creationProblem = problem;
    Q_EMIT creatingChanged();
}

// What the rows say

bool PlacesModel::isInUse(const KnownServer &server) const
{
    return m_app->account() != nullptr && m_app->account()->server() == server.address;
}

PlacesModel::Standing PlacesModel::standingOf(const KnownServer &server) const
{
    if (server.isSignedOut)
        return Standing::SignedOut;
    if (server.waiting > 0)
        return Standing::Waiting;
    return server.isAutomatic ? Standing::Nothing : Standing::Sent;
}

int PlacesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant PlacesModel::data(const QModelIndex &index, int role) const
{
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case kindRole:
        return QVariant::fromValue(row.kind);
    case serverRole:
        return QString::fromStdString(row.server->address);
    case isLocalRole:
        return row.server->isLocal;
    default:
        return row.kind == Kind::Workspace ? workspaceData(row, role) : serverData(row, role);
    }
}

QVariant PlacesModel::serverData(const Row &row, int role) const
{
    const KnownServer &server = *row.server;
    switch (role) {
    case titleRole:
        return row.kind == Kind::Kept ? keptText(server.waiting) : serverName(server);
    case subtitleRole:
        if (server.isAutomatic)
            return server.waiting > 0 ? tr("No account") : tr("No account, nothing to send");
        return server.me ? QString::fromStdString(server.me->email) : QString();
    case standingRole:
        return QVariant::fromValue(standingOf(server));
    case waitingRole:
        return static_cast<int>(server.waiting);
    default:
        return {};
    }
}

QVariant PlacesModel::workspaceData(const Row &row, int role) const
{
    switch (role) {
    case titleRole:
        return QString::fromStdString(row.workspace->name);
    case workspaceIdRole:
        return QString::fromStdString(row.workspace->id);
    case isCurrentRole:
        return isInUse(*row.server) && m_app->tracker()->workspace().id == row.workspace->id;
    case keysRole:
        return row.number <= mostKeys ? QStringLiteral("Ctrl+Alt+%1").arg(row.number) : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> PlacesModel::roleNames() const
{
    return {{kindRole, "kind"},
            {titleRole, "title"},
            {subtitleRole, "subtitle"},
            {serverRole, "server"},
            {workspaceIdRole, "workspaceId"},
            {isCurrentRole, "isCurrent"},
            {isLocalRole, "isLocal"},
            {standingRole, "standing"},
            {waitingRole, "waiting"},
            {keysRole, "keys"}};
}

} // namespace orvane
