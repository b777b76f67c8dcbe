// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposedEntry.h"

#include "Catalog/EntryConversions.h"

namespace orvane {

EntryRequest proposedEntryRequest(const ProposedWorkResponse &work)
{
    TimeEntryResponse entry;
    entry.description = work.description;
    entry.projectId = work.projectId;
    entry.taskId = work.taskId;
    entry.tagIds = work.tagIds;
    entry.isBillable = work.isBillable;
    entry.start = work.range.start;
    entry.stop = work.range.end;
    entry.shares = work.shares;
    return entryRequest(entry);
}

EntryRequest proposedChange(const ProposedFieldsResponse &fields, TimeEntryResponse entry)
{
    entry.description = fields.description.value_or(entry.description);
    if (fields.project) {
        entry.projectId = fields.project->projectId;
        entry.taskId = fields.project->taskId;
        entry.shares.clear();
    }
    if (fields.replaceTags)
        entry.tagIds = fields.tagIds.value_or(std::vector<std::string>());
    if (fields.isBillable) {
        entry.isBillable = *fields.isBillable;
        for (TimeShareResponse &share : entry.shares)
            share.isBillable = *fields.isBillable;
    }
    entry.start = fields.start.value_or(entry.start);
    if (fields.stop)
        entry.stop = fields.stop;
    if (fields.shares)
        entry.shares = *fields.shares;
    return entryRequest(entry);
}

} // namespace orvane
