// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// An agent's request for leave, as the server's page hands it from the browser to the program of whoever is
/// signed in. Pure functions; any thread.
namespace AgentCallback {

inline constexpr std::string_view address = "orvane://agents/authorize";

/// What the agent asks for; the server looks at it. None for an address that is no such request, or says
/// something twice.
std::optional<OAuthAuthorizationRequest> read(const std::string &text);

/// Whether an answer's address leads back to where the request said.
bool leadsBack(const OAuthAuthorizationRequest &request, const std::string &answer);
/// Whether a program of this computer listens there, so that no browser is needed to reach it.
bool isOnThisComputer(const std::string &answer);

} // namespace AgentCallback

} // namespace orvane
