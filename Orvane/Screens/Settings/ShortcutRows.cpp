// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/ShortcutRows.h"

#include "QuickEntry/FoldedText.h"

#include <algorithm>

namespace orvane {

ShortcutRows::ShortcutRows(KeyTable &table) : m_table(&table)
{
    connect(m_table, &KeyTable::changed, this, [this] {
        if (!m_rows.empty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
        Q_EMIT keysChanged();
    });
    find();
}

bool ShortcutRows::isFound(const KeyTable::Entry &entry) const
{
    if (m_table->keys(entry.command).split(QLatin1Char(' ')).contains(m_query, Qt::CaseInsensitive))
        return true;
    const std::string title = FoldedText::ofName(KeyTable::title(entry.command).toStdString()).joined();
    return title.find(FoldedText::of(m_query.toStdString()).joined()) != std::string::npos;
}

void ShortcutRows::find()
{
    beginResetModel();
    m_rows.clear();
    for (const KeyTable::Context context : {KeyTable::Anywhere, KeyTable::Entries, KeyTable::Offers}) {
        const std::size_t head = m_rows.size();
        for (const KeyTable::Entry &entry : KeyTable::entries()) {
            if (entry.context != context || !isFound(entry))
                continue;
            if (m_rows.size() == head)
                m_rows.push_back({-1, context});
            m_rows.push_back({entry.command, context});
        }
    }
    endResetModel();
}

void ShortcutRows::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    find();
    Q_EMIT queryChanged();
}

int ShortcutRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QHash<int, QByteArray> ShortcutRows::roleNames() const
{
    return {{isHeadRole, "isHead"},      {titleRole, "title"},   {noteRole, "note"},
            {commandRole, "command"},    {keyBarRole, "keyBar"}, {keysRole, "keys"},
            {isChangedRole, "isChanged"}};
}

QVariant ShortcutRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    const bool isHead = row.command < 0;
    const auto command = static_cast<KeyTable::Command>(row.command);
    switch (role) {
    case isHeadRole:
        return isHead;
    case titleRole:
        if (!isHead)
            return KeyTable::title(command);
        return row.context == KeyTable::Anywhere  ? tr("Anywhere in Orvane")
               : row.context == KeyTable::Entries ? tr("Entries")
                                                  : tr("Review");
    case noteRole:
        return isHead && row.context != KeyTable::Anywhere ? tr("only outside fields") : QString();
    case commandRole:
        return row.command;
    case keyBarRole:
        return isHead ? QString() : KeyTable::keyBar(command);
    case keysRole:
        return isHead ? QString() : m_table->keys(command);
    case isChangedRole:
        return !isHead && m_table->isChanged(command);
    default:
        return {};
    }
}

bool ShortcutRows::isAnyChanged() const
{
    return std::ranges::any_of(KeyTable::entries(), [this](const KeyTable::Entry &entry) {
        return m_table->isChanged(entry.command);
    });
}

QString ShortcutRows::takerTitle() const
{
    return m_taker < 0 ? QString() : KeyTable::title(static_cast<KeyTable::Command>(m_taker));
}

// Recording

void ShortcutRows::setRecording(int command, const QString &wanted, const QString &refusal)
{
    m_recorded = command;
    m_wanted = wanted;
    m_refusal = refusal;
    m_taker = command < 0 || wanted.isEmpty()
                  ? -1
                  : m_table->takenBy(static_cast<KeyTable::Command>(command), wanted);
    Q_EMIT recordingChanged();
}

void ShortcutRows::record(int command)
{
    setRecording(command, {}, {});
}

void ShortcutRows::press(const QString &chord)
{
    if (m_recorded < 0 || chord.isEmpty())
        return;
    const auto command = static_cast<KeyTable::Command>(m_recorded);
    const QString refusal = KeyTable::refusal(command, chord);
    if (!refusal.isEmpty()) {
        setRecording(m_recorded, chord, refusal);
        return;
    }
    setRecording(m_recorded, chord, {});
    if (m_taker < 0)
        useHere();
}

void ShortcutRows::useHere()
{
    if (m_recorded < 0 || m_wanted.isEmpty() || !m_refusal.isEmpty())
        return;
    const auto command = static_cast<KeyTable::Command>(m_recorded);
    const QString chord = m_wanted;
    keep();
    m_table->setKeys(command, chord);
}

void ShortcutRows::keep()
{
    setRecording(-1, {}, {});
}

void ShortcutRows::clear(int command)
{
    keep();
    m_table->setKeys(static_cast<KeyTable::Command>(command), {});
}

void ShortcutRows::restore(int command)
{
    const auto which = static_cast<KeyTable::Command>(command);
    const QString own = KeyTable::ownKeys(which);
    // A list of keys as a whole is taken over where nobody has any of them.
    for (const QString &chord : own.split(QLatin1Char(' '))) {
        if (m_table->takenBy(which, chord) >= 0) {
            setRecording(command, chord, {});
            return;
        }
    }
    keep();
    m_table->restore(which);
}

void ShortcutRows::restoreAll()
{
    keep();
    m_table->restoreAll();
}

} // namespace orvane
