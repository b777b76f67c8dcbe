// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Conflict/EntryWords.h"

#include <QAbstractListModel>
#include <QStringList>
#include <set>
#include <vector>

namespace orvane {

/// What a conflict is settled by. A project with its task is one, and so are the parts of a split.
enum class ConflictField { description, project, tags, billing, start, stop };

/// The fields in which two sides of an entry differ, in the order of the enumerators. Pure.
std::vector<ConflictField> differences(const EntryRequest &mine, const EntryRequest &theirs);

/// `theirs` with what `mine` says in these fields. Pure.
EntryRequest withFields(EntryRequest theirs, const EntryRequest &mine, const std::set<ConflictField> &fields);

/// A text as the words before those that the other side does not have, these words, and those behind them. A
/// text that is read from the right has only the first. Pure.
QStringList markedAgainst(const QString &text, const QString &other);

/// The fields that differ, each with both sides in words and the side that is chosen: mine until the user
/// says otherwise.
///
/// Owner: the ConflictModel. Thread: the main thread.
class ConflictFields final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        labelRole = Qt::UserRole,
        mineRole,
        theirsRole,
        mineMarkedRole,
        theirsMarkedRole,
        isTheirsRole,
    };

    explicit ConflictFields(QObject *parent);

    /// Other sides: what was chosen of a field stays chosen.
    void show(const std::vector<ConflictField> &fields, const EntryRequest &mine, const EntryRequest &theirs,
              const EntryWords &words);
    void clear();
    void choose(int row, bool isTheirs);
    /// The fields that are mine.
    std::set<ConflictField> mine() const;

    int count() const { return static_cast<int>(m_rows.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    struct Row {
        ConflictField field = ConflictField::description;
        QString label;
        QString mine;
        QString theirs;
        QStringList mineMarked;
        QStringList theirsMarked;
        bool isTheirs = false;
    };
    Row rowOf(ConflictField field, const EntryRequest &mine, const EntryRequest &theirs,
              const EntryWords &words) const;

    std::vector<Row> m_rows;
};

} // namespace orvane
