// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Conflict/ConflictFields.h"

#include <algorithm>

namespace orvane {

namespace {

/// What an entry's time goes to. Parts that are not described by themselves say only where they go.
EntryDetails placeOnly(const EntryRequest &request)
{
    EntryDetails place;
    place.projectId = request.details.projectId;
    place.taskId = request.details.taskId;
    place.shares = request.details.shares;
    if (!request.describeParts) {
        for (SplitPart &part : place.shares)
            part.description.clear();
    }
    return place;
}

std::vector<std::string> sortedTags(const EntryRequest &request)
{
    std::vector<std::string> tags = request.details.tagIds;
    std::ranges::sort(tags);
    return tags;
}

bool isSame(ConflictField field, const EntryRequest &one, const EntryRequest &other)
{
    switch (field) {
    case ConflictField::description:
        return one.details.description == other.details.description;
    case ConflictField::project:
        return placeOnly(one) == placeOnly(other);
    case ConflictField::tags:
        return sortedTags(one) == sortedTags(other);
    case ConflictField::billing:
        return one.details.isBillable == other.details.isBillable;
    case ConflictField::start:
        return one.start == other.start;
    case ConflictField::stop:
        break;
    }
    return one.stop == other.stop;
}

void take(ConflictField field, const EntryRequest &from, EntryRequest &into)
{
    switch (field) {
    case ConflictField::description:
        into.details.description = from.details.description;
        return;
    case ConflictField::project:
        into.details.projectId = from.details.projectId;
        into.details.taskId = from.details.taskId;
        into.details.shares = from.details.shares;
        into.describeParts = from.describeParts;
        return;
    case ConflictField::tags:
        into.details.tagIds = from.details.tagIds;
        return;
    case ConflictField::billing:
        into.details.isBillable = from.details.isBillable;
        return;
    case ConflictField::start:
        into.start = from.start;
        return;
    case ConflictField::stop:
        into.stop = from.stop;
        return;
    }
}

} // namespace

std::vector<ConflictField> differences(const EntryRequest &mine, const EntryRequest &theirs)
{
    std::vector<ConflictField> fields;
    for (const ConflictField field : {ConflictField::description, ConflictField::project, ConflictField::tags,
                                      ConflictField::billing, ConflictField::start, ConflictField::stop}) {
        if (!isSame(field, mine, theirs))
            fields.push_back(field);
    }
    return fields;
}

EntryRequest withFields(EntryRequest theirs, const EntryRequest &mine, const std::set<ConflictField> &fields)
{
    for (const ConflictField field : fields)
        take(field, mine, theirs);
    return theirs;
}

QStringList markedAgainst(const QString &text, const QString &other)
{
    if (text.isRightToLeft())
        return {text, {}, {}};
    const QStringList words = text.split(QLatin1Char(' '));
    const QStringList others = other.split(QLatin1Char(' '));
    const qsizetype most = std::min(words.size(), others.size());
    qsizetype head = 0;
    while (head < most && words[head] == others[head])
        ++head;
    qsizetype tail = 0;
    while (tail < most - head && words[words.size() - 1 - tail] == others[others.size() - 1 - tail])
        ++tail;
    const auto run = [&](qsizetype first, qsizetype count) {
        return words.mid(first, count).join(QLatin1Char(' '));
    };
    return {run(0, head), run(head, words.size() - head - tail), run(words.size() - tail, tail)};
}

ConflictFields::ConflictFields(QObject *parent) : QAbstractListModel(parent) {}

void ConflictFields::show(const std::vector<ConflictField> &fields, const EntryRequest &mine,
                          const EntryRequest &theirs, const EntryWords &words)
{
    std::set<ConflictField> chosen;
    for (const Row &row : m_rows) {
        if (row.isTheirs)
            chosen.insert(row.field);
    }
    beginResetModel();
    m_rows.clear();
    for (const ConflictField field : fields) {
        m_rows.push_back(rowOf(field, mine, theirs, words));
        m_rows.back().isTheirs = chosen.contains(field);
    }
    endResetModel();
    Q_EMIT countChanged();
}

void ConflictFields::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
    Q_EMIT countChanged();
}

ConflictFields::Row ConflictFields::rowOf(ConflictField field, const EntryRequest &mine,
                                          const EntryRequest &theirs, const EntryWords &words) const
{
    Row row;
    row.field = field;
    const auto sides = [&](const QString &label, const auto &word) {
        row.label = label;
        row.mine = word(mine);
        row.theirs = word(theirs);
        row.mineMarked = markedAgainst(row.mine, row.theirs);
        row.theirsMarked = markedAgainst(row.theirs, row.mine);
    };
    const auto stopRuns = [&](const EntryRequest &side) {
        const QString length = side.stop ? tr("· %1").arg(EntryWords::length(side)) : QString();
        return QStringList{{}, words.stop(side), length};
    };
    switch (field) {
    case ConflictField::description:
        sides(tr("Description"), &EntryWords::description);
        break;
    case ConflictField::project:
        sides(tr("Project"), [&](const EntryRequest &side) { return words.place(side); });
        break;
    case ConflictField::tags:
        sides(tr("Tags"), [&](const EntryRequest &side) { return words.tags(side); });
        break;
    case ConflictField::billing:
        sides(tr("Billing"), &EntryWords::billing);
        break;
    case ConflictField::start: {
        const bool isFar = std::chrono::abs(mine.start - theirs.start) >= std::chrono::hours{12};
        sides(tr("Start"), [&](const EntryRequest &side) { return words.clock(side.start, isFar); });
        break;
    }
    case ConflictField::stop:
        sides(tr("Stop"),
              [&](const EntryRequest &side) { return stopRuns(side).join(QLatin1Char(' ')).trimmed(); });
        row.mineMarked = stopRuns(mine);
        row.theirsMarked = stopRuns(theirs);
        break;
    }
    return row;
}

void ConflictFields::choose(int row, bool isTheirs)
{
    if (row < 0 || row >= count())
        return;
    m_rows[static_cast<std::size_t>(row)].isTheirs = isTheirs;
    Q_EMIT dataChanged(index(row), index(row), {isTheirsRole});
}

std::set<ConflictField> ConflictFields::mine() const
{
    std::set<ConflictField> fields;
    for (const Row &row : m_rows) {
        if (!row.isTheirs)
            fields.insert(row.field);
    }
    return fields;
}

int ConflictFields::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant ConflictFields::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= count())
        return {};
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    switch (role) {
    case labelRole:
        return row.label;
    case mineRole:
        return row.mine;
    case theirsRole:
        return row.theirs;
    case mineMarkedRole:
        return row.mineMarked;
    case theirsMarkedRole:
        return row.theirsMarked;
    case isTheirsRole:
        return row.isTheirs;
    default:
        return {};
    }
}

QHash<int, QByteArray> ConflictFields::roleNames() const
{
    return {{labelRole, "label"},
            {mineRole, "mine"},
            {theirsRole, "theirs"},
            {mineMarkedRole, "mineMarked"},
            {theirsMarkedRole, "theirsMarked"},
            {isTheirsRole, "isTheirs"}};
}

} // namespace orvane
