// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Requests/Router.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::server {

/// What is at addresses that are no operation of the API: other protocols' and pages. A handler gets the
/// request as it came.
class PathRoutes {
public:
    void add(HttpMethod method, std::string path, Router::Route route)
    {
        m_routes[std::move(path)][method] = std::move(route);
    }
    /// Null when there is none for the method. `path` is without a query.
    const Router::Route *find(HttpMethod method, std::string_view path) const;
    /// What the path takes; empty for a path that is not here.
    std::vector<HttpMethod> methods(std::string_view path) const;

private:
    std::map<std::string, std::map<HttpMethod, Router::Route>, std::less<>> m_routes;
};

} // namespace orvane::server
