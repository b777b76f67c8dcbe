// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Requests/Aside.h"

namespace orvane {
struct RequestParts;
}

namespace orvane::server {

/// The page to which an agent sends the user's browser, and what is sent from it.
Step showConsent(Call &call, const RequestParts &parts);
Step answerConsent(Call &call, const RequestParts &parts);

} // namespace orvane::server
