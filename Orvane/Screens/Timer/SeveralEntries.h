// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EntryInput/EntryDraft.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <set>

namespace orvane {

class AppModel;
class TimerList;

/// Several entries that were chosen in the list, edited or deleted as one step. What is not touched stays in
/// each as it is.
///
/// Owner: the TimerModel. Thread: the main thread.
class SeveralEntries final : public QObject {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY chosenChanged)
    Q_PROPERTY(QString lastId READ lastId NOTIFY chosenChanged)
    Q_PROPERTY(QString title READ title NOTIFY chosenChanged)
    Q_PROPERTY(QString about READ about NOTIFY chosenChanged)
    /// What each field says while it is not touched.
    Q_PROPERTY(QString descriptionHint READ descriptionHint NOTIFY chosenChanged)
    Q_PROPERTY(QString tagsHint READ tagsHint NOTIFY chosenChanged)
    Q_PROPERTY(QString description MEMBER m_description NOTIFY edited)
    Q_PROPERTY(QString tags MEMBER m_tags NOTIFY edited)
    Q_PROPERTY(QString project READ project NOTIFY edited)
    Q_PROPERTY(QString task READ task NOTIFY edited)
    Q_PROPERTY(QString projectColor READ projectColor NOTIFY edited)
    Q_PROPERTY(bool isBillable READ isBillable NOTIFY edited)
    Q_PROPERTY(bool isTouched READ isTouched NOTIFY edited)
    Q_PROPERTY(QString changes READ changes NOTIFY edited)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)

public:
    SeveralEntries(AppModel &app, TimerList &list);

    int count() const { return static_cast<int>(m_chosen.size()); }
    /// The lowest of them in the list, under which their editor stands.
    QString lastId() const;
    /// "3 entries".
    QString title() const;
    /// "5h 30m on 19 November 2026"; of several days only how long.
    QString about() const;
    QString descriptionHint() const;
    QString tagsHint() const;
    /// The one that was picked, or else theirs: its name, or how many there are.
    QString project() const;
    QString task() const;
    QString projectColor() const;
    /// All of them, as they would be.
    bool isBillable() const;
    bool isTouched() const;
    /// What saving does, in a sentence.
    QString changes() const;
    /// Why it cannot be saved as it is typed; empty when nothing is known against it.
    QString problem() const { return m_problem; }

    /// Chooses an entry, or no longer. One that is locked cannot be chosen.
    Q_INVOKABLE void toggle(const QString &id);
    /// Chooses all from one row of the list to another, and no others.
    Q_INVOKABLE void chooseRows(int from, int to);
    Q_INVOKABLE void clear();
    Q_INVOKABLE void setProject(const QString &projectId, const QString &taskId);
    Q_INVOKABLE void turnBillable();
    /// Changes all of them, or says what is wrong.
    Q_INVOKABLE void save();
    Q_INVOKABLE void remove();

Q_SIGNALS:
    void chosenChanged();
    void edited();
    void problemChanged();

private:
    void follow();
    void look();
    void tellChosen();
    void forgetEdits();
    void setProblem(const QString &problem);
    bool mayChoose(const TimeEntryResponse &entry) const;
    std::vector<TimeEntryResponse> entries() const;
    EntryRequest changed(const TimeEntryResponse &entry) const;
    void applyProject(EntryDraft &draft) const;
    Result<std::vector<std::string>, std::string> readTags() const;
    int changing(const std::function<void(EntryDraft &)> &edit) const;
    Task<> tell(Task<SaveResult> saving);

    AppModel *m_app;
    TimerList *m_list;
    QPointer<Tracker> m_tracker;
    std::set<std::string> m_chosen;
    // What was touched.
    QString m_description;
    QString m_tags;
    std::optional<std::pair<std::string, std::string>> m_picked;
    std::optional<bool> m_billable;
    QString m_problem;
};

} // namespace orvane
