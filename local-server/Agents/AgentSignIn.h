// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <string>

/// How agents sign in: they find the way by themselves from the address of the tools, register, send the
/// user's browser to a page that asks for leave, and exchange the code that comes of it (OAuth 2.1 as the
/// Model Context Protocol has it).
namespace orvane::server {

class PathRoutes;

/// Where the agents' tools are.
inline constexpr char agentPath[] = "/mcp";
inline constexpr char resourcePath[] = "/.well-known/oauth-protected-resource";
inline constexpr char serverMetadataPath[] = "/.well-known/oauth-authorization-server";
inline constexpr char registerPath[] = "/oauth/register";
inline constexpr char authorizePath[] = "/oauth/authorize";
inline constexpr char tokenPath[] = "/oauth/token";
inline constexpr char revokePath[] = "/oauth/revoke";

void addAgentSignInPaths(PathRoutes &paths);

/// What an agent without a good token is answered: 401, with the way to one. `address` is the server's.
HttpResponse agentSignInWanted(const std::string &address, bool hadToken);

} // namespace orvane::server
