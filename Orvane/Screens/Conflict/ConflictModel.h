// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Conflict/ConflictFields.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace orvane {

class AppModel;

/// A change that waits because its entry was changed on another device, while its user settles that: field by
/// field, or for a deletion as a whole. It never opens by itself, and nothing is sent before `save`.
///
/// Owner: the TimerModel. Thread: the main thread.
class ConflictModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString entryId READ entryId NOTIFY entryChanged)
    Q_PROPERTY(Kind kind READ kind NOTIFY entryChanged)
    Q_PROPERTY(QString about READ about NOTIFY entryChanged)
    Q_PROPERTY(orvane::ConflictFields *fields READ fields CONSTANT)
    Q_PROPERTY(QString same READ same NOTIFY entryChanged)
    Q_PROPERTY(QString description READ description NOTIFY resultChanged)
    Q_PROPERTY(QString project READ project NOTIFY resultChanged)
    Q_PROPERTY(QString task READ task NOTIFY resultChanged)
    Q_PROPERTY(QString projectColor READ projectColor NOTIFY resultChanged)
    Q_PROPERTY(QString tags READ tags NOTIFY resultChanged)
    Q_PROPERTY(QString times READ times NOTIFY resultChanged)
    Q_PROPERTY(QString length READ length NOTIFY resultChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY resultChanged)

public:
    enum class Kind {
        /// Each field that differs is chosen by itself.
        Fields,
        /// Only the time of the stop is asked for.
        Stop,
        /// To delete it anyway, or keep it as it is on the server.
        Delete,
    };
    Q_ENUM(Kind)

    explicit ConflictModel(AppModel &app);

    /// Empty while none is settled.
    QString entryId() const { return QString::fromStdString(m_entryId); }
    Kind kind() const { return m_kind; }
    /// What happened, in a sentence.
    QString about() const;
    ConflictFields *fields() { return &m_fields; }
    /// In what both sides agree: "Project Website, start 13:15, billable".
    QString same() const;
    /// The entry as it would be saved; of a deletion, as the server has it. A split one says all its projects
    /// as its project.
    QString description() const;
    QString project() const;
    QString task() const;
    QString projectColor() const;
    QString tags() const;
    QString times() const;
    QString length() const;
    /// Why it cannot be saved as it is chosen; empty when nothing is known against it.
    QString problem() const { return m_problem; }

    /// Asks about this entry. False when there is nothing to settle about it.
    Q_INVOKABLE bool open(const QString &id);
    /// The first one that waits, in the order in which the changes were made.
    Q_INVOKABLE void openFirst();
    /// Later.
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void choose(int row, bool isTheirs);
    Q_INVOKABLE void chooseAll(bool areTheirs);
    /// As it is chosen; of a deletion: the entry stays as it is on the server.
    Q_INVOKABLE void save();
    Q_INVOKABLE void deleteAnyway();

Q_SIGNALS:
    void entryChanged();
    void resultChanged();

private:
    void follow();
    void look();
    Task<> load(std::int64_t seq);
    void take(Outbox::ConflictSides sides);
    void work();
    void close();
    void settle(Settlement settlement);
    Task<> tellEnd(Task<Result<std::optional<EntryStep>, StoreError>> settling, std::string entryId,
                   QString quoted);
    EntryWords words() const { return EntryWords(m_tracker->catalog(), m_tracker->time()); }
    bool isOpen() const { return !m_entryId.empty() && m_tracker; }

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    /// What is being read, or is open.
    std::int64_t m_seq = 0;
    std::string m_entryId;
    Kind m_kind = Kind::Fields;
    TimeEntryResponse m_theirs;
    EntryRequest m_mine;
    EntryRequest m_result;
    ConflictFields m_fields;
    QString m_problem;
};

} // namespace orvane
