// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/EntryText.h"

#include "Catalog/EntryConversions.h"
#include "Catalog/NameLookup.h"
#include "Output/ProjectText.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <iterator>

namespace orvane {

namespace {

constexpr TextStyle good{.bold = true, .colour = TextStyle::Colour::green};
constexpr TextStyle warning{.colour = TextStyle::Colour::yellow};

/// The description gives way first; what one bills by stays on one line as long as it can.
constexpr TextTable::Column descriptionColumn{.shrinksTo = 24, .wraps = true};
constexpr TextTable::Column placeColumn{.shrinksTo = 12, .shrinksLast = true, .wraps = true};

constexpr int headingWidth = 40;

/// As wide as "12:30 pm": clock labels of a 12-hour clock are lined up on it.
constexpr std::size_t clockWidth12 = 8;

std::string quoted(const std::string &description)
{
    return description.empty() ? "an entry without a description" : "\"" + printable(description) + "\"";
}

std::string_view kindOf(const EntryChange &change)
{
    static constexpr std::array<std::string_view, 4> names{"create", "update", "stop", "delete"};
    return names[change.action.index()];
}

std::string sentence(std::string_view text, std::string_view more)
{
    return std::string(text) + "\n" + std::string(more);
}

} // namespace

std::string counted(std::int64_t count, std::string_view noun)
{
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string queueMessage(const Outbox &outbox, bool isReachable, const std::string &why)
{
    const auto pending = static_cast<std::int64_t>(outbox.pending().size());
    const auto conflicts = static_cast<std::int64_t>(outbox.conflicts().size());
    const std::string waiting = counted(pending, "change") + (pending == 1 ? " is" : " are") + " waiting";
    if (outbox.isHeldBack())
        return "The server says that another account is signed in: " + waiting +
               " and will not be sent to it.";
    if (pending > conflicts && (outbox.isOffline() || !isReachable))
        return (why.empty() ? "" : why + ": ") + waiting + " to be sent.";
    if (conflicts > 0)
        return counted(conflicts, "change") + (conflicts == 1 ? " waits" : " wait") +
               " for you to settle a conflict: orvane outbox";
    return pending > 0 ? waiting + " to be sent." : std::string();
}

std::string besideMessage(const WaitingStore &store, bool isLocal)
{
    if (!store.changes)
        return "What waits for another account cannot be told. " + describe(store.changes.error());
    return counted(*store.changes, "change") + " of another account " +
           (isLocal ? "of this computer" : "of this server") + (*store.changes == 1 ? " waits" : " wait") +
           " for that account to be back, in " + store.file + ".";
}

std::string unreadableMessage(std::int64_t count, const std::string &file)
{
    return counted(count, "queued change") + " cannot be read and will not be sent; " +
           (count == 1 ? "it stays" : "they stay") + " in " + file + ".";
}

EntryWriter::EntryWriter(Tracker &tracker, TerminalStyle style, EntryFilter filter)
    : m_tracker(tracker)
    , m_time(tracker.time())
    , m_style(style)
    , m_filter(std::move(filter))
    , m_now(AppClock::now())
{
}

TextTable EntryWriter::table() const
{
    // Identifier, times, length, description, project and tags.
    return TextTable({{}, {}, {.alignsRight = true}, descriptionColumn, placeColumn});
}

std::int64_t EntryWriter::seconds(std::span<const TimeEntryResponse> entries) const
{
    return m_filter.seconds(entries, m_tracker.catalog(), m_now);
}

std::string EntryWriter::clock(Instant instant) const
{
    return m_time.clockLabel(instant);
}

std::string EntryWriter::span(Instant start, std::optional<Instant> stop) const
{
    std::string from = clock(start);
    if (m_time.hour12() && from.size() < clockWidth12)
        from.insert(0, clockWidth12 - from.size(), ' ');
    if (!stop)
        return from + " – …";
    const auto days = m_time.dayKey(start).daysUntil(m_time.dayKey(*stop));
    return from + " – " + clock(*stop) + (days > 0 ? " +" + std::to_string(days) : std::string());
}

std::string EntryWriter::duration(const TimeEntryResponse &entry) const
{
    return m_time.duration(static_cast<double>(seconds(std::span(&entry, 1))));
}

std::string EntryWriter::shortId(const std::string &id) const
{
    std::vector<std::string> ids{id};
    for (const TimeEntryResponse &entry : m_tracker.entries()) {
        if (entry.id != id)
            ids.push_back(entry.id);
    }
    return shortIds(ids).front();
}

TextCell EntryWriter::description(const std::string &text) const
{
    return text.empty() ? TextCell("(no description)", quiet) : TextCell(printable(text));
}

void EntryWriter::addProject(TextCell &cell, const std::optional<std::string> &projectId,
                             const std::optional<std::string> &taskId) const
{
    if (!projectId)
        return;
    const ProjectResponse *project = m_tracker.catalog().project(*projectId);
    // Deleted elsewhere, or not known yet: the entry still says that it had one.
    std::string name = project ? project->name : "unknown project";
    if (const TaskResponse *task = taskId ? m_tracker.catalog().task(*taskId) : nullptr)
        name += ": " + task->name;
    for (TextRun &run : colouredName(name, project ? project->color : "", m_style).runs)
        cell.runs.push_back(std::move(run));
}

TextCell EntryWriter::split(const TimeEntryResponse &entry) const
{
    TextCell cell;
    for (const TimeShareResponse &share : entry.shares) {
        if (!m_filter.takesProject(share.projectId, m_tracker.catalog()))
            continue;
        if (!cell.runs.empty())
            cell.runs.push_back({", "});
        addProject(cell, share.projectId, share.taskId);
        cell.runs.push_back({(share.projectId ? " " : "no project ") + std::to_string(share.percent) + "%"});
    }
    return cell;
}

TextCell EntryWriter::where(const TimeEntryResponse &entry) const
{
    TextCell cell = split(entry);
    if (entry.shares.empty())
        addProject(cell, entry.projectId, entry.taskId);
    std::string tags;
    for (const std::string &id : entry.tagIds) {
        const TagResponse *tag = m_tracker.catalog().tag(id);
        tags += (tags.empty() ? "" : ", ") + (tag ? printable(tag->name) : std::string("unknown tag"));
    }
    if (entry.isBillable)
        cell.runs.push_back({cell.runs.empty() ? "$" : " $", quiet});
    if (!tags.empty())
        cell.runs.push_back({(cell.runs.empty() ? "" : " · ") + tags, quiet});
    return cell;
}

std::vector<TextCell> EntryWriter::row(const TimeEntryResponse &entry, const std::string &id) const
{
    return {TextCell(id, quiet), TextCell(span(entry.start, entry.stop)),
            TextCell(duration(entry), entry.stop ? TextStyle{} : good), description(entry.description),
            where(entry)};
}

std::string EntryWriter::runningTimer(int width) const
{
    const auto &running = m_tracker.running();
    if (!running)
        return m_style.apply("No timer is running.", quiet) + "\n";
    TextCell what;
    for (const TextRun &run : description(running->description).runs)
        what.runs.push_back({run.text, run.style.dim ? run.style : strong});
    const DayKey day = m_time.dayKey(running->start);
    std::string since = "since " + clock(running->start);
    if (day != m_time.today())
        since += ", " + m_time.dayLabel(day);
    TextCell length(since + "  ", quiet);
    length.runs.push_back({duration(*running), good});
    return timerLines(std::move(what), where(*running), length, width);
}

/// On one line where there is room for all, else the project below, and the description over several lines.
std::string EntryWriter::timerLines(TextCell what, const TextCell &place, const TextCell &length,
                                    int width) const
{
    constexpr int mark = 2;
    constexpr int apart = 2;
    const auto indented = [this](const TextCell &cell) {
        std::string lines;
        for (const TextCell &line : cell.wrapped(std::max(m_style.width - mark, 1)))
            lines += std::string(mark, ' ') + line.render(m_style) + "\n";
        return lines;
    };
    const auto fits = [this](int columns) { return m_style.width == 0 || columns <= m_style.width; };
    TextCell left("● ", good);
    const int timer = mark + what.width() + apart + length.width();
    if (!fits(timer)) {
        std::string lines = indented(what).replace(0, mark, left.render(m_style));
        return lines + indented(length) + indented(place);
    }
    std::ranges::move(what.runs, std::back_inserter(left.runs));
    if (!fits(timer + apart + place.width()))
        return alignedLine(left, length, width, m_style) + indented(place);
    if (!place.runs.empty())
        left.runs.push_back({std::string(apart, ' ')});
    left.runs.insert(left.runs.end(), place.runs.begin(), place.runs.end());
    return alignedLine(left, length, width, m_style);
}

std::string EntryWriter::pomodoro(const PreferencesResponse &preferences) const
{
    if (!preferences.pomodoroEnabled)
        return {};
    std::string text = "Pomodoro: " + std::to_string(preferences.pomodoroMinutes) + " min of work, " +
                       std::to_string(preferences.pomodoroBreakMinutes) + " min of rest";
    if (preferences.pomodoroAutoStop)
        text += ", and the timer stops by itself";
    return m_style.apply(text, quiet) + "\n";
}

std::string EntryWriter::status(const DayGroup &today, const PreferencesResponse &preferences) const
{
    const Layout layout = layoutOf({today});
    return runningTimer(today.entries.empty() ? 0 : layout.width) + pomodoro(preferences) + "\n" +
           dayText(today, layout, 0);
}

EntryWriter::Layout EntryWriter::layoutOf(const std::vector<DayGroup> &days) const
{
    TextTable all = table();
    std::vector<std::string> ids;
    for (const DayGroup &day : days) {
        for (const TimeEntryResponse &entry : day.entries)
            ids.push_back(entry.id);
    }
    ids = shortIds(ids);
    auto id = ids.begin();
    for (const DayGroup &day : days) {
        for (const TimeEntryResponse &entry : day.entries)
            all.add(row(entry, *id++));
    }
    // A heading alone would have its total right beside it; where nobody looks, nothing is filled up.
    const int narrowest = m_style.isTerminal ? std::min(headingWidth, m_style.width) : 0;
    return {all.lines(m_style), std::max(all.width(m_style), narrowest)};
}

std::string EntryWriter::emptyDay(DayKey day) const
{
    if (day == m_time.today())
        return "Nothing tracked today. Start with: orvane start \"Write the README\"\n";
    return "Nothing tracked on " + m_time.dayLabel(day) + ". Add an entry with: orvane add \"Stand-up " +
           day.description() + " 9:30-9:45\"\n";
}

std::string EntryWriter::heading(const std::string &title, std::int64_t seconds, int width) const
{
    return alignedLine(TextCell(title, strong),
                       TextCell(m_time.duration(static_cast<double>(seconds)), strong), width, m_style);
}

std::string EntryWriter::dayText(const DayGroup &day, const Layout &layout, std::size_t firstLine) const
{
    if (day.entries.empty())
        return emptyDay(day.day);
    std::string out = heading(m_time.dayLabel(day.day), seconds(day.entries), layout.width);
    for (std::size_t i = 0; i < day.entries.size(); ++i)
        out += layout.lines[firstLine + i] + "\n";
    return out;
}

std::string EntryWriter::days(const std::vector<DayGroup> &days) const
{
    const Layout layout = layoutOf(days);
    if (days.size() == 1)
        return dayText(days.front(), layout, 0);
    std::string out;
    std::size_t line = 0;
    std::int64_t total = 0;
    for (const DayGroup &day : days) {
        out += day.entries.empty() ? alignedLine(TextCell(m_time.dayLabel(day.day), quiet),
                                                 TextCell("–", quiet), layout.width, m_style)
                                   : dayText(day, layout, line);
        line += day.entries.size();
        total += seconds(day.entries);
    }
    return out + heading("Total", total, layout.width);
}

std::string EntryWriter::done(std::string_view verb, const TimeEntryResponse &entry) const
{
    // Nothing is cut: this is where one sees what was understood.
    TextTable line({{}, {}, {}, {.alignsRight = true}, {}, {}}, 0);
    std::vector<TextCell> cells = row(entry, shortId(entry.id));
    const DayKey day = m_time.dayKey(entry.start);
    if (day != m_time.today())
        cells[1].runs.insert(cells[1].runs.begin(), {m_time.dayLabel(day) + ", ", {}});
    if (!entry.stop)
        cells[2] = {};
    cells.insert(cells.begin(), TextCell(std::string(verb), good));
    line.add(std::move(cells));
    return line.render(m_style);
}

TimeEntryResponse EntryWriter::changed(const EntryChange &change,
                                       std::optional<TimeEntryResponse> before) const
{
    if (const EntryRequest *request = change.request())
        return entryResponse(*request, change.entryId(), change.workspaceId());
    TimeEntryResponse entry = before.value_or(TimeEntryResponse{});
    entry.id = change.entryId();
    if (const auto *stop = std::get_if<EntryChange::Stop>(&change.action))
        entry.stop = stop->at;
    return entry;
}

std::string EntryWriter::timerAhead(const TimeEntryResponse &running) const
{
    // The next whole minute, which is what can be typed.
    const Instant end = std::chrono::ceil<std::chrono::minutes>(running.start);
    const std::string id = shortId(running.id);
    const DayKey day = m_time.dayKey(running.start);
    const std::string when = clock(running.start) + (day == m_time.today() ? "" : " on " + day.description());
    return "The timer " + id + " (" + quoted(running.description) + ") begins only at " + when +
           ". End it with: orvane stop --at \"" + m_time.dayKey(end).description() + " " + clock(end) +
           "\", or take it back with: orvane delete " + id;
}

std::string EntryWriter::queue(const std::deque<Outbox::Pending> &pending, std::string_view nothing) const
{
    if (pending.empty())
        return std::string(nothing) + "\n";
    TextTable rows({{.alignsRight = true}, {}, {}, {}, descriptionColumn, placeColumn});
    for (const Outbox::Pending &item : pending) {
        const auto known = m_tracker.entry(item.change.entryId());
        const bool saysWhen = known || item.change.request();
        const TimeEntryResponse entry = changed(item.change, item.conflict ? item.conflict : known);
        std::string when;
        if (saysWhen || item.conflict)
            when = m_time.dayLabel(m_time.dayKey(entry.start)) + ", " + span(entry.start, entry.stop);
        rows.add({TextCell(std::to_string(item.seq), strong),
                  TextCell(std::string(kindOf(item.change)), item.conflict ? warning : TextStyle{}),
                  TextCell(shortId(entry.id), quiet), TextCell(when),
                  saysWhen || item.conflict ? description(entry.description) : TextCell(), where(entry)});
    }
    return rows.render(m_style);
}

std::string EntryWriter::refusal(const Refusal &refusal) const
{
    const TimeEntryResponse entry = changed(refusal.change, m_tracker.entry(refusal.change.entryId()));
    std::string text =
        "Refused: a change made earlier to " + quoted(entry.description) + ". " + refusal.message;
    if (!refusal.change.request())
        return sentence(text, "  " + std::string(kindOf(refusal.change)) + " " + entry.id);
    TextTable line({{}, {}, {}, {.alignsRight = true}, {}, {}});
    std::vector<TextCell> cells = row(entry, entry.id);
    cells.insert(cells.begin(), TextCell(std::string(kindOf(refusal.change))));
    cells[2].runs.insert(cells[2].runs.begin(), {m_time.dayLabel(m_time.dayKey(entry.start)) + ", ", {}});
    line.add(std::move(cells));
    // Nothing of it is cut: this is the last place where the words can be read.
    TerminalStyle whole = m_style;
    whole.width = 0;
    text = sentence(text, line.render(whole));
    text.pop_back();
    return text;
}

std::string EntryWriter::conflict(const Outbox::Pending &pending) const
{
    const TimeEntryResponse theirs = pending.conflict.value_or(TimeEntryResponse{});
    const std::string seq = std::to_string(pending.seq);
    TextTable both({{}, {}, {}, {.alignsRight = true}, descriptionColumn, placeColumn});
    const bool isDelete = std::holds_alternative<EntryChange::Delete>(pending.change.action);
    const auto add = [&](const char *whose, const TimeEntryResponse &entry) {
        std::vector<TextCell> cells = row(entry, shortId(entry.id));
        cells.insert(cells.begin(), TextCell(whose, strong));
        both.add(std::move(cells));
    };
    if (isDelete)
        both.add({TextCell("yours", strong), TextCell("delete"), {}, {}, {}, {}});
    else
        add("yours", changed(pending.change, theirs));
    add("theirs", theirs);
    return m_style.apply("Changed on another device: ", warning) + quoted(theirs.description) +
           " while your change was waiting.\n" + both.render(m_style) +
           "  Keep yours:  orvane outbox keep-mine " + seq + "\n  Keep theirs: orvane outbox keep-theirs " +
           seq;
}

} // namespace orvane
