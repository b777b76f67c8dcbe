// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Terminal/TerminalStyle.h"

#include <span>
#include <string>
#include <vector>

namespace orvane {

/// One stretch of a cell in one style.
struct TextRun {
    std::string text;
    TextStyle style = {};
};

/// What stands in one place of a table: runs, one after the other.
struct TextCell {
    TextCell() = default;
    TextCell(std::string text, TextStyle style = {}) { runs.push_back({std::move(text), style}); }

    std::vector<TextRun> runs;

    int width() const;
    /// Cut to so many columns, with "…" where something is missing.
    TextCell truncated(int width) const;
    /// Its words on lines of so many columns; a word that is wider has "…" for its end.
    std::vector<TextCell> wrapped(int width) const;
    /// The same, where a word may be as wide as `widestWord` before it is cut, on a line of its own.
    std::vector<TextCell> wrapped(int width, int widestWord) const;
    std::string render(const TerminalStyle &style) const;
};

/// Rows in aligned columns, two spaces apart. Of the columns that may shrink the widest gives way, until the
/// table fits the terminal; what no longer fits is cut with "…", or goes on below. Where even that does not
/// fit, the first columns stand in line and the others below them, on lines that break between words. Cells
/// hold text that is `printable`.
class TextTable {
public:
    struct Column {
        bool alignsRight = false;
        /// The least width that the column may shrink to; 0: it never shrinks.
        int shrinksTo = 0;
        /// Gives way only when no other column can any more.
        bool shrinksLast = false;
        /// Its words go on below where they do not fit, instead of being cut.
        bool wraps = false;
    };

    explicit TextTable(std::vector<Column> columns, int indent = 2);

    void add(std::vector<TextCell> row);
    bool isEmpty() const { return m_rows.empty(); }
    /// The widest line in columns, for what is set out beside the table.
    int width(const TerminalStyle &style) const;
    /// The text of each row, without the line break at its end.
    std::vector<std::string> lines(const TerminalStyle &style) const;
    /// The lines, each ended by a line break.
    std::string render(const TerminalStyle &style) const;

private:
    std::vector<int> naturalWidths() const;
    /// What each column may shrink to, so that only long words are cut where words go on below.
    std::vector<int> leastWidths() const;
    std::vector<int> widths(const TerminalStyle &style) const;
    /// How many columns stand in line.
    std::size_t columnsInLine(const std::vector<int> &widths, const TerminalStyle &style) const;
    std::string rowText(const std::vector<TextCell> &row, const std::vector<int> &widths,
                        const TerminalStyle &style) const;
    /// What does not stand in line, below it.
    std::string tailText(std::span<const TextCell> cells, const TerminalStyle &style) const;
    int total(std::span<const int> widths) const;
    std::size_t widestThatShrinks(const std::vector<int> &widths, const std::vector<int> &least) const;
    /// The lines of a cell in a column of so many columns.
    std::vector<TextCell> cellLines(const TextCell &cell, std::size_t column, int width) const;

    std::vector<Column> m_columns;
    int m_indent;
    std::vector<std::vector<TextCell>> m_rows;
};

/// `left` and `right` on one line of so many columns, two spaces apart at least; `left` is cut when they do
/// not fit.
std::string alignedLine(const TextCell &left, const TextCell &right, int width, const TerminalStyle &style);

} // namespace orvane
