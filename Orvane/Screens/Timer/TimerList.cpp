// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/TimerList.h"

#include "Catalog/EntryParts.h"
#include "Catalog/EntrySeconds.h"
#include "Screens/Timer/PartMinutes.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <map>
#include <span>

namespace orvane {

namespace {

/// How much of an entry's name has room on a button.
constexpr qsizetype longestNamed = 24;

QString qtext(const std::string &text)
{
    return QString::fromStdString(text);
}

/// As QML's enumerations want it.
template <class Enum>
QVariant number(Enum value)
{
    return QVariant::fromValue(static_cast<int>(value));
}

/// What a line has that does not have the role: QML wants a value of its type.
QVariant nothing(int role)
{
    switch (role) {
    case TimerList::partsRole:
        return QVariantList();
    case TimerList::partCountRole:
    case TimerList::markRole:
        return 0;
    case TimerList::isBillableRole:
    case TimerList::isLockedRole:
    case TimerList::isSelectedRole:
        return false;
    default:
        return QString();
    }
}

} // namespace

TimerList::TimerList(QObject *parent) : QAbstractListModel(parent) {}

void TimerList::setTracker(Tracker *tracker)
{
    if (m_tracker) {
        m_tracker->disconnect(this);
        m_tracker->outbox().disconnect(this);
        m_tracker->catalog().disconnect(this);
    }
    m_tracker = tracker;
    m_turned.clear();
    m_leftBoth.clear();
    if (tracker != nullptr) {
        connect(tracker, &Tracker::entriesChanged, this, &TimerList::rebuild);
        connect(tracker, &Tracker::settingsChanged, this, &TimerList::followSettings);
        connect(tracker, &Tracker::timeChanged, this, &TimerList::rebuild);
        connect(tracker, &Tracker::dayTurned, this, &TimerList::rebuild);
        connect(&tracker->catalog(), &Catalog::changed, this, &TimerList::tellAllChanged);
        connect(&tracker->outbox(), &Outbox::pendingChanged, this, &TimerList::rebuild);
        connect(&tracker->outbox(), &Outbox::isOfflineChanged, this, &TimerList::tellAllChanged);
        connect(&tracker->outbox(), &Outbox::passEnded, this, &TimerList::tellAllChanged);
    }
    rebuild();
}

/// Of the settings the list shows what is locked.
void TimerList::followSettings()
{
    if (m_tracker->settings() && m_tracker->settings()->lockedBefore != m_lockedBefore)
        rebuild();
}

void TimerList::rebuild()
{
    m_waiting.clear();
    m_inConflict.clear();
    if (!m_tracker) {
        replaceRows({});
        return;
    }
    for (const Outbox::Pending &row : m_tracker->outbox().pending())
        (row.conflict ? m_inConflict : m_waiting).insert(row.change.entryId());
    m_lockedBefore = m_tracker->settings() ? m_tracker->settings()->lockedBefore : std::nullopt;
    const UserTime &time = m_tracker->time();
    TimerRows next = TimerRows::of(m_tracker->entries(), m_turned, time, time.today());
    next.addOffers(trimOffers(next.entries, AppClock::now(),
                              [this](const auto &one, const auto &other) { return mayTrim(one, other); }));
    replaceRows(std::move(next));
}

/// What is the same at both ends of the list stays, so that what is on screen does not jump.
void TimerList::replaceRows(TimerRows next)
{
    const auto isSame = [&](const TimerRow &before, const TimerRow &after) {
        return before.kind == after.kind && before.day == after.day && before.share == after.share &&
               (before.kind == TimerRow::Kind::day || before.kind == TimerRow::Kind::folded ||
                m_list.entries[before.entry].id == next.entries[after.entry].id);
    };
    const auto &before = m_list.rows;
    const auto &after = next.rows;
    const auto head =
        static_cast<std::size_t>(std::ranges::mismatch(before, after, isSame).in1 - before.begin());
    const std::size_t most = std::min(before.size(), after.size()) - head;
    std::size_t tail = 0;
    while (tail < most && isSame(before[before.size() - 1 - tail], after[after.size() - 1 - tail]))
        ++tail;
    const auto first = static_cast<int>(head);
    const auto removedEnd = static_cast<int>(before.size() - tail);
    const auto insertedEnd = static_cast<int>(after.size() - tail);
    const bool isOtherCount = before.size() != after.size();
    if (removedEnd > first) {
        beginRemoveRows({}, first, removedEnd - 1);
        m_list.rows.erase(m_list.rows.begin() + first, m_list.rows.begin() + removedEnd);
        endRemoveRows();
    }
    // From here on every row reads the entries of the new list.
    if (insertedEnd > first)
        beginInsertRows({}, first, insertedEnd - 1);
    m_list = std::move(next);
    m_overlapping = overlapping(m_list.entries, AppClock::now());
    if (insertedEnd > first)
        endInsertRows();
    tellAllChanged();
    if (isOtherCount)
        Q_EMIT countChanged();
}

void TimerList::tellAllChanged()
{
    if (count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1));
}

