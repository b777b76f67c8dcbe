// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryChange.h"

#include <cstdint>

namespace orvane {

/// A change in the queue, under the number that gives its order. Numbers only grow and are never reused.
struct PendingChange {
    std::int64_t seq = 0;
    EntryChange change;

    bool operator==(const PendingChange &) const = default;
};

} // namespace orvane
