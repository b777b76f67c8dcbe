// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EntryInput/EntryDraft.h"
#include "Screens/Timer/SplitPercents.h"
#include "Tracker/Tracker.h"

#include <QAbstractListModel>
#include <QPointer>
#include <vector>

namespace orvane {

/// The pieces that an entry is being divided into: what each says, and what it has of the time.
///
/// Owner: the SplitModel, which alone says how many there are and what they have. Thread: the main thread.
class SplitRows final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        descriptionRole = Qt::UserRole,
        projectRole,
        taskRole,
        colorRole,
        isSplitRole,
        isBillableRole,
        percentRole,
        percentTextRole,
        percentBeforeRole,
        timesRole,
        lengthRole,
    };

    explicit SplitRows(QObject *parent) : QAbstractListModel(parent) {}

    int count() const { return static_cast<int>(m_rows.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    Q_INVOKABLE void setDescription(int row, const QString &description);
    /// A project, with one of its tasks or none; both empty: no project.
    Q_INVOKABLE void setProject(int row, const QString &projectId, const QString &taskId);
    Q_INVOKABLE void setBillable(int row, bool isBillable);

    void setTracker(Tracker *tracker);
    /// One row for each, as these entries say; their times count nothing.
    void reset(const std::vector<TimeEntryResponse> &saying);
    void append(const TimeEntryResponse &saying);
    void remove(int row);

    SplitPercents::Percents percents() const;
    void setPercents(const SplitPercents::Percents &percents);
    /// What is being typed as the percents of a row; a row of -1 for nothing.
    void setTypedPercent(int row, const QString &text);
    void setTimes(int row, const QString &times);
    void setMinutes(const std::vector<std::int64_t> &minutes);

    /// Whether anything was said of this row here.
    bool isChanged(int row) const;
    /// What an entry says with what was said of the row here.
    EntryDetails detailsOver(int row, const TimeEntryResponse &entry) const;
    /// The rows as the parts of a split.
    std::vector<SplitPart> parts() const;

Q_SIGNALS:
    void countChanged();

private:
    /// Empty texts for none.
    struct Pick {
        std::string projectId;
        std::string taskId;
    };
    struct Row {
        EntryDraft draft;
        QString description;
        bool isDescribed = false;
        std::optional<Pick> picked;
        std::int64_t percent = 0;
        QString times;
        std::int64_t minutes = 0;
    };

    static Row rowOf(const TimeEntryResponse &saying);
    const Row &at(int row) const { return m_rows[static_cast<std::size_t>(row)]; }
    Row &at(int row) { return m_rows[static_cast<std::size_t>(row)]; }
    bool has(int row) const { return row >= 0 && row < count(); }
    void tell(int row, const QList<int> &roles);
    void tellAll(const QList<int> &roles);
    void pick(EntryDraft &draft, const Pick &picked) const;
    const ProjectResponse *projectOf(const Row &row) const;
    QString taskOf(const Row &row) const;
    std::int64_t percentBefore(int row) const;

    QPointer<Tracker> m_tracker;
    std::vector<Row> m_rows;
    int m_typedRow = -1;
    QString m_typedPercent;
};

} // namespace orvane