void TimerList::tick()
{
    if (!m_tracker || !m_tracker->running())
        return;
    const DayKey day = m_tracker->time().dayKey(m_tracker->running()->start);
    const auto row = std::ranges::find(m_list.rows, day, &TimerRow::day);
    if (row == m_list.rows.end())
        return;
    const QModelIndex at = index(static_cast<int>(row - m_list.rows.begin()));
    Q_EMIT dataChanged(at, at, {totalRole});
}

void TimerList::turn(int row)
{
    if (row < 0 || row >= count())
        return;
    const DayKey day = m_list.rows[static_cast<std::size_t>(row)].day;
    if (!m_turned.erase(day))
        m_turned.insert(day);
    rebuild();
}

// Rows and entries

int TimerList::rowOf(const QString &id) const
{
    const std::string wanted = id.toStdString();
    const auto found = std::ranges::find_if(m_list.rows, [&](const TimerRow &row) {
        return row.kind == TimerRow::Kind::entry && m_list.entries[row.entry].id == wanted;
    });
    return found == m_list.rows.end() ? -1 : static_cast<int>(found - m_list.rows.begin());
}

const TimeEntryResponse *TimerList::entryAt(int row) const
{
    if (row < 0 || row >= count())
        return nullptr;
    const TimerRow &line = m_list.rows[static_cast<std::size_t>(row)];
    const bool isEntry = line.kind == TimerRow::Kind::entry || line.kind == TimerRow::Kind::share ||
                         line.kind == TimerRow::Kind::offer;
    return isEntry ? &m_list.entries[line.entry] : nullptr;
}

QString TimerList::idAt(int row) const
{
    const TimeEntryResponse *entry = entryAt(row);
    return entry != nullptr ? qtext(entry->id) : QString();
}

TimerList::Kind TimerList::kindAt(int row) const
{
    return row < 0 || row >= count() ? Kind::Day
                                     : static_cast<Kind>(m_list.rows[static_cast<std::size_t>(row)].kind);
}

int TimerList::choosable(int row, int step) const
{
    for (int at = row + step; at >= 0 && at < count(); at += step) {
        const Kind kind = kindAt(at);
        if (kind == Kind::Entry || kind == Kind::Folded)
            return at;
    }
    return row;
}

int TimerList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QHash<int, QByteArray> TimerList::roleNames() const
{
    return {{kindRole, "kind"},           {entryIdRole, "entryId"},    {titleRole, "title"},
            {subtitleRole, "subtitle"},   {totalRole, "total"},        {projectRole, "project"},
            {taskRole, "task"},           {colorRole, "projectColor"}, {partsRole, "parts"},
            {partCountRole, "partCount"}, {tagsRole, "tags"},          {isBillableRole, "isBillable"},
            {timesRole, "times"},         {durationRole, "duration"},  {markRole, "mark"},
            {isLockedRole, "isLocked"},   {spokenRole, "spoken"},      {isSelectedRole, "isSelected"}};
}

