// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ActivityPicture.h"

#include "Activity/RepositoryRows.h"
#include "Output/EntryText.h"
#include "Terminal/BlockBar.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>

namespace orvane {

namespace {

using std::chrono::hours;

/// Where the terminal does not say how wide it is, and the widest that a picture gets.
constexpr int usualWidth = 100;
constexpr int widestPicture = 120;
constexpr int leastHours = 6;
constexpr int leastCells = 6;
constexpr int margin = 2;
constexpr int gap = 2;

constexpr int narrowPicture = 60;

const std::string attentionTitle = "█ attention";
const std::string agentTitle = "░ agents";

int pictureWidth(const TerminalStyle &style)
{
    return style.width > 0 ? std::min(style.width, widestPicture) : usualWidth;
}

/// Where columns have no room for words, their titles are signs and the words stand above.
bool isNarrow(const TerminalStyle &style)
{
    return pictureWidth(style) < narrowPicture;
}

std::string columnTitle(const std::string &title, const TerminalStyle &style)
{
    return isNarrow(style) ? title.substr(0, title.find(' ')) : title;
}

std::string legend(const TerminalStyle &style)
{
    return isNarrow(style) ? style.apply(attentionTitle + "  " + agentTitle, quiet) : std::string();
}

TextCell lengthCell(double seconds, const UserTime &time, TextStyle style = {})
{
    return seconds > 0 ? TextCell(time.duration(seconds), style) : TextCell("–", quiet);
}

/// The widest of a column's cells.
template <class Lengths>
int lengthWidth(const std::string &title, const Lengths &lengths, const UserTime &time)
{
    int width = displayWidth(title);
    for (const double length : lengths)
        width = std::max(width, displayWidth(time.duration(length)));
    return width;
}

// A day

/// The hours of a day with something in them, and how many columns they take.
struct Axis {
    InstantInterval range;
    int hourCount = 0;
    int cells = 0;

