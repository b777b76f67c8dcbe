// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as JSON: no step is taken outside of them, the widest instructions find what the plain ones find,
// and an object that is valid is walked to its end.
#include "AgentLogs/JsonBytes.h"
#include "AgentLogs/LogRecords.h"
#include "Support/Require.h"

#include <algorithm>
#include <memory>

namespace {

using namespace orvane;
using namespace orvane::jsonbytes;

void checkScanners(const char *at, const char *end)
{
    ORVANE_REQUIRE(scanner.textEnd(at, end) == plainScanner.textEnd(at, end), "another end of a text");
    for (const int depth : {1, 2})
        ORVANE_REQUIRE(scanner.bracketsEnd(at, end, depth) == plainScanner.bracketsEnd(at, end, depth),
                       "another end of brackets");
}

/// Goes into everything; gives where the object ended and adds what was met to `out`.
const char *walk(const char *at, const char *end, const Scanner &bytes, int depth, std::string &out)
{
    ObjectWalk members(at, end, bytes);
    while (members.next()) {
        out.append(members.name()).append(1, members.first());
        bool hasEscapes = false;
        if (depth < 50 && members.first() == '{') {
            members.taken(walk(members.value(), end, bytes, depth + 1, out));
        } else if (depth < 50 && members.first() == '[') {
            ListWalk list(members.value(), end, bytes);
            while (list.next())
                list.taken(walk(list.object(), end, bytes, depth + 1, out));
            members.taken(list.end());
        } else if (out.size() % 2 == 0) {
            const std::string_view text = members.plainText(hasEscapes);
            out += unescaped(text).value_or("broken");
            ORVANE_REQUIRE(hasEscapes || !unescaped(text) || unescaped(text) == text, "has no escapes");
        }
    }
    return members.finish();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // Memory of just this size, so that the sanitizer sees a step too far.
    const std::unique_ptr<char[]> bytes(new char[size]);
    std::copy_n(data, size, bytes.get());
    const char *const end = bytes.get() + size;
    for (std::size_t from = 0; from < std::min<std::size_t>(size, 40); ++from)
        checkScanners(bytes.get() + from, end);
    std::string met;
    std::string plainlyMet;
    const char *const last = walk(bytes.get(), end, scanner, 0, met);
    ORVANE_REQUIRE(walk(bytes.get(), end, plainScanner, 0, plainlyMet) == last && met == plainlyMet,
                   "another walk");
    const std::string_view text(bytes.get(), size);
    const std::string whole = withWholeCharacters(text);
    ORVANE_REQUIRE(withWholeCharacters(whole) == whole, "not whole yet");
    if (logrecords::read<logrecords::Record>(text))
        ORVANE_REQUIRE(last != nullptr && std::all_of(last, end, [](char c) { return c <= ' '; }),
                       "valid, but not walked to its end");
    return 0;
}
