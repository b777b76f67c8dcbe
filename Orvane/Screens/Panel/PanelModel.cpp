// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Panel/PanelModel.h"

#include "AppModel/AppModel.h"
#include "AppModel/PickNotes.h"
#include "Catalog/ProjectColor.h"
#include "EntryInput/EntryDraft.h"
#include "QuickEntry/MentionSpelling.h"
#include "Time/AppClock.h"
#include "Tracker/ActionMoment.h"
#include "Tracker/CatalogEditor.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

using RowKind = PanelRow::Kind;

bool wentWell(SaveOutcome outcome)
{
    return outcome == SaveOutcome::saved || outcome == SaveOutcome::waiting ||
           outcome == SaveOutcome::stopped;
}

PaletteItem madeItem(PaletteItem::Kind kind, const auto &made)
{
    return {kind, made.id, made.name, {}, PaletteItem::keyOf(kind, made.id)};
}

ProjectFields fieldsOf(const std::string &name, const Catalog &catalog)
{
    ProjectFields fields;
    fields.name = name;
    fields.color = newProjectColor(catalog.projects().size());
    return fields;
}

} // namespace

PanelModel::PanelModel(AppModel &app) : m_app(&app), m_field(app, "panel")
{
    connect(m_app, &AppModel::trackerChanged, this, &PanelModel::follow);
    connect(&m_field, &EntryField::readingChanged, this, &PanelModel::search);
    connect(&m_field, &EntryField::textChanged, this, [this] {
        // Who types on has read why it was not done.
        if (m_isOpen && m_app->notices()->isFailure())
            m_app->notices()->dismiss();
        setActsOnceReady(false);
    });
    connect(m_app, &AppModel::phaseChanged, this, [this] {
        if (isReady() && std::exchange(m_actsOnceReady, false))
            act();
    });
    connect(&m_field, &EntryField::recorded, this, [this](bool isDone) {
        if (!isDone && !m_isOpen)
            Q_EMIT wanted();
        setUnderWay(-1);
    });
    follow();
}

void PanelModel::follow()
{
    m_tracker = m_app->tracker();
    if (m_tracker) {
        connect(&m_tracker->catalog(), &Catalog::changed, this, &PanelModel::forgetNames);
        connect(m_tracker, &Tracker::entriesChanged, this, &PanelModel::forgetEntries);
        connect(m_tracker, &Tracker::timeChanged, this, &PanelModel::search);
        connect(m_tracker, &Tracker::settingsChanged, this, &PanelModel::search);
    }
    forgetNames();
}

void PanelModel::forgetNames()
{
    m_areNamesStale = true;
    forgetEntries();
}

void PanelModel::forgetEntries()
{
    m_areEntriesStale = true;
    search();
}

/// Before the account is open, names would not be understood.
bool PanelModel::isReady() const
{
    return m_tracker && m_app->phase() == AppModel::Phase::Open;
}

void PanelModel::setActsOnceReady(bool acts)
{
    if (std::exchange(m_actsOnceReady, acts) != acts)
        Q_EMIT busyChanged();
}

void PanelModel::setUnderWay(int change)
{
    m_underWay += change;
    Q_EMIT busyChanged();
}

// Its time in view

void PanelModel::open()
{
    if (m_isOpen)
        return;
    m_isOpen = true;
    // The command may have picked, too.
    if (m_tracker)
        m_usage = m_app->installation().paletteUsage(m_tracker->workspace().id);
    m_cursor = static_cast<int>(m_field.text().size());
    Q_EMIT cursorChanged();
    search();
    setCurrent(-1, false);
}

void PanelModel::leave()
{
    if (!m_isOpen)
        return;
    m_isOpen = false;
    setActsOnceReady(false);
    Q_EMIT left();
}

// Rows

void PanelModel::setCursor(int cursor)
{
    if (m_cursor == cursor)
        return;
    m_cursor = cursor;
    Q_EMIT cursorChanged();
    if (asked() != m_asked)
        search();
}

PanelSearch::Asked PanelModel::asked() const
{
    const QString text = m_field.text();
    const EntrySentence::Reading &reading = m_field.reading();
    PanelSearch::Asked asked;
    asked.isEmpty = text.trimmed().isEmpty();
    asked.place = PanelPlace::at(text, m_cursor);
    if (asked.place.isMention())
        return asked;
    asked.description = QString::fromStdString(reading.description);
    asked.isTime = std::ranges::any_of(reading.timeRanges, [&](const TextRange &range) {
        return static_cast<qsizetype>(range.start) < asked.place.end &&
               asked.place.start < static_cast<qsizetype>(range.end);
    });
    return asked;
}

