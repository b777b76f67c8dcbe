// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/AccountError.h"

namespace orvane {

AccountError AccountError::of(const CallError &error)
{
    const auto *problem = std::get_if<APIError>(&error);
    if (problem == nullptr)
        return {Kind::unreachable, describe(error), error};
    return {problem->status == 401 ? Kind::signedOut : Kind::refused, describe(error), error};
}

} // namespace orvane
