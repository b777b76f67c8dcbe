// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/Palette.h"
#include "Tracker/Tracker.h"

#include <QAbstractListModel>
#include <QPointer>

namespace orvane {

class AppModel;

/// The projects and tasks that an entry can go to, the likeliest first, narrowed by what is typed. The first
/// row of an empty query is no project at all.
///
/// Owner: a screen's view model. Thread: the main thread.
class ProjectPicker final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { nameRole = Qt::UserRole, aboutRole, colorRole, projectIdRole, taskIdRole };
    static constexpr std::size_t mostRows = 200;

    explicit ProjectPicker(AppModel &app);

    QString query() const { return m_query; }
    void setQuery(const QString &query);
    int count() const { return rowCount(); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    Q_INVOKABLE QString projectIdAt(int row) const;
    Q_INVOKABLE QString taskIdAt(int row) const;

Q_SIGNALS:
    void queryChanged();
    void countChanged();

private:
    struct Row {
        std::string projectId;
        std::string taskId;
    };
    void follow();
    void prepare();
    void find();

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    Palette m_palette;
    QString m_query;
    std::vector<Row> m_rows;
};

} // namespace orvane
