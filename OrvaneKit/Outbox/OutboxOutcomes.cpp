// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxOutcomes.h"

#include "Support/Require.h"

namespace orvane {

OutboxOutcomes::OutboxOutcomes(Outbox &outbox) : m_outbox(outbox)
{
    ORVANE_REQUIRE(!outbox.onSent && !outbox.onRejected && !outbox.onConflict,
                   "somebody else has the outbox's handlers");
    outbox.onSent = [this](const QueuedChange &row, const auto &entry) { Q_EMIT sent(row, entry); };
    outbox.onRejected = [this](const QueuedChange &row, const CallError &error, bool callerWaits) {
        Q_EMIT rejected(row, error, callerWaits);
    };
    outbox.onConflict = [this](const QueuedChange &row, const TimeEntryResponse &current) {
        Q_EMIT conflicted(row, current);
    };
}

OutboxOutcomes::~OutboxOutcomes()
{
    m_outbox.onSent = {};
    m_outbox.onRejected = {};
    m_outbox.onConflict = {};
}

} // namespace orvane