    int cellOf(int hour) const { return hour * cells / hourCount; }
};

Axis axisOf(const ActivityDay &day, const UserTime &time, int room)
{
    const InstantInterval whole = time.dayInterval(day.day);
    Instant first = whole.to;
    Instant last = whole.from;
    const auto include = [&](InstantInterval range) {
        first = std::min(first, range.from);
        last = std::max(last, range.to);
    };
    for (const AttentionSegment &segment : day.attention)
        include(segment.range);
    for (const AgentRun &run : day.runs)
        include(run.range);
    const auto all = static_cast<int>(std::chrono::ceil<hours>(whole.to - whole.from).count());
    auto from = static_cast<int>(std::chrono::floor<hours>(first - whole.from).count());
    auto to = static_cast<int>(std::chrono::ceil<hours>(last - whole.from).count());
    to = std::min(std::max(to, from + leastHours), all);
    from = std::max(std::min(from, to - leastHours), 0);
    Axis axis{{whole.from + hours{from}, whole.from + hours{to}}, to - from, std::max(room, leastCells)};
    if (axis.cells > axis.hourCount)
        axis.cells -= axis.cells % axis.hourCount;
    return axis;
}

std::string hourLabel(Instant instant, const UserTime &time)
{
    const int hour = time.timeOfDay(instant).hour;
    if (time.hour12())
        return std::to_string(hour % 12 == 0 ? 12 : hour % 12) + (hour < 12 ? "am" : "pm");
    return (hour < 10 ? "0" : "") + std::to_string(hour);
}

std::string axisLabels(const Axis &axis, const UserTime &time)
{
    const int widest = (time.hour12() ? 4 : 2) + 1;
    static constexpr std::array steps{1, 2, 3, 4, 6, 12};
    const auto *const step =
        std::ranges::find_if(steps, [&](int hour) { return axis.cells * hour >= widest * axis.hourCount; });
    std::string labels;
    for (int hour = 0; hour < axis.hourCount; hour += step == steps.end() ? 24 : *step) {
        const std::string label = hourLabel(axis.range.from + hours{hour}, time);
        const auto at = static_cast<std::size_t>(axis.cellOf(hour));
        if (at + label.size() > static_cast<std::size_t>(axis.cells))
            break;
        labels.resize(at, ' ');
        labels += label;
    }
    labels.resize(static_cast<std::size_t>(axis.cells), ' ');
    return labels;
}

/// Colours told apart on dark and on light grounds; a terminal without them has all bars green.
BarStyle barStyle(const RepositoryRow &row)
{
    static constexpr std::array<std::uint32_t, 6> palette{0x4C9F70, 0x5B8DEF, 0xD1903F,
                                                          0xB072D6, 0x3FA7B5, 0xD0606A};
    const std::uint32_t colour = palette[row.place % palette.size()];
    return {.solid = {.colour = TextStyle::Colour::green, .ownColour = colour},
            .light = {.dim = true, .ownColour = colour}};
}

std::string strips(const ActivityDay &day, const std::vector<RepositoryRow> &rows, const UserTime &time,
                   const TerminalStyle &style)
{
    std::vector<double> attention{0};
    std::vector<double> agent{0};
    int nameWidth = displayWidth("Total");
    for (const RepositoryRow &row : rows) {
        nameWidth = std::max(nameWidth, displayWidth(printable(row.name)));
        attention.push_back(row.attended);
        agent.push_back(row.worked);
        attention.front() += row.attended;
        agent.front() += row.worked;
    }
    const int width = pictureWidth(style);
    nameWidth = std::min(nameWidth, std::max(width / 5, 8));
    const std::string attentionHead = columnTitle(attentionTitle, style);
    const std::string agentHead = columnTitle(agentTitle, style);
    const int taken = margin + nameWidth + 3 * gap + lengthWidth(attentionHead, attention, time) +
                      lengthWidth(agentHead, agent, time);
    const Axis axis = axisOf(day, time, width - taken);
    TextTable table({{}, {}, {.alignsRight = true}, {.alignsRight = true}}, margin);
    table.add({TextCell(), TextCell(axisLabels(axis, time), quiet), TextCell(attentionHead, quiet),
               TextCell(agentHead, quiet)});
    for (const RepositoryRow &row : rows)
        table.add({TextCell(truncatedToWidth(printable(row.name), nameWidth)),
                   timeStrip(axis.range, axis.cells, row.attention, row.runs, barStyle(row)),
                   lengthCell(row.attended, time), lengthCell(row.worked, time)});
    if (rows.size() > 1)
        table.add({TextCell("Total", strong), TextCell(), lengthCell(attention.front(), time, strong),
                   lengthCell(agent.front(), time, strong)});
    return table.render(style);
}

std::string span(InstantInterval range, const UserTime &time)
{
    const std::string from = time.clockLabel(range.from);
    const std::string to = time.clockLabel(range.to);
    return from == to ? from : from + " – " + to;
}

TextCell sharesCell(const FocusBlock &block, const RepositoryNames &names, const UserTime &time)
{
    TextCell cell;
    for (const FocusShare &share : block.shares) {
        cell.runs.push_back({(cell.runs.empty() ? "" : ", ") + printable(names.of(*share.repository))});
        if (block.shares.size() > 1)
            cell.runs.push_back({" " + time.duration(share.duration), quiet});
    }
    return cell;
}

std::string focus(const ActivityDay &day, const RepositoryNames &names, const UserTime &time,
                  const TerminalStyle &style)
{
    TextTable table({{}, {.alignsRight = true}, {.shrinksTo = 14}, {}}, margin);
    for (const FocusBlock &block : day.blocks) {
        TextCell switches;
        if (block.switches > 0)
            switches = TextCell(
                std::to_string(block.switches) + (block.switches == 1 ? " switch" : " switches"), quiet);
        table.add({TextCell(span(block.range, time)),
                   lengthCell(secondsBetween(block.range.from, block.range.to), time),
                   sharesCell(block, names, time), switches});
    }
    return table.isEmpty() ? "" : "\n" + style.apply("Focus", strong) + "\n" + table.render(style);
}

/// What a session did in the day.
struct SessionTrace {
    InstantInterval range;
    SharedRepository repository;
};

std::map<std::string_view, SessionTrace> tracesOf(const ActivityDay &day)
{
    std::map<std::string_view, SessionTrace> traces;
    const auto add = [&](std::string_view id, const SharedRepository &repository, InstantInterval range) {
        SessionTrace &trace = traces.try_emplace(id, SessionTrace{range, repository}).first->second;
        trace.range.from = std::min(trace.range.from, range.from);
        trace.range.to = std::max(trace.range.to, range.to);
    };
    for (const AttentionSegment &segment : day.attention) {
        for (const std::string &id : segment.sessionIDs)
            add(id, segment.repository, {segment.range.from, segment.range.from});
    }
    for (const AgentRun &run : day.runs)
        add(run.sessionID, run.repository, run.range);
    return traces;
}

std::int64_t promptsIn(const AgentSession &session, InstantInterval range)
{
    return std::ranges::count_if(session.events, [range](const AgentEvent &event) {
        return !event.isTouch && range.contains(event.date);
    });
}

/// The sessions; those that work for another one of them are only counted there.
std::string sessions(const ActivityDay &day, const RepositoryNames &names, const UserTime &time,
                     const TerminalStyle &style)
{
    const InstantInterval whole = time.dayInterval(day.day);
    const auto traces = tracesOf(day);
    std::map<std::string_view, std::int64_t> helpers;
    for (const AgentSession &session : day.sessions)
        ++helpers[session.parentID];
    TextTable table({{}, {}, {.shrinksTo = 8}, {.shrinksTo = 14}, {.shrinksTo = 9}}, margin);
    for (const AgentSession &session : day.sessions) {
        const auto trace = traces.find(session.id);
        if (traces.contains(session.parentID) || trace == traces.end())
            continue;
        const std::int64_t prompts = promptsIn(session, whole);
        std::string counts = prompts > 0 ? counted(prompts, "prompt") : "";
        if (const std::int64_t count = helpers[session.id]; count > 0)
            counts += (counts.empty() ? "" : ", ") + counted(count, "sub-agent");
        table.add({TextCell(span(trace->second.range, time)),
                   TextCell(std::string(jsonText(session.source)), quiet),
                   TextCell(printable(names.of(*trace->second.repository))),
                   session.title.empty() ? TextCell("(no title)", quiet) : TextCell(printable(session.title)),
                   TextCell(counts, quiet)});
    }
    return table.isEmpty() ? "" : "\n" + style.apply("Sessions", strong) + "\n" + table.render(style);
}

/// What else there is to know, in a sentence each.
std::string notes(std::span<const ActivityDay> days, const UserTime &time, const TerminalStyle &style)
{
    double parallel = 0;
    std::map<std::string, std::int64_t> ignored;
    for (const ActivityDay &day : days) {
        for (const InstantInterval range : day.parallel)
            parallel += secondsBetween(range.from, range.to);
        for (const IgnoredActivity &repository : day.ignored)
            ignored[printable(repository.name)] += repository.sessions;
    }
    std::string text;
    if (parallel > 0)
        text += "Agents worked side by side for " + time.duration(parallel) + ".\n";
    std::string names;
    for (const auto &[name, count] : ignored)
        names += (names.empty() ? "" : ", ") + name + " (" + counted(count, "session") + ")";
    if (!names.empty())
        text += "Ignored: " + names + ".\n";
    return text.empty() ? "" : "\n" + style.apply(text.substr(0, text.size() - 1), quiet) + "\n";
}

// A week

/// One column of bars: a repository, or all for which there is no room.
struct BarColumn {
    std::string name;
    BarStyle style;
    std::vector<double> attended; ///< by day
    std::vector<double> worked;
    double total = 0;
};

class WeekTable {
public:
    WeekTable(std::span<const ActivityDay> days, const UserTime &time, const TerminalStyle &style)
        : m_days(days), m_time(time), m_style(style), m_rows(RepositoryRow::of(days))
    {
        for (const ActivityDay &day : days) {
            m_attended.push_back(sumOf(day.totals.attention));
            m_worked.push_back(sumOf(day.totals.agent));
            m_labelWidth = std::max(m_labelWidth, displayWidth(time.dayLabel(day.day)));
        }
        m_attendedTotal = std::accumulate(m_attended.begin(), m_attended.end(), 0.0);
        m_workedTotal = std::accumulate(m_worked.begin(), m_worked.end(), 0.0);
        makeColumns();
    }

