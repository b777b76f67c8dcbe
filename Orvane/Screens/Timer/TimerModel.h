// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Conflict/ConflictModel.h"
#include "Screens/Conflict/RefusedList.h"
#include "Screens/Timer/DayRuler.h"
#include "Screens/Timer/DescriptionSuggestions.h"
#include "Screens/Timer/EntryEditor.h"
#include "Screens/Timer/EntryField.h"
#include "Screens/Timer/ProjectPicker.h"
#include "Screens/Timer/SeveralEntries.h"
#include "Screens/Timer/SplitModel.h"
#include "Screens/Timer/TimerList.h"
#include "Support/Task.h"

#include <QObject>
#include <QString>

namespace orvane {

class AppModel;
class KeyTable;

/// The timer's screen: what runs, the totals, the list, the field, and what can be done with an entry. Each
/// action shows at once; what could not be done is told in the notice line.
///
/// Owner: the program. Thread: the main thread; the AppModel outlives it.
class TimerModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(orvane::TimerList *list READ list CONSTANT)
    Q_PROPERTY(orvane::EntryField *field READ field CONSTANT)
    Q_PROPERTY(orvane::EntryEditor *editor READ editor CONSTANT)
    Q_PROPERTY(orvane::DescriptionSuggestions *suggestions READ suggestions CONSTANT)
    Q_PROPERTY(orvane::ProjectPicker *picker READ picker CONSTANT)
    Q_PROPERTY(orvane::DayRuler *ruler READ ruler CONSTANT)
    Q_PROPERTY(orvane::SplitModel *split READ split CONSTANT)
    Q_PROPERTY(orvane::SeveralEntries *several READ several CONSTANT)
    Q_PROPERTY(orvane::ConflictModel *conflict READ conflict CONSTANT)
    Q_PROPERTY(orvane::RefusedList *refused READ refused CONSTANT)
    Q_PROPERTY(orvane::KeyTable *keys READ keys CONSTANT)
    Q_PROPERTY(bool isReady READ isReady NOTIFY changed)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY changed)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    Q_PROPERTY(QString loadProblem READ loadProblem NOTIFY changed)
    Q_PROPERTY(bool isLoadingMore READ isLoadingMore NOTIFY changed)
    Q_PROPERTY(QString weekProblem READ weekProblem NOTIFY changed)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY runningChanged)
    Q_PROPERTY(bool isRunningEdited READ isRunningEdited NOTIFY runningEditedChanged)
    Q_PROPERTY(QString description READ description NOTIFY runningChanged)
    Q_PROPERTY(QString project READ project NOTIFY runningChanged)
    Q_PROPERTY(QString task READ task NOTIFY runningChanged)
    Q_PROPERTY(QString projectColor READ projectColor NOTIFY runningChanged)
    Q_PROPERTY(bool isBillable READ isBillable NOTIFY runningChanged)
    Q_PROPERTY(QString since READ since NOTIFY runningChanged)
    Q_PROPERTY(QString elapsed READ elapsed NOTIFY ticked)
    Q_PROPERTY(QString needs READ needs NOTIFY runningChanged)
    Q_PROPERTY(QString todayTotal READ todayTotal NOTIFY ticked)
    Q_PROPERTY(QString weekTotal READ weekTotal NOTIFY ticked)

public:
    explicit TimerModel(AppModel &app);

    TimerList *list() { return &m_list; }
    EntryField *field() { return &m_field; }
    EntryEditor *editor() { return &m_editor; }
    DescriptionSuggestions *suggestions() { return &m_suggestions; }
    ProjectPicker *picker() { return &m_picker; }
    DayRuler *ruler() { return &m_ruler; }
    SplitModel *split() { return &m_split; }
    SeveralEntries *several() { return &m_several; }
    ConflictModel *conflict() { return &m_conflict; }
    RefusedList *refused() { return &m_refused; }
    KeyTable *keys() const;
    bool isReady() const { return m_tracker != nullptr; }
    /// The first answer is still to come and nothing was known here.
    bool isLoading() const;
    /// There is nothing at all to show.
    bool isEmpty() const;
    /// Why what is shown is not the server's latest; empty when it is, or is being asked for.
    QString loadProblem() const;
    bool isLoadingMore() const;
    QString weekProblem() const { return m_weekProblem; }

    bool isRunning() const;
    /// The editor has what runs.
    bool isRunningEdited() const;
    QString description() const;
    QString project() const;
    QString task() const;
    QString projectColor() const;
    bool isBillable() const;
    /// "since 14:23", with its day when that is not today.
    QString since() const;
    /// "1:24:36".
    QString elapsed() const;
    /// What the workspace requires before the timer may stop, as a sentence, once a stop was tried; else
    /// empty.
    QString needs() const { return m_needs; }
    QString todayTotal() const;
    QString weekTotal() const;

    Q_INVOKABLE void editRunning();
    /// Stops the running timer.
    Q_INVOKABLE void stop();
    /// Stops what runs, or goes on with the last entry.
    Q_INVOKABLE void startOrStop();
    Q_INVOKABLE void continueLast();
    /// Starts the timer with what this entry says.
    Q_INVOKABLE void continueEntry(const QString &id);
    Q_INVOKABLE void duplicate(const QString &id);
    Q_INVOKABLE void remove(const QString &id);
    /// Takes the offer to trim that stands below this entry, or concerns it. False without one.
    Q_INVOKABLE bool trim(const QString &id);
    Q_INVOKABLE void loadWeekBefore();
    Q_INVOKABLE void loadAgain();

Q_SIGNALS:
    void changed();
    void runningChanged();
    void runningEditedChanged();
    void ticked();

private:
    void follow();
    void followRunning();
    void tick();
    Task<> doStop();
    Task<> doContinueLast();
    Task<> doContinue(std::string id);
    Task<> doDuplicate(std::string id);
    Task<> doRemove(std::string id);
    Task<> doTrim(std::string id, EntryRequest request);
    Task<> doLoadWeekBefore();
    void tellFailure(const SaveResult &result);
    QString total(DayKey first, int count) const;

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    TimerList m_list;
    EntryField m_field;
    EntryEditor m_editor;
    DescriptionSuggestions m_suggestions;
    ProjectPicker m_picker;
    DayRuler m_ruler;
    SplitModel m_split;
    SeveralEntries m_several;
    ConflictModel m_conflict;
    RefusedList m_refused;
    QString m_needs;
    QString m_weekProblem;
};

} // namespace orvane
