// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Screens/Projects/CatalogRows.h"
#include "Screens/Projects/CatalogWeek.h"

#include <QString>
#include <string>

namespace orvane {

struct TaskRow {
    std::string id = {};
    QString name = {};
    bool isDone = false;
    QString week = {};
    double share = 0;

    bool operator==(const TaskRow &) const = default;
    const std::string &key() const { return id; }
};

/// The tasks of the project that is edited: open ones first, then those that are done, and what went to none
/// of them, which has no identifier.
///
/// Owner: the ProjectEditor. Thread: the main thread.
class TaskRows final : public CatalogRows<TaskRow> {
    Q_OBJECT
    Q_PROPERTY(QString summary READ summary NOTIFY summaryChanged)

public:
    enum Role { itemIdRole = Qt::UserRole, nameRole, isDoneRole, weekRole, shareRole };

    explicit TaskRows(QObject *parent) : CatalogRows(parent) {}

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    /// "2 open, 1 done".
    QString summary() const { return m_summary; }

    void update(const ProjectResponse &project, const CatalogWeek &week);
    void clear() { show({}); }

Q_SIGNALS:
    void summaryChanged();

private:
    QString m_summary;
};

} // namespace orvane
