// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/CommandFailure.h"

#include "Http/RefusalText.h"

#include <utility>

namespace orvane {

CommandFailure CommandFailure::of(std::string message)
{
    return {.message = std::move(message)};
}

CommandFailure CommandFailure::usage(std::string message)
{
    return {.exitStatus = ExitStatus::usage, .message = std::move(message)};
}

CommandFailure CommandFailure::of(const CallError &error, std::string message)
{
    CommandFailure failure{.message = message.empty() ? describe(error) : std::move(message)};
    if (const auto *answer = std::get_if<APIError>(&error)) {
        if (failure.message == answer->errorDescription())
            failure.message = refusalText(*answer);
        failure.status = answer->status;
        failure.type = answer->type;
        failure.title = answer->title;
        failure.detail = answer->detail;
        if (!answer->fieldErrors.empty())
            failure.fieldErrors = answer->fieldErrors;
    }
    return failure;
}

CommandFailure CommandFailure::of(const AccountError &error)
{
    return error.error ? of(*error.error, error.message) : of(error.message);
}

CommandFailure CommandFailure::of(const StoreError &error)
{
    return of(describe(error));
}

} // namespace orvane
