// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Timer/TimerRows.h"
#include "Tracker/Tracker.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QVariantList>

namespace orvane {

/// The entries by day, the latest first: one flat list of day heads, folded days, entries and the shares of
/// split ones. It says what each line shows as texts; colours are the server's own.
///
/// Owner: the TimerModel. Thread: the main thread.
class TimerList final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum class Kind { Day, Folded, Entry, Share, Offer };
    Q_ENUM(Kind)
    /// What the server has to say about an entry, if anything.
    enum class Mark { None, Waiting, Conflict, Locked, Overlap };
    Q_ENUM(Mark)
    enum Role {
        kindRole = Qt::UserRole,
        entryIdRole,
        titleRole,
        subtitleRole,
        totalRole,
        projectRole,
        taskRole,
        colorRole,
        partsRole,
        partCountRole,
        tagsRole,
        isBillableRole,
        timesRole,
        durationRole,
        markRole,
        isLockedRole,
        spokenRole,
        isSelectedRole,
    };

    explicit TimerList(QObject *parent);

    /// Whose entries; null: none.
    void setTracker(Tracker *tracker);
    /// Folds a day, or unfolds it.
    Q_INVOKABLE void turn(int row);
    /// The row of an entry; -1 when it has none.
    Q_INVOKABLE int rowOf(const QString &id) const;
    Q_INVOKABLE QString idAt(int row) const;
    Q_INVOKABLE Kind kindAt(int row) const;
    /// The nearest row from `row` in the direction of `step` that can be chosen; `row` when there is none.
    Q_INVOKABLE int choosable(int row, int step) const;
    /// Which entries are chosen to be edited as one.
    void setChosen(std::set<std::string> ids);
    /// Takes the offer below this entry away until the next start.
    Q_INVOKABLE void leaveBoth(const QString &id);
    /// The offer that stands below this entry, or concerns it; none without one.
    std::optional<TrimOffer> offerFor(const QString &id) const;
    /// Of an offer.
    const TimeEntryResponse &entryOf(std::size_t place) const { return m_list.entries[place]; }
    /// Null when it has no row.
    const TimeEntryResponse *entryAt(int row) const;

    int count() const { return static_cast<int>(m_list.rows.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// What changes while a timer runs: the totals of its day.
    void tick();

Q_SIGNALS:
    void countChanged();

private:
    void rebuild();
    void followSettings();
    void replaceRows(TimerRows next);
    void tellAllChanged();
    QVariant saidBy(const TimerRow &row, int role) const;
    QVariant dayData(const TimerRow &row, int role) const;
    QVariant entryData(const TimerRow &row, int role) const;
    QVariant shareData(const TimerRow &row, int role) const;
    QVariant offerData(const TimerRow &row, int role) const;
    bool mayTrim(const TimeEntryResponse &one, const TimeEntryResponse &other) const;
    QString dayTitle(DayKey day) const;
    QString daySubtitle(const TimerRow &row) const;
    QVariantList dayParts(const TimerRow &row) const;
    QVariantList entryParts(const TimeEntryResponse &entry) const;
    QString spoken(const TimerRow &row) const;
    Mark markOf(const TimerRow &row) const;
    QString lockText(const TimerRow &row) const;
    bool holdsLocked(const TimerRow &row) const;
    bool isLocked(const TimeEntryResponse &entry) const;
    QString projectName(const std::optional<std::string> &projectId) const;
    QString taskName(const std::optional<std::string> &taskId) const;
    QString colorOf(const std::optional<std::string> &projectId) const;

    QPointer<Tracker> m_tracker;
    TimerRows m_list;
    std::set<DayKey> m_turned;
    std::set<std::string, std::less<>> m_waiting;
    std::set<std::string, std::less<>> m_inConflict;
    std::set<std::size_t> m_overlapping;
    std::set<std::string> m_chosen;
    /// Entries that overlap and stay so.
    std::set<std::pair<std::string, std::string>> m_leftBoth;
    /// As the rows were made with it.
    std::optional<Instant> m_lockedBefore;
};

} // namespace orvane
