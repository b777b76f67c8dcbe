// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/WeekCalendar.h"

#include "Catalog/Catalog.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace orvane {

namespace {

/// A box narrower than this cannot show a letter.
constexpr int leastBox = 3;
/// "09:00" or "12 pm", and a space.
constexpr int axis = 6;
constexpr int widestColumn = 24;
constexpr int leastWeekHours = 6;
/// More hours than these have one row each instead of two, or the picture would not fit a screen.
constexpr int mostTallHours = 12;

std::string repeated(std::string_view text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

/// The text cut or filled up to so many columns.
std::string filled(const std::string &text, int width, std::string_view filling = " ")
{
    const std::string cut = truncatedToWidth(text, width);
    return cut + repeated(filling, width - displayWidth(cut));
}

/// Which hours are drawn, and how high.
struct Scale {
    int firstHour = 0;
    int lastHour = 24;
    int rowsPerHour = 2;

    int rows() const { return (lastHour - firstHour) * rowsPerHour; }
    double minutesPerRow() const { return 60.0 / rowsPerHour; }
    double minuteOf(int row) const { return firstHour * 60 + row * minutesPerRow(); }
    int rowOf(double minute) const
    {
        return static_cast<int>(std::lround((minute - firstHour * 60) / minutesPerRow()));
    }

    static Scale of(const std::vector<CalendarDay> &days)
    {
        double first = 24 * 60;
        double last = 0;
        for (const CalendarDay &day : days) {
            for (const DaySegment &segment : day.segments) {
                first = std::min(first, segment.startMinute);
                last = std::max({last, segment.endMinute, segment.startMinute + 1});
            }
        }
        Scale scale;
        scale.firstHour = std::min(static_cast<int>(first / 60), 24 - leastWeekHours);
        scale.lastHour =
            std::clamp(static_cast<int>(std::ceil(last / 60)), scale.firstHour + leastWeekHours, 24);
        if (scale.lastHour - scale.firstHour > mostTallHours)
            scale.rowsPerHour = 1;
        return scale;
    }
};

/// The day's blocks on whole rows, laid out anew: what shares a row there stands side by side.
std::vector<DaySegment> onRows(std::vector<DaySegment> segments, const Scale &scale)
{
    for (DaySegment &segment : segments) {
        const int first = std::clamp(scale.rowOf(segment.startMinute), 0, scale.rows() - 1);
        const int end = std::clamp(scale.rowOf(segment.endMinute), first + 1, scale.rows());
        segment.startMinute = scale.minuteOf(first);
        segment.endMinute = scale.minuteOf(end);
    }
    CalendarLayout::arrange(segments);
    return segments;
}

/// Something in a row of a column, from one place to the next.
struct Piece {
    int from = 0;
    int width = 0;
    TextCell cell;
};

class Box {
public:
    Box(const DaySegment &segment, const WeekCalendar::Label &label, int rows, int width)
        : m_segment(segment), m_label(label), m_rows(rows), m_inner(width - 2)
    {
        const auto add = [this](const std::string &text, const TextStyle &style) {
            for (std::string &line : wordLines(text, m_inner))
                m_lines.push_back({std::move(line), style});
        };
        add(label.title, strong);
        const std::size_t titleLines = m_lines.size();
        add(label.detail, {});
        const bool isOpen = !segment.entry.stop && !segment.continuesAfter;
        const auto room = static_cast<std::size_t>(std::max(rows - (isOpen ? 1 : 0), 1));
        if (m_lines.size() > room) {
            std::string &last = m_lines[room - 1].text;
            if (room != titleLines)
                last = displayWidth(last) < m_inner ? last + "…" : truncatedToWidth(last + "…", m_inner);
            m_lines.resize(room);
        }
    }

    TextCell row(int index) const
    {
        const bool isTop = index == 0 && !m_segment.continuesBefore;
        const bool isBottom = index == m_rows - 1 && !m_segment.continuesAfter;
        const bool isRunning = !m_segment.entry.stop;
        const std::string_view line = isBottom && isRunning ? "╌" : isTop || isBottom ? "─" : " ";
        if (isTop && isBottom)
            return between("[", filled(m_label.title, m_inner, " "), strong, "]");
        const std::string_view left = isTop ? "┌" : isBottom ? "└" : "│";
        const std::string_view right = isTop ? "┐" : isBottom ? "┘" : "│";
        const auto place = static_cast<std::size_t>(index);
        return place < m_lines.size() ? lettered(left, m_lines[place], line, right)
                                      : between(left, repeated(line, m_inner), edge(), right);
    }

private:
    TextStyle edge() const { return {.ownColour = m_label.colour}; }

    TextCell between(std::string_view left, const std::string &text, const TextStyle &style,
                     std::string_view right) const
    {
        TextCell cell(std::string(left), edge());
        cell.runs.push_back({text, style});
        cell.runs.push_back({std::string(right), edge()});
        return cell;
    }

    /// The text and behind it the line.
    TextCell lettered(std::string_view left, const TextRun &text, std::string_view line,
                      std::string_view right) const
    {
        TextCell cell(std::string(left), edge());
        cell.runs.push_back(text);
        cell.runs.push_back({repeated(line, m_inner - displayWidth(text.text)).append(right), edge()});
        return cell;
    }

    const DaySegment &m_segment;
    const WeekCalendar::Label &m_label;
    int m_rows;
    int m_inner;
    std::vector<TextRun> m_lines;
};

/// The pieces of one day, row by row.
class Column {
public:
    Column(const std::vector<DaySegment> &segments, const Scale &scale, int width,
           const WeekCalendar::Labels &labels)
        : m_scale(scale)
        , m_width(width)
        , m_rows(static_cast<std::size_t>(scale.rows()))
        , m_hidden(m_rows.size())
    {
        for (const DaySegment &segment : onRows(segments, scale))
            draw(segment, labels);
        for (std::size_t row = 0; row < m_rows.size(); ++row)
            finish(row);
    }

    const std::vector<Piece> &row(int index) const { return m_rows[static_cast<std::size_t>(index)]; }

private:
    void draw(const DaySegment &segment, const WeekCalendar::Labels &labels)
    {
        const int first = m_scale.rowOf(segment.startMinute);
        const int rows = m_scale.rowOf(segment.endMinute) - first;
        const int most = m_width / leastBox;
        const int lanes = std::min(segment.lanes, most);
        // The last lane that there is room for tells of those beyond.
        if (segment.lanes > most && segment.lane >= most - 1) {
            ++m_hidden[static_cast<std::size_t>(first)];
            return;
        }
        const int from = m_width * segment.lane / lanes;
        const int width = m_width * (segment.lane + 1) / lanes - from;
        const WeekCalendar::Label label = labels(segment.entry);
        const Box box(segment, label, rows, width);
        for (int row = 0; row < rows; ++row) {
            const auto place = static_cast<std::size_t>(first) + static_cast<std::size_t>(row);
            m_rows[place].push_back({from, width, box.row(row)});
        }
    }

    void finish(std::size_t row)
    {
        std::vector<Piece> &pieces = m_rows[row];
        std::ranges::sort(pieces, {}, &Piece::from);
        if (m_hidden[row] > 0) {
            const int from = m_width * (m_width / leastBox - 1) / (m_width / leastBox);
            const std::string count = truncatedToWidth("+" + std::to_string(m_hidden[row]), m_width - from);
            pieces.push_back({from, displayWidth(count), TextCell(count, quiet)});
        }
        const bool isHour = row % static_cast<std::size_t>(m_scale.rowsPerHour) == 0;
        if (isHour && (pieces.empty() || pieces.front().from > 0))
            pieces.insert(pieces.begin(), {0, 1, TextCell("·", quiet)});
    }

    const Scale &m_scale;
    int m_width;
    std::vector<std::vector<Piece>> m_rows;
    std::vector<int> m_hidden;
};

/// "09:00", or "9 am" on a 12-hour clock.
std::string hourText(int hour, const UserTime &time)
{
    std::string text = ClockTime::format(hour % 24, 0, time.hour12());
    if (const std::size_t minutes = text.find(":00"); time.hour12() && minutes != std::string::npos)
        text.erase(minutes, 3);
    return text;
}

/// "Mon 2".
std::string dayName(DayKey day)
{
    static constexpr std::array<std::string_view, 7> names{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    return std::string(names[static_cast<std::size_t>(day.weekday())]) + " " + std::to_string(day.day);
}

/// Adds pieces to a line, with spaces only where something follows them.
class LineBuilder {
public:
    explicit LineBuilder(const TerminalStyle &style) : m_style(style) {}

    void put(int from, int width, const TextCell &cell)
    {
        m_line += repeated(" ", from - m_width) + cell.render(m_style);
        m_width = from + width;
    }
    void put(int from, const std::string &text, const TextStyle &style)
    {
        put(from, displayWidth(text), TextCell(text, style));
    }
    std::string line() const { return m_line + "\n"; }

private:
    const TerminalStyle &m_style;
    std::string m_line;
    int m_width = 0;
};

} // namespace

WeekCalendar::Labels WeekCalendar::labelsFrom(const Catalog &catalog)
{
    const auto nameOf = [&catalog](const std::optional<std::string> &id) -> std::string {
        const ProjectResponse *project = id ? catalog.project(*id) : nullptr;
        return project ? printable(project->name) : id ? "unknown project" : "no project";
    };
    return [&catalog, nameOf](const TimeEntryResponse &entry) {
        Label label{.title = {}, .detail = printable(entry.description)};
        for (const TimeShareResponse &share : entry.shares)
            label.title += (label.title.empty() ? "" : ", ") + nameOf(share.projectId);
        const auto &id = entry.shares.empty() ? entry.projectId : entry.shares.front().projectId;
        if (const ProjectResponse *project = id ? catalog.project(*id) : nullptr)
            label.colour = colourFromText(project->color);
        if (entry.shares.empty() && entry.projectId)
            label.title = nameOf(entry.projectId);
        if (label.title.empty())
            label.title = std::exchange(label.detail, {});
        return label;
    };
}

WeekCalendar::WeekCalendar(UserTime time, TerminalStyle style, Labels labels)
    : m_time(std::move(time)), m_style(style), m_labels(std::move(labels))
{
}

std::string WeekCalendar::header(const std::vector<CalendarDay> &days,
                                 const std::vector<std::int64_t> &seconds, int column) const
{
    LineBuilder names(m_style);
    LineBuilder totals(m_style);
    for (std::size_t i = 0; i < days.size(); ++i) {
        const int from = axis + static_cast<int>(i) * column;
        const bool isToday = days[i].day == m_time.today();
        names.put(from, dayName(days[i].day),
                  {.bold = isToday || seconds[i] > 0,
                   .dim = !isToday && seconds[i] == 0,
                   .colour = isToday ? TextStyle::Colour::green : TextStyle::Colour::none});
        const std::string total = seconds[i] > 0 ? m_time.duration(static_cast<double>(seconds[i])) : "–";
        totals.put(from, truncatedToWidth(total, column - 1), quiet);
    }
    return names.line() + totals.line();
}

std::string WeekCalendar::text(const std::vector<CalendarDay> &days,
                               const std::vector<std::int64_t> &seconds) const
{
    const Scale scale = Scale::of(days);
    const int column = std::min((m_style.width - axis) / static_cast<int>(days.size()), widestColumn);
    std::vector<Column> columns;
    columns.reserve(days.size());
    for (const CalendarDay &day : days)
        columns.emplace_back(day.segments, scale, column - 1, m_labels);
    std::string text = header(days, seconds, column);
    for (int row = 0; row < scale.rows(); ++row) {
        LineBuilder line(m_style);
        if (row % scale.rowsPerHour == 0) {
            const std::string hour = hourText(scale.firstHour + row / scale.rowsPerHour, m_time);
            line.put(axis - 1 - displayWidth(hour), hour, quiet);
        }
        for (std::size_t i = 0; i < columns.size(); ++i) {
            for (const Piece &piece : columns[i].row(row))
                line.put(axis + static_cast<int>(i) * column + piece.from, piece.width, piece.cell);
        }
        text += line.line();
    }
    const auto total = std::accumulate(seconds.begin(), seconds.end(), std::int64_t(0));
    return text + m_style.apply("Total " + m_time.duration(static_cast<double>(total)), strong) +
           m_style.apply("   orvane list --day DAY shows the entries of one day.", quiet) + "\n";
}

} // namespace orvane
