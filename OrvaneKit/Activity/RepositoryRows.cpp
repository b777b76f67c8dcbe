// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/RepositoryRows.h"

#include <algorithm>
#include <tuple>

namespace orvane {

namespace {

/// "clients/website" for "/home/me/clients/website".
std::string nameWithFolder(const ActivityRepository &repository)
{
    const auto name = repository.key.rfind('/');
    if (name == std::string::npos || name == 0)
        return repository.name;
    const auto folder = repository.key.rfind('/', name - 1);
    return repository.key.substr(folder == std::string::npos ? 0 : folder + 1);
}

void nameRows(std::vector<RepositoryRow> &rows)
{
    std::map<std::string, int> counts;
    for (const RepositoryRow &row : rows)
        ++counts[row.repository->name];
    for (RepositoryRow &row : rows)
        row.name = counts[row.repository->name] > 1 ? nameWithFolder(*row.repository) : row.repository->name;
}

} // namespace

std::vector<RepositoryRow> RepositoryRow::of(std::span<const ActivityDay> days)
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
