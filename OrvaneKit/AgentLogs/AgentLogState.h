// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/AgentLogParser.h"
#include "Support/Result.h"

#include <string>
#include <string_view>

/// A parser's state as JSON, to be kept beside the place up to which its file was read. A session's events
/// are two lists there, `dates` and `touches`; they come back in time order. Any thread.
namespace orvane {

std::string encodedParserState(const AgentLogParser::State &state);

/// Refuses what no parser's state can be, such as sessions of another agent's. Any state that comes back can
/// be read on with, whoever wrote it.
Result<AgentLogParser::State, JsonError> decodedParserState(std::string_view text);

} // namespace orvane
