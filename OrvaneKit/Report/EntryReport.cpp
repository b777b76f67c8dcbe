// SPDX-License-Identifier: GPL-3.0-or-later
#include "Report/EntryReport.h"

#include "Catalog/NameOrder.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace orvane {

namespace {

/// An hourly rate in ten-thousandths, so that sums are exact.
using Rate = std::int64_t;
constexpr double ratePrecision = 10'000;
constexpr std::int64_t perHundredth = 100;
constexpr std::int64_t hour = 3600;

std::int64_t secondsOf(Instant::duration length)
{
    return std::chrono::floor<std::chrono::seconds>(length).count();
}

/// What falls into one group, before it is cut to seconds and rounded.
class Sum {
public:
    void add(const EntryPart &part, std::optional<Rate> rate)
    {
        m_length += part.length;
        if (!part.isBillable)
            return;
        m_billable += part.length;
        if (rate)
            m_rated[*rate] += part.length;
        else
            m_lacksRates = true;
    }

    bool lacksRates() const { return m_lacksRates; }

    /// The seconds as they are shown at each rate, so that a bill can be checked by hand.
    std::optional<std::int64_t> amount() const
    {
        if (m_rated.empty() && m_lacksRates)
            return std::nullopt;
        // Hours apart from what is left of them, or long times at high rates would not fit.
        std::int64_t worth = 0;
        std::int64_t rest = 0;
        for (const auto &[rate, length] : m_rated) {
            worth += secondsOf(length) / hour * rate;
            rest += secondsOf(length) % hour * rate;
        }
        worth += rest / hour;
        const std::int64_t cut = worth % perHundredth * hour + rest % hour;
        return worth / perHundredth + (2 * cut >= perHundredth * hour ? 1 : 0);
    }

    EntryReport::Line line(std::optional<std::string> id) const
    {
        return {.id = std::move(id),
                .name = {},
                .color = {},
                .seconds = secondsOf(m_length),
                .billableSeconds = secondsOf(m_billable),
                .amount = amount()};
    }

private:
    Instant::duration m_length{0};
    Instant::duration m_billable{0};
    std::map<Rate, Instant::duration> m_rated;
    bool m_lacksRates = false;
};

/// The groups' keys; none for what has none of the kind.
using Key = std::optional<std::string>;

class Adder {
public:
    Adder(EntryGrouping grouping, const Catalog &catalog,
          const std::optional<WorkspaceSettingsResponse> &settings)
        : m_grouping(grouping)
        , m_catalog(catalog)
        , m_usualRate(settings ? settings->defaultHourlyRate : std::nullopt)
    {
    }

    void add(const TimeEntryResponse &entry, const EntryPart &part)
    {
        const std::optional<Rate> rate = rateOf(part.projectId);
        m_total.add(part, rate);
        if (m_grouping != EntryGrouping::tag)
            return m_groups[keyOf(part)].add(part, rate);
        for (const std::string &tag : entry.tagIds)
            m_groups[tag].add(part, rate);
        if (entry.tagIds.empty())
            m_groups[Key()].add(part, rate);
    }

    EntryReport report() const
    {
        EntryReport report;
        for (const auto &[key, sum] : m_groups)
            report.groups.push_back(named(sum.line(key)));
        std::ranges::sort(report.groups, {}, [](const EntryReport::Line &line) {
            return std::tuple(!line.id, -line.seconds, nameOrderKey(line.name.value_or("")), line.id);
        });
        report.total = m_total.line({});
        report.lacksRates = m_total.lacksRates();
        if (m_grouping != EntryGrouping::tag && report.total.amount) {
            report.total.amount = 0;
            for (const EntryReport::Line &line : report.groups)
                *report.total.amount += line.amount.value_or(0);
        }
        return report;
    }

private:
    std::optional<Rate> rateOf(const std::optional<std::string> &projectId) const
    {
        const ProjectResponse *project = projectId ? m_catalog.project(*projectId) : nullptr;
        const std::optional<double> rate = project && project->hourlyRate ? project->hourlyRate : m_usualRate;
        return rate ? std::optional<Rate>(std::llround(*rate * ratePrecision)) : std::nullopt;
    }

    Key keyOf(const EntryPart &part) const
    {
        if (m_grouping == EntryGrouping::task)
            return part.taskId;
        if (m_grouping == EntryGrouping::project)
            return part.projectId;
        const ProjectResponse *project = part.projectId ? m_catalog.project(*part.projectId) : nullptr;
        return project ? project->clientId : std::nullopt;
    }

    EntryReport::Line named(EntryReport::Line line) const
    {
        const auto take = [&line](const auto *item) {
            if (item)
                line.name = item->name;
        };
        if (!line.id)
            return line;
        switch (m_grouping) {
        case EntryGrouping::project:
            take(m_catalog.project(*line.id));
            if (const ProjectResponse *project = m_catalog.project(*line.id))
                line.color = project->color;
            break;
        case EntryGrouping::client:
            take(m_catalog.client(*line.id));
            break;
        case EntryGrouping::task:
            take(m_catalog.task(*line.id));
            break;
        case EntryGrouping::tag:
            take(m_catalog.tag(*line.id));
            break;
        }
        return line;
    }

    EntryGrouping m_grouping;
    const Catalog &m_catalog;
    std::optional<double> m_usualRate;
    std::map<Key, Sum> m_groups;
    Sum m_total;
};

} // namespace

EntryReport EntryReport::of(std::span<const TimeEntryResponse> entries, EntryGrouping grouping,
                            const EntryFilter &filter, const Catalog &catalog,
                            const std::optional<WorkspaceSettingsResponse> &settings)
{
    Adder adder(grouping, catalog, settings);
    for (const TimeEntryResponse &entry : entries) {
        if (!entry.stop)
            continue;
        for (const EntryPart &part : filter.partsOf(entry, catalog, *entry.stop))
            adder.add(entry, part);
    }
    EntryReport report = adder.report();
    if (settings)
        report.currency = settings->currency;
    return report;
}

} // namespace orvane
