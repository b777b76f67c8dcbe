// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a failed answer's body holds, it becomes an error that keeps the status and has a text to show.
#include "Http/ProblemMiddleware.h"
#include "Support/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string body(reinterpret_cast<const char *>(data), size);
    const orvane::APIError error = orvane::apiError({.status = 412, .headers = {}, .body = body});
    ORVANE_REQUIRE(error.status == 412, "the status was lost");
    ORVANE_REQUIRE(!error.current || error.type == orvane::entryChangedProblemType,
                   "an entry came from another problem");
    const bool hasText = error.title || error.detail || !error.fieldErrors.empty();
    ORVANE_REQUIRE(hasText || error.errorDescription() == "Something went wrong (412). Please try again.",
                   "nothing was said and yet something is shown");
    return 0;
}
