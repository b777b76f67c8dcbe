// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EntryInput/EntryDraft.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QString>

namespace orvane {

class AppModel;

/// One entry while it is edited in its place in the list. Fields hold what is typed; nothing is changed
/// before `save`, and what cannot be read is said beside its field. What is half edited is kept among the
/// drafts, and opened again by the next process.
///
/// Owner: the TimerModel. Thread: the main thread.
class EntryEditor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString entryId READ entryId NOTIFY entryChanged)
    Q_PROPERTY(QString description MEMBER m_description NOTIFY edited)
    Q_PROPERTY(QString tags MEMBER m_tags NOTIFY edited)
    Q_PROPERTY(QString start MEMBER m_start NOTIFY edited)
    Q_PROPERTY(QString stop MEMBER m_stop NOTIFY edited)
    Q_PROPERTY(QString length MEMBER m_length NOTIFY edited)
    Q_PROPERTY(bool isBillable READ isBillable NOTIFY edited)
    Q_PROPERTY(QString project READ project NOTIFY edited)
    Q_PROPERTY(QString task READ task NOTIFY edited)
    Q_PROPERTY(QString projectColor READ projectColor NOTIFY edited)
    Q_PROPERTY(bool isSplit READ isSplit NOTIFY edited)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY entryChanged)
    Q_PROPERTY(Field wrongField READ wrongField NOTIFY problemChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)

public:
    enum class Field { None, Tags, Start, Stop, Length };
    Q_ENUM(Field)

    explicit EntryEditor(AppModel &app);

    /// Empty while no entry is edited.
    QString entryId() const { return QString::fromStdString(m_entryId); }
    bool isBillable() const { return m_draft.details().isBillable; }
    QString project() const;
    QString task() const;
    QString projectColor() const;
    bool isSplit() const { return !m_draft.details().shares.empty(); }
    bool isRunning() const { return m_isRunning; }
    Field wrongField() const { return m_wrongField; }
    QString problem() const { return m_problem; }

    /// Edits this entry; another one that was edited is left as it was. False for one that is gone
    /// and, told in the notice line, for one that is locked.
    Q_INVOKABLE bool open(const QString &id);
    /// The same with what is wanted of the entry typed in already; the parts of a split stay as they are.
    bool openWith(const QString &id, const EntryRequest &wanted);
    /// Leaves the entry as it was.
    Q_INVOKABLE void cancel();
    /// A project, with one of its tasks or none; both empty: no project.
    Q_INVOKABLE void setProject(const QString &projectId, const QString &taskId);
    Q_INVOKABLE void setBillable(bool isBillable);
    /// Says what earlier work said: its description, and its project and tags where the entry has none. The
    /// project brings the task and the billable mark.
    void takeOver(const TimeEntrySuggestion &work);
    /// Moves a time that can be read by so many minutes.
    Q_INVOKABLE void nudge(Field field, int minutes);
    /// Takes over what the field of one time says into those that follow from it: a length moves the end, an
    /// end changes the length.
    Q_INVOKABLE void settle(Field field);
    /// Changes the entry and closes; stays open where a field cannot be read.
    Q_INVOKABLE void save();

Q_SIGNALS:
    void entryChanged();
    void edited();
    void problemChanged();
    /// What was changed here is recorded, or the server has refused it.
    void written(const QString &entryId);

private:
    void follow();
    bool begin(const QString &id);
    bool isLocked(const TimeEntryResponse &entry) const;
    void keepDraft();
    void restoreDraft();
    void keepSettledTimes(QJsonObject &kept) const;
    void restoreSettledTimes(const QJsonObject &kept);
    void show(const EntryTimes &times);
    void close();
    void setProblem(Field field, const QString &problem);
    std::optional<TypedMoment> moment(const QString &text) const;
    Result<EntryTimes, EntryTimesProblem> typedTimes() const;
    bool takeTexts();
    void applyPick(EntryDraft &draft) const;
    EntryRequest changed(const TimeEntryResponse &entry) const;
    bool takeTags();
    bool takeTimes();
    Task<> write(std::string id, EntryRequest request);

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    std::string m_entryId;
    /// The entry as it was when it was opened, and as it is shown now.
    TimeEntryResponse m_base;
    EntryDraft m_draft;
    EntryTimes m_times;
    /// A project and a task that were picked here; empty texts for none.
    std::optional<std::pair<std::string, std::string>> m_picked;
    bool m_isRunning = false;
    /// What was left half edited was looked for.
    bool m_isRestored = false;
    QString m_description;
    QString m_tags;
    QString m_start;
    QString m_stop;
    QString m_length;
    Field m_wrongField = Field::None;
    QString m_problem;
};

} // namespace orvane
