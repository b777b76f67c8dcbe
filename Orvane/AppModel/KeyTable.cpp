// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/KeyTable.h"

#include "AppModel/WindowChoices.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

using Command = KeyTable::Command;

constexpr std::array<KeyTable::Entry, 22> table{{
    {Command::NewEntry, "newEntry", QT_TRANSLATE_NOOP("orvane::KeyTable", "New Entry"), "",
     KeyTable::Anywhere, "Ctrl+N"},
    {Command::StartOrStop, "startOrStop", QT_TRANSLATE_NOOP("orvane::KeyTable", "Start or Stop"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Anywhere, "Ctrl+T"},
    {Command::ContinueLast, "continueLast", QT_TRANSLATE_NOOP("orvane::KeyTable", "Continue the Last Entry"),
     "", KeyTable::Anywhere, "Ctrl+Shift+T"},
    {Command::EditRunning, "editRunning", QT_TRANSLATE_NOOP("orvane::KeyTable", "Edit What Runs"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Anywhere, "Ctrl+E"},
    {Command::OpenPanel, "openPanel", QT_TRANSLATE_NOOP("orvane::KeyTable", "Open the Panel"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Anywhere, "Ctrl+Alt+Space"},
    {Command::NewProject, "newProject", QT_TRANSLATE_NOOP("orvane::KeyTable", "New Project"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Projects"), KeyTable::Anywhere, "Ctrl+Shift+N"},
    {Command::FindHere, "findHere", QT_TRANSLATE_NOOP("orvane::KeyTable", "Find in This Section"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Projects, Settings"), KeyTable::Anywhere, "Ctrl+F"},
    {Command::Undo, "undo", QT_TRANSLATE_NOOP("orvane::KeyTable", "Undo"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Projects, Settings"), KeyTable::Anywhere, "Ctrl+Z"},
    {Command::Redo, "redo", QT_TRANSLATE_NOOP("orvane::KeyTable", "Redo"), "", KeyTable::Anywhere,
     "Ctrl+Shift+Z"},
    {Command::ShowTimer, "showTimer", QT_TRANSLATE_NOOP("orvane::KeyTable", "Go to Timer"), "",
     KeyTable::Anywhere, "Ctrl+1"},
    {Command::ShowReview, "showReview", QT_TRANSLATE_NOOP("orvane::KeyTable", "Go to Review"), "",
     KeyTable::Anywhere, "Ctrl+4"},
    {Command::ShowProjects, "showProjects", QT_TRANSLATE_NOOP("orvane::KeyTable", "Go to Projects"), "",
     KeyTable::Anywhere, "Ctrl+6"},
    {Command::ShowSettings, "showSettings", QT_TRANSLATE_NOOP("orvane::KeyTable", "Go to Settings"), "",
     KeyTable::Anywhere, "Ctrl+7"},
    {Command::EditEntry, "editEntry", QT_TRANSLATE_NOOP("orvane::KeyTable", "Edit"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Entries, "Return"},
    {Command::ContinueEntry, "continueEntry", QT_TRANSLATE_NOOP("orvane::KeyTable", "Continue"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Entries, "C"},
    {Command::SplitEntry, "splitEntry", QT_TRANSLATE_NOOP("orvane::KeyTable", "Split…"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Entries, "S"},
    {Command::TrimEntry, "trimEntry", QT_TRANSLATE_NOOP("orvane::KeyTable", "Trim an Overlap"), "",
     KeyTable::Entries, "T"},
    {Command::DuplicateEntry, "duplicateEntry", QT_TRANSLATE_NOOP("orvane::KeyTable", "Duplicate"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Entries, "Ctrl+D"},
    {Command::DeleteEntry, "deleteEntry", QT_TRANSLATE_NOOP("orvane::KeyTable", "Delete"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Timer"), KeyTable::Entries, "Del Backspace"},
    {Command::TakeOffer, "takeOffer", QT_TRANSLATE_NOOP("orvane::KeyTable", "Take, Add or Accept"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Review"), KeyTable::Offers, "Return"},
    {Command::EditOffer, "editOffer", QT_TRANSLATE_NOOP("orvane::KeyTable", "Edit…"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Review"), KeyTable::Offers, "E"},
    {Command::DismissOffer, "dismissOffer", QT_TRANSLATE_NOOP("orvane::KeyTable", "Dismiss"),
     QT_TRANSLATE_NOOP("orvane::KeyTable", "Review"), KeyTable::Offers, "X"},
}};

const KeyTable::Entry &entryOf(Command command)
{
    return table[static_cast<std::size_t>(command)];
}

bool has(const QString &chords, const QString &chord)
{
    return chords.split(QLatin1Char(' '), Qt::SkipEmptyParts).contains(chord);
}

bool canBothBeMeant(Command one, Command other)
{
    return entryOf(one).context == entryOf(other).context || entryOf(one).context == KeyTable::Anywhere ||
           entryOf(other).context == KeyTable::Anywhere;
}

bool isFunctionKey(const QString &chord)
{
    const QString key = chord.section(QLatin1Char('+'), -1);
    bool isNumber = false;
    key.mid(1).toInt(&isNumber);
    return key.startsWith(QLatin1Char('F')) && isNumber;
}

} // namespace

KeyTable::KeyTable(WindowChoices &choices) : m_choices(&choices)
{
    connect(m_choices, &WindowChoices::changed, this, &KeyTable::update);
    update();
}

std::span<const KeyTable::Entry> KeyTable::entries()
{
    return table;
}

QString KeyTable::title(Command command)
{
    return tr(entryOf(command).title);
}

QString KeyTable::keyBar(Command command)
{
    const char *text = entryOf(command).keyBar;
    return *text == '\0' ? QString() : tr(text);
}

QString KeyTable::ownKeys(Command command)
{
    return QString::fromLatin1(entryOf(command).keys);
}

void KeyTable::update()
{
    QStringList chords;
    for (const Entry &entry : table) {
        const auto &chosen = m_choices->values().keys;
        const auto found = chosen.find(entry.id);
        chords << (found == chosen.end() ? QString::fromLatin1(entry.keys)
                                         : QString::fromStdString(found->second));
    }
    if (chords == m_chords)
        return;
    m_chords = chords;
    Q_EMIT changed();
}

QStringList KeyTable::caps() const
{
    QStringList caps;
    for (const QString &chords : m_chords)
        caps << chords.section(QLatin1Char(' '), 0, 0);
    return caps;
}

bool KeyTable::isChanged(Command command) const
{
    return m_choices->values().keys.contains(entryOf(command).id);
}

int KeyTable::commandIn(Context context, const QString &chord) const
{
    for (const Entry &entry : table) {
        if (entry.context == context && has(m_chords[entry.command], chord))
            return entry.command;
    }
    return -1;
}

int KeyTable::takenBy(Command command, const QString &chord) const
{
    for (const Entry &entry : table) {
        if (entry.command != command && canBothBeMeant(entry.command, command) &&
            has(m_chords[entry.command], chord))
            return entry.command;
    }
    return -1;
}

QString KeyTable::refusal(Command command, const QString &chord)
{
    static const QStringList editing{
        QStringLiteral("Ctrl+A"),        QStringLiteral("Ctrl+C"), QStringLiteral("Ctrl+V"),
        QStringLiteral("Ctrl+X"),        QStringLiteral("Tab"),    QStringLiteral("Shift+Tab"),
        QStringLiteral("Shift+Backtab"), QStringLiteral("Esc"),    QStringLiteral("Up"),
        QStringLiteral("Down"),          QStringLiteral("Left"),   QStringLiteral("Right"),
    };
    if (editing.contains(chord))
        return tr("These keys move about and edit text");
    const bool hasModifier = chord.startsWith(QLatin1String("Ctrl+")) ||
                             chord.startsWith(QLatin1String("Alt+")) ||
                             chord.startsWith(QLatin1String("Meta+"));
    if (entryOf(command).context == Anywhere && !hasModifier && !isFunctionKey(chord))
        return tr("Needs Ctrl or Alt, so that it can be typed in fields");
    return {};
}

void KeyTable::setKeys(Command command, const QString &chord)
{
    WindowChoices::Values values = m_choices->values();
    const int before = chord.isEmpty() ? -1 : takenBy(command, chord);
    if (before >= 0)
        values.keys[entryOf(static_cast<Command>(before)).id] = "";
    if (chord == ownKeys(command))
        values.keys.erase(entryOf(command).id);
    else
        values.keys[entryOf(command).id] = chord.toStdString();
    m_choices->set(std::move(values), "Changed the keys of “" + title(command).toStdString() + "”");
}

void KeyTable::restore(Command command)
{
    WindowChoices::Values values = m_choices->values();
    values.keys.erase(entryOf(command).id);
    m_choices->set(std::move(values), "Restored the keys of “" + title(command).toStdString() + "”");
}

void KeyTable::restoreAll()
{
    WindowChoices::Values values = m_choices->values();
    values.keys.clear();
    m_choices->set(std::move(values), "Restored all keys");
}

} // namespace orvane
