// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryRecords.h"
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Requests/Router.h"
#include "Workspaces/WorkspaceAccess.h"

#include <set>
#include <tuple>

namespace orvane::server {

namespace {

/// How many earlier entries are looked through: what is older is not what one is about to do again.
constexpr std::int64_t entriesLookedThrough = 2000;
constexpr std::int64_t usualCount = 10;

bool contains(const std::string &description, const std::string &folded)
{
    return folded.empty() || nameKey(description).find(folded) != std::string::npos;
}

HttpResponse suggestEntries(Call &call, const WorkspaceAccess &workspace,
                            const operations::SuggestTimeEntries::Input &input)
{
    EntryRecords entries(call.database);
    const std::string query = nameKey(input.query.value_or(""));
    const auto limit = static_cast<std::size_t>(input.limit.value_or(usualCount));
    std::set<std::tuple<std::string, std::optional<std::string>, std::optional<std::string>>> seen;
    std::vector<TimeEntrySuggestion> suggestions;
    for (TimeEntryResponse &entry :
         entries.latest(call.caller.userId, workspace.id(), entriesLookedThrough)) {
        const bool saysSomething = !entry.description.empty() || entry.projectId;
        if (!saysSomething || !contains(entry.description, query) ||
            !seen.emplace(entry.description, entry.projectId, entry.taskId).second)
            continue;
        suggestions.push_back({std::move(entry.description), std::move(entry.projectId),
                               std::move(entry.taskId), entries.tagsOf(entry.id), entry.isBillable});
        if (suggestions.size() == limit)
            break;
    }
    return jsonAnswer(200, suggestions);
}

HttpResponse suggestDescriptions(Call &call, const WorkspaceAccess &workspace,
                                 const operations::SuggestDescriptions::Input &input)
{
    const std::string query = nameKey(input.query.value_or(""));
    const auto limit = static_cast<std::size_t>(input.limit.value_or(usualCount));
    std::set<std::string> seen;
    std::vector<std::string> descriptions;
    for (TimeEntryResponse &entry :
         EntryRecords(call.database).latest(call.caller.userId, workspace.id(), entriesLookedThrough)) {
        if (entry.description.empty() || !contains(entry.description, query) ||
            !seen.insert(entry.description).second)
            continue;
        descriptions.push_back(std::move(entry.description));
        if (descriptions.size() == limit)
            break;
    }
    return jsonAnswer(200, descriptions);
}

} // namespace

void addSuggestionHandlers(Router &router)
{
    router.add<operations::SuggestTimeEntries>(suggestEntries);
    router.add<operations::SuggestDescriptions>(suggestDescriptions);
}

} // namespace orvane::server
