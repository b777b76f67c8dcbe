// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/TextTable.h"

#include "Support/Require.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <utility>

namespace orvane {

namespace {

constexpr int gap = 2;
/// A word that is wider than this may be cut in a column that wraps.
constexpr int longWord = 20;
/// In front of a project's name, from which it is not parted.
constexpr std::string_view dot = "●";

std::string spaces(int count)
{
    return std::string(static_cast<std::size_t>(std::max(count, 0)), ' ');
}

} // namespace

int TextCell::width() const
{
    int width = 0;
    for (const TextRun &run : runs)
        width += displayWidth(run.text);
    return width;
}

TextCell TextCell::truncated(int limit) const
{
    if (width() <= limit)
        return *this;
    TextCell cut;
    int left = limit;
    for (const TextRun &run : runs) {
        const int runWidth = displayWidth(run.text);
        // A run that would just fit leaves no room for the sign that more follows.
        const bool isLast = &run == &runs.back();
        if (runWidth < left || (isLast && runWidth <= left)) {
            cut.runs.push_back(run);
            left -= runWidth;
            continue;
        }
        std::string text = truncatedToWidth(run.text, left);
        if (runWidth == left)
            text = truncatedToWidth(run.text + " ", left);
        cut.runs.push_back({std::move(text), run.style});
        break;
    }
    return cut;
}

std::vector<TextCell> TextCell::wrapped(int limit) const
{
    return wrapped(limit, limit);
}

std::vector<TextCell> TextCell::wrapped(int limit, int widestWord) const
{
    // A word may go over several runs.
    std::vector<TextCell> words(1);
    for (const TextRun &run : runs) {
        for (std::size_t at = 0; at < run.text.size();) {
            const std::size_t end = std::min(run.text.find(' ', at), run.text.size());
            if (end > at)
                words.back().runs.push_back({run.text.substr(at, end - at), run.style});
            const bool isDot = words.back().runs.size() == 1 && words.back().runs.front().text == dot;
            if (end < run.text.size() && isDot)
                words.back().runs.front().text += ' ';
            else if (end < run.text.size() && !words.back().runs.empty())
                words.emplace_back();
            at = end + 1;
        }
    }
    std::vector<TextCell> lines;
    for (const TextCell &whole : words) {
        const TextCell word = whole.truncated(widestWord);
        if (word.width() == 0)
            continue;
        if (lines.empty() || lines.back().width() + 1 + word.width() > limit)
            lines.emplace_back();
        else
            lines.back().runs.push_back({" "});
        lines.back().runs.insert(lines.back().runs.end(), word.runs.begin(), word.runs.end());
    }
    return lines;
}

std::string TextCell::render(const TerminalStyle &style) const
{
    std::string out;
    for (const TextRun &run : runs)
        out += style.apply(run.text, run.style);
    return out;
}

TextTable::TextTable(std::vector<Column> columns, int indent)
    : m_columns(std::move(columns)), m_indent(indent)
{
}

void TextTable::add(std::vector<TextCell> row)
{
    ORVANE_REQUIRE(row.size() == m_columns.size(), "a row has one cell for each column");
    m_rows.push_back(std::move(row));
}

int TextTable::total(std::span<const int> widths) const
{
    int total = m_indent;
    bool first = true;
    for (const int width : widths) {
        if (width > 0)
            total += width + (std::exchange(first, false) ? 0 : gap);
    }
    return total;
}

std::vector<int> TextTable::naturalWidths() const
{
    std::vector<int> widths(m_columns.size());
    for (const auto &row : m_rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].width());
    }
    return widths;
}

std::vector<int> TextTable::leastWidths() const
{
    std::vector<int> least;
    for (const Column &column : m_columns)
        least.push_back(column.shrinksTo);
    for (const auto &row : m_rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            // Each word on a line of its own.
            for (const TextCell &word :
                 m_columns[i].wraps ? row[i].wrapped(1, longWord) : std::vector<TextCell>())
                least[i] = std::max(least[i], word.width());
        }
    }
    return least;
}

std::vector<int> TextTable::widths(const TerminalStyle &style) const
{
    std::vector<int> widths = naturalWidths();
    int excess = style.width > 0 ? total(widths) - style.width : 0;
    const std::vector<int> least = excess > 0 ? leastWidths() : widths;
    for (; excess > 0; --excess) {
        const std::size_t widest = widestThatShrinks(widths, least);
        // What stands below the line has no reason to be cut.
        if (widest == widths.size())
            return naturalWidths();
        --widths[widest];
    }
    return widths;
}

