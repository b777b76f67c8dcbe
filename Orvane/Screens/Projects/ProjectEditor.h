// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/ProjectFields.h"
#include "Http/CallError.h"
#include "Screens/Projects/TaskRows.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>

namespace orvane {

class AppModel;
class CatalogEditor;
class Tracker;

/// One project while it is edited in its place, or a new one. Fields hold what is typed; nothing is changed
/// before `save`. Its tasks, archiving and restoring act at once.
///
/// Owner: the ProjectsModel. Thread: the main thread; the AppModel outlives it.
class ProjectEditor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString projectId READ projectId NOTIFY opened)
    Q_PROPERTY(bool isNew READ isNew NOTIFY opened)
    Q_PROPERTY(bool isArchived READ isArchived NOTIFY edited)
    Q_PROPERTY(QString name MEMBER m_name NOTIFY edited)
    Q_PROPERTY(QString client READ client NOTIFY edited)
    Q_PROPERTY(QString color MEMBER m_color NOTIFY edited)
    Q_PROPERTY(QString rate MEMBER m_rate NOTIFY edited)
    Q_PROPERTY(QString estimate MEMBER m_estimate NOTIFY edited)
    Q_PROPERTY(bool isBillable MEMBER m_isBillable NOTIFY edited)
    Q_PROPERTY(bool isPrivate MEMBER m_isPrivate NOTIFY edited)
    Q_PROPERTY(QString newTask MEMBER m_newTask NOTIFY edited)
    Q_PROPERTY(QString currency READ currency NOTIFY opened)
    Q_PROPERTY(QStringList clients READ clients NOTIFY clientsChanged)
    Q_PROPERTY(QStringList colors READ colors CONSTANT)
    Q_PROPERTY(orvane::TaskRows *tasks READ tasks CONSTANT)
    Q_PROPERTY(Field wrongField READ wrongField NOTIFY problemChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY busyChanged)

public:
    enum class Field { None, Name, Rate, Estimate, Task };
    Q_ENUM(Field)

    explicit ProjectEditor(AppModel &app);

    /// Empty while none is edited, and for a new one.
    QString projectId() const { return QString::fromStdString(m_id); }
    bool isNew() const { return m_isNew; }
    bool isOpen() const { return m_isNew || !m_id.empty(); }
    bool isArchived() const { return m_isArchived; }
    /// The chosen one's name; empty for none.
    QString client() const;
    /// Names to choose from, in order.
    QStringList clients() const;
    /// How the currency is written beside the rate.
    QString currency() const;
    /// Those to choose from, as the server keeps them.
    static QStringList colors();
    TaskRows *tasks() { return &m_tasks; }
    Field wrongField() const { return m_wrongField; }
    QString problem() const { return m_problem; }
    bool isBusy() const { return m_isBusy; }

    /// Edits this one; another that was edited is left as it was.
    Q_INVOKABLE void open(const QString &id);
    Q_INVOKABLE void openNew();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void save();
    /// By its place among `clients`; -1 for none.
    Q_INVOKABLE void chooseClient(int index);
    Q_INVOKABLE void archive();
    Q_INVOKABLE void restore();
    Q_INVOKABLE void addTask();
    Q_INVOKABLE void setTaskDone(const QString &id, bool isDone);
    Q_INVOKABLE void renameTask(const QString &id, const QString &name);

    /// What of the week went to its tasks is told again.
    void update(const CatalogWeek &week);

Q_SIGNALS:
    void opened();
    void edited();
    void clientsChanged();
    void problemChanged();
    void busyChanged();

private:
    void follow();
    void followCatalog();
    void show(const ProjectFields &fields);
    void close();
    void setProblem(Field field, const QString &problem);
    void setBusy(bool isBusy);
    std::vector<std::pair<std::string, QString>> openClients() const;
    std::optional<ProjectFields> typed();
    Task<> doCreate(ProjectFields fields);
    using Change = std::function<Task<CallResult<ProjectResponse>>(CatalogEditor &editor)>;
    /// A step that undo takes back; `isTold` puts it into the notice line.
    Task<> doChange(std::string id, Change change, bool isTold);
    Task<> doAddTask(std::string id, std::string name);
    Task<> doUpdateTask(std::string id, std::string name, bool isActive);

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    std::string m_id;
    bool m_isNew = false;
    bool m_isArchived = false;
    bool m_isBusy = false;
    QString m_name;
    std::optional<std::string> m_clientId;
    QString m_color;
    QString m_rate;
    QString m_estimate;
    bool m_isBillable = false;
    bool m_isPrivate = false;
    QString m_newTask;
    TaskRows m_tasks;
    Field m_wrongField = Field::None;
    QString m_problem;
};

} // namespace orvane
