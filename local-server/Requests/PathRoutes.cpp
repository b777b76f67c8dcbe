// SPDX-License-Identifier: GPL-3.0-or-later
#include "Requests/PathRoutes.h"

namespace orvane::server {

const Router::Route *PathRoutes::find(HttpMethod method, std::string_view path) const
{
    const auto routes = m_routes.find(path);
    if (routes == m_routes.end())
        return nullptr;
    const auto route = routes->second.find(method);
    return route == routes->second.end() ? nullptr : &route->second;
}

std::vector<HttpMethod> PathRoutes::methods(std::string_view path) const
{
    std::vector<HttpMethod> methods;
    if (const auto routes = m_routes.find(path); routes != m_routes.end()) {
        for (const auto &[method, route] : routes->second)
            methods.push_back(method);
    }
    return methods;
}

} // namespace orvane::server
