// SPDX-License-Identifier: GPL-3.0-or-later
// What the hub's clients say, whole and cut in two: the same is done, and what is said back can be read. The
// first byte says where the cut is, in parts of 256.
#include "Hub/HubDialog.h"
#include "Support/Require.h"

#include <cstdint>

using namespace orvane;
using namespace orvane::server;

namespace {

/// Whether a client can read what it is told.
bool isReadable(const HubDialog::Say &say, bool isHandshake)
{
    hub::Records records(say.text.size());
    const auto complete = records.take(say.text);
    return complete && complete->size() == 1 &&
           (isHandshake ? decodeJson<hub::HandshakeAnswer>(complete->front()).has_value()
                        : decodeJson<hub::Message>(complete->front()).has_value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string frames(reinterpret_cast<const char *>(data + 1), size - 1);
    HubDialog whole;
    const auto acts = whole.hear(frames);
    bool isFirst = true;
    for (const auto &act : acts) {
        if (const auto *say = std::get_if<HubDialog::Say>(&act))
            ORVANE_REQUIRE(isReadable(*say, std::exchange(isFirst, false)), "an answer cannot be read");
    }
    HubDialog cut;
    const std::size_t at = frames.size() * data[0] / 256;
    auto inTwo = cut.hear(frames.substr(0, at));
    const auto rest = cut.hear(frames.substr(at));
    inTwo.insert(inTwo.end(), rest.begin(), rest.end());
    ORVANE_REQUIRE(whole.isOpen() == cut.isOpen(), "a cut decides about the handshake");
    // A record that is too long is noticed before those in front of it in the same frame are heard.
    const bool isLong = frames.size() > longestHubMessage;
    ORVANE_REQUIRE(isLong || acts == inTwo, "a cut changes what is done");
    return 0;
}
