// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/Routes.h"

#include "OrvaneAPI/UriText.h"

#include <algorithm>

namespace orvane {

namespace {

std::vector<std::string_view> splitPath(std::string_view path)
{
    std::vector<std::string_view> segments;
    while (path.starts_with('/')) {
        path.remove_prefix(1);
        segments.push_back(path.substr(0, path.find('/')));
        path.remove_prefix(segments.back().size());
    }
    return segments;
}

std::optional<std::vector<std::string>> decodedSegments(std::string_view rawPath)
{
    rawPath = rawPath.substr(0, rawPath.find('?'));
    if (!rawPath.starts_with('/'))
        return std::nullopt;
    std::vector<std::string> segments;
    for (const std::string_view raw : splitPath(rawPath)) {
        auto segment = percentDecoded(raw);
        if (!segment)
            return std::nullopt;
        segments.push_back(std::move(*segment));
    }
    return segments;
}

const RouteTable &table()
{
    static const RouteTable all(allOperations());
    return all;
}

} // namespace

RouteTable::RouteTable(std::span<const OperationInfo> operations)
{
    for (const OperationInfo &operation : operations) {
        Node *node = &m_root;
        for (const std::string_view segment : splitPath(operation.pathTemplate)) {
            if (!segment.starts_with('{')) {
                node = &node->literals[std::string(segment)];
                continue;
            }
            if (!node->argument)
                node->argument = std::make_unique<Node>();
            node = node->argument.get();
        }
        node->operations.push_back(&operation);
    }
}

/// Shows `visit` the operations of each way to read the path, the likelier first, until it answers true.
template <class Visit>
bool RouteTable::walk(const Node &node, std::span<const std::string> rest, Segments &arguments,
                      const Visit &visit)
{
    if (rest.empty())
        return visit(node.operations);
    const auto literal = node.literals.find(rest.front());
    if (literal != node.literals.end() && walk(literal->second, rest.subspan(1), arguments, visit))
        return true;
    if (!node.argument || rest.front().empty())
        return false;
    arguments.push_back(rest.front());
    if (walk(*node.argument, rest.subspan(1), arguments, visit))
        return true;
    arguments.pop_back();
    return false;
}

std::optional<RouteMatch> RouteTable::match(HttpMethod method, std::string_view rawPath) const
{
    const auto segments = decodedSegments(rawPath);
    if (!segments)
        return std::nullopt;
    RouteMatch match;
    const auto take = [&](const std::vector<const OperationInfo *> &operations) {
        const auto found = std::ranges::find(operations, method, &OperationInfo::method);
        if (found == operations.end())
            return false;
        match.operation = *found;
        return true;
    };
    return walk(m_root, *segments, match.pathArguments, take) ? std::optional{std::move(match)}
                                                              : std::nullopt;
}

std::vector<HttpMethod> RouteTable::methods(std::string_view rawPath) const
{
    std::vector<HttpMethod> methods;
    const auto collect = [&](const std::vector<const OperationInfo *> &operations) {
        for (const OperationInfo *operation : operations) {
            if (std::ranges::find(methods, operation->method) == methods.end())
                methods.push_back(operation->method);
        }
        return false;
    };
    Segments arguments;
    if (const auto segments = decodedSegments(rawPath))
        walk(m_root, *segments, arguments, collect);
    return methods;
}

std::optional<RouteMatch> matchRoute(HttpMethod method, std::string_view rawPath)
{
    return table().match(method, rawPath);
}

std::vector<HttpMethod> routeMethods(std::string_view rawPath)
{
    return table().methods(rawPath);
}

} // namespace orvane
