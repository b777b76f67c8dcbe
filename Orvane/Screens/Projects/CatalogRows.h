// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractListModel>
#include <algorithm>
#include <vector>

namespace orvane {

/// The rows of a list that are worked out anew with each change: what stays the same row stays, so that an
/// editor in it keeps the keyboard. A row has a `key()` and is compared as a whole.
template <class Row>
class CatalogRows : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }
    const std::vector<Row> &rows() const { return m_rows; }

    /// Takes the rows over; what lies between the first and the last other key comes and goes.
    void show(std::vector<Row> rows)
    {
        const auto same = [](const Row &one, const Row &other) { return one.key() == other.key(); };
        const auto [left, right] = std::ranges::mismatch(m_rows, rows, same);
        const auto front = left - m_rows.begin();
        const auto room = std::min(m_rows.end() - left, rows.end() - right);
        std::ptrdiff_t back = 0;
        while (back < room && same(*(m_rows.end() - 1 - back), *(rows.end() - 1 - back)))
            ++back;
        replaceMiddle(rows, front, back);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (m_rows[i] == rows[i])
                continue;
            m_rows[i] = std::move(rows[i]);
            const QModelIndex changed = index(static_cast<int>(i));
            Q_EMIT dataChanged(changed, changed);
        }
    }

private:
    void replaceMiddle(const std::vector<Row> &rows, std::ptrdiff_t front, std::ptrdiff_t back)
    {
        const auto gone = std::ssize(m_rows) - front - back;
        const auto added = std::ssize(rows) - front - back;
        const int first = static_cast<int>(front);
        if (gone > 0) {
            beginRemoveRows({}, first, first + static_cast<int>(gone) - 1);
            m_rows.erase(m_rows.begin() + front, m_rows.begin() + front + gone);
            endRemoveRows();
        }
        if (added > 0) {
            beginInsertRows({}, first, first + static_cast<int>(added) - 1);
            m_rows.insert(m_rows.begin() + front, rows.begin() + front, rows.begin() + front + added);
            endInsertRows();
        }
    }

    std::vector<Row> m_rows;
};

} // namespace orvane