QVariant TimerList::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= count() || !m_tracker)
        return {};
    const TimerRow &row = m_list.rows[static_cast<std::size_t>(index.row())];
    if (role == kindRole)
        return number(static_cast<Kind>(row.kind));
    const QVariant said = saidBy(row, role);
    return said.isValid() ? said : nothing(role);
}

QVariant TimerList::saidBy(const TimerRow &row, int role) const
{
    switch (row.kind) {
    case TimerRow::Kind::day:
    case TimerRow::Kind::folded:
        return dayData(row, role);
    case TimerRow::Kind::entry:
        return entryData(row, role);
    case TimerRow::Kind::share:
        return shareData(row, role);
    case TimerRow::Kind::offer:
        break;
    }
    return offerData(row, role);
}

// What is shown

QVariant TimerList::dayData(const TimerRow &row, int role) const
{
    const std::span<const TimeEntryResponse> entries(&m_list.entries[row.entry], row.count);
    switch (role) {
    case titleRole:
        return dayTitle(row.day);
    case subtitleRole:
        return daySubtitle(row);
    case totalRole:
        return qtext(Durations::shortLabel(static_cast<double>(entrySeconds(entries, AppClock::now()))));
    case partsRole:
        return dayParts(row);
    case isLockedRole:
        return holdsLocked(row);
    case spokenRole:
        return spoken(row);
    default:
        return {};
    }
}

/// The lock may end in the middle of the day, whose earliest entry is the last.
bool TimerList::holdsLocked(const TimerRow &row) const
{
    return isLocked(m_list.entries[row.entry + row.count - 1]);
}

QString TimerList::dayTitle(DayKey day) const
{
    return qtext(m_tracker->time().dayLabel(day));
}

/// Until when it is; empty for a day that is not.
QString TimerList::lockText(const TimerRow &row) const
{
    if (!holdsLocked(row))
        return {};
    const UserTime &time = m_tracker->time();
    return tr("Time before %1 is locked.")
        .arg(qtext(time.dayTitle(time.dayKey(*m_tracker->settings()->lockedBefore))));
}

QString TimerList::daySubtitle(const TimerRow &row) const
{
    const UserTime &time = m_tracker->time();
    // Where the day is one line, only its padlock has room.
    if (const QString lock = lockText(row); !lock.isEmpty() && row.kind == TimerRow::Kind::day)
        return lock;
    if (row.day >= time.today().adding(-1) && row.day <= time.today())
        return qtext(time.dayTitle(row.day));
    return row.count == 1 ? tr("1 entry") : tr("%1 entries").arg(row.count);
}

/// The day's time by project, in the order in which the projects come.
QVariantList TimerList::dayParts(const TimerRow &row) const
{
    std::vector<std::pair<QString, double>> parts;
    const Instant now = AppClock::now();
    for (std::size_t at = row.entry + row.count; at-- > row.entry;) {
        for (const EntryPart &part : partsOf(m_list.entries[at], now)) {
            const QString color = colorOf(part.projectId);
            auto found = std::ranges::find(parts, color, &std::pair<QString, double>::first);
            if (found == parts.end())
                found = parts.insert(parts.end(), {color, 0});
            found->second += std::chrono::duration<double>(part.length).count();
        }
    }
    QVariantList list;
    for (const auto &[color, weight] : parts)
        list.append(QVariantMap{{QStringLiteral("color"), color}, {QStringLiteral("share"), weight}});
    return list;
}

QVariantList TimerList::entryParts(const TimeEntryResponse &entry) const
{
    QVariantList list;
    for (const TimeShareResponse &share : entry.shares)
        list.append(QVariantMap{{QStringLiteral("color"), colorOf(share.projectId)},
                                {QStringLiteral("share"), static_cast<double>(share.percent)}});
    return list;
}

