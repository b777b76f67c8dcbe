// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Middleware.h"

namespace orvane {

/// The most of a problem body that is looked at; a longer one counts as none.
inline constexpr std::size_t problemBodyLimit = std::size_t{1} << 20;

/// The APIError of an answer with status 400 or above. What the body does not say, or says in a shape that is
/// no problem's, is left out; this never fails.
APIError apiError(const HttpResponse &response);

/// Turns every answer of status 400 and above into an APIError, so that the calls below it see successes
/// only. Outermost, and without state.
class ProblemMiddleware final : public Middleware {
public:
    Task<HttpResult> intercept(HttpRequest request, SendNext next) const override;
};

} // namespace orvane
