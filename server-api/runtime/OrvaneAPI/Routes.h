// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Which operation a request is for. All functions may be called from any thread.
namespace orvane {

struct OperationInfo {
    std::string_view name;
    HttpMethod method;
    /// "/api/workspaces/{workspaceId}/time-entries".
    std::string_view pathTemplate;
    /// The operation's number in the document's own order.
    int order;
    /// Whether a call has to come with the access token of a session.
    bool wantsSignIn = true;
};

/// Every operation of the API in its order.
std::span<const OperationInfo> allOperations();

struct RouteMatch {
    const OperationInfo *operation = nullptr;
    /// Decoded, in the order of the path.
    std::vector<std::string> pathArguments;
};

/// Finds operations by path. A path that is badly encoded, or has an empty segment where an argument belongs,
/// is no operation's; a fixed segment is preferred to an argument.
class RouteTable {
public:
    /// The operations must outlive the table.
    explicit RouteTable(std::span<const OperationInfo> operations);

    /// `rawPath` is percent-encoded; a query behind it is ignored. Nothing when no operation has that path
    /// with that method: `methods` tells the two cases apart.
    std::optional<RouteMatch> match(HttpMethod method, std::string_view rawPath) const;

    /// The methods that the path knows; empty when no operation has that path.
    std::vector<HttpMethod> methods(std::string_view rawPath) const;

private:
    struct Node {
        std::map<std::string, Node, std::less<>> literals;
        std::unique_ptr<Node> argument;
        std::vector<const OperationInfo *> operations;
    };
    using Segments = std::vector<std::string>;

    template <class Visit>
    static bool walk(const Node &node, std::span<const std::string> rest, Segments &arguments,
                     const Visit &visit);

    Node m_root;
};

/// The same over allOperations().
std::optional<RouteMatch> matchRoute(HttpMethod method, std::string_view rawPath);
std::vector<HttpMethod> routeMethods(std::string_view rawPath);

} // namespace orvane
