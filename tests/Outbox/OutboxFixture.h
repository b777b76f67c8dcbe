// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryConversions.h"
#include "Tracker/Overlay.h"
#include "support/ClientStack.h"

#include <QUuid>
#include <gtest/gtest.h>

namespace orvane::testing {

inline std::string newId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

class OutboxTest : public ::testing::Test {
protected:
    EntryChange create(const std::string &id, const std::string &description, int start,
                       std::optional<int> minutes = 10)
    {
        return {EntryChange::Create{requestAt(description, start, minutes), id, stack.workspaceId()}};
    }
    EntryChange update(const std::string &id, const std::string &description, int start,
                       std::optional<std::string> version = {})
    {
        return {EntryChange::Update{requestAt(description, start, 10), id, stack.workspaceId(),
                                    std::move(version)}};
    }
    EntryChange remove(const std::string &id, std::optional<std::string> version = {})
    {
        return {EntryChange::Delete{id, stack.workspaceId(), std::move(version)}};
    }

    /// Queues changes without waiting for their outcome, as a user's hands do.
    void queue(Outbox &outbox, std::vector<EntryChange> changes)
    {
        const auto outcomes = await(outbox.submit(std::move(changes)));
        ASSERT_TRUE(outcomes) << describe(outcomes.error());
    }

    /// Passes until the queue is empty, as the retry timer would run them.
    void drain(Outbox &outbox, int most = 400)
    {
        for (int i = 0; i < most && !outbox.pending().empty(); ++i)
            await(outbox.flush());
        EXPECT_TRUE(outbox.pending().empty()) << outbox.pending().size() << " left";
    }

    void expectServerHolds(const std::vector<EntryChange> &changes)
    {
        std::vector<TimeEntryResponse> wanted =
            overlay({}, std::nullopt, changes, stack.workspaceId()).entries;
        std::ranges::sort(wanted, {},
                          [](const TimeEntryResponse &entry) { return std::tie(entry.start, entry.id); });
        std::vector<TimeEntryResponse> held = stack.serverEntries();
        for (TimeEntryResponse &entry : held)
            entry.version.clear();
        EXPECT_EQ(held, wanted);
    }

    ClientStack stack;
};

} // namespace orvane::testing
