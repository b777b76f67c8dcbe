// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What is read of a problem-details body: less than the API's schemas demand, since a proxy on the way may
/// have written it.
namespace orvane {

struct ProblemBody {
    std::optional<std::string> type;
    std::optional<std::string> title;
    std::optional<std::int64_t> status;
    std::optional<std::string> detail;
    std::optional<std::map<std::string, std::vector<std::string>>> errors;
};

template <>
struct JsonFields<ProblemBody> {
    static constexpr auto list =
        std::tuple{jsonField<"type">(&ProblemBody::type), jsonField<"title">(&ProblemBody::title),
                   jsonField<"status">(&ProblemBody::status), jsonField<"detail">(&ProblemBody::detail),
                   jsonField<"errors">(&ProblemBody::errors)};
};

} // namespace orvane
