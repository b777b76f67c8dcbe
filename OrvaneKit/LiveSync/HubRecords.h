// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The JSON behind the hub's messages and the answer to a negotiation.
namespace orvane {

/// Any message of the hub: what one kind of them has, others lack.
struct HubRecord {
    std::optional<std::int64_t> type;
    std::optional<std::string> target;
    std::optional<std::vector<RawJson>> arguments;
    std::optional<std::string> invocationId;
    std::optional<RawJson> result;
    std::optional<std::string> error;
};

template <>
struct JsonFields<HubRecord> {
    static constexpr auto list = JsonFieldList{
        jsonField<"type">(&HubRecord::type),           jsonField<"target">(&HubRecord::target),
        jsonField<"arguments">(&HubRecord::arguments), jsonField<"invocationId">(&HubRecord::invocationId),
        jsonField<"result">(&HubRecord::result),       jsonField<"error">(&HubRecord::error)};
};

/// A call of one of the hub's methods.
struct HubInvocation {
    std::int64_t type = 1;
    std::optional<std::string> invocationId;
    std::string target;
    std::vector<std::string> arguments;
};

template <>
struct JsonFields<HubInvocation> {
    static constexpr auto list = JsonFieldList{
        jsonField<"type">(&HubInvocation::type), jsonField<"invocationId">(&HubInvocation::invocationId),
        jsonField<"target">(&HubInvocation::target), jsonField<"arguments">(&HubInvocation::arguments)};
};

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
