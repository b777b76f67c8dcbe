// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Panel/PanelRows.h"

#include <algorithm>

namespace orvane {

namespace {

QVariantList piecesOf(const PanelRow &row)
{
    QVariantList pieces;
    qsizetype at = 0;
    const auto add = [&](qsizetype end, bool isMatch) {
        end = std::min(end, row.title.size());
        if (end > at)
            pieces.append(QVariantMap{{QStringLiteral("text"), row.title.sliced(at, end - at)},
                                      {QStringLiteral("isMatch"), isMatch}});
        at = std::max(at, end);
    };
    for (const TextRange &mark : row.marks) {
        add(static_cast<qsizetype>(mark.start), false);
        add(static_cast<qsizetype>(mark.end), true);
    }
    add(row.title.size(), false);
    return pieces;
}

} // namespace

void PanelRows::set(std::vector<PanelRow> rows)
{
    const int before = count();
    const int after = static_cast<int>(rows.size());
    const auto asSize = [](int n) { return static_cast<std::size_t>(n); };
    if (after < before) {
        beginRemoveRows({}, after, before - 1);
        m_rows.resize(asSize(after));
        endRemoveRows();
    }
    for (int row = 0; row < count(); ++row) {
        if (m_rows[asSize(row)] == rows[asSize(row)])
            continue;
        m_rows[asSize(row)] = std::move(rows[asSize(row)]);
        Q_EMIT dataChanged(index(row), index(row));
    }
    if (after > before) {
        beginInsertRows({}, before, after - 1);
        std::move(rows.begin() + before, rows.end(), std::back_inserter(m_rows));
        endInsertRows();
    }
    if (after != before)
        Q_EMIT countChanged();
}

int PanelRows::placeOf(const PanelRow &row) const
{
    const auto isSame = [&](const PanelRow &other) {
        return other.kind == row.kind && other.item.key == row.item.key && other.toMake == row.toMake;
    };
    const auto found = std::ranges::find_if(m_rows, isSame);
    return found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin());
}

QString PanelRows::actionOf(PanelRow::Kind kind)
{
    switch (kind) {
    case PanelRow::Kind::name:
        return tr("Complete");
    case PanelRow::Kind::entry:
    case PanelRow::Kind::continueLast:
        return tr("Continue");
    case PanelRow::Kind::stop:
        return tr("Stop");
    case PanelRow::Kind::openWindow:
        return tr("Open");
    default:
        return tr("Create");
    }
}

int PanelRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QHash<int, QByteArray> PanelRows::roleNames() const
{
    return {{titleRole, "title"},        {spokenRole, "spoken"},     {piecesRole, "pieces"},
            {detailRole, "detail"},      {kindTextRole, "kindText"}, {iconRole, "icon"},
            {colorRole, "projectColor"}, {actionRole, "action"}};
}

QVariant PanelRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= count())
        return {};
    const PanelRow &row = at(index.row());
    switch (role) {
    case titleRole:
        return row.title;
    case piecesRole:
        return piecesOf(row);
    case detailRole:
        return row.detail;
    case kindTextRole:
        return row.kindText;
    case spokenRole: {
        QStringList parts{row.title, row.detail, row.kindText};
        parts.removeAll(QString());
        return parts.join(QStringLiteral(", "));
    }
    case iconRole:
        return row.icon;
    case colorRole:
        return row.color;
    case actionRole:
        return actionOf(row.kind);
    default:
        return {};
    }
}

} // namespace orvane