    std::string text() const
    {
        std::vector<TextTable::Column> layout(m_columns.size() + 1);
        layout.insert(layout.end(), 2, {.alignsRight = true});
        TextTable table(std::move(layout), margin);
        table.add(header());
        for (std::size_t day = 0; day < m_days.size(); ++day)
            table.add(row(day));
        table.add(sums());
        return table.render(m_style);
    }

private:
    static constexpr int widestBar = 24;

    static double sumOf(const std::map<std::string, double> &totals)
    {
        double sum = 0;
        for (const auto &[key, length] : totals)
            sum += length;
        return sum;
    }
    static double valueOf(const std::map<std::string, double> &totals, const std::string &key)
    {
        const auto found = totals.find(key);
        return found == totals.end() ? 0 : found->second;
    }

    void makeColumns()
    {
        const int room =
            pictureWidth(m_style) - margin - m_labelWidth - 2 * gap -
            lengthWidth(columnTitle(attentionTitle, m_style), std::array{m_attendedTotal}, m_time) -
            lengthWidth(columnTitle(agentTitle, m_style), std::array{m_workedTotal}, m_time);
        const int leastBar = isNarrow(m_style) ? 6 : 8;
        const std::size_t most = static_cast<std::size_t>(std::max(room / (leastBar + gap), 1));
        for (const RepositoryRow &row : m_rows) {
            if (m_columns.size() < most)
                m_columns.push_back({printable(row.name), barStyle(row), std::vector<double>(m_days.size()),
                                     std::vector<double>(m_days.size())});
            add(row.repository->key, m_columns.back());
        }
        if (m_rows.size() > most)
            m_columns.back().name = most == 1 ? "all" : std::to_string(m_rows.size() - most + 1) + " others";
        const int count = static_cast<int>(std::max<std::size_t>(m_columns.size(), 1));
        m_barWidth = std::clamp(room / count - gap, leastBar, widestBar);
        for (const BarColumn &column : m_columns) {
            m_scale = std::max({m_scale, std::ranges::max(column.attended), std::ranges::max(column.worked)});
        }
    }

