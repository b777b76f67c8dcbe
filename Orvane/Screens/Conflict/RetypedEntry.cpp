// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Conflict/RetypedEntry.h"

#include <QStringList>

namespace orvane {

namespace {

QString mention(QChar sign, const std::string &name)
{
    return QStringLiteral("%1\"%2\"").arg(sign).arg(QString::fromStdString(name));
}

QString timePhrase(const EntryRequest &request, const UserTime &time)
{
    const DayKey day = time.dayKey(request.start);
    QString phrase =
        day == time.today() ? QString() : QString::fromStdString(day.description()) + QLatin1Char(' ');
    const QString start = QString::fromStdString(time.clockLabel(request.start));
    if (!request.stop)
        return phrase + QStringLiteral("since %1").arg(start);
    return phrase +
           QStringLiteral("%1-%2").arg(start, QString::fromStdString(time.clockLabel(*request.stop)));
}

} // namespace

QString retypedEntry(const EntryRequest &request, const Catalog &catalog, const UserTime &time)
{
    QStringList words{QString::fromStdString(request.details.description)};
    const auto &details = request.details;
    if (const auto *project = details.projectId ? catalog.project(*details.projectId) : nullptr)
        words << mention(QLatin1Char('@'), project->name);
    if (const auto *task = details.taskId ? catalog.task(*details.taskId) : nullptr)
        words << mention(QLatin1Char('@'), task->name);
    for (const std::string &id : details.tagIds) {
        if (const TagResponse *tag = catalog.tag(id))
            words << mention(QLatin1Char('#'), tag->name);
    }
    if (details.isBillable)
        words << QStringLiteral("$");
    words << timePhrase(request, time);
    words.removeAll(QString());
    return words.join(QLatin1Char(' '));
}

} // namespace orvane
