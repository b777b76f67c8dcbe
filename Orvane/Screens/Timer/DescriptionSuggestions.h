// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "EntryInput/EarlierWork.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QAbstractListModel>
#include <QTimer>
#include <chrono>
#include <optional>

namespace orvane {

class AppModel;
class EntryEditor;

/// Earlier work offered below the description while it is typed: what is known here at once, and the server's
/// below that when it answers, so that no row moves. Away from the server there is no word about it.
///
/// Owner: the TimerModel; the editor outlives it. Thread: the main thread.
class DescriptionSuggestions final : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role { descriptionRole = Qt::UserRole, projectRole, colorRole };
    static constexpr std::size_t mostRows = 8;
    /// Typing has to rest so long.
    static constexpr std::chrono::milliseconds rest{150};

    DescriptionSuggestions(AppModel &app, EntryEditor &editor);

    int count() const { return rowCount(); }
    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// This is typed now.
    Q_INVOKABLE void type(const QString &text);
    /// Puts what a row says into the editor, and closes.
    Q_INVOKABLE void take(int row);
    /// Offers nothing until something else is typed.
    Q_INVOKABLE void close();

Q_SIGNALS:
    void countChanged();

private:
    void look();
    void show(std::optional<EarlierWork> work);
    Task<> askServer(std::string typed);

    AppModel *m_app;
    EntryEditor *m_editor;
    QTimer m_rest;
    /// Empty while nothing is offered.
    std::string m_typed;
    std::optional<EarlierWork> m_work;
};

} // namespace orvane