    void add(const std::string &key, BarColumn &column)
    {
        for (std::size_t i = 0; i < m_days.size(); ++i) {
            const double attended = valueOf(m_days[i].totals.attention, key);
            column.attended[i] += attended;
            column.total += attended;
            column.worked[i] += valueOf(m_days[i].totals.agent, key);
        }
    }

    std::vector<TextCell> header() const
    {
        std::vector<TextCell> cells{TextCell()};
        for (const BarColumn &column : m_columns)
            cells.emplace_back(truncatedToWidth(column.name, m_barWidth));
        cells.emplace_back(columnTitle(attentionTitle, m_style), quiet);
        cells.emplace_back(columnTitle(agentTitle, m_style), quiet);
        return cells;
    }

    std::vector<TextCell> row(std::size_t day) const
    {
        const std::string label = m_time.dayLabel(m_days[day].day);
        std::vector<TextCell> cells{TextCell(label, hasActivity(m_days[day]) ? TextStyle{} : quiet)};
        for (const BarColumn &column : m_columns)
            cells.push_back(lengthBar(column.attended[day] / m_scale, column.worked[day] / m_scale,
                                      m_barWidth, column.style));
        cells.push_back(lengthCell(m_attended[day], m_time));
        cells.push_back(lengthCell(m_worked[day], m_time));
        return cells;
    }

    std::vector<TextCell> sums() const
    {
        std::vector<TextCell> cells{TextCell("Total", strong)};
        for (const BarColumn &column : m_columns)
            cells.push_back(lengthCell(column.total, m_time, strong));
        cells.push_back(lengthCell(m_attendedTotal, m_time, strong));
        cells.push_back(lengthCell(m_workedTotal, m_time, strong));
        return cells;
    }

    std::span<const ActivityDay> m_days;
    const UserTime &m_time;
    const TerminalStyle &m_style;
    std::vector<RepositoryRow> m_rows;
    std::vector<BarColumn> m_columns;
    std::vector<double> m_attended;
    std::vector<double> m_worked;
    double m_attendedTotal = 0;
    double m_workedTotal = 0;
    double m_scale = 1; ///< the longest bar's seconds
    int m_labelWidth = 0;
    int m_barWidth = 0;
};

} // namespace

bool hasActivity(const ActivityDay &day)
{
    return !day.attention.empty() || !day.runs.empty();
}

ActivityPicture::ActivityPicture(UserTime time, TerminalStyle style) : m_time(std::move(time)), m_style(style)
{
}

std::string ActivityPicture::day(const ActivityDay &day) const
{
    const auto rows = RepositoryRow::of({&day, 1});
    const RepositoryNames names(rows);
    const std::string above = legend(m_style);
    return m_style.apply(m_time.dayLabel(day.day), strong) + (above.empty() ? "" : "   " + above) + "\n" +
           strips(day, rows, m_time, m_style) + focus(day, names, m_time, m_style) +
           sessions(day, names, m_time, m_style) + notes({&day, 1}, m_time, m_style);
}

std::string ActivityPicture::week(std::span<const ActivityDay> days) const
{
    const std::string above = legend(m_style);
    return (above.empty() ? "" : "  " + above + "\n") + WeekTable(days, m_time, m_style).text() +
           notes(days, m_time, m_style);
}

} // namespace orvane
