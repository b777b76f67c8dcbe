// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/EarlierWork.h"

#include "QuickEntry/FoldedText.h"
#include "Time/TextScanner.h"

#include <algorithm>

namespace orvane {

EarlierWork::EarlierWork(std::string_view typed, std::string said, std::size_t limit)
    : m_typed(TextScanner::trimmed(typed))
    , m_said(std::move(said))
    , m_folded(FoldedText::of(m_typed).text())
    , m_limit(limit)
{
}

void EarlierWork::add(const std::vector<TimeEntryResponse> &entries)
{
    if (m_folded.empty())
        return;
    for (const TimeEntryResponse &entry : entries) {
        if (isFull())
            return;
        if (FoldedText::of(entry.description).text().find(m_folded) != std::string::npos)
            addOne({entry.description, entry.projectId, entry.taskId, entry.tagIds, entry.isBillable});
    }
}

void EarlierWork::add(const std::vector<std::string> &descriptions)
{
    if (m_folded.empty())
        return;
    for (const std::string &description : descriptions)
        addOne({.description = description, .tagIds = {}});
}

void EarlierWork::addOne(TimeEntrySuggestion suggestion)
{
    const bool isSaid = suggestion.description == m_typed || suggestion.description == m_said;
    const bool isKnown = std::ranges::find(m_found, suggestion.description,
                                           &TimeEntrySuggestion::description) != m_found.end();
    if (!isFull() && !isKnown && !isSaid)
        m_found.push_back(std::move(suggestion));
}

} // namespace orvane
