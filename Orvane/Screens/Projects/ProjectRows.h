// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Screens/Projects/CatalogRows.h"
#include "Screens/Projects/CatalogWeek.h"

#include <QString>
#include <string>

namespace orvane {

class Tracker;

struct ProjectRow {
    int kind = 0;
    std::string id = {}; ///< of the client or the project; of the head of those without a client empty
    QString name = {};
    QString detail = {}; ///< "2 projects"
    QString tasks = {};
    QString week = {};
    double share = 0; ///< of the week's bar, 0 to 1
    QString estimate = {};
    QString rate = {};
    QString color = {};
    QString client = {};
    bool isPrivate = false;

    bool operator==(const ProjectRow &) const = default;
    std::string key() const { return std::to_string(kind) + id; }
};

/// The projects below their clients, those without one last, and below all of them the archived ones.
///
/// Owner: the ProjectsModel, which has them made anew. Thread: the main thread.
class ProjectRows final : public CatalogRows<ProjectRow> {
    Q_OBJECT

public:
    enum Kind { Client, Project, ArchivedHead, ArchivedProject };
    Q_ENUM(Kind)
    enum Role {
        kindRole = Qt::UserRole,
        itemIdRole,
        nameRole,
        detailRole,
        tasksRole,
        weekRole,
        shareRole,
        estimateRole,
        rateRole,
        colorRole,
        isPrivateRole,
        spokenRole,
    };

    explicit ProjectRows(QObject *parent) : CatalogRows(parent) {}

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Those whose name, or whose client's, holds the query.
    void update(const Tracker &tracker, const CatalogWeek &week, const QString &query, bool showsArchived);
};

} // namespace orvane
