// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <string>

namespace orvane {

/// Under which names the hub expects a connection: `connectionId` is for the requests that tell where a
/// change comes from, `connectionToken` opens the WebSocket.
struct HubNegotiation {
    std::string connectionId;
    std::string connectionToken;
};

template <>
struct JsonFields<HubNegotiation> {
    static constexpr auto list =
        JsonFieldList{jsonField<"connectionId">(&HubNegotiation::connectionId),
                      jsonField<"connectionToken">(&HubNegotiation::connectionToken)};
};

} // namespace orvane
