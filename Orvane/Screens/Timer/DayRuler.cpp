// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/DayRuler.h"

#include "Catalog/EntryParts.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace orvane {

namespace {

constexpr int usualFirstHour = 7;
constexpr int usualLastHour = 18;
constexpr double minutesOfDay = 24 * 60;

} // namespace

DayRuler::DayRuler(QObject *parent) : QObject(parent) {}

void DayRuler::setTracker(Tracker *tracker)
{
    m_tracker = tracker;
    update();
}

void DayRuler::tick()
{
    if (m_tracker && std::floor(m_tracker->time().minuteOfDay(AppClock::now())) != std::floor(m_nowMinute))
        update();
}

void DayRuler::update()
{
    m_blocks.clear();
    m_projects.clear();
    m_firstHour = usualFirstHour;
    m_lastHour = usualLastHour;
    if (m_tracker) {
        const Instant now = AppClock::now();
        const UserTime &time = m_tracker->time();
        m_nowMinute = time.minuteOfDay(now);
        const auto days = m_tracker->days(time.today(), 1);
        for (const TimeEntryResponse &entry : days.front().entries) {
            const QVariantMap drawn = block(entry, now);
            m_firstHour =
                std::min(m_firstHour, static_cast<int>(drawn[QStringLiteral("from")].toDouble()) / 60);
            m_lastHour = std::max(m_lastHour,
                                  static_cast<int>(std::ceil(drawn[QStringLiteral("to")].toDouble() / 60)));
            m_blocks.append(drawn);
        }
        m_projects = sums(days.front().entries, now);
    }
    Q_EMIT changed();
}

QVariantMap DayRuler::block(const TimeEntryResponse &entry, Instant now) const
{
    const UserTime &time = m_tracker->time();
    const Instant stop = entry.stop.value_or(std::max(now, entry.start));
    const bool endsToday = time.dayKey(stop) == time.dayKey(entry.start);
    QStringList places;
    QVariantList parts;
    for (const EntryPart &part : partsOf(entry, now)) {
        const ProjectResponse *where = project(part.projectId);
        const QString name = where != nullptr ? QString::fromStdString(where->name) : QString();
        if (!name.isEmpty() && !places.contains(name))
            places << name;
        parts.append(QVariantMap{
            {QStringLiteral("color"), where != nullptr ? QString::fromStdString(where->color) : QString()},
            {QStringLiteral("share"), std::max(std::chrono::duration<double>(part.length).count(), 1e-3)}});
    }
    return {{QStringLiteral("from"), time.minuteOfDay(entry.start)},
            {QStringLiteral("to"), endsToday ? time.minuteOfDay(stop) : minutesOfDay},
            {QStringLiteral("title"), QString::fromStdString(entry.description)},
            {QStringLiteral("places"), places.join(QStringLiteral(", "))},
            {QStringLiteral("parts"), parts},
            {QStringLiteral("isRunning"), !entry.stop}};
}

QVariantList DayRuler::sums(const std::vector<TimeEntryResponse> &entries, Instant now) const
{
    std::map<std::string, Instant::duration> lengths;
    for (const TimeEntryResponse &entry : entries) {
        for (const EntryPart &part : partsOf(entry, now))
            lengths[part.projectId.value_or("")] += part.length;
    }
    std::vector<std::pair<std::string, Instant::duration>> sorted(lengths.begin(), lengths.end());
    std::ranges::sort(sorted, std::ranges::greater(), &std::pair<std::string, Instant::duration>::second);
    QVariantList list;
    for (const auto &[id, length] : sorted) {
        const ProjectResponse *where = project(id);
        list.append(QVariantMap{
            {QStringLiteral("name"),
             where != nullptr ? QString::fromStdString(where->name) : tr("No project")},
            {QStringLiteral("color"), where != nullptr ? QString::fromStdString(where->color) : QString()},
            {QStringLiteral("length"),
             QString::fromStdString(Durations::shortLabel(std::chrono::duration<double>(length).count()))}});
    }
    return list;
}

const ProjectResponse *DayRuler::project(const std::optional<std::string> &id) const
{
    return id ? m_tracker->catalog().project(*id) : nullptr;
}

QString DayRuler::now() const
{
    return m_tracker ? QString::fromStdString(m_tracker->time().clockLabel(AppClock::now())) : QString();
}

QString DayRuler::hourLabel(int hour) const
{
    if (m_tracker && m_tracker->time().hour12())
        return tr("%1 %2").arg(hour % 12 == 0 ? 12 : hour % 12).arg(hour % 24 < 12 ? tr("am") : tr("pm"));
    return QStringLiteral("%1").arg(hour, 2, 10, QLatin1Char('0'));
}

} // namespace orvane
