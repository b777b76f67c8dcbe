// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/KeyTable.h"

#include <QAbstractListModel>
#include <QString>
#include <vector>

namespace orvane {

/// The page of shortcuts: the commands below the place where they are given, and the one whose keys are being
/// recorded. Keys that another command has are taken only once that is agreed to.
///
/// Owner: the SettingsModel. Thread: the main thread; the table outlives it.
class ShortcutRows final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(int recorded READ recorded NOTIFY recordingChanged)
    Q_PROPERTY(QString wanted READ wanted NOTIFY recordingChanged)
    Q_PROPERTY(int taker READ taker NOTIFY recordingChanged)
    Q_PROPERTY(QString takerTitle READ takerTitle NOTIFY recordingChanged)
    Q_PROPERTY(QString refusal READ refusal NOTIFY recordingChanged)
    Q_PROPERTY(bool isAnyChanged READ isAnyChanged NOTIFY keysChanged)

public:
    enum Role {
        isHeadRole = Qt::UserRole,
        titleRole,
        noteRole,
        commandRole,
        keyBarRole,
        keysRole,
        isChangedRole
    };

    explicit ShortcutRows(KeyTable &table);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// A part of a command's name, or keys as they are pressed ("Ctrl+T").
    QString query() const { return m_query; }
    void setQuery(const QString &query);
    /// The command whose keys are recorded; -1 for none.
    int recorded() const { return m_recorded; }
    /// The keys that were pressed for it and wait for an answer; empty before.
    QString wanted() const { return m_wanted; }
    /// Who has these keys; -1 for nobody.
    int taker() const { return m_taker; }
    QString takerTitle() const;
    /// Why the keys that were pressed last cannot be taken; empty when they can.
    QString refusal() const { return m_refusal; }
    bool isAnyChanged() const;

    Q_INVOKABLE void record(int command);
    /// These keys were pressed. They are taken at once where nobody has them.
    Q_INVOKABLE void press(const QString &chord);
    /// The keys that another command has go to the recorded one.
    Q_INVOKABLE void useHere();
    /// Ends the recording; everything stays.
    Q_INVOKABLE void keep();
    Q_INVOKABLE void clear(int command);
    /// Those it came with; where another has them now, that is asked first.
    Q_INVOKABLE void restore(int command);
    Q_INVOKABLE void restoreAll();

Q_SIGNALS:
    void queryChanged();
    void recordingChanged();
    void keysChanged();

private:
    struct Row {
        /// -1 for a head.
        int command = -1;
        KeyTable::Context context = KeyTable::Anywhere;
    };
    void find();
    void setRecording(int command, const QString &wanted, const QString &refusal);
    bool isFound(const KeyTable::Entry &entry) const;

    KeyTable *m_table;
    QString m_query;
    std::vector<Row> m_rows;
    int m_recorded = -1;
    QString m_wanted;
    int m_taker = -1;
    QString m_refusal;
};

} // namespace orvane
