// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a log of this agent's.
#include "LogLinesCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    orvane::logfuzz::checkLines(orvane::AgentSource::codex, {reinterpret_cast<const char *>(data), size});
    return 0;
}
