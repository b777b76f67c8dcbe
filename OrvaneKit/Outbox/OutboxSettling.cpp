// SPDX-License-Identifier: GPL-3.0-or-later
// What the user decides about changes that the server did not just take.
#include "Outbox/EntryMerge.h"
#include "Outbox/Outbox.h"

#include "Catalog/EntryConversions.h"

#include <QPointer>

namespace orvane {

Task<Result<bool, StoreError>> Outbox::keepMine(std::int64_t seq, SettledHandler onStored)
{
    return settle(seq, KeepMine{}, std::move(onStored));
}

Task<Result<bool, StoreError>> Outbox::keepTheirs(std::int64_t seq, SettledHandler onStored)
{
    return settle(seq, KeepTheirs{}, std::move(onStored));
}

Task<Result<bool, StoreError>> Outbox::keepMerged(std::int64_t seq, EntryRequest request,
                                                  TimeEntryResponse theirs, SettledHandler onStored)
{
    // An update that changes nothing would only give the entry another version.
    if (saysTheSame(entryResponse(request, theirs.id, theirs.workspaceId), theirs))
        return settle(seq, KeepTheirs{}, std::move(onStored));
    return settle(seq, KeepMerged{std::move(request)}, std::move(onStored), std::move(theirs));
}

Task<Result<bool, StoreError>> Outbox::settle(std::int64_t seq, Settlement settlement,
                                              SettledHandler onStored, std::optional<TimeEntryResponse> seen)
{
    const QPointer<Outbox> self(this);
    const Pending *row = m_queue.find(seq);
    if (row == nullptr || !row->conflict)
        co_return false;
    const bool isDropped = std::holds_alternative<KeepTheirs>(settlement);
    TimeEntryResponse current = seen ? std::move(*seen) : *row->conflict;
    const auto changed =
        co_await settleConflict(m_parts.store, seq, std::move(current), std::move(settlement));
    if (!changed)
        co_return failure(changed.error());
    if (!self)
        co_return changed->has_value();
    m_startsOver = m_isFlushing;
    m_queue.setConflict(seq, std::nullopt);
    if (isDropped && *changed)
        m_queue.remove(seq);
    if (*changed)
        m_queue.adopt(**changed);
    tellPending();
    if (*changed && onStored)
        onStored();
    co_await flush();
    co_return changed->has_value();
}

Task<std::optional<Outbox::ConflictSides>> Outbox::sides(std::int64_t seq)
{
    const QPointer<Outbox> self(this);
    const Pending *row = m_queue.find(seq);
    if (row == nullptr || !row->conflict)
        co_return std::nullopt;
    const TimeEntryResponse theirs = *row->conflict;
    const bool isStop = std::holds_alternative<EntryChange::Stop>(row->change.action);
    const auto mine = co_await changeMadeAnew(m_parts.store, seq, theirs);
    row = self ? m_queue.find(seq) : nullptr;
    if (!mine || !*mine || row == nullptr || !row->conflict)
        co_return std::nullopt;
    co_return ConflictSides{seq, **mine, theirs, isStop};
}

Task<std::vector<Refusal>> Outbox::unshownRefusals()
{
    auto document = co_await m_parts.store->load<RefusalDocument>(RefusalDocument::key);
    std::vector<Refusal> refusals = document ? std::move(document->refusals) : std::vector<Refusal>{};
    std::erase_if(refusals, &Refusal::isShown);
    co_return refusals;
}

Task<StoreStatus> Outbox::markShown(std::vector<Refusal> refusals)
{
    std::vector<std::int64_t> seqs;
    seqs.reserve(refusals.size());
    for (const Refusal &refusal : refusals)
        seqs.push_back(refusal.seq);
    return noteShown(m_parts.store, std::move(seqs));
}

Task<Result<std::vector<Refusal>, StoreError>> Outbox::setRefusalsAside()
{
    return orvane::setRefusalsAside(m_parts.store);
}

Task<StoreStatus> Outbox::markAnswered(std::int64_t seq)
{
    return noteAnswered(m_parts.store, seq);
}

} // namespace orvane
