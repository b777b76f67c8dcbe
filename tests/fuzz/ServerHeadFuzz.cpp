// SPDX-License-Identifier: GPL-3.0-or-later
// The heads of requests that our own code reads: whatever is taken for one is plain when written out again.
#include "Http/RequestHead.h"
#include "Support/Require.h"

#include <algorithm>
#include <cstdint>

using namespace orvane;
using namespace orvane::server;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto request = readGetHead({reinterpret_cast<const char *>(data), size});
    if (!request)
        return 0;
    ORVANE_REQUIRE(request->path.starts_with('/') && request->body.empty(), "no plain request");
    std::string written = "GET " + request->path + " HTTP/1.1\r\n";
    for (const auto &[name, value] : request->headers.all()) {
        ORVANE_REQUIRE(std::ranges::none_of(value, [](char c) { return c == '\r' || c == '\n'; }),
                       "a field within a field");
        written += name + ": " + value + "\r\n";
    }
    const auto again = readGetHead(written + "\r\n");
    ORVANE_REQUIRE(again && *again == *request, "the head reads differently the second time");
    return 0;
}
