// SPDX-License-Identifier: GPL-3.0-or-later
#include "Requests/Router.h"

#include "Http/Problems.h"

namespace orvane::server {

HttpResponse refusedInput(const RequestProblem &refused)
{
    if (refused.fieldErrors.empty())
        return problem(refused.status, "The request was not understood.", refused.message);
    return invalid(refused.status, refused.fieldErrors);
}

const Router::Route *Router::find(std::string_view operation) const
{
    const auto found = m_routes.find(operation);
    return found == m_routes.end() ? nullptr : &found->second;
}

} // namespace orvane::server
