// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/RequestGate.h"
#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/Operations.h"
#include "Requests/Aside.h"
#include "Requests/Call.h"
#include "Workspaces/WorkspaceAccess.h"

#include <concepts>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orvane::server {

HttpResponse refusedInput(const RequestProblem &problem);

/// Whether an operation is about one workspace, which its path names.
template <class Operation>
concept InWorkspace = requires(const typename Operation::Input &input) {
    { input.workspaceId } -> std::convertible_to<std::string>;
};

/// Which function handles which operation. A function gets an operation's input after it has been checked
/// against the API document, which also says whether the caller must be signed in. One for an operation in a
/// workspace gets the caller's access to it too, of the kind that it asks for, and cannot be had without.
///
/// A handler answers an HttpResponse, or a Step when it may have work to do aside.
class Router {
public:
    /// Who may ask: anybody, who is signed in, or who comes with an agent's access token. Neither of the last
    /// two opens what is for the other.
    enum class Entrance { open, signedIn, agent };
    struct Route {
        std::function<Step(Call &, const RequestParts &)> handle;
        Entrance entrance = Entrance::signedIn;
        Lane lane = Lane::writing;
        RequestGate::Body body = RequestGate::Body::json;
        /// Of a route that reads: whether this request is one that may write after all.
        std::function<bool(const RequestParts &)> mayWrite = {};
    };

    template <class Operation, class Outcome>
        requires(!InWorkspace<Operation>)
    void add(Outcome (*handler)(Call &, const typename Operation::Input &))
    {
        addRoute<Operation>([handler](Call &call, const typename Operation::Input &input) -> Step {
            return handler(call, input);
        });
    }
    template <class Operation, class Access, class Outcome>
        requires InWorkspace<Operation> && std::derived_from<Access, WorkspaceAccess>
    void add(Outcome (*handler)(Call &, const Access &, const typename Operation::Input &))
    {
        static_assert(Operation::wantsSignIn, "nobody enters a workspace without signing in");
        addRoute<Operation>([handler](Call &call, const typename Operation::Input &input) -> Step {
            const auto access = Access::enter(call, input.workspaceId);
            if (!access)
                return access.error();
            return handler(call, *access, input);
        });
    }

    /// Null for an operation that this server does not have.
    const Route *find(std::string_view operation) const;

private:
    template <class Operation, class Handle>
    void addRoute(Handle handle)
    {
        const auto readAndHandle = [handle](Call &call, const RequestParts &parts) -> Step {
            const auto input = Operation::read(parts);
            if (!input)
                return refusedInput(input.error());
            return handle(call, *input);
        };
        constexpr Lane lane = Operation::method == HttpMethod::get ? Lane::reading : Lane::writing;
        constexpr Entrance entrance = Operation::wantsSignIn ? Entrance::signedIn : Entrance::open;
        m_routes[Operation::name] = {.handle = readAndHandle, .entrance = entrance, .lane = lane};
    }

    std::unordered_map<std::string_view, Route> m_routes;
};

// Each area's file says which operations it handles.
void addAccountHandlers(Router &router);
void addAgentAuthorizationHandlers(Router &router);
void addMyDataHandlers(Router &router);
void addClientHandlers(Router &router);
void addEntryBulkHandlers(Router &router);
void addEntryHandlers(Router &router);
void addPasskeyHandlers(Router &router);
void addProjectHandlers(Router &router);
void addProposalHandlers(Router &router);
void addServerHandlers(Router &router);
void addSessionHandlers(Router &router);
void addSignInHandlers(Router &router);
void addSuggestionHandlers(Router &router);
void addTagHandlers(Router &router);
void addTaskHandlers(Router &router);
void addWorkspaceHandlers(Router &router);

} // namespace orvane::server
