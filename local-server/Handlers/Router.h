// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Handlers/Aside.h"
#include "Handlers/Call.h"
#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/Operations.h"

#include <functional>
#include <string_view>
#include <unordered_map>

namespace orvane::server {

enum class Access { SignedIn, Anyone };

HttpResponse refusedInput(const RequestProblem &problem);

/// Which function handles which operation. A function gets an operation's input after it has been checked
/// against the API document.
class Router {
public:
    struct Route {
        std::function<Step(Call &, const RequestParts &)> handle;
        Access access = Access::SignedIn;
    };

    /// A handler answers an HttpResponse, or a Step when it may have work to do aside.
    template <class Operation, class Outcome>
    void add(Outcome (*handler)(Call &, const typename Operation::Input &), Access access = Access::SignedIn)
    {
        m_routes[Operation::name] = {[handler](Call &call, const RequestParts &parts) -> Step {
                                         const auto input = Operation::read(parts);
                                         if (!input)
                                             return refusedInput(input.error());
                                         return handler(call, *input);
                                     },
                                     access};
    }

    /// Null for an operation that this server does not have.
    const Route *find(std::string_view operation) const;

private:
    std::unordered_map<std::string_view, Route> m_routes;
};

// Each area's file says which operations it handles.
void addServerHandlers(Router &router);
void addSignInHandlers(Router &router);
void addSessionHandlers(Router &router);
void addAccountHandlers(Router &router);
void addWorkspaceHandlers(Router &router);
void addProjectHandlers(Router &router);
void addClientHandlers(Router &router);
void addTagHandlers(Router &router);
void addEntryHandlers(Router &router);
void addEntryBulkHandlers(Router &router);
void addSuggestionHandlers(Router &router);

} // namespace orvane::server
