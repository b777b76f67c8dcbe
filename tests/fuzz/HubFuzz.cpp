// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes, as a hub's frames: however they are cut, the same messages come out, none longer than allowed;
// each is read as one thing or refused, and a change that is read is written as JSON that reads back. The
// first byte says how long the frames are.
#include "LiveSync/HubFrames.h"
#include "Support/Require.h"

#include <algorithm>

namespace {

using namespace orvane;

struct Cut {
    std::vector<std::string> messages;
    bool isRefused = false;
};

Cut cut(std::string_view text, std::size_t frame)
{
    Cut cut;
    HubSplitter splitter;
    for (std::size_t at = 0; at < text.size(); at += frame) {
        const auto messages = splitter.take(text.substr(at, frame));
        if (!messages) {
            cut.isRefused = true;
            break;
        }
        cut.messages.insert(cut.messages.end(), messages->begin(), messages->end());
    }
    return cut;
}

void checkMessage(const std::string &text)
{
    ORVANE_REQUIRE(!text.empty() && text.size() <= longestHubMessage, "has a wrong size");
    ORVANE_REQUIRE(text.find(hubSeparator) == std::string::npos, "was not cut");
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
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char *>(data) + 1, size - 1);
    const Cut whole = cut(text, std::max<std::size_t>(text.size(), 1));
    const Cut pieces = cut(text, std::size_t{data[0]} + 1);
    ORVANE_REQUIRE(whole.isRefused == pieces.isRefused, "the frames decide what is refused");
    ORVANE_REQUIRE(whole.isRefused || whole.messages == pieces.messages, "the frames decide what is said");
    std::ranges::for_each(pieces.messages, checkMessage);
    return 0;
}
