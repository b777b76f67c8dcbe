// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/CallError.h"

namespace orvane {

std::string APIError::errorDescription() const
{
    if (!fieldErrors.empty()) {
        const auto &messages = fieldErrors.begin()->second;
        if (!messages.empty())
            return messages.front();
    }
    if (title && detail)
        return *title + " " + *detail;
    if (title || detail)
        return title ? *title : *detail;
    return "Something went wrong (" + std::to_string(status) + "). Please try again.";
}

std::string ConnectionError::errorDescription() const
{
    return "Couldn't reach Orvane. Check your connection and try again.";
}

std::string describe(const CallError &error)
{
    struct Describe {
        std::string operator()(const APIError &refusal) const { return refusal.errorDescription(); }
        std::string operator()(const ConnectionError &broken) const { return broken.errorDescription(); }
        std::string operator()(const DecodingError &) const
        {
            return "The server's answer couldn't be read. It may be of another version.";
        }
    };
    return std::visit(Describe{}, error);
}

APIError sessionEndedError()
{
    return {.status = 401, .title = "Your session has ended. Please sign in again."};
}

} // namespace orvane
