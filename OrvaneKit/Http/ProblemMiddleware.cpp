// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ProblemMiddleware.h"

#include "Http/ProblemBody.h"

namespace orvane {

APIError apiError(const HttpResponse &response)
{
    APIError error{.status = response.status};
    if (response.body.empty() || response.body.size() > problemBodyLimit)
        return error;
    auto problem = decodeJson<ProblemBody>(response.body);
    if (!problem)
        return error;
    error.title = std::move(problem->title);
    error.detail = std::move(problem->detail);
    error.type = std::move(problem->type);
    if (problem->errors)
        error.fieldErrors = std::move(*problem->errors);
    if (error.type == entryChangedProblemType) {
        if (auto changed = decodeJson<TimeEntryChangedProblem>(response.body))
            error.current = std::move(changed->current);
    }
    return error;
}

Task<HttpResult> ProblemMiddleware::intercept(HttpRequest request, SendNext next) const
{
    auto answer = co_await next(std::move(request));
    if (answer && answer->status >= 400)
        co_return failure(CallError(apiError(*answer)));
    co_return std::move(answer);
}

} // namespace orvane
