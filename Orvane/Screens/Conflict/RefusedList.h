// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Outbox/Refusal.h"
#include "Screens/Conflict/EntryWords.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QAbstractListModel>
#include <QPointer>
#include <optional>
#include <vector>

namespace orvane {

class AppModel;
class EntryEditor;
class EntryField;

/// The changes of this workspace that the server refused, each with what was wanted and why not, until the
/// user has answered it. They are kept in the store, and are here again after a restart.
///
/// Owner: the TimerModel. Thread: the main thread.
class RefusedList final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        titleRole = Qt::UserRole,
        reasonRole,
        sentenceRole,
        projectRole,
        taskRole,
        colorRole,
        startRole,
        stopRole,
        lengthRole,
        isTitleNewRole,
        isStartNewRole,
        isStopNewRole,
    };

    /// Where what was typed can be corrected.
    RefusedList(AppModel &app, EntryEditor &editor, EntryField &field);

    /// Opens what was typed in the entry's editor, or what was to be a new entry in the field.
    Q_INVOKABLE void edit(int row);
    /// Makes the change once more.
    Q_INVOKABLE void tryAgain(int row);
    Q_INVOKABLE void discard(int row);

    int count() const { return static_cast<int>(m_refusals.size()); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    /// What was to be a new entry stands in the field.
    void fieldFilled();

private:
    void follow();
    void read();
    Task<> readStored();
    void show(std::vector<Refusal> refusals);
    void tellChanged();
    void editCreation(const Refusal &refusal);
    void handleWritten(const QString &entryId);
    Task<> sendAgain(Refusal refusal);
    Task<SaveResult> again(const Refusal &refusal) const;
    Task<> answer(std::int64_t seq);
    const Refusal *at(int row) const;
    EntryRequest wanted(const Refusal &refusal) const;
    std::optional<EntryRequest> held(const Refusal &refusal) const;
    QString sentence(const Refusal &refusal) const;
    QString heldWords(const EntryRequest &wanted, const EntryRequest &held) const;
    EntryWords words() const { return EntryWords(m_tracker->catalog(), m_tracker->time()); }

    AppModel *m_app;
    EntryEditor *m_editor;
    EntryField *m_field;
    QPointer<Tracker> m_tracker;
    QPointer<Outbox> m_outbox;
    QPointer<OutboxOutcomes> m_outcomes;
    std::vector<Refusal> m_refusals;
    bool m_isReading = false;
    bool m_readsAgain = false;
    /// What is corrected in the editor.
    struct Edited {
        std::int64_t seq = 0;
        QString entryId;
    };
    std::optional<Edited> m_edited;
};

} // namespace orvane