std::size_t TextTable::columnsInLine(const std::vector<int> &widths, const TerminalStyle &style) const
{
    std::size_t count = widths.size();
    while (style.width > 0 && count > 1 && total(std::span(widths).first(count)) > style.width)
        --count;
    return count;
}

/// The column that gives way next; their number when none can.
std::size_t TextTable::widestThatShrinks(const std::vector<int> &widths, const std::vector<int> &least) const
{
    std::size_t widest = widths.size();
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const bool canShrink = m_columns[i].shrinksTo > 0 && widths[i] > least[i];
        if (!canShrink)
            continue;
        const bool isFirst = widest == widths.size();
        const bool isWider = !isFirst && widths[i] >= widths[widest];
        const bool isOfOrder = !isFirst && m_columns[i].shrinksLast != m_columns[widest].shrinksLast;
        if (isFirst || (isOfOrder ? m_columns[widest].shrinksLast : isWider))
            widest = i;
    }
    return widest;
}

int TextTable::width(const TerminalStyle &style) const
{
    const int width = total(widths(style));
    return style.width > 0 ? std::min(width, style.width) : width;
}

std::vector<TextCell> TextTable::cellLines(const TextCell &cell, std::size_t column, int width) const
{
    return m_columns[column].wraps && cell.width() > width ? cell.wrapped(width)
                                                           : std::vector{cell.truncated(width)};
}

std::string TextTable::rowText(const std::vector<TextCell> &row, const std::vector<int> &columnWidths,
                               const TerminalStyle &style) const
{
    std::vector<std::vector<TextCell>> cells;
    std::size_t count = 1;
    for (std::size_t i = 0; i < columnWidths.size(); ++i) {
        cells.push_back(cellLines(row[i], i, columnWidths[i]));
        count = std::max(count, cells.back().size());
    }
    std::string text;
    for (std::size_t line = 0; line < count; ++line) {
        // Spaces are written only before something, so no line ends in them.
        int owed = m_indent;
        bool first = true;
        text += line > 0 ? "\n" : "";
        for (std::size_t i = 0; i < columnWidths.size(); ++i) {
            if (columnWidths[i] == 0)
                continue;
            const TextCell cell = line < cells[i].size() ? cells[i][line] : TextCell();
            const int padding = columnWidths[i] - cell.width();
            owed += (std::exchange(first, false) ? 0 : gap) + (m_columns[i].alignsRight ? padding : 0);
            if (cell.width() > 0)
                text += spaces(std::exchange(owed, 0)) + cell.render(style);
            owed += m_columns[i].alignsRight ? 0 : padding;
        }
    }
    return text;
}

std::string TextTable::tailText(std::span<const TextCell> cells, const TerminalStyle &style) const
{
    const int indent = m_indent + gap;
    const int room = std::max(style.width - indent, 1);
    std::string text;
    int column = room;
    for (const TextCell &cell : cells) {
        if (cell.width() == 0)
            continue;
        if (!text.empty() && column + gap + cell.width() <= room) {
            text += spaces(gap) + cell.render(style);
            column += gap + cell.width();
            continue;
        }
        for (const TextCell &line : cell.wrapped(room)) {
            text += "\n" + spaces(indent) + line.render(style);
            column = line.width();
        }
    }
    return text;
}

std::vector<std::string> TextTable::lines(const TerminalStyle &style) const
{
    std::vector<int> columnWidths = widths(style);
    const std::size_t inLine = columnsInLine(columnWidths, style);
    columnWidths.resize(inLine);
    std::vector<std::string> lines;
    for (const auto &row : m_rows)
        lines.push_back(rowText(row, columnWidths, style) + tailText(std::span(row).subspan(inLine), style));
    return lines;
}

std::string TextTable::render(const TerminalStyle &style) const
{
    std::string out;
    for (const std::string &line : lines(style))
        out += line + "\n";
    return out;
}

std::string alignedLine(const TextCell &left, const TextCell &right, int width, const TerminalStyle &style)
{
    const int rightWidth = right.width();
    if (rightWidth == 0)
        return left.render(style) + "\n";
    const TextCell shown =
        style.width > 0 ? left.truncated(std::max(style.width - rightWidth - gap, 1)) : left;
    const int padding = std::max(width - shown.width() - rightWidth, gap);
    return shown.render(style) + spaces(padding) + right.render(style) + "\n";
}

} // namespace orvane
