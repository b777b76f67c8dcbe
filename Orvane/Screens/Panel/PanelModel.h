// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/PalettePicks.h"
#include "Screens/Panel/PanelRows.h"
#include "Screens/Panel/PanelSearch.h"
#include "Screens/Timer/EntryField.h"
#include "Support/Task.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <QPointer>

namespace orvane {

/// The panel over other applications: one sentence, and what completes it or can be done instead. Return
/// records the sentence until a row is chosen with the arrows, and is the row's from then on. What was typed
/// stays when the panel is left.
///
/// Offsets in the sentence are UTF-16 units. While the panel is not open nothing is searched.
///
/// Owner: the program. Thread: the main thread; the AppModel outlives it.
class PanelModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(orvane::EntryField *field READ field CONSTANT)
    Q_PROPERTY(orvane::PanelRows *rows READ rows CONSTANT)
    /// Where the cursor stands in the sentence.
    Q_PROPERTY(int cursor READ cursor WRITE setCursor NOTIFY cursorChanged)
    /// The mention that is being typed; both 0 while none is.
    Q_PROPERTY(int mentionStart READ mentionStart NOTIFY searched)
    Q_PROPERTY(int mentionEnd READ mentionEnd NOTIFY searched)
    /// The row that Tab completes or Return acts on; -1: none.
    Q_PROPERTY(int currentRow READ currentRow NOTIFY currentChanged)
    /// Return is the current row's.
    Q_PROPERTY(bool isRowChosen READ isRowChosen NOTIFY currentChanged)
    Q_PROPERTY(bool canComplete READ canComplete NOTIFY currentChanged)
    /// What Return does, as its key says it and in words; empty while it does nothing, or the key says it
    /// all.
    Q_PROPERTY(QString action READ action NOTIFY currentChanged)
    Q_PROPERTY(QString plan READ plan NOTIFY currentChanged)
    /// A name is being created, or Return waits for the account to be opened.
    Q_PROPERTY(bool isPending READ isPending NOTIFY busyChanged)

public:
    explicit PanelModel(AppModel &app);

    EntryField *field() { return &m_field; }
    PanelRows *rows() { return &m_rows; }
    int cursor() const { return m_cursor; }
    void setCursor(int cursor);
    int mentionStart() const { return m_asked.place.isMention() ? static_cast<int>(m_asked.place.start) : 0; }
    int mentionEnd() const { return m_asked.place.isMention() ? static_cast<int>(m_asked.place.end) : 0; }
    int currentRow() const { return m_current; }
    bool isRowChosen() const { return m_isRowChosen; }
    bool canComplete() const;
    QString action() const;
    QString plan() const;
    bool isPending() const { return m_isCreating || m_actsOnceReady; }
    /// Something is under way whose failure would bring the panel back.
    bool isBusy() const { return m_underWay > 0 || m_isCreating; }

    /// Asks whoever shows it to bring it into view.
    Q_INVOKABLE void want() { Q_EMIT wanted(); }
    /// It comes into view.
    void open();
    /// It goes out of view.
    Q_INVOKABLE void leave();
    Q_INVOKABLE void moveDown();
    Q_INVOKABLE void moveUp();
    /// Puts the current row into the sentence.
    Q_INVOKABLE void complete();
    /// As Return.
    Q_INVOKABLE void act();
    /// Does what Return would do with this row.
    Q_INVOKABLE void take(int row);

Q_SIGNALS:
    void cursorChanged();
    void searched();
    void currentChanged();
    void busyChanged();
    /// It has nothing more to do in view.
    void left();
    /// It is to be shown: somebody asks for it, or what was begun when it was left has failed.
    void wanted();
    void windowWanted();

private:
    void follow();
    void forgetNames();
    void forgetEntries();
    void prepare();
    void search();
    bool isReady() const;
    void setActsOnceReady(bool acts);
    PanelSearch::Asked asked() const;
    void setCurrent(int row, bool isChosen);
    void replaceText(const QString &text, qsizetype cursor);
    bool put(const PaletteItem &item);
    void putEntry(const TimeEntryResponse &entry);
    PanelRow::Kind kindAt(int row) const { return m_rows.at(row).kind; }
    bool continuesNow(const PanelRow &row) const;
    Task<> continueEntry(PaletteItem item);
    Task<> run(Task<SaveResult> action, PalettePicks picks);
    Task<> create(PanelRow::Kind kind, std::string name);
    void setUnderWay(int change);

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    EntryField m_field;
    PanelRows m_rows{nullptr};
    PanelSearch m_search;
    bool m_areNamesStale = true;
    bool m_areEntriesStale = true;
    PaletteUsage m_usage;
    bool m_isOpen = false;
    int m_cursor = 0;
    PanelSearch::Asked m_asked;
    int m_current = -1;
    bool m_isRowChosen = false;
    int m_underWay = 0;
    bool m_isCreating = false;
    bool m_actsOnceReady = false;
};

} // namespace orvane
