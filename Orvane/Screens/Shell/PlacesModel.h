// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/KnownServer.h"
#include "Support/Task.h"

#include <QAbstractListModel>
#include <vector>

namespace orvane {

class AppModel;

/// The servers with an account here and their workspaces, as the switcher lists them: a head for each server,
/// below it its workspaces, or what waits where one is signed out. Other servers are shown as this computer
/// knows them; nobody is asked.
///
/// Owner: the program. Thread: the main thread; the AppModel outlives it.
class PlacesModel final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString placeName READ placeName NOTIFY listed)
    Q_PROPERTY(bool canSignOut READ canSignOut NOTIFY listed)
    Q_PROPERTY(bool isCreating READ isCreating NOTIFY creatingChanged)
    Q_PROPERTY(QString creationProblem READ creationProblem NOTIFY creatingChanged)

public:
    enum class Kind { Server, Workspace, Kept };
    Q_ENUM(Kind)
    /// How a server's account stands.
    enum class Standing { Nothing, Sent, Waiting, SignedOut };
    Q_ENUM(Standing)
    enum Role {
        kindRole = Qt::UserRole,
        titleRole,
        subtitleRole,
        serverRole,
        workspaceIdRole,
        isCurrentRole,
        isLocalRole,
        standingRole,
        waitingRole,
        keysRole,
    };

    explicit PlacesModel(AppModel &app);

    /// Where a new workspace would be made: "This Computer", or the server's host.
    QString placeName() const;
    bool canSignOut() const;
    bool isCreating() const { return m_isCreating; }
    QString creationProblem() const { return m_creationProblem; }

    /// Looks again; for when the list is about to be shown.
    Q_INVOKABLE void look();
    /// Takes the row: goes over to a workspace, or asks for the sign-in.
    Q_INVOKABLE void choose(int row);
    /// Goes over to the workspace whose key has that number, from 1.
    Q_INVOKABLE void chooseNumber(int number);
    /// Makes a workspace on the server in use and goes over to it.
    Q_INVOKABLE void create(const QString &name);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void listed();
    void creatingChanged();
    /// There is a new workspace, and it is the one in use.
    void created();

private:
    struct Row {
        Kind kind = Kind::Server;
        const KnownServer *server = nullptr;
        const WorkspaceSummary *workspace = nullptr;
        /// Of a workspace, from 1.
        int number = 0;
    };
    void layOut();
    bool isInUse(const KnownServer &server) const;
    Standing standingOf(const KnownServer &server) const;
    QVariant serverData(const Row &row, int role) const;
    QVariant workspaceData(const Row &row, int role) const;
    Task<> doCreate(std::string name);
    void setCreating(bool isCreating, const QString &problem = {});

    AppModel *m_app;
    std::vector<KnownServer> m_servers;
    std::vector<Row> m_rows;
    bool m_isCreating = false;
    QString m_creationProblem;
};

} // namespace orvane
