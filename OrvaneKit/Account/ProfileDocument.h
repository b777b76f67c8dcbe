// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Json.h"

namespace orvane {

/// The account's profile as the server last gave it, kept for times without the server.
struct ProfileDocument {
    static constexpr const char *key = "account";
    MeResponse me;
};

template <>
struct JsonFields<ProfileDocument> {
    static constexpr auto list = std::tuple{jsonField<"me">(&ProfileDocument::me)};
};

} // namespace orvane