void PanelModel::prepare()
{
    if (!m_tracker)
        return;
    if (m_areNamesStale) {
        m_search.prepareNames(*m_tracker);
        m_usage = m_app->installation().paletteUsage(m_tracker->workspace().id);
    }
    if (m_areEntriesStale)
        m_search.prepareEntries(*m_tracker);
    m_areNamesStale = m_areEntriesStale = false;
}

void PanelModel::search()
{
    if (!m_isOpen)
        return;
    prepare();
    PanelSearch::Asked asked = this->asked();
    // Should the rows move under a chosen one, it stays the chosen one.
    std::optional<PanelRow> chosen;
    if (m_isRowChosen && asked == m_asked)
        chosen = m_rows.at(m_current);
    m_asked = std::move(asked);
    m_rows.set(m_tracker ? m_search.find(m_asked, *m_tracker, m_field.names(), m_usage, AppClock::now())
                         : std::vector<PanelRow>());
    Q_EMIT searched();
    const int place = chosen ? m_rows.placeOf(*chosen) : -1;
    setCurrent(place, place >= 0);
}

/// Of a mention the first name is current by itself, since Tab is then what completes it; -1 stands for that.
void PanelModel::setCurrent(int row, bool isChosen)
{
    if (row < 0)
        row = m_asked.place.isMention() && m_rows.count() > 0 && m_rows.at(0).completes() ? 0 : -1;
    m_current = row;
    m_isRowChosen = isChosen;
    Q_EMIT currentChanged();
}

void PanelModel::moveDown()
{
    if (m_rows.count() > 0)
        setCurrent(std::min(m_current + 1, m_rows.count() - 1), true);
}

void PanelModel::moveUp()
{
    const bool isAtTop = !m_isRowChosen || m_current <= 0;
    setCurrent(isAtTop ? -1 : m_current - 1, !isAtTop);
}

bool PanelModel::canComplete() const
{
    const int row = std::max(m_current, 0);
    return row < m_rows.count() && m_rows.at(row).completes();
}

bool PanelModel::continuesNow(const PanelRow &row) const
{
    // A time that was typed is meant for what is put into the sentence.
    return row.kind == RowKind::entry && m_field.span().isEmpty();
}

QString PanelModel::action() const
{
    if (!m_isRowChosen || m_current >= m_rows.count())
        return m_field.action();
    const PanelRow &row = m_rows.at(m_current);
    return PanelRows::actionOf(row.kind == RowKind::entry && !continuesNow(row) ? RowKind::name : row.kind);
}

QString PanelModel::plan() const
{
    if (!m_isRowChosen || m_current >= m_rows.count() || !m_tracker)
        return m_field.plan();
    const PanelRow &row = m_rows.at(m_current);
    const auto &running = m_tracker->running();
    const QString ended = running && !running->description.empty()
                              ? tr("“%1”").arg(QString::fromStdString(running->description))
                              : tr("the running timer");
    switch (row.kind) {
    case RowKind::entry:
        if (!continuesNow(row))
            break;
        return running ? tr("Ends %1, continues “%2”").arg(ended, row.title)
                       : tr("Continues “%1”").arg(row.title);
    case RowKind::stop:
        return tr("Ends %1 at %2")
            .arg(ended, QString::fromStdString(m_tracker->time().clockLabel(AppClock::now())));
    case RowKind::continueLast:
        return row.detail.isEmpty() ? tr("Continues the last entry") : tr("Continues “%1”").arg(row.detail);
    case RowKind::openWindow:
        return {};
    default:
        break;
    }
    return row.creates() ? tr("Creates “%1” and names it here").arg(QString::fromStdString(row.toMake))
                         : tr("Completes the sentence");
}

// What is done

void PanelModel::complete()
{
    if (!canComplete() || !m_tracker)
        return;
    const PanelRow row = m_rows.at(std::max(m_current, 0));
    if (row.kind == RowKind::name)
        put(row.item);
    else if (const auto entry = m_tracker->entry(row.item.id))
        putEntry(*entry);
}

void PanelModel::act()
{
    if (m_isRowChosen) {
        take(m_current);
        return;
    }
    if (m_field.text().trimmed().isEmpty())
        return;
    if (!isReady()) {
        setActsOnceReady(true);
        // Should it have failed.
        m_app->openAgain();
        return;
    }
    setUnderWay(1);
    m_field.submit();
    // What cannot be recorded stands there still.
    if (m_field.text().isEmpty())
        leave();
}

