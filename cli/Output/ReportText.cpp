// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ReportText.h"

#include "Output/ProjectText.h"
#include "Terminal/TextTable.h"
#include "Terminal/TextWidth.h"

namespace orvane {

namespace {

std::string_view kindOfGroup(EntryGrouping grouping)
{
    switch (grouping) {
    case EntryGrouping::project:
        return "project";
    case EntryGrouping::client:
        return "client";
    case EntryGrouping::task:
        return "task";
    case EntryGrouping::tag:
        return "tag";
    }
    return {};
}

/// What tells the group apart from others of its name.
std::string contextOf(const EntryReport::Line &line, EntryGrouping grouping, const Catalog &catalog)
{
    if (grouping == EntryGrouping::project) {
        const ProjectResponse *project = catalog.project(*line.id);
        const auto *client = project && project->clientId ? catalog.client(*project->clientId) : nullptr;
        return client ? printable(client->name) : "";
    }
    const TaskResponse *task = grouping == EntryGrouping::task ? catalog.task(*line.id) : nullptr;
    const ProjectResponse *project = task ? catalog.project(task->projectId) : nullptr;
    return project ? printable(project->name) : "";
}

class ReportRows {
public:
    ReportRows(const EntryReport &report, EntryGrouping grouping, const Catalog &catalog,
               const UserTime &time, const TerminalStyle &style)
        : m_report(report), m_grouping(grouping), m_catalog(catalog), m_time(time), m_style(style)
    {
        const bool isNarrow = style.width > 0 && style.width < leastWideReport;
        const bool isBillable = report.total.billableSeconds > 0;
        m_shows.amount = report.total.amount.value_or(0) > 0;
        m_shows.context = !isNarrow;
        m_shows.billable = isBillable && !isNarrow;
        m_shows.percent = isBillable && !(isNarrow && m_shows.amount);
    }

    std::string render() const
    {
        constexpr TextTable::Column figure{.alignsRight = true};
        TextTable table(
            {{.shrinksTo = 8, .shrinksLast = true}, {.shrinksTo = 6}, figure, figure, figure, figure});
        if (m_shows.billable)
            table.add({TextCell(), TextCell(), TextCell("time", quiet), TextCell("billable", quiet),
                       TextCell(), TextCell(m_shows.amount ? "amount" : "", quiet)});
        for (const EntryReport::Line &line : m_report.groups)
            table.add(row(name(line), line, {}));
        if (m_report.groups.size() > 1)
            table.add(row(TextCell("Total", strong), m_report.total, strong));
        return table.render(m_style) + shareLine();
    }

private:
    static constexpr int leastWideReport = 60;

    TextCell name(const EntryReport::Line &line) const
    {
        const std::string kind(kindOfGroup(m_grouping));
        if (!line.id)
            return {"no " + kind, quiet};
        if (!line.name)
            return {"unknown " + kind, quiet};
        return colouredName(*line.name, line.color.value_or(""), m_style);
    }

    TextCell length(std::int64_t seconds, const TextStyle &style) const
    {
        return seconds > 0 ? TextCell(m_time.duration(static_cast<double>(seconds)), style)
                           : TextCell("–", quiet);
    }

    /// The billable part of the time, to the nearest.
    static std::string percentText(const EntryReport::Line &line)
    {
        return std::to_string((200 * line.billableSeconds + line.seconds) / (2 * line.seconds)) + "%";
    }

    static TextCell percent(const EntryReport::Line &line)
    {
        return line.billableSeconds == 0 ? TextCell() : TextCell(percentText(line), quiet);
    }

    /// Of the whole, where the table has no room for a share of each line.
    std::string shareLine() const
    {
        const EntryReport::Line &total = m_report.total;
        if (m_shows.percent || total.billableSeconds == 0)
            return {};
        return "  " +
               m_style.apply("Billable: " + m_time.duration(static_cast<double>(total.billableSeconds)) +
                                 ", " + percentText(total) + " of the time",
                             quiet) +
               "\n";
    }

    TextCell amount(const EntryReport::Line &line, const TextStyle &style) const
    {
        return line.amount ? TextCell(moneyText(*line.amount, m_report.currency), style)
                           : TextCell("–", quiet);
    }

    std::vector<TextCell> row(TextCell name, const EntryReport::Line &line, const TextStyle &style) const
    {
        const bool hasContext = m_shows.context && line.id;
        return {std::move(name),
                hasContext ? TextCell(contextOf(line, m_grouping, m_catalog), quiet) : TextCell(),
                length(line.seconds, style),
                m_shows.billable ? length(line.billableSeconds, style) : TextCell(),
                m_shows.percent ? percent(line) : TextCell(),
                m_shows.amount ? amount(line, style) : TextCell()};
    }

    const EntryReport &m_report;
    EntryGrouping m_grouping;
    const Catalog &m_catalog;
    const UserTime &m_time;
    const TerminalStyle &m_style;
    /// The columns that there is something to say in, and room for.
    struct {
        bool context = false;
        bool billable = false;
        bool percent = false;
        bool amount = false;
    } m_shows;
};

} // namespace

std::string reportText(const EntryReport &report, EntryGrouping grouping, const std::string &title,
                       const Catalog &catalog, const UserTime &time, const TerminalStyle &style)
{
    return style.apply(title, strong) + "\n" + ReportRows(report, grouping, catalog, time, style).render();
}

std::string moneyText(std::int64_t hundredths, const std::optional<std::string> &currency)
{
    std::string text = std::to_string(hundredths / 100) + ".";
    const std::string cents = std::to_string(hundredths % 100);
    text += std::string(2 - cents.size(), '0') + cents;
    return currency && !currency->empty() ? text + " " + printable(*currency) : text;
}

} // namespace orvane
