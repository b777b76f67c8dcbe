// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes, as what a hub says: it is read as one thing or refused, and a change that is read is written as
// JSON that reads back.
#include "LiveSync/HubMessages.h"
#include "Support/Require.h"

#include <algorithm>

namespace {

using namespace orvane;

void checkMessage(std::string_view text)
{
    (void)readHubHandshake(text);
    const auto message = readHubMessage(text);
    if (!message)
        return;
    if (const auto *change = std::get_if<HubChange>(&*message))
        ORVANE_REQUIRE(decodeJson<SyncChange>(encodeJson(change->change)) == change->change,
                       "does not read back");
    if (const auto *completion = std::get_if<HubCompletion>(&*message))
        ORVANE_REQUIRE(completion->error.empty() || !completion->result || text.find("true") != text.npos,
                       "a result came from nowhere");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view text(reinterpret_cast<const char *>(data), size);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\x1e'), text.size());
        checkMessage(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return 0;
}
