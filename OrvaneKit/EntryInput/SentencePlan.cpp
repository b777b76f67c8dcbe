// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/SentencePlan.h"

#include "EntryInput/EntryDraft.h"
#include "Tracker/ActionMoment.h"

namespace orvane {

namespace {

using Around = SentencePlan::Around;

/// Behind a time of that day: "today", "yesterday", "tomorrow", "on Fri, 7 Mar".
std::string dayWords(DayKey day, const Around &around)
{
    const DayKey today = around.time.dayKey(around.now);
    if (day == today)
        return "today";
    if (day == today.adding(1))
        return "tomorrow";
    return day == today.adding(-1) ? "yesterday" : "on " + around.time.dayLabel(day);
}

/// "15:20", and the day where it is not today.
std::string momentWords(Instant at, const Around &around)
{
    const DayKey day = around.time.dayKey(at);
    const bool isToday = day == around.time.dayKey(around.now);
    return around.time.timeLabel(at) + (isToday ? "" : " " + dayWords(day, around));
}

std::string spanWords(Instant start, Instant stop, const Around &around)
{
    const UserTime &time = around.time;
    const DayKey first = time.dayKey(start);
    const DayKey last = time.dayKey(stop);
    const std::string begin = time.timeLabel(start) + (first == last ? "" : " " + dayWords(first, around));
    return begin + " – " + time.timeLabel(stop) + " " + dayWords(last, around);
}

std::string endWords(const TimeEntryResponse &running, Instant at, const Around &around)
{
    const std::string what =
        running.description.empty() ? "the running timer" : "“" + running.description + "”";
    return "Ends " + what + " at " + momentWords(at, around);
}

SentencePlan refused(SentencePlan plan, std::string why)
{
    plan.kind = SentencePlan::Kind::cannot;
    plan.ends.reset();
    plan.action.clear();
    plan.words = std::move(why);
    return plan;
}

SentencePlan recording(EntryRequest request, const Around &around)
{
    SentencePlan plan{
        .kind = SentencePlan::Kind::records, .request = {}, .ends = {}, .action = {}, .words = {}};
    plan.action = "Add Entry";
    plan.words = "Adds " + spanWords(request.start, *request.stop, around);
    plan.request = std::move(request);
    return plan;
}

SentencePlan starting(EntryRequest request, bool namesTime, const Around &around)
{
    SentencePlan plan{
        .kind = SentencePlan::Kind::starts, .request = {}, .ends = {}, .action = {}, .words = {}};
    plan.action = namesTime ? "Start at " + momentWords(request.start, around) : "Start";
    plan.ends = around.running;
    if (plan.ends)
        plan.words = endWords(*plan.ends, request.start, around);
    plan.request = std::move(request);
    return plan;
}

} // namespace

SentencePlan SentencePlan::of(const EntrySentence::Reading &reading, const Around &around)
{
    EntryDraft draft;
    draft.take(reading, around.catalog);
    const auto said = draft.times(around.time, around.now);
    if (!said)
        return refused({}, "The end has to be after the start.");
    // Without a time of its own it starts now, or with the timer that is only just ahead of this clock.
    const ActionMoment moment = ActionMoment::of(around.running, around.now, {});
    if (!*said && moment.kind == ActionMoment::Kind::ahead)
        return refused({}, "Another timer begins only at " + momentWords(moment.at, around) +
                               ". Change or delete it first.");
    EntryTimes times = said->value_or(EntryTimes{moment.at, std::nullopt});
    times.start = millisecondsFloor(times.start);
    EntryRequest request = draft.at(times);
    SentencePlan plan = request.stop ? recording(std::move(request), around)
                                     : starting(std::move(request), said->has_value(), around);
    if (std::string why = around.refusal(*plan.request); !why.empty())
        return refused(std::move(plan), std::move(why));
    return plan;
}

} // namespace orvane
