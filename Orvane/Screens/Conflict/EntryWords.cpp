// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Conflict/EntryWords.h"

#include "Support/Instant.h"
#include "Time/AppClock.h"
#include "Time/Durations.h"

#include <QCoreApplication>
#include <QStringList>

namespace orvane {

namespace {

QString said(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

QString words(const char *text)
{
    return QCoreApplication::translate("orvane::EntryWords", text);
}

} // namespace

QString EntryWords::description(const EntryRequest &request)
{
    return request.details.description.empty() ? words("No description") : said(request.details.description);
}

QString EntryWords::quoted(const std::string &description)
{
    return description.empty() ? words("An entry without a description")
                               : QStringLiteral("“%1”").arg(said(description));
}

QString EntryWords::project(const std::optional<std::string> &id) const
{
    const ProjectResponse *project = id ? m_catalog->project(*id) : nullptr;
    return project != nullptr ? said(project->name) : id ? words("Unknown project") : QString();
}

QString EntryWords::task(const std::optional<std::string> &id) const
{
    const TaskResponse *task = id ? m_catalog->task(*id) : nullptr;
    return task != nullptr ? said(task->name) : QString();
}

QString EntryWords::projectColor(const std::optional<std::string> &id) const
{
    const ProjectResponse *project = id ? m_catalog->project(*id) : nullptr;
    return project != nullptr ? said(project->color) : QString();
}

QString EntryWords::place(const EntryRequest &request) const
{
    const auto named = [this](const std::optional<std::string> &projectId,
                              const std::optional<std::string> &taskId) {
        const QString name = projectId ? project(projectId) : words("No project");
        const QString part = task(taskId);
        return part.isEmpty() ? name : QStringLiteral("%1 › %2").arg(name, part);
    };
    if (request.details.shares.empty())
        return named(request.details.projectId, request.details.taskId);
    QStringList parts;
    for (const SplitPart &part : request.details.shares)
        parts << QStringLiteral("%1 %2%").arg(named(part.projectId, part.taskId)).arg(part.percent);
    return parts.join(QStringLiteral(", "));
}

QString EntryWords::tags(const EntryRequest &request) const
{
    QStringList tags;
    for (const std::string &id : request.details.tagIds) {
        const TagResponse *tag = m_catalog->tag(id);
        tags << QLatin1Char('#') + (tag != nullptr ? said(tag->name) : words("unknown"));
    }
    tags.sort();
    return tags.isEmpty() ? words("No tags") : tags.join(QLatin1Char(' '));
}

QString EntryWords::billing(const EntryRequest &request)
{
    return request.details.isBillable ? words("Billable") : words("Not billable");
}

QString EntryWords::clock(Instant at, bool withDay) const
{
    const QString time = said(m_time->clockLabel(at));
    return withDay ? words("%1, %2").arg(said(m_time->dayLabel(m_time->dayKey(at))), time) : time;
}

QString EntryWords::stop(const EntryRequest &request) const
{
    if (!request.stop)
        return words("Still running");
    return clock(*request.stop, m_time->dayKey(*request.stop) != m_time->dayKey(request.start));
}

QString EntryWords::length(const EntryRequest &request)
{
    return said(Durations::shortLabel(secondsBetween(request.start, request.stop.value_or(AppClock::now()))));
}

QString EntryWords::times(const EntryRequest &request) const
{
    return words("%1 – %2").arg(clock(request.start, false), request.stop ? stop(request) : words("now"));
}

} // namespace orvane
