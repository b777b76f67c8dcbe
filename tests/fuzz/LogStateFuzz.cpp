// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a saved state, the first line, and lines to read on with: a state that is accepted is written
// as it was read, and whatever it says, reading on comes to states that are accepted again.
#include "LogLinesCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace orvane;
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const std::size_t feed = std::min(text.find('\n'), size);
    auto state = decodedParserState(text.substr(0, feed));
    if (!state)
        return 0;
    const std::string written = encodedParserState(*state);
    const auto again = decodedParserState(written);
    ORVANE_REQUIRE(again && *again == *state, "is read differently");
    AgentLogParser parser(std::move(*state));
    logfuzz::forEachLine(text.substr(std::min(feed + 1, size)), [&](std::string_view line) {
        parser.read(line);
        static_cast<void>(logfuzz::resumed(parser));
    });
    return 0;
}
