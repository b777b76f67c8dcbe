// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ActivityRows.h"

#include "Terminal/TextWidth.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace orvane {

namespace {

/// Told apart on dark and on light grounds; a terminal without them has all bars green.
constexpr std::array<std::uint32_t, 6> palette{0x4C9F70, 0x5B8DEF, 0xD1903F, 0xB072D6, 0x3FA7B5, 0xD0606A};

/// "website", or "clients/website" for "/home/me/clients/website".
std::string shortName(const ActivityRepository &repository, bool withFolder)
{
    const auto name = repository.key.rfind('/');
    if (!withFolder || name == std::string::npos || name == 0)
        return printable(repository.name);
    const auto folder = repository.key.rfind('/', name - 1);
    return printable(repository.key.substr(folder == std::string::npos ? 0 : folder + 1));
}

void nameRows(std::vector<RepositoryRow> &rows)
{
    std::map<std::string, int> counts;
    for (const RepositoryRow &row : rows)
        ++counts[row.repository->name];
    for (RepositoryRow &row : rows)
        row.name = shortName(*row.repository, counts[row.repository->name] > 1);
}

} // namespace

BarStyle RepositoryRow::barStyle() const
{
    const std::uint32_t colour = palette[place % palette.size()];
    return {.solid = {.colour = TextStyle::Colour::green, .ownColour = colour},
            .light = {.dim = true, .ownColour = colour}};
}

std::vector<RepositoryRow> repositoryRows(std::span<const ActivityDay> days)
{
    std::map<std::string_view, RepositoryRow> byKey;
    const auto rowOf = [&](const SharedRepository &repository) -> RepositoryRow & {
        RepositoryRow &row = byKey[repository->key];
        row.repository = repository;
        return row;
    };
    for (const ActivityDay &day : days) {
        for (const AttentionSegment &segment : day.attention) {
            RepositoryRow &row = rowOf(segment.repository);
            row.attention.push_back(segment.range);
            row.attended += secondsBetween(segment.range.from, segment.range.to);
        }
        for (const AgentRun &run : day.runs) {
            RepositoryRow &row = rowOf(run.repository);
            row.runs.push_back(run.range);
            row.worked += secondsBetween(run.range.from, run.range.to);
        }
    }
    std::vector<RepositoryRow> rows;
    rows.reserve(byKey.size());
    for (auto &[key, row] : byKey)
        rows.push_back(std::move(row));
    std::ranges::sort(rows, {}, [](const RepositoryRow &row) {
        return std::tuple(-row.attended, -row.worked, std::string_view(row.repository->key));
    });
    nameRows(rows);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].place = i;
    return rows;
}

RepositoryNames::RepositoryNames(std::span<const RepositoryRow> rows)
{
    for (const RepositoryRow &row : rows)
        m_names.emplace(row.repository->key, row.name);
}

} // namespace orvane
