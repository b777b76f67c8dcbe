// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes in the file of half-typed texts: what is read is bounded, and is read back the same once written.
#include "AppModel/Drafts.h"
#include "Support/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace orvane;
    const Drafts drafts = Drafts::read({reinterpret_cast<const char *>(data), size});
    std::size_t bytes = 0;
    for (const Draft &draft : drafts.all()) {
        ORVANE_REQUIRE(!draft.text.empty() && draft.text.size() <= Drafts::longestText,
                       "a text out of bounds");
        ORVANE_REQUIRE(drafts.text(draft.account, draft.key) == draft.text, "two texts at one place");
        bytes += draft.text.size();
    }
    ORVANE_REQUIRE(drafts.all().size() <= Drafts::mostDrafts && bytes <= Drafts::mostText, "too many drafts");
    ORVANE_REQUIRE(Drafts::read(drafts.written()) == drafts, "read back as other drafts");
    return 0;
}
