// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <span>

namespace orvane {

class WindowChoices;

/// The commands of the windows and the keys that give them: the one table that shortcuts, tooltips, key bars
/// and the page of shortcuts read. Keys are named as QKeySequence names them ("Ctrl+Shift+T", "Return"); Ctrl
/// is a Mac's Command. Several that do the same stand apart by spaces.
///
/// Owner: the AppModel. Thread: the main thread.
class KeyTable final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringList chords READ chords NOTIFY changed)
    Q_PROPERTY(QStringList caps READ caps NOTIFY changed)

public:
    /// In the order in which they are listed.
    enum Command {
        NewEntry,
        StartOrStop,
        ContinueLast,
        EditRunning,
        OpenPanel,
        NewProject,
        FindHere,
        Undo,
        Redo,
        ShowTimer,
        ShowReview,
        ShowProjects,
        ShowSettings,
        EditEntry,
        ContinueEntry,
        SplitEntry,
        TrimEntry,
        DuplicateEntry,
        DeleteEntry,
        TakeOffer,
        EditOffer,
        DismissOffer,
    };
    Q_ENUM(Command)

    /// Where a command is given: in every section, on an entry of the list, or on an offer of the review; the
    /// latter two outside fields.
    enum Context { Anywhere, Entries, Offers };
    Q_ENUM(Context)

    struct Entry {
        Command command;
        const char *id; ///< in the file of choices
        const char *title;
        const char *keyBar; ///< whose key bar names it; empty: none
        Context context;
        const char *keys;
    };

    explicit KeyTable(WindowChoices &choices);

    static std::span<const Entry> entries();
    static QString title(Command command);
    static QString keyBar(Command command);
    /// Those it comes with.
    static QString ownKeys(Command command);

    /// The keys in use, by command; empty: none. A list for `Shortcut.sequences` is a text split at spaces.
    QStringList chords() const { return m_chords; }
    /// The first of each, to be shown.
    QStringList caps() const;
    QString keys(Command command) const { return m_chords.value(command); }
    bool isChanged(Command command) const;

    /// The command that keys give on an entry of the list, or on an offer; -1 for none.
    Q_INVOKABLE int entryCommand(const QString &chord) const { return commandIn(Entries, chord); }
    Q_INVOKABLE int offerCommand(const QString &chord) const { return commandIn(Offers, chord); }
    /// Who has keys that `command` would want, where both can be meant; -1 for nobody.
    int takenBy(Command command, const QString &chord) const;
    /// Why these keys cannot be the command's, for people; empty when they can.
    static QString refusal(Command command, const QString &chord);

    /// From now on. Who had the keys has them no more. An empty text: no keys.
    void setKeys(Command command, const QString &chord);
    /// Of this one those it came with.
    void restore(Command command);
    void restoreAll();

Q_SIGNALS:
    void changed();

private:
    int commandIn(Context context, const QString &chord) const;
    void update();

    WindowChoices *m_choices;
    QStringList m_chords;
};

} // namespace orvane