QVariant TimerList::entryData(const TimerRow &row, int role) const
{
    const TimeEntryResponse &entry = m_list.entries[row.entry];
    const UserTime &time = m_tracker->time();
    switch (role) {
    case entryIdRole:
        return qtext(entry.id);
    case titleRole:
        return entry.description.empty() ? tr("No description") : qtext(entry.description);
    case projectRole:
        return projectName(entry.projectId);
    case taskRole:
        return taskName(entry.taskId);
    case colorRole:
        return colorOf(entry.projectId);
    case partsRole:
        return entryParts(entry);
    case partCountRole:
        return static_cast<int>(entry.shares.size());
    case tagsRole: {
        QStringList tags;
        for (const std::string &id : entry.tagIds) {
            if (const TagResponse *tag = m_tracker->catalog().tag(id))
                tags.append(QLatin1Char('#') + qtext(tag->name));
        }
        return tags.join(QLatin1Char(' '));
    }
    case isBillableRole:
        return entry.isBillable;
    case timesRole:
        return tr("%1 – %2").arg(qtext(time.clockLabel(entry.start)),
                                 entry.stop ? qtext(time.clockLabel(*entry.stop)) : tr("now"));
    case durationRole:
        return qtext(Durations::shortLabel(static_cast<double>(entrySeconds(entry, AppClock::now()))));
    case markRole:
        return number(markOf(row));
    case isLockedRole:
        return isLocked(entry);
    case isSelectedRole:
        return m_chosen.contains(entry.id);
    case spokenRole:
        return spoken(row);
    default:
        return {};
    }
}

QVariant TimerList::shareData(const TimerRow &row, int role) const
{
    const TimeEntryResponse &entry = m_list.entries[row.entry];
    const TimeShareResponse &share = entry.shares[row.share];
    switch (role) {
    case entryIdRole:
        return qtext(entry.id);
    case titleRole:
        return qtext(share.description.empty() ? entry.description : share.description);
    case projectRole:
        return projectName(share.projectId);
    case taskRole:
        return taskName(share.taskId);
    case colorRole:
        return colorOf(share.projectId);
    case timesRole:
        return tr("%1%").arg(share.percent);
    case durationRole: {
        const auto minutes = partMinutes(shareSeconds(entry, AppClock::now()));
        return qtext(Durations::shortLabel(static_cast<double>(minutes[row.share] * 60)));
    }
    case spokenRole:
        return spoken(row);
    default:
        return {};
    }
}

QVariant TimerList::offerData(const TimerRow &row, int role) const
{
    const auto found = m_list.offers.find(row.entry);
    if (found == m_list.offers.end())
        return {};
    const TrimOffer &offer = found->second;
    const auto clock = [this](Instant at) { return qtext(m_tracker->time().clockLabel(at)); };
    switch (role) {
    case entryIdRole:
        return qtext(m_list.entries[row.entry].id);
    case titleRole:
    case spokenRole:
        return tr("%1 – %2 is counted twice.").arg(clock(offer.from), clock(offer.to));
    case subtitleRole: {
        const QString name = qtext(m_list.entries[offer.entry].description);
        const QString cut = name.size() > longestNamed ? name.left(longestNamed - 1) + QChar(0x2026) : name;
        return name.isEmpty() ? tr("Trim to %1").arg(clock(offer.at()))
                              : tr("Trim “%1” to %2").arg(cut, clock(offer.at()));
    }
    default:
        return {};
    }
}

/// Both can be changed now, and their user did not leave them as they are.
bool TimerList::mayTrim(const TimeEntryResponse &one, const TimeEntryResponse &other) const
{
    const auto isFree = [this](const TimeEntryResponse &entry) {
        return !isLocked(entry) && !m_inConflict.contains(entry.id);
    };
    return isFree(one) && isFree(other) && !m_leftBoth.contains({one.id, other.id});
}

std::optional<TrimOffer> TimerList::offerFor(const QString &id) const
{
    const std::string wanted = id.toStdString();
    const auto isNamed = [&](std::size_t place) { return m_list.entries[place].id == wanted; };
    std::optional<TrimOffer> concerned;
    for (const auto &[below, offer] : m_list.offers) {
        if (isNamed(below))
            return offer;
        if (isNamed(offer.entry) || isNamed(offer.other))
            concerned = offer;
    }
    return concerned;
}

