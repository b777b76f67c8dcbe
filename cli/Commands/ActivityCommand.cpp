// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Account/PreferredTime.h"
#include "Activity/AgentActivityLoader.h"
#include "AgentLogs/AgentLogFormat.h"
#include "CommandTree.h"
#include "Input/MomentText.h"
#include "Output/ActivityPicture.h"
#include "Output/ActivityShapes.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"

#include <QDir>
#include <algorithm>

namespace orvane {

namespace {

struct ActivityOptions {
    std::optional<std::string> day;
    std::optional<std::string> week;
    bool readsAnew = false;
};

Result<std::vector<DayKey>, CommandFailure> daysOf(const ActivityOptions &options, const UserTime &time)
{
    const auto day = readDay(options.week ? *options.week : options.day.value_or("today"), time);
    if (!day)
        return failure(CommandFailure::usage(day.error()));
    if (!options.week)
        return std::vector{*day};
    const auto week = time.weekContaining(*day);
    return std::vector(week.begin(), week.end());
}

AgentActivityLoader::Request requestFor(const CommandContext &context, std::vector<DayKey> days,
                                        const UserTime &time)
{
    AgentActivityLoader::Request request;
    request.days = std::move(days);
    request.zone = time;
    request.home =
        context.options().homeFolder.empty() ? QDir::homePath().toStdString() : context.options().homeFolder;
    request.fixtures = context.options().fixturesFolder;
    return request;
}

AgentActivityLoader::ProgressHandler progressOn(ProgressLine &line)
{
    return [&line](AgentActivityLoader::Progress progress) {
        constexpr int megabyte = 20;
        line.setProgress(progress.done >> megabyte, progress.total >> megabyte);
    };
}

/// Where the logs were looked for, and what to do when they are elsewhere.
std::string nothingFound(const AgentActivityLoader::Request &request, std::int64_t files)
{
    const bool isSample = !request.fixtures.empty();
    const QDir root(QString::fromStdString(isSample ? request.fixtures : request.home));
    std::string folders;
    for (const AgentSource source : request.sources) {
        const AgentLogFormat &format = AgentLogFormat::of(source);
        const std::string folder(isSample ? format.fixtureFolder : format.folder);
        const QString path = root.filePath(QString::fromStdString(folder));
        folders += "  " + printable(path.toStdString()) + (QDir(path).exists() ? "" : " (not there)") + "\n";
    }
    std::string day = request.days.size() > 1 ? "in this week" : "on this day";
    if (request.days.front() == request.zone.today())
        day = "today";
    if (files == 0)
        return "No agent has kept a log yet. Looked in:\n" + folders +
               "When logs are kept under another home folder: orvane activity --home DIR\n";
    return "No agent was at work " + day + ". Looked in:\n" + folders +
           "Another day: orvane activity --day yesterday. A whole week: orvane activity --week\n";
}

std::string picture(const AgentActivityLoader::Request &request, const AgentActivityLoader::Answer &answer,
                    const TerminalStyle &style)
{
    if (std::ranges::none_of(*answer.days, hasActivity))
        return nothingFound(request, answer.cost.files);
    const ActivityPicture drawing(request.zone, style);
    return request.days.size() > 1 ? drawing.week(*answer.days) : drawing.day(answer.days->front());
}

/// Needs the logs alone: neither the account is opened nor its server started, and the zone is the one that
/// is known here.
CommandTask activity(Context context, ActivityOptions options)
{
    const GlobalOptions &global = context->options();
    const auto preferred = co_await storedTime(context->installation(), global.server, global.zone);
    if (!preferred.notice.empty())
        writeMessage(printable(preferred.notice));
    const UserTime &time = preferred.time;
    const auto days = daysOf(options, time);
    if (!days)
        co_return failure(days.error());
    const auto request = requestFor(*context, *days, time);
    AgentActivityLoader loader;
    if (options.readsAnew)
        co_await loader.clear();
    context->progress().begin("Reading the agents' logs (MB)");
    const auto answer = co_await loader.days(request, progressOn(context->progress()));
    context->progress().finish();
    if (!context->json())
        co_return CommandAnswer{.output = picture(request, answer, context->style())};
    co_return CommandAnswer{.output = options.week ? shapes::activityWeek(*answer.days, answer.cost)
                                                   : shapes::activityDay(answer.days->front(), answer.cost)};
}

} // namespace

void addActivityCommand(CommandTree &tree)
{
    const auto options = std::make_shared<ActivityOptions>();
    CLI::App *command =
        tree.add("activity", "Show what you and your coding agents worked on, from their logs", "Agents");
    CommandTree::addDayOrWeek(command, options->day, options->week);
    CommandTree::addFlag(command, "--no-cache", options->readsAnew, "Read all logs anew");
    CommandTree::addFooter(
        command, "Attention is solid: it goes to where you prompted last, for 15 minutes at most. Agents at "
                 "work are light. A DAY is 2026-03-01, today, yesterday or the name of a weekday, which is "
                 "the last one.");
    tree.onRun(command, [options](Context context) { return activity(std::move(context), *options); });
}

} // namespace orvane