void PanelModel::take(int index)
{
    if (index < 0 || index >= m_rows.count() || !m_tracker || m_isCreating)
        return;
    const PanelRow row = m_rows.at(index);
    const Instant at = ActionMoment::of(m_tracker->running(), AppClock::now(), {}).at;
    switch (row.kind) {
    case RowKind::name:
        put(row.item);
        break;
    case RowKind::entry:
        if (const auto entry = m_tracker->entry(row.item.id); entry && continuesNow(row))
            run(m_tracker->create(EntryDraft::continuing(*entry).at({millisecondsFloor(at), {}})),
                PalettePicks::of(row.item));
        else if (entry)
            putEntry(*entry);
        break;
    case RowKind::stop:
        run(m_tracker->stop(at), {});
        break;
    case RowKind::continueLast:
        run(m_tracker->continueLast(at), {});
        break;
    case RowKind::openWindow:
        Q_EMIT windowWanted();
        leave();
        break;
    default:
        create(row.kind, row.toMake);
    }
}

/// In place of what stands at the cursor.
bool PanelModel::put(const PaletteItem &item)
{
    const QString text = m_field.text();
    const PanelPlace place = PanelPlace::at(text, m_cursor);
    const QString before = text.left(place.start);
    QString after = text.mid(place.end);
    const MentionSpelling spelling(m_tracker->catalog(), m_field.names());
    const auto mention = spelling.of(
        item,
        {.before = before.toStdString(), .after = after.toStdString(), .isQuoted = place.isQuotedIn(text)});
    if (!mention) {
        m_app->notices()->tellFailure(
            tr("“%1” cannot be named here: the sentence names another already, or several are called so.")
                .arg(QString::fromStdString(item.name)));
        return false;
    }
    if (!after.startsWith(u' '))
        after.prepend(u' ');
    const QString named = before + QString::fromStdString(*mention);
    replaceText(named + after, named.size() + 1);
    return true;
}

/// What an entry says, as a sentence; a time that was typed stays.
void PanelModel::putEntry(const TimeEntryResponse &entry)
{
    const Catalog &catalog = m_tracker->catalog();
    const MentionSpelling spelling(catalog, m_field.names());
    std::string sentence = entry.description;
    const auto add = [&](PaletteItem::Kind kind, const auto *thing) {
        if (thing == nullptr)
            return;
        if (const auto mention = spelling.of(madeItem(kind, *thing), {.before = sentence + " "}))
            sentence += " " + *mention;
    };
    if (entry.taskId)
        add(PaletteItem::Kind::task, catalog.task(*entry.taskId));
    else if (entry.projectId)
        add(PaletteItem::Kind::project, catalog.project(*entry.projectId));
    for (const std::string &tag : entry.tagIds)
        add(PaletteItem::Kind::tag, catalog.tag(tag));
    if (entry.isBillable)
        sentence += " $";
    if (!m_field.reading().timeText.empty())
        sentence += " " + m_field.reading().timeText;
    const QString text = QString::fromStdString(sentence) + u' ';
    replaceText(text, text.size());
}

void PanelModel::replaceText(const QString &text, qsizetype cursor)
{
    m_field.setText(text);
    // Who shows it has moved to its end.
    setCursor(static_cast<int>(cursor));
}

/// The panel goes at once, and comes back with what was typed should it fail.
Task<> PanelModel::run(Task<SaveResult> action, PalettePicks picks)
{
    const QPointer<PanelModel> self(this);
    const QPointer<Tracker> tracker = m_tracker;
    const QString typed = m_field.text();
    setUnderWay(1);
    m_field.setText({});
    leave();
    const SaveResult result = co_await action;
    if (!self)
        co_return;
    const bool isDone = wentWell(result.outcome);
    if (isDone && tracker)
        notePicks(m_app->installation(), *tracker, picks);
    if (!isDone) {
        if (m_field.text().isEmpty())
            m_field.setText(typed);
        m_app->notices()->tellFailure(QString::fromStdString(result.message));
        if (!m_isOpen)
            Q_EMIT wanted();
    }
    setUnderWay(-1);
}

Task<> PanelModel::create(RowKind kind, std::string name)
{
    const QPointer<PanelModel> self(this);
    m_isCreating = true;
    Q_EMIT busyChanged();
    CatalogEditor editor(m_app->account()->client(), *m_tracker);
    std::optional<PaletteItem> item;
    std::string problem;
    const auto take = [&](PaletteItem::Kind itemKind, const auto &made) {
        if (made)
            item = madeItem(itemKind, *made);
        else
            problem = describe(made.error());
    };
    if (kind == RowKind::createProject)
        take(PaletteItem::Kind::project, co_await editor.createProject(fieldsOf(name, m_tracker->catalog())));
    else if (kind == RowKind::createClient)
        take(PaletteItem::Kind::client, co_await editor.createClient(name));
    else
        take(PaletteItem::Kind::tag, co_await editor.createTag(name));
    if (!self)
        co_return;
    m_isCreating = false;
    if (item && m_tracker && m_asked.place.name.trimmed().toStdString() == name)
        put(*item);
    else if (!problem.empty())
        m_app->notices()->tellFailure(QString::fromStdString(problem));
    Q_EMIT busyChanged();
}

} // namespace orvane