void TimerList::setChosen(std::set<std::string> ids)
{
    if (std::exchange(m_chosen, ids) != ids && count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1), {isSelectedRole, spokenRole});
}

void TimerList::leaveBoth(const QString &id)
{
    const std::string wanted = id.toStdString();
    for (const auto &[below, offer] : m_list.offers) {
        if (m_list.entries[below].id != wanted)
            continue;
        const std::size_t above = offer.entry == below ? offer.other : offer.entry;
        m_leftBoth.insert({wanted, m_list.entries[above].id});
        rebuild();
        return;
    }
}

TimerList::Mark TimerList::markOf(const TimerRow &row) const
{
    const TimeEntryResponse &entry = m_list.entries[row.entry];
    if (m_inConflict.contains(entry.id))
        return Mark::Conflict;
    // What is just on its way is not worth a word.
    const Outbox &outbox = m_tracker->outbox();
    if (m_waiting.contains(entry.id) && (outbox.isOffline() || !outbox.isFlushing()))
        return Mark::Waiting;
    // Nothing can be done about an overlap there.
    if (isLocked(entry))
        return Mark::Locked;
    return m_overlapping.contains(row.entry) ? Mark::Overlap : Mark::None;
}

bool TimerList::isLocked(const TimeEntryResponse &entry) const
{
    return m_tracker->settings() && m_tracker->rules().isLocked(entry.start);
}

QString TimerList::projectName(const std::optional<std::string> &projectId) const
{
    const ProjectResponse *project = projectId ? m_tracker->catalog().project(*projectId) : nullptr;
    return project != nullptr ? qtext(project->name) : QString();
}

QString TimerList::taskName(const std::optional<std::string> &taskId) const
{
    const TaskResponse *task = taskId ? m_tracker->catalog().task(*taskId) : nullptr;
    return task != nullptr ? qtext(task->name) : QString();
}

QString TimerList::colorOf(const std::optional<std::string> &projectId) const
{
    const ProjectResponse *project = projectId ? m_tracker->catalog().project(*projectId) : nullptr;
    return project != nullptr ? qtext(project->color) : QString();
}

/// What the line says as a whole, and what its shape says, for who does not see it.
QString TimerList::spoken(const TimerRow &row) const
{
    const auto shown = [&](int role) { return saidBy(row, role).toString(); };
    QStringList said{shown(titleRole)};
    if (row.kind == TimerRow::Kind::day || row.kind == TimerRow::Kind::folded) {
        said << shown(subtitleRole) << shown(totalRole);
        if (row.kind == TimerRow::Kind::folded)
            said << lockText(row);
        said.removeAll(QString());
        return said.join(QStringLiteral(", "));
    }
    const QString project = shown(projectRole);
    said << (project.isEmpty() ? tr("no project") : project) << shown(taskRole) << shown(tagsRole);
    const TimeEntryResponse &entry = m_list.entries[row.entry];
    const UserTime &time = m_tracker->time();
    if (row.kind == TimerRow::Kind::entry)
        said << tr("%1 to %2")
                    .arg(qtext(time.clockLabel(entry.start)),
                         entry.stop ? qtext(time.clockLabel(*entry.stop)) : tr("now"));
    else
        said << shown(timesRole);
    said << shown(durationRole);
    if (row.kind == TimerRow::Kind::entry) {
        static const std::map<Mark, QString> words{{Mark::Waiting, tr("waiting to send")},
                                                   {Mark::Conflict, tr("changed on another device")},
                                                   {Mark::Overlap, tr("overlaps")},
                                                   {Mark::Locked, tr("locked")}};
        if (const auto word = words.find(markOf(row)); word != words.end())
            said << word->second;
        if (m_chosen.contains(entry.id))
            said << tr("chosen");
    }
    said.removeAll(QString());
    return said.join(QStringLiteral(", "));
}

} // namespace orvane
