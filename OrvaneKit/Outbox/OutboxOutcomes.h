// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Outbox/Outbox.h"

#include <QObject>
#include <optional>

namespace orvane {

/// What becomes of queued changes, for any number of listeners: trackers of several workspaces, a screen, a
/// notice. It takes the outbox's three handlers for as long as it lives.
///
/// Owner: the account, which destroys it before the outbox. Thread: the main thread.
class OutboxOutcomes final : public QObject {
    Q_OBJECT

public:
    explicit OutboxOutcomes(Outbox &outbox);
    ~OutboxOutcomes() override;

Q_SIGNALS:
    /// Taken by the server; `entry` as it answered, none after a deletion or when another process sent the
    /// change.
    void sent(const orvane::QueuedChange &row, const std::optional<orvane::TimeEntryResponse> &entry);
    void rejected(const orvane::QueuedChange &row, const orvane::CallError &error, bool callerWaits);
    void conflicted(const orvane::QueuedChange &row, const orvane::TimeEntryResponse &current);

private:
    Outbox &m_outbox;
};

} // namespace orvane
