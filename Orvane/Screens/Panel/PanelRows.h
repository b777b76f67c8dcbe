// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Panel/PanelRow.h"

#include <QAbstractListModel>

namespace orvane {

/// What the panel offers just now, as a list to be drawn.
///
/// Owner: the PanelModel. Thread: the main thread.
class PanelRows final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        titleRole = Qt::UserRole,
        /// The title in pieces, { text, isMatch }.
        piecesRole,
        detailRole,
        kindTextRole,
        /// What the row says aloud.
        spokenRole,
        iconRole,
        colorRole,
        /// What Return does with the row once it is chosen ("Continue").
        actionRole,
    };

    explicit PanelRows(QObject *parent) : QAbstractListModel(parent) {}

    /// Those that stay where they were keep their items on the screen.
    void set(std::vector<PanelRow> rows);
    const PanelRow &at(int row) const { return m_rows.at(static_cast<std::size_t>(row)); }
    /// Where the row of the same thing stands; -1: nowhere.
    int placeOf(const PanelRow &row) const;
    static QString actionOf(PanelRow::Kind kind);

    int count() const { return static_cast<int>(m_rows.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    std::vector<PanelRow> m_rows;
};

} // namespace orvane
