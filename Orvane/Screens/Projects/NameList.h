// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Screens/Projects/CatalogRows.h"
#include "Support/Task.h"

#include <QPointer>
#include <QString>
#include <string>

namespace orvane {

class AppModel;
class Tracker;

struct NameRow {
    std::string id = {};
    QString name = {};
    QString detail = {};
    bool isArchived = false;

    bool operator==(const NameRow &) const = default;
    const std::string &key() const { return id; }
};

/// The clients, or the tags: what has no more to it than a name, which is edited in its place.
///
/// Owner: the ProjectsModel. Thread: the main thread; the AppModel outlives it.
class NameList final : public CatalogRows<NameRow> {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(QString editedId READ editedId NOTIFY editedChanged)
    Q_PROPERTY(bool isNew READ isNew NOTIFY editedChanged)
    Q_PROPERTY(QString text MEMBER m_text NOTIFY textChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)
    Q_PROPERTY(bool mayEdit READ mayEdit NOTIFY countChanged)

public:
    enum class Things { clients, tags };
    enum Role { itemIdRole = Qt::UserRole, nameRole, detailRole, isArchivedRole };

    NameList(AppModel &app, Things things);

    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return rowCount(); }
    /// Empty while none is edited, and for a new one.
    QString editedId() const { return QString::fromStdString(m_editedId); }
    bool isNew() const { return m_isNew; }
    QString problem() const { return m_problem; }
    bool mayEdit() const;

    Q_INVOKABLE void edit(const QString &id);
    Q_INVOKABLE void beginNew();
    Q_INVOKABLE void cancel();
    /// Renames, or makes, with what is typed; stays open where the server refuses.
    Q_INVOKABLE void save();
    /// A client's; tags are not archived.
    Q_INVOKABLE void setArchived(const QString &id, bool isArchived);

    void update(const QString &query);

Q_SIGNALS:
    void countChanged();
    void editedChanged();
    void textChanged();
    void problemChanged();

private:
    void startEditing(std::string id, bool isNew, const QString &text);
    void setProblem(const QString &problem);
    std::vector<NameRow> clientRows(const QString &query) const;
    std::vector<NameRow> tagRows(const QString &query) const;
    Task<> doCreate(std::string name);
    Task<> doRename(std::string id, std::string name);
    Task<> doArchive(std::string id, bool isArchived);
    template <class Response>
    void finish(const QPointer<Tracker> &tracker, const Response &before, const Response &after,
                bool isWorthTelling);

    AppModel *m_app;
    Things m_things;
    std::string m_editedId;
    bool m_isNew = false;
    QString m_text;
    QString m_problem;
};

} // namespace orvane
